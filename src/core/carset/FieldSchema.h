#pragma once
// Every editable numeric field of the car set, written down once: its JSON
// name, where it lives (team record, driver record, settings words), what the
// record can hold, what the editors accept, how it is shown (grips under
// "HighGrip") and the message that names its range. The JSON edge, the file
// reader's clamps, the game transfer's clamps and the editors read it.

#include "carset/CarSet.h"
#include "common/Messages.h"
#include "common/Result.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace tarvel {

struct FieldRange {
    int low;
    int high;
    constexpr bool contains(long long v) const { return v >= low && v <= high; }
};

namespace fieldrange {
constexpr FieldRange kU8{0, 255};
constexpr FieldRange kU16{0, 65535};
constexpr FieldRange kI16{-32768, 32767};
constexpr FieldRange kDriverNumber{0, kDriverNumbers};   // 0 names no driver
constexpr FieldRange kPositive{0, 32767};                // failure probability, random grip, step amounts
constexpr FieldRange kEnginePower{0, 1579};
constexpr FieldRange kGrip{15751, 32767};                // stored; shown minus 15751 under HighGrip = 0
constexpr FieldRange kPoints{0, 99};
constexpr FieldRange kLaps{3, 124};
constexpr FieldRange kFuelLoad{1, 50};
constexpr FieldRange kCoordinate{-32767, 32767};
constexpr FieldRange kAngle{-180, 180};
constexpr FieldRange kDamageContact{0, 255};
}  // namespace fieldrange

enum class FieldPlace { Team, Driver, Settings };
enum class FieldDisplay { AsStored, Grip };

// The rule of a run of a field's elements: elements first .. first + count - 1,
// and again every `period` elements when period is not 0. A single value is element 0.
struct ElementRule {
    int first;
    int count;
    int period;
    std::string_view caption;   // the editor's label, "" where none
    FieldRange stored;          // what the record holds (a negative low: stored signed)
    FieldRange edit;            // what the editors accept, in stored form
    FieldDisplay display;
    MessageId message;          // names the edit range; None where the stored range is all
};

struct FieldSpec {
    std::string_view jsonName;
    FieldPlace place;
    int count;                  // 0: one value, else an array of that many elements
    SettingsRange words;        // the words of a settings field
    // Team and driver fields: `record` is the team slot or the racing number.
    long long (*get)(const CarSet& set, int record, std::size_t element);
    void (*set)(CarSet& set, int record, std::size_t element, long long value);
    std::span<const ElementRule> rules;
};

// The fields of a place, in the order the JSON dump writes them.
std::span<const FieldSpec> fieldSpecs(FieldPlace place);
// A field by place and JSON name, or nullptr.
const FieldSpec* findFieldSpec(FieldPlace place, std::string_view jsonName);
// The rule of one element of a field (element 0 for a single value).
const ElementRule& elementRule(const FieldSpec& field, int element);

// An element of a record or of the settings block, and its change; a value
// outside the element's stored range is not set (false).
long long fieldValue(const CarSet& set, const FieldSpec& field, int record, int element);
bool setFieldValue(CarSet& set, const FieldSpec& field, int record, int element, long long value);

// How the editors show and take an element's value.
FieldRange displayRange(const ElementRule& rule, bool highGrip);
long long toDisplay(const ElementRule& rule, long long stored, bool highGrip);
// The stored value of a typed one, or the rule's range message.
Result<long long> fromDisplay(const ElementRule& rule, long long shown, bool highGrip);
// A field's range message ("Engine Power : LOW to HIGH."), formatted from the shown range.
Message rangeMessage(const ElementRule& rule, bool highGrip);
Message rangeMessage(MessageId id, FieldRange range);

}  // namespace tarvel
