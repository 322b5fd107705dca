#include "performance/PerformanceFigures.h"

#include <algorithm>
#include <charconv>

namespace tarvel {
namespace {

struct FigureRow {
    Figure figure;
    FigureKind kind;
    int defaultStep;
};
constexpr FigureRow kFigures[] = {
    {Figure::PowerRace, FigureKind::Power, 10},  {Figure::PowerQual, FigureKind::Power, 10},
    {Figure::Failure, FigureKind::Failure, 100}, {Figure::GripRace, FigureKind::Grip, 10},
    {Figure::GripQual, FigureKind::Grip, 10},    {Figure::GripRandom, FigureKind::GripRange, 100},
};

const FigureRow& rowOf(Figure figure) { return kFigures[std::size_t(figure)]; }

// The schema's rule of a kind; the step amount has no field of its own.
const ElementRule* ruleOf(FigureKind kind) {
    auto rule = [](FieldPlace place, std::string_view name) { return &elementRule(*findFieldSpec(place, name), 0); };
    switch (kind) {
        case FigureKind::Power: return rule(FieldPlace::Team, "powerRace");
        case FigureKind::Failure: return rule(FieldPlace::Team, "failureProbability");
        case FigureKind::Grip: return rule(FieldPlace::Driver, "gripRace");
        case FigureKind::GripRange: return rule(FieldPlace::Driver, "gripRandom");
        case FigureKind::StepAmount: break;
    }
    return nullptr;
}

constexpr int kTypedDigits = 5;
constexpr int kPowerDigits = 4;

// The field of a figure in a table, or nullptr when the team names no driver
// of the table; const or not as the tables are.
template <class Tables>
auto figureField(Tables& tables, Figure figure, int team, int car) -> decltype(&tables.teams[0].powerRace) {
    auto& t = tables.teams[std::size_t(team)];
    switch (figure) {
        case Figure::PowerRace: return &t.powerRace;
        case Figure::PowerQual: return &t.powerQual;
        case Figure::Failure: return &t.failureProbability;
        case Figure::GripRace:
        case Figure::GripQual:
        case Figure::GripRandom: break;
    }
    const int number = t.driver[std::size_t(car)];
    if (number <= 0 || number > kDriverNumbers) return nullptr;
    auto& d = tables.drivers[std::size_t(number)];
    if (figure == Figure::GripRace) return &d.gripRace;
    if (figure == Figure::GripQual) return &d.gripQual;
    return &d.gripRandom;
}

}  // namespace

FigureKind kindOf(Figure figure) { return rowOf(figure).kind; }

FieldRange typedRange(FigureKind kind, bool highGrip) {
    const ElementRule* rule = ruleOf(kind);
    return rule ? displayRange(*rule, highGrip) : fieldrange::kPositive;
}

Message figureRangeMessage(FigureKind kind, bool highGrip) {
    const ElementRule* rule = ruleOf(kind);
    return rule ? rangeMessage(*rule, highGrip) : rangeMessage(MessageId::RangePositiveInteger, fieldrange::kPositive);
}

int typedLength(FigureKind kind) { return kind == FigureKind::Power ? kPowerDigits : kTypedDigits; }

Result<int> readFigure(FigureKind kind, std::string_view text, bool highGrip) {
    long long value = 0;
    if (!text.empty()) {
        const bool digits = std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
        auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (!digits || ec != std::errc() || end != text.data() + text.size())
            return fail(figureRangeMessage(kind, highGrip));
    }
    if (!typedRange(kind, highGrip).contains(value)) return fail(figureRangeMessage(kind, highGrip));
    return int(value);
}

std::optional<FieldFailure> firstFailing(FigureKind kind, std::span<const std::string> texts, bool highGrip) {
    for (std::size_t i = 0; i < texts.size(); ++i) {
        Result<int> value = readFigure(kind, texts[i], highGrip);
        if (!value) return FieldFailure{i, value.error()};
    }
    return std::nullopt;
}

int shownFigure(FigureKind kind, int stored, bool highGrip) {
    const ElementRule* rule = ruleOf(kind);
    return rule ? int(toDisplay(*rule, stored, highGrip)) : stored;
}

int storedFigure(FigureKind kind, int shown, bool highGrip) {
    const ElementRule* rule = ruleOf(kind);
    if (!rule) return shown;
    return rule->display == FieldDisplay::Grip && !highGrip ? shown + rule->edit.low : shown;
}

int stepFigure(FigureKind kind, int value, int amount, StepDirection direction, bool highGrip) {
    const FieldRange range = typedRange(kind, highGrip);
    return direction == StepDirection::Down ? std::max(value - amount, range.low)
                                            : std::min(value + amount, range.high);
}

int defaultStep(Figure figure) { return rowOf(figure).defaultStep; }

PerformanceTables performanceTables(const CarSet& set) { return {set.teams, set.drivers}; }

int figureValue(const PerformanceTables& tables, Figure figure, int team, int car) {
    const std::uint16_t* field = figureField(tables, figure, team, car);
    return field ? std::int16_t(*field) : 0;
}

void setFigureValue(PerformanceTables& tables, Figure figure, int team, int car, int stored) {
    if (std::uint16_t* field = figureField(tables, figure, team, car)) *field = std::uint16_t(stored);
}

void stepColumn(PerformanceTables& tables, Figure figure, int amount, StepDirection direction, bool highGrip) {
    const FigureKind kind = kindOf(figure);
    if (isTeamFigure(figure)) {
        for (int t = 0; t < kRacingTeams; ++t) {
            const int value = figureValue(tables, figure, t, 0);
            setFigureValue(tables, figure, t, 0, stepFigure(kind, value, amount, direction, highGrip));
        }
        return;
    }
    for (int t = 0; t < kRacingTeams + kSpareSlots; ++t) {
        const bool spare = t >= kRacingTeams;
        for (int car = 0; car < 2; ++car) {
            const int stored = figureValue(tables, figure, t, car);
            const int value = spare ? stored : shownFigure(kind, stored, highGrip);
            const int stepped = stepFigure(kind, value, amount, direction, highGrip);
            setFigureValue(tables, figure, t, car, spare ? stepped : storedFigure(kind, stepped, highGrip));
        }
    }
}

bool commitTeamFigures(CarSet& set, const PerformanceTables& tables) {
    bool changed = false;
    for (std::size_t t = 0; t < set.teams.size(); ++t) {
        TeamRecord& to = set.teams[t];
        const TeamRecord& from = tables.teams[t];
        changed |= to.powerRace != from.powerRace || to.powerQual != from.powerQual ||
                   to.failureProbability != from.failureProbability;
        to.powerRace = from.powerRace;
        to.powerQual = from.powerQual;
        to.failureProbability = from.failureProbability;
    }
    return changed;
}

bool commitDriverFigures(CarSet& set, const PerformanceTables& tables) {
    bool changed = false;
    for (std::size_t d = 0; d < set.drivers.size(); ++d) {
        DriverRecord& to = set.drivers[d];
        const DriverRecord& from = tables.drivers[d];
        changed |= to.name != from.name || to.gripRace != from.gripRace || to.gripQual != from.gripQual ||
                   to.gripRandom != from.gripRandom;
        to.name = from.name;
        to.gripRace = from.gripRace;
        to.gripQual = from.gripQual;
        to.gripRandom = from.gripRandom;
    }
    return changed;
}

}  // namespace tarvel
