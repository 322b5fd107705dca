#pragma once
// The program's message table: every text that the editor and the command-line
// tool show for an error, a piece of information or a question. Ids below 200
// that the game transfer code leaves behind are fixed by the original program;
// the rest are ours and only need to stay unique.

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace tarvel {

enum class MessageId : int {
    None = 0,
    NotEnoughMemory = 2,
    BadDriverNumbers = 47,
    CouldntReadGp2Exe = 96,
    Gp2ExeNotPatched = 98,
    CouldntReadStateFile = 100,
    BadPitBoxNumbers = 102,
    DriversName = 105,
    StateFileNotPatched = 116,
    FailedToConvertJam = 132,
    FailedToImportSound = 154,
    FailedToImportCockpit = 163,
    FailedToImportMenuHelmet = 199,

    // Car set files.
    CouldntOpenCarSetFile = 300,
    NotValidCarSet,
    RequiresNewerVersion,       // "This file requires Tarvel v%.2f."
    CouldntSaveCarSet,
    SaveChangesToFile,          // "Save Changes to %s?"
    SaveChangesToCarSet,
    ReplaceExistingFile,
    // Main window and start-up.
    FailedToLaunchEditor,
    FailedToStartGp2,
    UnsupportedVersion,
    LocateGp2Exe,
    MoveTeamHere,
    OnlyTwoCarsDisabled,        // followed by the list of disabled cars
    DisabledCarCorruption,
    // Import and export.
    FileNotFound,               // "File Not Found - %s."
    ImportAborted,
    ExportAborted,
    FailedToExportSound,
    FailedToExportMenuHelmet,
    ItemNotAvailable,           // CLI: an item whose owner is not built
    // Pictures.
    CouldntLoadBitmap,
    CouldntSaveBitmap,
    FailedToPatchJam,
    FilePatchedSuccessfully,
    ImportFailed,
    ExportFailed,
    // Other files.
    CouldntLoadFile,
    CouldntSaveFile,
    CouldntLoadTeam,
    CouldntSaveTeam,
    CouldntLoadText,
    CouldntSaveText,
    CouldntLoadSound,
    CouldntSaveSound,
    CouldntPlaySound,
    CouldntCreateDosPatch,
    // Range messages of the table editors.
    RangeEnginePower,
    RangeFailureProbability,
    RangeDriverGripLow,
    RangeDriverGripHigh,
    RangeDriverGripRandom,
    RangePoints,
    RangeLaps,
    RangeFuelLoad,
    RangeCoordinate,
    RangeAngle,
    RangeTuning,
    RangeDamage255,
    RangeDamage32767,
    RangePositiveInteger,
    // Command line only.
    InvalidField,               // "Invalid value for %s."
    CouldntWriteFile,           // "Couldn't Write File - %s."
    // Game backups.
    CouldntBackUpGame,          // "Couldn't Back Up Game Files - %s."
    NoBackups,
    BackupNotFound,
    BackupIncomplete,
    BackupAltered,
    RestoreBackupQuestion,      // "Put Back the Game Files of Backup %s?"
    GameFilesRestored,
    NotValidJson,               // "Not Valid JSON - %s."
    RecentFileMissing,          // "Car Set Not Found - %s. Remove It from the Recent Car Sets?"
    ExportQuestion,             // "Export the Car Set to the Game in %s?"
    Count_
};

enum class MessageKind { Error, Information, Question };

struct Message {
    MessageId id = MessageId::None;
    std::string arg{};   // fills %s, or the number for %.2f, when the text has one
    // Which file and why, in plain words (UTF-8): shown under the exact text,
    // as a second line on the command line and the informative text in a window.
    std::string detail{};
};

// A count as the details write it: "41,203".
std::string groupedNumber(std::uint64_t value);
// The message with its detail naming `file`: "NAME: reason" (a detail that
// already names it is kept).
Message aboutFile(Message message, const std::filesystem::path& file);

// The text with no argument filled in.
std::string_view messageTemplate(MessageId id);
// The text as shown to the user, with the argument filled in.
std::string messageText(const Message& message);
std::string messageText(MessageId id);
MessageKind messageKind(MessageId id);

}  // namespace tarvel
