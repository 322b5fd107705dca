#include "game/GameVersion.h"

#include "common/FileIO.h"

#include <fstream>

namespace tarvel {

int detectGameVersionOfFile(const std::filesystem::path& exePath) {
    std::ifstream in(exePath, std::ios::binary);
    if (!in) return -1;
    in.seekg(0, std::ios::end);
    std::streamoff length = in.tellg();
    // The length is compared with the largest tag offset, not with its end.
    if (length < std::streamoff(kMinimumGameExeSize)) return -1;
    for (int index = 0; index < kGameReleaseCount; ++index) {
        const GameRelease& release = kGameReleases[std::size_t(index)];
        char tag[2] = {};
        in.clear();
        in.seekg(std::streamoff(release.tagOffset));
        if (!in.read(tag, 2)) continue;
        if (tag[0] == release.tag[0] && tag[1] == release.tag[1]) return index;
    }
    return -1;
}

std::optional<Message> gameFolderProblem(const std::filesystem::path& gameFolder) {
    const std::string folder = gameFolder.string();
    if (folder.empty()) return Message{MessageId::FileNotFound, "GP2.EXE", "No game folder is set"};
    std::error_code error;
    if (!std::filesystem::is_directory(gameFolder, error)) return Message{MessageId::FileNotFound, "GP2.EXE", "No folder " + folder};
    auto exe = findGameFile(gameFolder, "GP2.EXE");
    if (!exe) return Message{MessageId::FileNotFound, "GP2.EXE", "No GP2.EXE in " + folder};
    if (detectGameVersionOfFile(*exe) >= 0) return std::nullopt;
    const auto size = std::filesystem::file_size(*exe, error);
    std::string reason;
    if (error)
        reason = "the file could not be read";
    else if (size < kMinimumGameExeSize)
        reason = groupedNumber(size) + " bytes, shorter than any release (" + groupedNumber(kGameExeSize) + " bytes)";
    else
        reason = "not one of the seven releases this program knows (no release tag at their places)";
    return Message{MessageId::UnsupportedVersion, {}, exe->filename().string() + ": " + reason};
}

int DetectGameVersion(const std::filesystem::path& gameFolder) {
    auto exe = findGameFile(gameFolder, "GP2.EXE");
    if (!exe) return -1;
    return detectGameVersionOfFile(*exe);
}

}  // namespace tarvel
