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

int DetectGameVersion(const std::filesystem::path& gameFolder) {
    auto exe = findGameFile(gameFolder, "GP2.EXE");
    if (!exe) return -1;
    return detectGameVersionOfFile(*exe);
}

}  // namespace tarvel
