#pragma once
// The number of laps of the 16 circuits and the championship points of the
// 26 finishing positions, moved to and from GP2.EXE at the release's offsets.

#include "common/Result.h"
#include "game/GameFileAccess.h"

#include <cstdint>
#include <span>

namespace tarvel {

constexpr int kCircuitCount = 16;
constexpr int kPointsPositions = 26;

// Import clamps each lap count to 3..124, export writes the table and then
// each count again into its circuit's record. A short file fails the read
// (what was read stays) or the write (what was written stays).
Status TransferLaps(std::span<std::uint16_t, kCircuitCount> laps, TransferDirection direction, const GameAccess& access);
// Import clamps each figure to 0..99.
Status TransferPoints(std::span<std::uint16_t, kPointsPositions> points, TransferDirection direction,
                      const GameAccess& access);

}  // namespace tarvel
