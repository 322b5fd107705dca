#include "carset/GripForm.h"

namespace tarvel {
namespace {
const ElementRule& gripRule() { return elementRule(*findFieldSpec(FieldPlace::Driver, "gripRace"), 0); }
const ElementRule& randomRule() { return elementRule(*findFieldSpec(FieldPlace::Driver, "gripRandom"), 0); }

Result<std::uint16_t> stored(Result<long long> value) {
    if (!value) return fail(value.error());
    return std::uint16_t(*value);
}
}  // namespace

GripRange gripDisplayRange(bool highGrip) { return displayRange(gripRule(), highGrip); }

int gripToDisplay(std::uint16_t stored, bool highGrip) { return int(toDisplay(gripRule(), stored, highGrip)); }

Result<std::uint16_t> gripFromDisplay(long long shown, bool highGrip) {
    return stored(fromDisplay(gripRule(), shown, highGrip));
}

Result<std::uint16_t> gripRandomFromDisplay(long long shown) { return stored(fromDisplay(randomRule(), shown, false)); }

}  // namespace tarvel
