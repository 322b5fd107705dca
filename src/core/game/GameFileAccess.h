#pragma once
// What the settings transfers are given about the installation, and the
// opening and closing of its two files for them.

#include "common/PatchableFile.h"
#include "common/Result.h"

#include <filesystem>
#include <string_view>

namespace tarvel {

class Progress;

enum class TransferDirection { Import, Export };

struct GameAccess {
    std::filesystem::path gameFolder;
    int version = -1;            // 0-6; anything else is refused before a file is opened
    bool useStateFile = false;   // a valid F1GSTATE.SAV lies in the folder
    Progress* progress = nullptr;
};

constexpr std::string_view kGameExecutableName = "GP2.EXE";
constexpr std::string_view kGameStateFileName = "F1GSTATE.SAV";

bool knownRelease(int version);

// Opens one of the game's files (named as above), shows its name in the
// progress and, for an update, clears its read-only attribute first. Fails
// with `failure` and a detail naming the file.
Status openGameFile(PatchableFile& file, const GameAccess& access, std::string_view name, PatchableFile::Mode mode,
                    MessageId failure);

// Details of a read or write that failed part way.
extern const std::string_view kNotRead;
extern const std::string_view kNotWritten;

// The failure of a read or write that began: `failure` with the file and what went wrong.
Message gameFileFailure(MessageId failure, std::string_view name, std::string_view what);

// Closes a state file that was written and renews its checksum trailer.
Status finishStateFile(PatchableFile& file, const GameAccess& access, bool written, MessageId failure);

}  // namespace tarvel
