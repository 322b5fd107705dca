#include "common/Config.h"

#include "common/IniFile.h"

#include <cstdlib>
#include <span>
#include <string_view>

namespace tarvel {
namespace {

constexpr std::string_view kFiles = "Files";
constexpr std::string_view kConfig = "Config";
constexpr std::string_view kGameFolderKey = "Locate GP2.EXE";
constexpr std::string_view kAutoFileKey = "AutoFile";
constexpr std::string_view kNotSet = "X";   // the stored value of an unset path

// The 0/1 keys of section "Config", with their defaults.
struct FlagKey {
    std::string_view key;
    bool Config::*field;
    bool fallback;
    bool written;    // "ShowInfo" is read but never written
};
constexpr FlagKey kFlags[] = {
    {"CheckSum", &Config::checkSum, true, true},     {"NiceGrid", &Config::niceGrid, true, true},
    {"HighGrip", &Config::highGrip, false, true},    {"ClearJam", &Config::clearJam, true, true},
    {"FixGreen", &Config::fixGreen, false, true},    {"FixStrip", &Config::fixStrip, true, true},
    {"GP2Palette", &Config::gp2Palette, false, true}, {"ShowInfo", &Config::showInfo, true, false},
    {"SoftenMenu", &Config::softenMenu, false, true}, {"TeamSwap", &Config::teamSwap, false, true},
};
// Keys of our own, written after the original ones.
constexpr FlagKey kOwnFlags[] = {
    {"ConfirmExport", &Config::confirmExport, true, true},
};
constexpr std::string_view kMosaicKey = "Mosaic";
constexpr int kMosaicDefault = 3;
constexpr int kMosaicMax = 4;
constexpr std::string_view kLaunchKey = "LaunchCommand";

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        auto l = [](char c) { return (c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : c; };
        if (l(a[i]) != l(b[i])) return false;
    }
    return true;
}

// A folder as the rest of the program expects it: ending in a separator. A
// value that already ends in one is kept as the user gave it; otherwise the
// separator it already uses is added (a backslash for Windows-style paths).
std::string withTrailingSeparator(std::string folder) {
    if (folder.empty() || folder.back() == '/' || folder.back() == '\\') return folder;
#ifdef _WIN32
    folder += '\\';
#else
    bool windowsStyle = folder.find('\\') != std::string::npos && folder.find('/') == std::string::npos;
    folder += windowsStyle ? '\\' : '/';
#endif
    return folder;
}

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::string(value) : std::string();
}

}  // namespace

std::filesystem::path defaultConfigPath() {
    constexpr std::string_view kFileName = "tarvel32.ini";
    if (auto explicitPath = environment("TARVEL_CONFIG"); !explicitPath.empty()) return explicitPath;
#ifdef _WIN32
    if (auto appData = environment("APPDATA"); !appData.empty()) return std::filesystem::path(appData) / kFileName;
#else
    if (auto xdg = environment("XDG_CONFIG_HOME"); !xdg.empty()) return std::filesystem::path(xdg) / kFileName;
    if (auto home = environment("HOME"); !home.empty())
        return std::filesystem::path(home) / ".config" / kFileName;
#endif
    return std::filesystem::path(kFileName);
}

Config readConfig(const IniFile& ini) {
    Config config;
    std::string folder = ini.getString(kFiles, kGameFolderKey, kNotSet);
    config.gameFolder = folder == kNotSet ? std::string() : withTrailingSeparator(folder);
    std::string autoFile = ini.getString(kFiles, kAutoFileKey, kNotSet);
    config.autoFile = equalsIgnoringCase(autoFile, kNotSet) ? std::string() : autoFile;
    for (const auto& table : {std::span<const FlagKey>(kFlags), std::span<const FlagKey>(kOwnFlags)})
        for (const FlagKey& flag : table) config.*flag.field = ini.getInt(kConfig, flag.key, flag.fallback ? 1 : 0) != 0;
    int mosaic = ini.getInt(kConfig, kMosaicKey, kMosaicDefault);
    config.mosaic = mosaic < 0 ? 0 : (mosaic > kMosaicMax ? kMosaicMax : mosaic);
    config.launchCommand = ini.getString(kConfig, kLaunchKey, "");
    return config;
}

Status writeConfig(IniFile& ini, const Config& config) {
    // Every key is attempted even after one fails, so that a file that becomes
    // writable part-way still receives the rest.
    bool written = ini.setString(kFiles, kGameFolderKey, config.gameFolder.empty() ? std::string(kNotSet) : config.gameFolder);
    for (const FlagKey& flag : kFlags)
        if (flag.written) written = ini.setInt(kConfig, flag.key, config.*flag.field ? 1 : 0) && written;
    written = ini.setInt(kConfig, kMosaicKey, config.mosaic) && written;
    written = ini.setString(kConfig, kLaunchKey, config.launchCommand) && written;
    for (const FlagKey& flag : kOwnFlags) written = ini.setInt(kConfig, flag.key, config.*flag.field ? 1 : 0) && written;
    if (!written) return fail(MessageId::CouldntWriteFile, ini.path().string());
    return {};
}

}  // namespace tarvel
