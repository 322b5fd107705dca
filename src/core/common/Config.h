#pragma once
// The program configuration (tarvel32.ini, sections "Files" and "Config").

#include "common/Result.h"

#include <filesystem>
#include <string>

namespace tarvel {

class IniFile;

struct Config {
    std::string gameFolder;      // "Files"/"Locate GP2.EXE", ends in a path separator; empty = not set
    std::string autoFile;        // "Files"/"AutoFile"; empty = none
    bool checkSum = true;        // verify car set checksums before loading
    bool niceGrid = true;
    bool highGrip = false;
    bool clearJam = true;
    bool fixGreen = false;
    bool fixStrip = true;
    bool gp2Palette = false;
    bool showInfo = true;        // read only, never written
    int mosaic = 3;              // 0-4
    bool softenMenu = false;
    bool teamSwap = false;
    bool confirmExport = true;   // ask before an export writes the game
    std::string launchCommand;   // empty: run GP2.EXE directly; else %s is the executable's path
};

// Where the configuration file lives: $TARVEL_CONFIG, else the platform's
// configuration folder.
std::filesystem::path defaultConfigPath();

Config readConfig(const IniFile& ini);
// Writes every key the configuration dialog owns (not "ShowInfo", not "AutoFile").
// Fails with "Couldn't Write File - %s." (the configuration file) when a key
// could not be written.
Status writeConfig(IniFile& ini, const Config& config);

}  // namespace tarvel
