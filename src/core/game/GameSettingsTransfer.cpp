#include "game/GameSettingsTransfer.h"

#include "carset/FieldSchema.h"
#include "game/SettingsLocations.h"

#include <algorithm>

namespace tarvel {
namespace {

namespace at = settingsat;
namespace gs = gamesettings;

constexpr FieldRange kQuickRaceRange{1, 100};
constexpr FieldRange kTurnsRange{0, 50};

std::uint16_t clampTo(unsigned value, FieldRange range) {
    return std::uint16_t(std::clamp<int>(int(value), range.low, range.high));
}

Status readGame(std::span<std::uint16_t, gs::kWords> record, const GameAccess& access) {
    const auto failed = [](std::string_view file) { return fail(gameFileFailure(MessageId::CouldntReadGp2Exe, file, kNotRead)); };
    PatchableFile exe;
    if (Status opened = openGameFile(exe, access, kGameExecutableName, PatchableFile::ReadOnly, MessageId::CouldntReadGp2Exe);
        !opened)
        return opened;
    for (int level = 0; level < gs::kLevels; ++level) {
        std::uint8_t aids = 0;
        if (!exe.readU8(at::kDriverAids + std::uint32_t(level), aids)) return failed(kGameExecutableName);
        record[std::size_t(level)] = aids;
    }
    std::uint8_t site = 0;
    if (!exe.readU8(at::kTrackRecordsA, site)) return failed(kGameExecutableName);
    record[gs::kTrackRecords] = site == at::kJumpIfBelow ? 0 : 1;
    if (!exe.readU8(at::kComputerFuelShown, site)) return failed(kGameExecutableName);
    record[gs::kComputerFuel] = site == at::kConditionalJump ? 0 : 1;
    std::uint16_t fuel = 0;
    if (!exe.readU16(at::kFuelPractice, fuel)) return failed(kGameExecutableName);
    record[gs::kFuelPractice] = clampTo(fuel, fieldrange::kFuelLoad);
    if (!exe.readU16(at::kFuelQualifying, fuel)) return failed(kGameExecutableName);
    record[gs::kFuelQualifying] = clampTo(fuel + 1u, fieldrange::kFuelLoad);
    (void)exe.close();   // read only: closing cannot lose anything
    if (!access.useStateFile) return {};

    PatchableFile state;
    if (Status opened = openGameFile(state, access, kGameStateFileName, PatchableFile::ReadOnly, MessageId::CouldntReadGp2Exe);
        !opened)
        return opened;
    std::uint8_t length = 0, turns = 0;
    if (!state.readU8(at::kStateQuickRaceLength, length)) return failed(kGameStateFileName);
    record[gs::kQuickRaceLength] = clampTo(length, kQuickRaceRange);
    if (!state.readU8(at::kStateMultiplayerTurns, turns)) return failed(kGameStateFileName);
    record[gs::kMultiplayerTurns] = clampTo(turns, kTurnsRange);
    (void)state.close();
    return {};
}

Status writeGame(std::span<const std::uint16_t, gs::kWords> record, const GameAccess& access) {
    constexpr MessageId kFailure = MessageId::Gp2ExeNotPatched;
    PatchableFile exe;
    if (Status opened = openGameFile(exe, access, kGameExecutableName, PatchableFile::Update, kFailure); !opened)
        return opened;
    bool ok = true;
    for (int level = 0; level < gs::kLevels && ok; ++level)
        ok = exe.writeU8(at::kDriverAids + std::uint32_t(level), std::uint8_t(record[std::size_t(level)]));
    const bool records = record[gs::kTrackRecords] != 0;
    ok = ok && exe.write(at::kTrackRecordsA, records ? at::kTrackRecordsOn : at::kTrackRecordsAOff) &&
         exe.write(at::kTrackRecordsB, records ? at::kTrackRecordsOn : at::kTrackRecordsBOff) &&
         exe.writeU8(at::kComputerFuelShown, record[gs::kComputerFuel] != 0 ? at::kJump : at::kConditionalJump) &&
         exe.writeU8(at::kFuelPractice, std::uint8_t(record[gs::kFuelPractice])) &&
         exe.writeU8(at::kFuelQualifying, std::uint8_t(record[gs::kFuelQualifying] - 1));
    if (!exe.close() || !ok) return fail(gameFileFailure(kFailure, kGameExecutableName, kNotWritten));
    if (!access.useStateFile) return {};

    PatchableFile state;
    if (Status opened = openGameFile(state, access, kGameStateFileName, PatchableFile::Update, kFailure); !opened)
        return opened;
    const bool written = state.writeU8(at::kStateQuickRaceLength, std::uint8_t(record[gs::kQuickRaceLength])) &&
                         state.writeU8(at::kStateMultiplayerTurns, std::uint8_t(record[gs::kMultiplayerTurns]));
    return finishStateFile(state, access, written, kFailure);
}

}  // namespace

Status TransferGameSettings(std::span<std::uint16_t, gamesettings::kWords> record, TransferDirection direction,
                            const GameAccess& access) {
    if (!knownRelease(access.version)) return fail(MessageId::UnsupportedVersion);
    return direction == TransferDirection::Import ? readGame(record, access) : writeGame(record, access);
}

}  // namespace tarvel
