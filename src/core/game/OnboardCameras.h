#pragma once
// The nine onboard cameras (settings words 44-115): per camera x, z, y,
// direction, pitch, roll and two tuning values, moved to and from GP2.EXE.
// Angles are held in degrees and stored by the game in its own units.

#include "common/Result.h"
#include "game/GameFileAccess.h"

#include <cstdint>
#include <span>

namespace tarvel {

namespace camera {
constexpr int kCount = 9;
constexpr int kFields = 8;          // x, z, y, direction, pitch, roll, detail1, detail2
constexpr int kWords = kCount * kFields;
constexpr int kFirstAngle = 3;
constexpr int kFirstTuning = 6;
}  // namespace camera

// round(degrees x 182.0388889), halves away from zero.
std::int16_t angleToGame(int degrees);
// round(units / 182.0388889), halves away from zero, limited to -180..180.
int angleFromGame(std::int16_t units);

// Import reads the 144 bytes (a coordinate of -32768 becomes -32767), export
// writes them. A read that fails part way leaves the table partly read.
Status ReadWriteCameras(std::span<std::uint16_t, camera::kWords> cameras, TransferDirection direction,
                        const GameAccess& access);

}  // namespace tarvel
