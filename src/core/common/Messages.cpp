#include "common/Messages.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace tarvel {
namespace {

struct Entry {
    MessageId id;
    MessageKind kind;
    std::string_view text;
};

using K = MessageKind;
using M = MessageId;

constexpr Entry kMessages[] = {
    {M::NotEnoughMemory, K::Error, "Not Enough Memory."},
    {M::BadDriverNumbers, K::Error, "Bad Driver Numbers."},
    {M::CouldntReadGp2Exe, K::Error, "Couldn't Read Data from GP2.EXE."},
    {M::Gp2ExeNotPatched, K::Error, "GP2.EXE was not Patched Correctly."},
    {M::CouldntReadStateFile, K::Error, "Couldn't Read Data from F1GSTATE.SAV."},
    {M::BadPitBoxNumbers, K::Error, "Bad Pit Box Numbers."},
    {M::DriversName, K::Information, "Drivers Name"},
    {M::StateFileNotPatched, K::Error, "F1GSTATE.SAV was not Patched Correctly."},
    {M::FailedToConvertJam, K::Error, "Failed to Convert JAM File."},
    {M::FailedToImportSound, K::Error, "Failed to Import Sound."},
    {M::FailedToImportCockpit, K::Error, "Failed to Import Cockpit."},
    {M::FailedToImportMenuHelmet, K::Error, "Failed to Import Menu Helmet."},

    {M::CouldntOpenCarSetFile, K::Error, "Couldn't Open Car Set File."},
    {M::NotValidCarSet, K::Error, "File is not a valid Tarvel Car Set."},
    {M::RequiresNewerVersion, K::Information, "This file requires Tarvel v%.2f."},
    {M::CouldntSaveCarSet, K::Error, "Couldn't Save Car Set."},
    {M::SaveChangesToFile, K::Question, "Save Changes to %s?"},
    {M::SaveChangesToCarSet, K::Question, "Save Changes to Car Set?"},
    {M::ReplaceExistingFile, K::Question, "Replace Existing File?"},
    {M::FailedToLaunchEditor, K::Error, "Failed to launch new editor window."},
    {M::FailedToStartGp2, K::Error, "Failed to Start GP2."},
    {M::UnsupportedVersion, K::Error, "Unsupported Version."},
    {M::LocateGp2Exe, K::Error, "Locate GP2.EXE"},
    {M::MoveTeamHere, K::Question, "Move team here?"},
    {M::OnlyTwoCarsDisabled, K::Information, "Only 2 Cars can be Disabled.\r\n\r\nAlready Disabled :\r\n\r\n"},
    {M::DisabledCarCorruption, K::Question, "This will cause corruption on the\r\nin game 'Choose Driver/Team' menu."},
    {M::FileNotFound, K::Error, "File Not Found - %s."},
    {M::ImportAborted, K::Information, "Import from Game Aborted."},
    {M::ExportAborted, K::Information, "Export to Game Aborted."},
    {M::FailedToExportSound, K::Error, "Failed to Export Sound."},
    {M::FailedToExportMenuHelmet, K::Error, "Failed to Export Menu Helmet."},
    {M::ItemNotAvailable, K::Error, "Item %s cannot be transferred by this version of Tarvel."},
    {M::CouldntLoadBitmap, K::Error, "Couldn't Load Bitmap."},
    {M::CouldntSaveBitmap, K::Error, "Couldn't Save Bitmap."},
    {M::FailedToPatchJam, K::Error, "Failed to Patch JAM File."},
    {M::FilePatchedSuccessfully, K::Information, "File Patched Successfully!"},
    {M::ImportFailed, K::Error, "Import Failed."},
    {M::ExportFailed, K::Error, "Export Failed."},
    {M::CouldntLoadFile, K::Error, "Couldn't Load File."},
    {M::CouldntSaveFile, K::Error, "Couldn't Save File."},
    {M::CouldntLoadTeam, K::Error, "Couldn't Load Team."},
    {M::CouldntSaveTeam, K::Error, "Couldn't Save Team."},
    {M::CouldntLoadText, K::Error, "Couldn't Load Text."},
    {M::CouldntSaveText, K::Error, "Couldn't Save Text."},
    {M::CouldntLoadSound, K::Error, "Couldn't Load Sound."},
    {M::CouldntSaveSound, K::Error, "Couldn't Save Sound."},
    {M::CouldntPlaySound, K::Error, "Couldn't Play Sound."},
    {M::CouldntCreateDosPatch, K::Error, "Couldn't Create DOS Patch."},
    // Range messages: the range ("LOW to HIGH") is the argument, formatted from
    // the field schema (carset/FieldSchema.h).
    {M::RangeEnginePower, K::Error, "Engine Power : %s."},
    {M::RangeFailureProbability, K::Error, "Car Failure Probability : %s."},
    {M::RangeDriverGripLow, K::Error, "Driver Grip : %s."},
    {M::RangeDriverGripHigh, K::Error, "Driver Grip : %s."},
    {M::RangeDriverGripRandom, K::Error, "Driver Grip Range : %s."},
    {M::RangePoints, K::Error, "Points : %s."},
    {M::RangeLaps, K::Error, "Number of Laps : %s."},
    {M::RangeFuelLoad, K::Error, "Fuel Load : %s."},
    {M::RangeCoordinate, K::Error, "Coordinate: %s."},
    {M::RangeAngle, K::Error, "Angle: %s."},
    {M::RangeTuning, K::Error, "Tuning : %s."},
    {M::RangeDamage255, K::Error, "Damage : %s."},
    {M::RangeDamage32767, K::Error, "Damage : %s."},
    {M::RangePositiveInteger, K::Error, "Enter positive integer %s."},
    {M::InvalidField, K::Error, "Invalid value for %s."},
    {M::CouldntWriteFile, K::Error, "Couldn't Write File - %s."},
    {M::CouldntBackUpGame, K::Error, "Couldn't Back Up Game Files - %s."},
    {M::NoBackups, K::Error, "This Game Folder Has No Backups."},
    {M::BackupNotFound, K::Error, "No Backup %s of This Game Folder."},
    {M::BackupIncomplete, K::Error, "Backup %s Is Incomplete: Nothing Was Restored."},
    {M::RestoreBackupQuestion, K::Question, "Put Back the Game Files of Backup %s?"},
    {M::GameFilesRestored, K::Information, "Game Files Restored."},
    {M::BackupAltered, K::Error, "Backup Copy Altered - %s: Nothing Was Restored."},
    {M::NotValidJson, K::Error, "Not Valid JSON - %s."},
    {M::ExportQuestion, K::Question, "Export the Car Set to the Game in %s?"},
    {M::RecentFileMissing, K::Question, "Car Set Not Found - %s. Remove It from the Recent Car Sets?"},
};

const Entry* find(MessageId id) {
    for (const Entry& e : kMessages)
        if (e.id == id) return &e;
    return nullptr;
}

}  // namespace

std::string_view messageTemplate(MessageId id) {
    const Entry* e = find(id);
    return e ? e->text : std::string_view{};
}

MessageKind messageKind(MessageId id) {
    const Entry* e = find(id);
    return e ? e->kind : MessageKind::Error;
}

std::string messageText(const Message& message) {
    std::string text(messageTemplate(message.id));
    if (auto pos = text.find("%s"); pos != std::string::npos) {
        text.replace(pos, 2, message.arg);
    } else if (auto fpos = text.find("%.2f"); fpos != std::string::npos) {
        char number[32];
        std::snprintf(number, sizeof number, "%.2f", std::strtod(message.arg.c_str(), nullptr));
        text.replace(fpos, 4, number);
    }
    return text;
}

std::string messageText(MessageId id) { return messageText(Message{id, {}}); }

std::string groupedNumber(std::uint64_t value) {
    std::string digits = std::to_string(value);
    for (std::size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, ",");
    return digits;
}

Message aboutFile(Message message, const std::filesystem::path& file) {
    const std::string name = file.filename().string();
    if (message.detail.empty() || message.detail.starts_with(name + ":")) return message;
    message.detail = name + ": " + message.detail;
    return message;
}

}  // namespace tarvel
