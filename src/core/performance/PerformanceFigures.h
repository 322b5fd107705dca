#pragma once
// The figures of the performance editors: engine power and failure
// probability of the teams, race and qualifying grip and the random grip range
// of the drivers. How a typed field is read and checked, how a figure is shown
// (grips under "HighGrip"), what the "-" / "+" step buttons do, and the
// editors' scratch copy of the team and driver tables. Ranges and messages come
// from the field schema.

#include "carset/FieldSchema.h"
#include "common/Result.h"
#include "performance/Calculators.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tarvel {

enum class FigureKind { Power, Failure, Grip, GripRange, StepAmount };
enum class Figure { PowerRace, PowerQual, Failure, GripRace, GripQual, GripRandom };
enum class StepDirection { Down, Up };

constexpr bool isTeamFigure(Figure f) {
    return f == Figure::PowerRace || f == Figure::PowerQual || f == Figure::Failure;
}
FigureKind kindOf(Figure figure);

// The range a figure is typed in, the message naming it, and the most
// characters its field takes.
FieldRange typedRange(FigureKind kind, bool highGrip);
Message figureRangeMessage(FigureKind kind, bool highGrip);
int typedLength(FigureKind kind);

// A typed field: empty is 0; a sign, any other character or a value outside
// the typed range is refused with the range message (never clamped).
Result<int> readFigure(FigureKind kind, std::string_view text, bool highGrip);

// A field that failed its check: its place in the order checked, and why.
struct FieldFailure {
    std::size_t index;
    Message message;
};
// The first of `texts` (in the order given) that readFigure refuses.
std::optional<FieldFailure> firstFailing(FigureKind kind, std::span<const std::string> texts, bool highGrip);

// Shown and stored forms (a grip under HighGrip = 0 is shown minus 15751).
int shownFigure(FigureKind kind, int stored, bool highGrip);
int storedFigure(FigureKind kind, int shown, bool highGrip);

// One press of "-" or "+": the value moved by `amount`, clamped on the side it
// moves to (power 0..1579, failure probability and range 0..32767, grip
// 15751..32767 or 0..17016 by HighGrip).
int stepFigure(FigureKind kind, int value, int amount, StepDirection direction, bool highGrip);

// The step amount a step group starts with.
int defaultStep(Figure figure);

// An editor's scratch copy of the tables it edits; the calculators read it
// as they read the car set.
struct PerformanceTables {
    TeamTable teams{};
    DriverTable drivers{};
};
PerformanceTables performanceTables(const CarSet& set);

// The stored figure, read signed: of team slot `team` for a team figure, else
// of the driver of car `car` (0, 1) of that team slot (0 when the team names
// no driver in the table).
int figureValue(const PerformanceTables& tables, Figure figure, int team, int car);
void setFigureValue(PerformanceTables& tables, Figure figure, int team, int car, int stored);

// A step button over a whole column: a team figure of the 14 racing teams;
// a driver figure of both drivers of team slots 0..17, the racing drivers in
// their shown form and the spare drivers by their stored values alike (so
// under HighGrip = 0 a spare driver's stored grip is capped at 17016).
void stepColumn(PerformanceTables& tables, Figure figure, int amount, StepDirection direction, bool highGrip);

// Copies the edited figures into the car set: the teams' power and failure
// probability, or the drivers' names and grips. Whether anything changed.
bool commitTeamFigures(CarSet& set, const PerformanceTables& tables);
bool commitDriverFigures(CarSet& set, const PerformanceTables& tables);

}  // namespace tarvel
