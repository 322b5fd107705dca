#include "carset/GripForm.h"

namespace tarvel {

GripRange gripDisplayRange(bool highGrip) {
    if (highGrip) return {kGripStoredMin, kGripStoredMax};
    return {0, kGripStoredMax - kGripStoredMin};
}

int gripToDisplay(std::uint16_t stored, bool highGrip) {
    return highGrip ? int(stored) : int(stored) - kGripStoredMin;
}

Result<std::uint16_t> gripFromDisplay(long long shown, bool highGrip) {
    const GripRange range = gripDisplayRange(highGrip);
    if (shown < range.low || shown > range.high)
        return fail(highGrip ? MessageId::RangeDriverGripHigh : MessageId::RangeDriverGripLow);
    return std::uint16_t(highGrip ? shown : shown + kGripStoredMin);
}

Result<std::uint16_t> gripRandomFromDisplay(long long shown) {
    if (shown < 0 || shown > kGripStoredMax) return fail(MessageId::RangeDriverGripRandom);
    return std::uint16_t(shown);
}

}  // namespace tarvel
