#include "game/GlobalCarSettings.h"

#include "game/SettingsLocations.h"

#include <cmath>
#include <cstdio>

namespace tarvel {
namespace {

namespace at = settingsat;
namespace gc = globalcar;

constexpr double kPoundsPerKilogram = 2.20462262;
constexpr double kMilesPerKilometre = 0.621371192;

std::uint16_t clampTo(unsigned value, FieldRange range) {
    return std::uint16_t(std::clamp<long long>(value, range.low, range.high));
}

Status readCar(std::span<std::uint16_t, gc::kWords> record, const GameAccess& access) {
    const auto failed = [](std::string_view file) { return fail(gameFileFailure(MessageId::CouldntReadGp2Exe, file, kNotRead)); };
    PatchableFile exe;
    if (Status opened = openGameFile(exe, access, kGameExecutableName, PatchableFile::ReadOnly, MessageId::CouldntReadGp2Exe);
        !opened)
        return opened;
    std::uint8_t byte = 0;
    std::uint16_t word = 0;
    // In word order; the performance mode comes from the state file.
    const auto readByte = [&](std::uint32_t offset) { return exe.readU8(offset, byte); };
    const auto readWord = [&](std::uint32_t offset) { return exe.readU16(offset, word); };
    if (!readByte(at::kDriverZero[std::size_t(access.version)])) return failed(kGameExecutableName);
    record[gc::kDriverZero] = byte < 255 ? 0 : 1;
    if (!readWord(at::kPlayerPowerRace)) return failed(kGameExecutableName);
    record[gc::kPowerRace] = clampTo(word, fieldrange::kEnginePower);
    if (!readWord(at::kPlayerPowerQual)) return failed(kGameExecutableName);
    record[gc::kPowerQual] = clampTo(word, fieldrange::kEnginePower);
    if (!readWord(at::kPitSpeedLimit)) return failed(kGameExecutableName);
    record[gc::kPitSpeedLimit] = decodePitSpeed(word);
    if (!readByte(at::kNoSpeedLimit)) return failed(kGameExecutableName);
    record[gc::kNoSpeedLimit] = byte == at::kConditionalJump ? 0 : 1;
    if (!readWord(at::kPlayerWeight)) return failed(kGameExecutableName);
    record[gc::kPlayerWeight] = clampTo(word, gc::kWeightRange);
    if (!readWord(at::kComputerWeight)) return failed(kGameExecutableName);
    record[gc::kComputerWeight] = clampTo(word, gc::kWeightRange);
    std::array<std::uint8_t, 4> grip{};
    if (!exe.read(at::kGripFactor, grip)) return failed(kGameExecutableName);
    record[gc::kGripFactor] = clampTo(loadU32(grip.data()), gc::kGripFactorRange);
    if (!readByte(at::kRandomPowerVariation)) return failed(kGameExecutableName);
    record[gc::kRandomPowerVariation] = byte == at::kRandomPowerOn[0] ? 1 : 0;
    if (!readByte(at::kSelectedTeamPowerA)) return failed(kGameExecutableName);
    record[gc::kSelectedTeamPower] = byte < 255 ? 1 : 0;
    (void)exe.close();   // read only: closing cannot lose anything
    if (!access.useStateFile) return {};

    PatchableFile state;
    if (Status opened = openGameFile(state, access, kGameStateFileName, PatchableFile::ReadOnly, MessageId::CouldntReadGp2Exe);
        !opened)
        return opened;
    if (!state.readU8(at::kStateComputerPerformance, byte)) return failed(kGameStateFileName);
    record[gc::kComputerPerformance] = byte;
    (void)state.close();
    return {};
}

Status writeCar(std::span<const std::uint16_t, gc::kWords> record, const GameAccess& access) {
    constexpr MessageId kFailure = MessageId::Gp2ExeNotPatched;
    PatchableFile exe;
    if (Status opened = openGameFile(exe, access, kGameExecutableName, PatchableFile::Update, kFailure); !opened)
        return opened;
    std::array<std::uint8_t, 4> grip{};
    storeU32(grip.data(), record[gc::kGripFactor]);
    const std::uint8_t teamPower = record[gc::kSelectedTeamPower] != 0 ? at::kSelectedTeamPowerOn : at::kSelectedTeamPowerOff;
    const bool ok =
        exe.writeU8(at::kDriverZero[std::size_t(access.version)],
                    record[gc::kDriverZero] != 0 ? at::kDriverZeroOn : at::kDriverZeroOff) &&
        exe.writeU16(at::kPlayerPowerRace, record[gc::kPowerRace]) &&
        exe.writeU16(at::kPlayerPowerQual, record[gc::kPowerQual]) &&
        exe.writeU16(at::kPitSpeedLimit, encodePitSpeed(record[gc::kPitSpeedLimit])) &&
        exe.writeU8(at::kNoSpeedLimit, record[gc::kNoSpeedLimit] != 0 ? at::kJump : at::kConditionalJump) &&
        exe.writeU16(at::kPlayerWeight, record[gc::kPlayerWeight]) &&
        exe.writeU16(at::kComputerWeight, record[gc::kComputerWeight]) && exe.write(at::kGripFactor, grip) &&
        exe.write(at::kRandomPowerVariation,
                  record[gc::kRandomPowerVariation] != 0 ? at::kRandomPowerOn : at::kRandomPowerOff) &&
        exe.writeU8(at::kSelectedTeamPowerA, teamPower) && exe.writeU8(at::kSelectedTeamPowerB, teamPower);
    if (!exe.close() || !ok) return fail(gameFileFailure(kFailure, kGameExecutableName, kNotWritten));
    if (!access.useStateFile) return {};

    PatchableFile state;
    if (Status opened = openGameFile(state, access, kGameStateFileName, PatchableFile::Update, kFailure); !opened)
        return opened;
    const bool written = state.writeU8(at::kStateComputerPerformance, std::uint8_t(record[gc::kComputerPerformance]));
    return finishStateFile(state, access, written, kFailure);
}

std::string twoUnits(const char* format, int value, double factor) {
    char text[48];
    std::snprintf(text, sizeof text, format, value, int(std::lround(value * factor)));
    return text;
}

}  // namespace

std::string weightLabel(int kilograms) { return twoUnits("%dkg [%dlb]", kilograms, kPoundsPerKilogram); }
std::string speedLabel(int kph) { return twoUnits("%dkph [%dmph]", kph, kMilesPerKilometre); }

Status TransferGlobalCarSettings(std::span<std::uint16_t, globalcar::kWords> record, TransferDirection direction,
                                 const GameAccess& access) {
    if (!knownRelease(access.version)) return fail(MessageId::UnsupportedVersion);
    return direction == TransferDirection::Import ? readCar(record, access) : writeCar(record, access);
}

}  // namespace tarvel
