#include "common/RecentFiles.h"

#include "common/IniFile.h"

#include <algorithm>

namespace tarvel {
namespace {

constexpr std::string_view kSection = "Recent Car Sets";

std::string key(std::size_t index) { return "File" + std::to_string(index + 1); }

bool isSeparator(char c) { return c == '/' || c == '\\'; }

}  // namespace

std::vector<std::string> readRecentFiles(const IniFile& ini) {
    std::vector<std::string> files;
    for (std::size_t i = 0; i < kRecentFilesMax; ++i) {
        std::string path = ini.getString(kSection, key(i), "");
        if (!path.empty() && std::find(files.begin(), files.end(), path) == files.end()) files.push_back(std::move(path));
    }
    return files;
}

bool writeRecentFiles(IniFile& ini, const std::vector<std::string>& files) {
    bool written = true;
    for (std::size_t i = 0; i < kRecentFilesMax; ++i) {
        if (i < files.size())
            written = ini.setString(kSection, key(i), files[i]) && written;
        else if (!ini.getString(kSection, key(i), "").empty())
            written = ini.deleteKey(kSection, key(i)) && written;
    }
    return written;
}

std::vector<std::string> withRecentFile(std::vector<std::string> files, const std::string& path) {
    files = withoutRecentFile(std::move(files), path);
    files.insert(files.begin(), path);
    if (files.size() > kRecentFilesMax) files.resize(kRecentFilesMax);
    return files;
}

std::vector<std::string> withoutRecentFile(std::vector<std::string> files, const std::string& path) {
    std::erase(files, path);
    return files;
}

std::string shortenedPath(std::string_view path, std::string_view home, std::size_t maxChars) {
    std::string shown(path);
    if (!home.empty() && path.starts_with(home) && (path.size() == home.size() || isSeparator(path[home.size()])))
        shown = "~" + std::string(path.substr(home.size()));
    if (shown.size() <= maxChars) return shown;
    // Keep the first folder (the root or "~") and as many of the last parts as fit.
    const std::size_t firstEnd = shown.find_first_of("/\\", 1);
    const std::size_t nameStart = shown.find_last_of("/\\");
    if (firstEnd == std::string::npos || nameStart == std::string::npos || nameStart <= firstEnd) return shown;
    const std::string head = shown.substr(0, firstEnd + 1) + "...";
    std::size_t tailStart = nameStart;
    while (tailStart > firstEnd) {
        const std::size_t previous = shown.find_last_of("/\\", tailStart - 1);
        if (previous == std::string::npos || previous <= firstEnd) break;
        if (head.size() + (shown.size() - previous) > maxChars) break;
        tailStart = previous;
    }
    return head + shown.substr(tailStart);
}

}  // namespace tarvel
