#include "carset/WorkingFolder.h"

#include "carset/AssetKinds.h"
#include "common/FileIO.h"
#include "common/Platform.h"

#include <chrono>
#include <fstream>

#include <cstdio>
#include <cctype>
#include <string_view>
#include <system_error>

namespace tarvel {

namespace {
// `format` is a NUL-terminated printf pattern with one number.
std::filesystem::path numbered(const std::filesystem::path& folder, const char* format, int n) {
    char name[32];
    std::snprintf(name, sizeof name, format, n);
    return folder / name;
}
}  // namespace

std::filesystem::path workingFolderPath(std::time_t startTime) {
    char name[32];
    std::snprintf(name, sizeof name, "tarvel-%.9x", unsigned(startTime));
    std::error_code ec;
    auto base = std::filesystem::temp_directory_path(ec);
    if (ec) base = "/tmp";
    return base / name;
}

std::filesystem::path teamBitmapFile(const std::filesystem::path& f, int team) { return numbered(f, "TEAM%.2d.BMP", team); }
std::filesystem::path jamBitmapFile(const std::filesystem::path& f, int number) { return numbered(f, assetkinds::kJamWorkingFile.data(), number); }
std::filesystem::path soundFile(const std::filesystem::path& f, int slot) { return numbered(f, assetkinds::kSoundWorkingFile.data(), slot); }
std::filesystem::path menuHelmetFile(const std::filesystem::path& f, int slot) { return numbered(f, assetkinds::kMenuHelmetWorkingFile.data(), slot); }
std::filesystem::path helmetFile(const std::filesystem::path& f, int n) { return numbered(f, "THEL%.2d.BMP", n); }
std::filesystem::path temporaryCarSetFile(const std::filesystem::path& f) { return f / "TARVEL.TMP"; }

namespace {

// True for the names of the temporary asset files: a prefix, a fixed number of
// digits and an extension (TEAM00.BMP, JAM123.BMP, WAV07.WAV, MENU12.BMP,
// THEL03.BMP), or TARVEL.TMP.
bool isTemporaryAssetName(std::string_view name) {
    if (name == "TARVEL.TMP") return true;
    struct Pattern {
        std::string_view prefix;
        std::size_t digits;
        std::string_view extension;
    };
    static constexpr Pattern kPatterns[] = {
        {"TEAM", 2, ".BMP"}, {"JAM", 3, ".BMP"}, {"WAV", 2, ".WAV"}, {"MENU", 2, ".BMP"}, {"THEL", 2, ".BMP"},
    };
    for (const Pattern& p : kPatterns) {
        if (name.size() != p.prefix.size() + p.digits + p.extension.size()) continue;
        if (!name.starts_with(p.prefix) || !name.ends_with(p.extension)) continue;
        std::string_view digits = name.substr(p.prefix.size(), p.digits);
        bool allDigits = true;
        for (char c : digits) allDigits = allDigits && std::isdigit(static_cast<unsigned char>(c));
        if (allDigits) return true;
    }
    return false;
}

}  // namespace

void deleteTemporaryAssetFiles(const std::filesystem::path& folder) {
    std::error_code ec;
    for (auto it = std::filesystem::directory_iterator(folder, ec); !ec && it != std::filesystem::directory_iterator();
         it.increment(ec)) {
        if (isTemporaryAssetName(it->path().filename().string())) {
            std::error_code removeError;
            std::filesystem::remove(it->path(), removeError);
        }
    }
}

namespace {

constexpr std::string_view kOwnerFile = "tarvel.pid";

// "tarvel-" and nine hexadecimal digits: a working folder's name.
bool isWorkingFolderName(const std::string& name) {
    constexpr std::string_view kPrefix = "tarvel-";
    if (name.size() != kPrefix.size() + 9 || !name.starts_with(kPrefix)) return false;
    for (std::size_t i = kPrefix.size(); i < name.size(); ++i)
        if (!std::isxdigit(static_cast<unsigned char>(name[i]))) return false;
    return true;
}

// The owner's process id, or 0 when the folder names none.
long ownerOf(const std::filesystem::path& folder) {
    std::ifstream in(folder / kOwnerFile);
    long pid = 0;
    if (!(in >> pid) || pid <= 0) return 0;
    return pid;
}

}  // namespace

bool markWorkingFolderOwner(const std::filesystem::path& folder, long pid) {
    const std::string text = std::to_string(pid) + "\n";
    return writeFileAtomically(folder / kOwnerFile,
                               std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

std::vector<std::filesystem::path> sweepStaleWorkingFolders(const std::filesystem::path& tempFolder,
                                                            const std::filesystem::path& ownFolder, long unownedAge) {
    namespace fs = std::filesystem;
    std::vector<fs::path> removed;
    std::error_code ec;
    const auto now = fs::file_time_type::clock::now();
    for (fs::directory_iterator it(tempFolder, ec), end; !ec && it != end; it.increment(ec)) {
        const fs::path folder = it->path();
        std::error_code own;
        if (!isWorkingFolderName(folder.filename().string()) || !it->is_directory(own) ||
            fs::equivalent(folder, ownFolder, own))
            continue;
        const long owner = ownerOf(folder);
        bool stale = false;
        if (owner != 0) {
            stale = !processMayBeAlive(owner);
        } else {
            std::error_code time;
            const auto written = fs::last_write_time(folder, time);
            stale = !time && now - written > std::chrono::seconds(unownedAge);
        }
        std::error_code gone;
        if (stale && fs::remove_all(folder, gone) > 0 && !gone) removed.push_back(folder);
    }
    return removed;
}

}  // namespace tarvel
