#pragma once
// The process-wide state of one editor: configuration, where it lives, the
// game's detected release, the working folder and the random numbers.

#include "common/Config.h"
#include "common/Rand.h"
#include "common/WindowPlacement.h"

#include <ctime>
#include <filesystem>
#include <string>
#include <vector>
#include <optional>

namespace tarvel {

struct Session {
    std::filesystem::path configPath;
    Config config;
    std::vector<std::string> recentFiles;   // newest first
    bool configFileExisted = false;
    int gameVersion = -1;            // -1: unknown release or no game folder
    bool useStateFile = false;       // a valid F1GSTATE.SAV lies in the game folder
    bool helpExists = false;         // tarvel32.hlp beside the program
    std::filesystem::path helpFile;
    std::filesystem::path workingFolder;
    std::filesystem::path backupsRoot;   // game backups taken before each export
    Rand rand;

    // Reads the configuration file (missing keys take their defaults).
    void readConfiguration();
    // Writes every key the configuration dialog owns.
    [[nodiscard]] bool writeConfiguration() const;
    // Writes the game folder alone (the dialog's Cancel).
    [[nodiscard]] bool writeGameFolder(const std::string& folder) const;
    [[nodiscard]] bool writeAutoFile(const std::string& path) const;
    [[nodiscard]] bool removeAutoFile() const;
    // Puts `path` first in the recent car sets, or takes it out, and writes the
    // list. The list is a convenience: when the configuration file cannot be
    // written it still holds for this run, and nothing is said.
    void rememberRecentFile(const std::string& path);
    void forgetRecentFile(const std::string& path);
    // Where the main window was when it last closed (section "Window").
    std::optional<WindowPlacement> readWindowPlacement() const;
    [[nodiscard]] Status writeWindowPlacement(const WindowPlacement& placement) const;

    // Detects the release of the configured game and whether its state file
    // is valid; -1 without a game folder.
    void detectGame();
    void detectStateFile();
    bool gameKnown() const { return gameVersion >= 0; }
};

}  // namespace tarvel
