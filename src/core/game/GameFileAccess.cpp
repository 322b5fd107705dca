#include "game/GameFileAccess.h"

#include "common/FileIO.h"
#include "common/Progress.h"
#include "game/GameVersion.h"
#include "game/StateFile.h"

namespace tarvel {

const std::string_view kNotRead = "too short for the settings it should hold";
const std::string_view kNotWritten = "could not be written at the settings' offsets";

bool knownRelease(int version) { return version >= 0 && version < kGameReleaseCount; }

Message gameFileFailure(MessageId failure, std::string_view name, std::string_view what) {
    return Message{failure, {}, std::string(name) + ": " + std::string(what)};
}

Status openGameFile(PatchableFile& file, const GameAccess& access, std::string_view name, PatchableFile::Mode mode,
                    MessageId failure) {
    if (access.progress) access.progress->setFile(name);
    const auto path = findGameFile(access.gameFolder, name);
    if (!path) return fail(gameFileFailure(failure, name, "not in " + access.gameFolder.string()));
    if (mode == PatchableFile::Update && !clearReadOnly(*path))
        return fail(gameFileFailure(failure, name, "cannot be made writable"));
    if (!file.open(*path, mode)) return fail(gameFileFailure(failure, name, "cannot be opened"));
    return {};
}

Status finishStateFile(PatchableFile& file, const GameAccess& access, bool written, MessageId failure) {
    const bool closed = file.close();
    if (!written || !closed) return fail(gameFileFailure(failure, kGameStateFileName, kNotWritten));
    const auto path = findGameFile(access.gameFolder, kGameStateFileName);
    if (!path || !WriteStateFileChecksum(*path))
        return fail(gameFileFailure(failure, kGameStateFileName, "its checksum could not be renewed"));
    return {};
}

}  // namespace tarvel
