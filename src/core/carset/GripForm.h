#pragma once
// How driver grips are shown and typed: with "HighGrip" at 0 every grip is
// shown as the stored value minus 15751 (0-17016), with 1 as stored
// (15751-32767).

#include "common/Result.h"

#include <cstdint>

namespace tarvel {

constexpr int kGripStoredMin = 15751;
constexpr int kGripStoredMax = 32767;

struct GripRange {
    int low;
    int high;
};

GripRange gripDisplayRange(bool highGrip);
int gripToDisplay(std::uint16_t stored, bool highGrip);
// A typed value in the shown form, or the range message ("Driver Grip : 0 to
// 17016." / "Driver Grip : 15751 to 32767.") when it is out of range.
Result<std::uint16_t> gripFromDisplay(long long shown, bool highGrip);

// The random grip range is shown and typed as stored: 0-32767, else "Driver
// Grip Range : 0 to 32767.".
Result<std::uint16_t> gripRandomFromDisplay(long long shown);

}  // namespace tarvel
