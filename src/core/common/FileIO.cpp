#include "common/FileIO.h"

#include "common/Platform.h"

#include <algorithm>
#include <cerrno>
#include <cctype>
#include <cstdlib>
#include <string>
#include <vector>
#include <fstream>
#include <system_error>

namespace tarvel {
namespace fs = std::filesystem;

std::optional<Bytes> readWholeFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    in.seekg(0, std::ios::end);
    std::streamoff size = in.tellg();
    if (size < 0) return std::nullopt;
    in.seekg(0, std::ios::beg);
    Bytes data(static_cast<std::size_t>(size));
    if (size > 0 && !in.read(reinterpret_cast<char*>(data.data()), size)) return std::nullopt;
    return data;
}

namespace {

constexpr std::string_view kTemporaryMark = ".tarvel-tmp-";

// Temporary files of earlier writes of `path` whose process has gone (killed
// in the middle of a write): "NAME.tarvel-tmp-PID-N" beside the target.
void removeStaleTemporaries(const fs::path& path) {
    const std::string prefix = path.filename().string() + std::string(kTemporaryMark);
    std::error_code ec;
    fs::path folder = path.parent_path();
    if (folder.empty()) folder = ".";
    std::vector<fs::path> stale;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, ec)) {
        const std::string name = entry.path().filename().string();
        if (name.size() <= prefix.size() || name.compare(0, prefix.size(), prefix) != 0) continue;
        const long pid = std::strtol(name.c_str() + prefix.size(), nullptr, 10);
        if (!processMayBeAlive(pid)) stale.push_back(entry.path());
    }
    for (const fs::path& file : stale) fs::remove(file, ec);
}

}  // namespace

namespace {
// The system's words for an error, as a detail reads them: "permission denied".
std::string inWords(const std::error_code& error) {
    std::string words = error.message();
    if (!words.empty()) words[0] = char(std::tolower(static_cast<unsigned char>(words[0])));
    return words;
}
}  // namespace

bool writeFileAtomically(const fs::path& path, std::span<const std::uint8_t> data, std::string* reason) {
    removeStaleTemporaries(path);
    // A name of this process's own, created exclusively, beside the target.
    const std::string base =
        path.filename().string() + std::string(kTemporaryMark) + std::to_string(currentProcessId()) + "-";
    fs::path temporary;
    std::error_code ec;
    for (int attempt = 0;; ++attempt) {
        temporary = path.parent_path() / (base + std::to_string(attempt));
        if (createFileDurably(temporary, data)) break;
        const std::error_code cause(errno, std::generic_category());
        if (attempt >= 100 || !fs::exists(temporary, ec)) {
            if (reason) *reason = inWords(cause);
            return false;
        }
    }
    // Where a read-only target blocks the rename, the rename reports it.
    if (fs::exists(path, ec)) (void)clearReadOnly(path);
    fs::rename(temporary, path, ec);
    if (ec) {
        if (reason) *reason = inWords(ec);
        fs::remove(temporary, ec);
        return false;
    }
    // The data is on the disk already; the folder sync makes the new name
    // survive a power cut as well, where the file system allows it.
    (void)syncFolderToDisk(path.parent_path().empty() ? fs::path(".") : path.parent_path());
    return true;
}

bool clearReadOnly(const fs::path& path) {
    std::error_code ec;
    auto status = fs::status(path, ec);
    if (ec || !fs::exists(status)) return false;
    if ((status.permissions() & fs::perms::owner_write) == fs::perms::none) {
        fs::permissions(path, fs::perms::owner_write, fs::perm_options::add, ec);
        if (ec) return false;
    }
    return true;
}

bool sameFileName(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

namespace {

std::vector<std::string> splitRelative(std::string_view relative) {
    std::vector<std::string> parts;
    std::string current;
    for (char c : relative) {
        if (c == '\\' || c == '/') {
            if (!current.empty()) parts.push_back(current);
            current.clear();
        } else {
            current += c;
        }
    }
    if (!current.empty()) parts.push_back(current);
    return parts;
}

// Walks the components; `matchedAll` tells whether every one exists.
fs::path resolve(const fs::path& folder, std::string_view relative, bool& matchedAll) {
    fs::path current = folder;
    matchedAll = true;
    for (const std::string& part : splitRelative(relative)) {
        std::error_code ec;
        if (matchedAll && fs::exists(current / part, ec)) {
            current /= part;
            continue;
        }
        bool found = false;
        if (matchedAll) {
            for (auto it = fs::directory_iterator(current, ec); !ec && it != fs::directory_iterator(); it.increment(ec)) {
                if (sameFileName(it->path().filename().string(), part)) {
                    current = it->path();
                    found = true;
                    break;
                }
            }
        }
        if (!found) {
            matchedAll = false;
            current /= part;
        }
    }
    return current;
}

}  // namespace

std::optional<fs::path> findGameFile(const fs::path& gameFolder, std::string_view relative) {
    bool matched = false;
    fs::path p = resolve(gameFolder, relative, matched);
    if (!matched) return std::nullopt;
    return p;
}

fs::path gameFilePath(const fs::path& gameFolder, std::string_view relative) {
    bool matched = false;
    return resolve(gameFolder, relative, matched);
}

}  // namespace tarvel
