#include "performance/Calculators.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <functional>
#include <utility>

namespace tarvel {
namespace {

// Scoring: one unit of power or grip against the car of the last slot, in
// tenths of a percent of lap time, and the scale from score to percent gap.
constexpr double kPowerUnit = -0.1;
constexpr double kPowerWeight = 0.4575;
constexpr double kGripUnit = -0.01;
constexpr double kGripWeight = 0.4425;
constexpr double kGapScale = 0.9224;
constexpr double kGapToPercent = 0.5714285714285714;   // 4/7
constexpr int kReferenceFloor = -9999;
constexpr float kNoBestScore = 99999.0f;
constexpr int kGripLow = 15751;
constexpr int kGripHigh = 32767;
constexpr int kFailureDraw = 32767;
constexpr double kFailureWeight = 0.8;

enum class TeamText { Grid, Race };

const DriverRecord& driverOf(const DriverTable& drivers, int index) {
    static const DriverRecord none{};
    return index >= 0 && index < int(drivers.size()) ? drivers[std::size_t(index)] : none;
}

template <std::size_t N>
std::size_t boundedLength(const std::array<char, N>& field) {
    std::size_t n = 0;
    while (n < N && field[n] != '\0') ++n;
    return n;
}

// Appends `text` to `out` at `at`, keeping room for the terminating NUL.
template <std::size_t N>
void append(std::array<char, N>& out, std::size_t& at, std::string_view text) {
    const std::size_t n = std::min(text.size(), N - 1 - at);
    std::memcpy(out.data() + at, text.data(), n);
    at += n;
}

void formatTeamText(CarEntry& entry, const TeamRecord& team, TeamText form) {
    std::size_t at = 0;
    const std::string_view name(team.name.data(), boundedLength(team.name));
    const std::string_view engine(team.engine.data(), boundedLength(team.engine));
    if (form == TeamText::Grid) append(entry.team, at, "(");
    append(entry.team, at, name);
    append(entry.team, at, " - ");
    append(entry.team, at, engine);
    if (form == TeamText::Grid) append(entry.team, at, ")");
    entry.team[at] = '\0';
}

int clampGrip(int grip) { return std::clamp(grip, kGripLow, kGripHigh); }

// Grip with its random variation: the range's draw is taken off and the
// result kept within the grips the game knows. A range of 0 draws nothing.
int variedGrip(int grip, int range, bool randomGrip, Rand& rand) {
    if (!randomGrip) return grip;
    const int r = range != 0 ? rand() % range : 0;
    return clampGrip(grip - r);
}

// Fills the entries in slot order; the calculators' step "build".
void buildEntries(WorkingTable& table, const TeamTable& teams, const DriverTable& drivers, TeamText form,
                  bool randomGrip, Rand& rand) {
    table.shown = kCalculatorCars;
    for (int t = 0; t < kRacingTeams; ++t) {
        const TeamRecord& team = teams[std::size_t(t)];
        for (int car = 0; car < 2; ++car) {
            CarEntry& entry = table.entries[std::size_t(2 * t + car)];
            entry.slot = std::uint32_t(2 * t + car);
            if (team.disabled[std::size_t(car)] != 0) {
                entry.disabled = 1;
                --table.shown;
                continue;
            }
            const DriverRecord& driver = driverOf(drivers, team.driver[std::size_t(car)]);
            const std::size_t nameLength = std::min(boundedLength(driver.name), entry.driver.size() - 1);
            std::memcpy(entry.driver.data(), driver.name.data(), nameLength);
            formatTeamText(entry, team, form);
            const bool race = form == TeamText::Race;
            entry.power = std::int16_t(race ? team.powerRace : team.powerQual);
            if (race) entry.failure = std::int16_t(team.failureProbability);
            entry.grip = variedGrip(std::int16_t(race ? driver.gripRace : driver.gripQual),
                                    std::int16_t(driver.gripRandom), randomGrip, rand);
        }
    }
}

// Power and grip measured against the car of the last slot (floored), then
// weighted into the score; each step is kept in single precision.
void score(WorkingTable& table) {
    int powerReference = 0;
    for (const CarEntry& e : table.entries) powerReference = std::max(e.power, kReferenceFloor);
    for (CarEntry& e : table.entries) {
        e.power -= powerReference;
        e.score = float(double(e.score) + double(e.power) * kPowerUnit * kPowerWeight);
    }
    int gripReference = 0;
    for (const CarEntry& e : table.entries) gripReference = std::max(e.grip, kReferenceFloor);
    for (CarEntry& e : table.entries) {
        e.grip -= gripReference;
        e.score = float(double(e.score) + double(e.grip) * kGripUnit * kGripWeight);
    }
}

// The order of the entries while they are sorted: the sorts move indexes,
// and the entries follow once at the end, as if each swap had moved them.
using Order = std::array<std::uint8_t, kCalculatorCars>;

Order slotOrder() {
    Order order{};
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = std::uint8_t(i);
    return order;
}

// A bubble sort of fixed pass structure over the entries' keys (held in the
// current order, so that the walk stays in one small array); it keeps equal
// entries in order.
template <class Key, class Greater>
void bubbleSort(Order& order, std::array<Key, kCalculatorCars>& keys, Greater greater) {
    for (int pass = 0; pass < kCalculatorCars; ++pass)
        for (std::size_t j = 0; j + 1 < std::size_t(kCalculatorCars - pass); ++j)
            if (greater(keys[j], keys[j + 1])) {
                std::swap(keys[j], keys[j + 1]);
                std::swap(order[j], order[j + 1]);
            }
}

void arrange(WorkingTable& table, const Order& order) {
    const auto entries = table.entries;
    for (std::size_t i = 0; i < order.size(); ++i) table.entries[i] = entries[order[i]];
}

// Better score first; equal scores in byte order of the driver's name.
void sortByScore(const WorkingTable& table, Order& order) {
    struct Key {
        float score;
        const CarEntry* entry;
    };
    std::array<Key, kCalculatorCars> keys{};
    for (std::size_t i = 0; i < keys.size(); ++i) keys[i] = {table.entries[order[i]].score, &table.entries[order[i]]};
    bubbleSort(order, keys, [](const Key& l, const Key& r) {
        return l.score > r.score || (l.score == r.score && l.entry->driverText().compare(r.entry->driverText()) > 0);
    });
}

// A stable sort on one unsigned field, ascending; nothing moves when every
// entry holds the same value, so that case is not walked.
void sortBy(const WorkingTable& table, Order& order, std::uint32_t CarEntry::*field) {
    std::array<std::uint32_t, kCalculatorCars> keys{};
    bool alike = true;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        keys[i] = table.entries[order[i]].*field;
        alike = alike && keys[i] == keys[0];
    }
    if (!alike) bubbleSort(order, keys, std::greater<>());
}

void setText(auto& field, std::string_view text) {
    std::size_t at = 0;
    append(field, at, text);
    field[at] = '\0';
}

// Scores become the gap to the best car in percent, "+0.00%".
void formatGaps(WorkingTable& table) {
    float best = kNoBestScore;
    for (const CarEntry& e : table.entries) best = std::min(best, e.score);
    for (CarEntry& e : table.entries) {
        e.score = e.score - best;
        e.score = float(double(e.score) * kGapScale);
        e.score = float(double(e.score) * kGapToPercent);
        char text[32];
        text[0] = '+';
        auto [end, ec] = std::to_chars(text + 1, text + sizeof text - 1, double(e.score), std::chars_format::fixed, 2);
        if (ec != std::errc()) end = text + 1;
        *end++ = '%';
        setText(e.gap, std::string_view(text, std::size_t(end - text)));
    }
}

void labelGrid(WorkingTable& table) {
    for (int i = 0; i < kCalculatorCars; ++i) {
        auto& label = table.entries[std::size_t(i)].label;
        if (i < 2) {
            setText(label, "POLE");
        } else if (i < kGridStarters) {
            char text[16] = "ROW ";
            const auto end = std::to_chars(text + 4, text + sizeof text, i / 2 + 1).ptr;
            setText(label, std::string_view(text, std::size_t(end - text)));
        } else {
            setText(label, "DNQ");
        }
    }
}

// The grid sorted, before its gaps and labels.
WorkingTable sortedGrid(const TeamTable& teams, const DriverTable& drivers, bool randomGrip, Rand& rand) {
    WorkingTable table;
    buildEntries(table, teams, drivers, TeamText::Grid, randomGrip, rand);
    score(table);
    Order order = slotOrder();
    sortByScore(table, order);
    sortBy(table, order, &CarEntry::disabled);
    arrange(table, order);
    return table;
}

}  // namespace

