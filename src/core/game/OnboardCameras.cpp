#include "game/OnboardCameras.h"

#include "game/SettingsLocations.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tarvel {
namespace {

constexpr double kUnitsPerDegree = 182.0388889;   // the game's factor, a little above 65536 / 360
constexpr std::size_t kTableBytes = 2 * camera::kWords;

bool isAngle(int field) { return field >= camera::kFirstAngle && field < camera::kFirstTuning; }
bool isCoordinate(int field) { return field < camera::kFirstAngle; }

}  // namespace

std::int16_t angleToGame(int degrees) { return std::int16_t(std::lround(degrees * kUnitsPerDegree)); }

int angleFromGame(std::int16_t units) {
    return std::clamp(int(std::lround(units * (1.0 / kUnitsPerDegree))), -180, 180);
}

Status ReadWriteCameras(std::span<std::uint16_t, camera::kWords> cameras, TransferDirection direction,
                        const GameAccess& access) {
    if (!knownRelease(access.version)) return fail(MessageId::UnsupportedVersion);
    std::array<std::uint8_t, kTableBytes> table{};
    if (direction == TransferDirection::Export) {
        for (int word = 0; word < camera::kWords; ++word) {
            const std::uint16_t value = cameras[std::size_t(word)];
            const int field = word % camera::kFields;
            storeU16(&table[2 * std::size_t(word)],
                     isAngle(field) ? std::uint16_t(angleToGame(std::int16_t(value))) : value);
        }
        PatchableFile exe;
        if (Status opened = openGameFile(exe, access, kGameExecutableName, PatchableFile::Update, MessageId::Gp2ExeNotPatched);
            !opened)
            return opened;
        const bool ok = exe.write(settingsat::kCameras, table);
        if (!exe.close() || !ok) return fail(gameFileFailure(MessageId::Gp2ExeNotPatched, kGameExecutableName, kNotWritten));
        return {};
    }

    PatchableFile exe;
    if (Status opened = openGameFile(exe, access, kGameExecutableName, PatchableFile::ReadOnly, MessageId::CouldntReadGp2Exe);
        !opened)
        return opened;
    // Value by value, so that a short file leaves what was read.
    for (int word = 0; word < camera::kWords; ++word) {
        std::uint16_t raw = 0;
        if (!exe.readU16(settingsat::kCameras + 2 * std::uint32_t(word), raw))
            return fail(gameFileFailure(MessageId::CouldntReadGp2Exe, kGameExecutableName, kNotRead));
        const int field = word % camera::kFields;
        if (isCoordinate(field) && raw == 0x8000) raw = 0x8001;   // -32768 becomes -32767
        if (isAngle(field)) raw = std::uint16_t(std::int16_t(angleFromGame(std::int16_t(raw))));
        cameras[std::size_t(word)] = raw;
    }
    (void)exe.close();   // read only: closing cannot lose anything
    return {};
}

}  // namespace tarvel
