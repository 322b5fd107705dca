#pragma once
// Locating the game's executable (the configuration dialog's "GP2.EXE" field)
// and starting the game.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tarvel {

// The game folder for a typed path to the executable: accepted only when the
// file exists and its name is "GP2.EXE" in any letter case. The folder ends in
// a path separator.
std::optional<std::string> gameFolderFromExecutable(std::string_view typedPath);

// "%sGP2.EXE" formed from a game folder (empty for an empty folder).
std::string gameExecutableText(std::string_view gameFolder);

// The command line that starts the game: the executable's path in double
// quotes, or `launchCommand` with every "%s" replaced by that path (for
// example `dosbox "%s"`).
std::string gameLaunchCommandLine(std::string_view launchCommand, const std::filesystem::path& executable);

}  // namespace tarvel
