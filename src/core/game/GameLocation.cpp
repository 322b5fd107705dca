#include "game/GameLocation.h"

#include "common/FileIO.h"

#include <system_error>

namespace tarvel {

std::optional<std::string> gameFolderFromExecutable(std::string_view typedPath) {
    if (typedPath.empty()) return std::nullopt;
    const std::filesystem::path path{std::string(typedPath)};
    if (!sameFileName(path.filename().string(), "GP2.EXE")) return std::nullopt;
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) return std::nullopt;
    std::string folder = path.has_parent_path() ? path.parent_path().string() : std::string(1, '.');
    if (folder.back() != '/' && folder.back() != '\\') folder += char(std::filesystem::path::preferred_separator);
    return folder;
}

std::string gameExecutableText(std::string_view gameFolder) {
    if (gameFolder.empty()) return {};
    return std::string(gameFolder) + "GP2.EXE";
}

std::string gameLaunchCommandLine(std::string_view launchCommand, const std::filesystem::path& executable) {
    const std::string exe = executable.string();
    std::string line;
    if (launchCommand.empty()) {
        line.push_back('"');
        line.append(exe);
        line.push_back('"');
        return line;
    }
    for (std::size_t i = 0; i < launchCommand.size(); ++i) {
        if (launchCommand[i] == '%' && i + 1 < launchCommand.size() && launchCommand[i + 1] == 's') {
            line += exe;
            ++i;
        } else {
            line += launchCommand[i];
        }
    }
    return line;
}

}  // namespace tarvel
