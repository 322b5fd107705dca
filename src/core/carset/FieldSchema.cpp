#include "carset/FieldSchema.h"

#include <cassert>
#include <cstdio>
#include <type_traits>

namespace tarvel {
namespace {

using namespace fieldrange;
using M = MessageId;

// Accessors of record members, single values and arrays.
template <auto Member>
long long teamValue(const CarSet& s, int r, std::size_t) { return s.teams[std::size_t(r)].*Member; }
template <auto Member>
void setTeamValue(CarSet& s, int r, std::size_t, long long v) {
    auto& field = s.teams[std::size_t(r)].*Member;
    field = std::remove_reference_t<decltype(field)>(v);
}
template <auto Member>
long long teamElement(const CarSet& s, int r, std::size_t i) { return (s.teams[std::size_t(r)].*Member)[i]; }
template <auto Member>
void setTeamElement(CarSet& s, int r, std::size_t i, long long v) {
    auto& field = (s.teams[std::size_t(r)].*Member)[i];
    field = std::remove_reference_t<decltype(field)>(v);
}
template <auto Member>
long long driverValue(const CarSet& s, int r, std::size_t) { return s.drivers[std::size_t(r)].*Member; }
template <auto Member>
void setDriverValue(CarSet& s, int r, std::size_t, long long v) {
    s.drivers[std::size_t(r)].*Member = std::uint16_t(v);
}

constexpr ElementRule plain(FieldRange stored) { return {0, 1, 1, "", stored, stored, FieldDisplay::AsStored, M::None}; }

constexpr ElementRule kU8Rule[] = {plain(kU8)};
constexpr ElementRule kU16Rule[] = {plain(kU16)};
constexpr ElementRule kDriverNumberRule[] = {plain(kDriverNumber)};
constexpr ElementRule kPowerRaceRule[] = {
    {0, 1, 0, "Power (Race/Practice)", kU16, kEnginePower, FieldDisplay::AsStored, M::RangeEnginePower}};
constexpr ElementRule kPowerQualRule[] = {
    {0, 1, 0, "Power (Qualification)", kU16, kEnginePower, FieldDisplay::AsStored, M::RangeEnginePower}};
// Larger values are clamped on every load; a patch may not store them.
constexpr ElementRule kFailureRule[] = {
    {0, 1, 0, "Car Failure Probability", kPositive, kPositive, FieldDisplay::AsStored, M::RangeFailureProbability}};
constexpr ElementRule kGripRaceRule[] = {
    {0, 1, 0, "Grip (Race/Practice)", kU16, kGrip, FieldDisplay::Grip, M::RangeDriverGripHigh}};
constexpr ElementRule kGripQualRule[] = {
    {0, 1, 0, "Grip (Qualification)", kU16, kGrip, FieldDisplay::Grip, M::RangeDriverGripHigh}};
constexpr ElementRule kGripRandomRule[] = {
    {0, 1, 0, "Random Grip Range", kU16, kPositive, FieldDisplay::AsStored, M::RangeDriverGripRandom}};

constexpr ElementRule kGameSettingsRules[] = {
    {0, 9, 0, "", kU16, kU16, FieldDisplay::AsStored, M::None},
    {9, 2, 0, "Initial Fuel Load", kU16, kFuelLoad, FieldDisplay::AsStored, M::RangeFuelLoad},
};
// Per camera: x, z, y, then direction, pitch, roll (signed), then two tuning values.
constexpr ElementRule kCameraRules[] = {
    {0, 3, 8, "", kI16, kCoordinate, FieldDisplay::AsStored, M::RangeCoordinate},
    {3, 3, 8, "", kI16, kAngle, FieldDisplay::AsStored, M::RangeAngle},
    {6, 2, 8, "", kU16, kU16, FieldDisplay::AsStored, M::RangeTuning},
};
// Contact coefficients, then track coefficients and the two retirement figures.
constexpr ElementRule kDamageRules[] = {
    {0, 18, 0, "", kI16, kDamageContact, FieldDisplay::AsStored, M::RangeDamage255},
    {18, 15, 0, "", kI16, kPositive, FieldDisplay::AsStored, M::RangeDamage32767},
};
constexpr ElementRule kPointsRules[] = {{0, 26, 0, "", kU16, kPoints, FieldDisplay::AsStored, M::RangePoints}};
constexpr ElementRule kLapsRules[] = {{0, 16, 0, "", kU16, kLaps, FieldDisplay::AsStored, M::RangeLaps}};

constexpr SettingsRange kNoWords{0, 0};

constexpr FieldSpec kTeamFields[] = {
    {"powerRace", FieldPlace::Team, 0, kNoWords, teamValue<&TeamRecord::powerRace>,
     setTeamValue<&TeamRecord::powerRace>, kPowerRaceRule},
    {"powerQual", FieldPlace::Team, 0, kNoWords, teamValue<&TeamRecord::powerQual>,
     setTeamValue<&TeamRecord::powerQual>, kPowerQualRule},
    {"failureProbability", FieldPlace::Team, 0, kNoWords, teamValue<&TeamRecord::failureProbability>,
     setTeamValue<&TeamRecord::failureProbability>, kFailureRule},
    {"highNose", FieldPlace::Team, 0, kNoWords, teamValue<&TeamRecord::highNose>, setTeamValue<&TeamRecord::highNose>,
     kU8Rule},
    {"teamBytesA", FieldPlace::Team, 3, kNoWords, teamElement<&TeamRecord::teamBytesA>,
     setTeamElement<&TeamRecord::teamBytesA>, kU8Rule},
    {"teamBytesB", FieldPlace::Team, 16, kNoWords, teamElement<&TeamRecord::teamBytesB>,
     setTeamElement<&TeamRecord::teamBytesB>, kU8Rule},
    {"driver", FieldPlace::Team, 2, kNoWords, teamElement<&TeamRecord::driver>, setTeamElement<&TeamRecord::driver>,
     kDriverNumberRule},
    {"disabled", FieldPlace::Team, 2, kNoWords, teamElement<&TeamRecord::disabled>,
     setTeamElement<&TeamRecord::disabled>, kU8Rule},
    {"flagS", FieldPlace::Team, 2, kNoWords, teamElement<&TeamRecord::flagS>, setTeamElement<&TeamRecord::flagS>,
     kU8Rule},
    {"teamOrder", FieldPlace::Team, 0, kNoWords, teamValue<&TeamRecord::teamOrder>,
     setTeamValue<&TeamRecord::teamOrder>, kU8Rule},
    {"slotIndex", FieldPlace::Team, 0, kNoWords, teamValue<&TeamRecord::slotIndex>,
     setTeamValue<&TeamRecord::slotIndex>, kU16Rule},
};

constexpr FieldSpec kDriverFields[] = {
    {"gripRace", FieldPlace::Driver, 0, kNoWords, driverValue<&DriverRecord::gripRace>,
     setDriverValue<&DriverRecord::gripRace>, kGripRaceRule},
    {"gripQual", FieldPlace::Driver, 0, kNoWords, driverValue<&DriverRecord::gripQual>,
     setDriverValue<&DriverRecord::gripQual>, kGripQualRule},
    {"gripRandom", FieldPlace::Driver, 0, kNoWords, driverValue<&DriverRecord::gripRandom>,
     setDriverValue<&DriverRecord::gripRandom>, kGripRandomRule},
    {"inUse", FieldPlace::Driver, 0, kNoWords, driverValue<&DriverRecord::inUse>, setDriverValue<&DriverRecord::inUse>,
     kU8Rule},
};

constexpr ElementRule kU16Words[] = {plain(kU16)};
constexpr FieldSpec kSettingsFields[] = {
    {"gameSettings", FieldPlace::Settings, settings::kGame.count, settings::kGame, nullptr, nullptr, kGameSettingsRules},
    {"globalCarSettings", FieldPlace::Settings, settings::kGlobalCar.count, settings::kGlobalCar, nullptr, nullptr,
     kU16Words},
    {"cameras", FieldPlace::Settings, settings::kCameras.count, settings::kCameras, nullptr, nullptr, kCameraRules},
    {"damage", FieldPlace::Settings, settings::kDamage.count, settings::kDamage, nullptr, nullptr, kDamageRules},
    {"points", FieldPlace::Settings, settings::kPoints.count, settings::kPoints, nullptr, nullptr, kPointsRules},
    {"laps", FieldPlace::Settings, settings::kLaps.count, settings::kLaps, nullptr, nullptr, kLapsRules},
};

bool covers(const ElementRule& rule, int element) {
    const int at = rule.period > 0 ? element % rule.period : element;
    return at >= rule.first && at < rule.first + rule.count;
}

}  // namespace

std::span<const FieldSpec> fieldSpecs(FieldPlace place) {
    switch (place) {
        case FieldPlace::Team: return kTeamFields;
        case FieldPlace::Driver: return kDriverFields;
        case FieldPlace::Settings: break;
    }
    return kSettingsFields;
}

const FieldSpec* findFieldSpec(FieldPlace place, std::string_view jsonName) {
    for (const FieldSpec& f : fieldSpecs(place))
        if (f.jsonName == jsonName) return &f;
    return nullptr;
}

const ElementRule& elementRule(const FieldSpec& field, int element) {
    for (const ElementRule& rule : field.rules)
        if (field.rules.size() == 1 || covers(rule, element)) return rule;
    assert(!"every element of a field has a rule");
    return field.rules.front();
}

long long fieldValue(const CarSet& set, const FieldSpec& field, int record, int element) {
    if (field.place != FieldPlace::Settings) return field.get(set, record, std::size_t(element));
    const std::uint16_t word = set.settings.words[std::size_t(field.words.first + element)];
    return elementRule(field, element).stored.low < 0 ? static_cast<std::int16_t>(word) : word;
}

bool setFieldValue(CarSet& set, const FieldSpec& field, int record, int element, long long value) {
    if (!elementRule(field, element).stored.contains(value)) return false;
    if (field.place != FieldPlace::Settings) {
        field.set(set, record, std::size_t(element), value);
    } else {
        set.settings.words[std::size_t(field.words.first + element)] = std::uint16_t(static_cast<std::int16_t>(value));
    }
    return true;
}

FieldRange displayRange(const ElementRule& rule, bool highGrip) {
    if (rule.display == FieldDisplay::Grip && !highGrip) return {0, rule.edit.high - rule.edit.low};
    return rule.edit;
}

long long toDisplay(const ElementRule& rule, long long stored, bool highGrip) {
    return rule.display == FieldDisplay::Grip && !highGrip ? stored - rule.edit.low : stored;
}

Result<long long> fromDisplay(const ElementRule& rule, long long shown, bool highGrip) {
    if (!displayRange(rule, highGrip).contains(shown)) return fail(rangeMessage(rule, highGrip));
    return rule.display == FieldDisplay::Grip && !highGrip ? shown + rule.edit.low : shown;
}

Message rangeMessage(const ElementRule& rule, bool highGrip) {
    const MessageId id =
        rule.display == FieldDisplay::Grip && !highGrip ? MessageId::RangeDriverGripLow : rule.message;
    return rangeMessage(id, displayRange(rule, highGrip));
}

Message rangeMessage(MessageId id, FieldRange range) {
    char text[32];
    std::snprintf(text, sizeof text, "%d to %d", range.low, range.high);
    return Message{id, text};
}

}  // namespace tarvel
