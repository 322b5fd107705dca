#pragma once
// How driver grips are shown and typed: with "HighGrip" at 0 every grip is
// shown as the stored value minus the lowest grip, with 1 as stored. The
// ranges and messages come from the field schema.

#include "carset/FieldSchema.h"
#include "common/Result.h"

#include <cstdint>

namespace tarvel {

constexpr int kGripStoredMin = fieldrange::kGrip.low;
constexpr int kGripStoredMax = fieldrange::kGrip.high;

using GripRange = FieldRange;

GripRange gripDisplayRange(bool highGrip);
int gripToDisplay(std::uint16_t stored, bool highGrip);
// A typed value in the shown form, or the range message ("Driver Grip : 0 to
// 17016." / "Driver Grip : 15751 to 32767.") when it is out of range.
Result<std::uint16_t> gripFromDisplay(long long shown, bool highGrip);

// The random grip range is shown and typed as stored, else "Driver Grip
// Range : 0 to 32767.".
Result<std::uint16_t> gripRandomFromDisplay(long long shown);

}  // namespace tarvel