WorkingTable computeGrid(const TeamTable& teams, const DriverTable& drivers, bool randomGrip, Rand& rand) {
    WorkingTable table = sortedGrid(teams, drivers, randomGrip, rand);
    formatGaps(table);
    labelGrid(table);
    return table;
}

WorkingTable computeRace(const TeamTable& teams, const DriverTable& drivers, const CalculatorOptions& options,
                         Rand& rand) {
    const WorkingTable grid = sortedGrid(teams, drivers, options.randomGrip, rand);
    WorkingTable table;
    table.entries[grid.entries[kGridStarters].slot].dnq = 1;
    table.entries[grid.entries[kGridStarters + 1].slot].dnq = 2;

    buildEntries(table, teams, drivers, TeamText::Race, options.randomGrip, rand);
    if (options.carFailure) {
        for (CarEntry& e : table.entries) {
            const int draw = rand() % kFailureDraw;
            if (int(double(e.failure) * kFailureWeight) > draw) e.dnf = std::uint32_t(e.failure);
        }
    }
    score(table);
    Order order = slotOrder();
    sortByScore(table, order);
    sortBy(table, order, &CarEntry::dnf);
    if (options.carFailure) sortBy(table, order, &CarEntry::dnq);
    sortBy(table, order, &CarEntry::disabled);
    arrange(table, order);
    formatGaps(table);
    for (CarEntry& e : table.entries) {
        if (e.dnf != 0) setText(e.gap, "DNF");
        if (e.dnq != 0 && options.carFailure) setText(e.gap, "DNQ");
    }
    return table;
}

std::string_view textGridLabel(int index, std::array<char, 8>& buffer) {
    if (index >= kGridStarters) return "DNQ";
    const int n = std::snprintf(buffer.data(), buffer.size(), "%d)", index + 1);
    return {buffer.data(), std::size_t(std::clamp(n, 0, int(buffer.size()) - 1))};
}

}  // namespace tarvel
