#include "carset/WorkingFolder.h"

#include <cstdio>
#include <regex>
#include <system_error>

namespace tarvel {

namespace {
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
std::filesystem::path jamBitmapFile(const std::filesystem::path& f, int number) { return numbered(f, "JAM%.3d.BMP", number); }
std::filesystem::path soundFile(const std::filesystem::path& f, int slot) { return numbered(f, "WAV%.2d.WAV", slot); }
std::filesystem::path menuHelmetFile(const std::filesystem::path& f, int slot) { return numbered(f, "MENU%.2d.BMP", slot); }
std::filesystem::path helmetFile(const std::filesystem::path& f, int n) { return numbered(f, "THEL%.2d.BMP", n); }
std::filesystem::path temporaryCarSetFile(const std::filesystem::path& f) { return f / "TARVEL.TMP"; }

void deleteTemporaryAssetFiles(const std::filesystem::path& folder) {
    static const std::regex pattern(R"((TEAM\d\d\.BMP|JAM\d\d\d\.BMP|WAV\d\d\.WAV|MENU\d\d\.BMP|THEL\d\d\.BMP|TARVEL\.TMP))");
    std::error_code ec;
    for (auto it = std::filesystem::directory_iterator(folder, ec); !ec && it != std::filesystem::directory_iterator();
         it.increment(ec)) {
        if (std::regex_match(it->path().filename().string(), pattern)) {
            std::error_code removeError;
            std::filesystem::remove(it->path(), removeError);
        }
    }
}

}  // namespace tarvel
