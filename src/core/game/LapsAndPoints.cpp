#include "game/LapsAndPoints.h"

#include "carset/FieldSchema.h"
#include "game/SettingsLocations.h"

#include <algorithm>

namespace tarvel {
namespace {

namespace at = settingsat;

// One byte a value at offset + k, each read clamped to the range.
Status readBytes(std::span<std::uint16_t> values, std::uint32_t offset, FieldRange range, const GameAccess& access) {
    PatchableFile exe;
    if (Status opened = openGameFile(exe, access, kGameExecutableName, PatchableFile::ReadOnly, MessageId::CouldntReadGp2Exe);
        !opened)
        return opened;
    for (std::size_t k = 0; k < values.size(); ++k) {
        std::uint8_t raw = 0;
        if (!exe.readU8(offset + std::uint32_t(k), raw))
            return fail(gameFileFailure(MessageId::CouldntReadGp2Exe, kGameExecutableName, kNotRead));
        values[k] = std::uint16_t(std::clamp<int>(raw, range.low, range.high));
    }
    (void)exe.close();   // read only: closing cannot lose anything
    return {};
}

// The values as single bytes at offset + k, and again at copyOffset + stride * k when stride is not 0.
Status writeBytes(std::span<const std::uint16_t> values, std::uint32_t offset, std::uint32_t copyOffset,
                  std::uint32_t stride, const GameAccess& access) {
    PatchableFile exe;
    if (Status opened = openGameFile(exe, access, kGameExecutableName, PatchableFile::Update, MessageId::Gp2ExeNotPatched);
        !opened)
        return opened;
    bool ok = true;
    for (std::size_t k = 0; k < values.size() && ok; ++k) ok = exe.writeU8(offset + std::uint32_t(k), std::uint8_t(values[k]));
    for (std::size_t k = 0; k < values.size() && ok && stride != 0; ++k)
        ok = exe.writeU8(copyOffset + stride * std::uint32_t(k), std::uint8_t(values[k]));
    if (!exe.close() || !ok) return fail(gameFileFailure(MessageId::Gp2ExeNotPatched, kGameExecutableName, kNotWritten));
    return {};
}

}  // namespace

Status TransferLaps(std::span<std::uint16_t, kCircuitCount> laps, TransferDirection direction, const GameAccess& access) {
    if (!knownRelease(access.version)) return fail(MessageId::UnsupportedVersion);
    const std::uint32_t offset = at::kLaps[std::size_t(access.version)];
    if (direction == TransferDirection::Import) return readBytes(laps, offset, fieldrange::kLaps, access);
    return writeBytes(laps, offset, offset + at::kLapsRecordCopy, at::kLapsRecordStride, access);
}

Status TransferPoints(std::span<std::uint16_t, kPointsPositions> points, TransferDirection direction,
                      const GameAccess& access) {
    if (!knownRelease(access.version)) return fail(MessageId::UnsupportedVersion);
    const std::uint32_t offset = at::kPoints[std::size_t(access.version)];
    if (direction == TransferDirection::Import) return readBytes(points, offset, fieldrange::kPoints, access);
    return writeBytes(points, offset, 0, 0, access);
}

}  // namespace tarvel
