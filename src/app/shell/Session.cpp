#include "shell/Session.h"

#include "common/IniFile.h"
#include "common/RecentFiles.h"
#include "game/GameVersion.h"
#include "game/StateFile.h"

#include <system_error>

namespace tarvel {

void Session::readConfiguration() {
    std::error_code ec;
    configFileExisted = std::filesystem::exists(configPath, ec);
    IniFile ini(configPath);
    config = readConfig(ini);
    recentFiles = readRecentFiles(ini);
}

void Session::rememberRecentFile(const std::string& path) {
    recentFiles = withRecentFile(std::move(recentFiles), path);
    IniFile ini(configPath);
    writeRecentFiles(ini, recentFiles);
}

void Session::forgetRecentFile(const std::string& path) {
    recentFiles = withoutRecentFile(std::move(recentFiles), path);
    IniFile ini(configPath);
    writeRecentFiles(ini, recentFiles);
}

bool Session::writeConfiguration() const {
    IniFile ini(configPath);
    if (!writeConfig(ini, config)) return false;
    return ini.setString("Files", "Locate GP2.EXE", config.gameFolder.empty() ? "X" : config.gameFolder);
}

bool Session::writeGameFolder(const std::string& folder) const {
    IniFile ini(configPath);
    return ini.setString("Files", "Locate GP2.EXE", folder.empty() ? "X" : folder);
}

bool Session::writeAutoFile(const std::string& path) const {
    IniFile ini(configPath);
    return ini.setString("Files", "AutoFile", path);
}

bool Session::removeAutoFile() const {
    IniFile ini(configPath);
    return ini.deleteKey("Files", "AutoFile");
}

std::optional<WindowPlacement> Session::readWindowPlacement() const {
    return tarvel::readWindowPlacement(IniFile(configPath));
}

Status Session::writeWindowPlacement(const WindowPlacement& placement) const {
    IniFile ini(configPath);
    return tarvel::writeWindowPlacement(ini, placement);
}

void Session::detectGame() {
    gameVersion = config.gameFolder.empty() ? -1 : DetectGameVersion(config.gameFolder);
    detectStateFile();
}

void Session::detectStateFile() {
    useStateFile = !config.gameFolder.empty() && stateFileState(config.gameFolder) == StateFileState::Valid;
}

}  // namespace tarvel
