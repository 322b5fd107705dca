#include "performance/Calculators.h"

#include "fixtures/PerformanceSamples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace tarvel {
namespace {

using test::calculatorSample;
using test::equalSample;

WorkingTable grid(const CarSet& set, bool randomGrip = false, std::uint32_t seed = 0) {
    Rand rand(seed);
    return computeGrid(set.teams, set.drivers, randomGrip, rand);
}
WorkingTable race(const CarSet& set, CalculatorOptions options = {}, std::uint32_t seed = 0) {
    Rand rand(seed);
    return computeRace(set.teams, set.drivers, options, rand);
}

std::vector<std::string> column(const WorkingTable& table, std::string_view (CarEntry::*text)() const) {
    std::vector<std::string> out;
    for (const CarEntry& e : table.shownEntries()) out.emplace_back((e.*text)());
    return out;
}

DriverRecord& driverOfSlot(CarSet& set, int slot) {
    return set.drivers[std::size_t(set.teams[std::size_t(slot / 2)].driver[std::size_t(slot % 2)])];
}

const CarEntry& entryOfSlot(const WorkingTable& table, int slot) {
    return *std::find_if(table.entries.begin(), table.entries.end(),
                         [&](const CarEntry& e) { return e.slot == std::uint32_t(slot); });
}

// One unit of grip is worth 0.004425 of score, one of power 0.04575; a score
// becomes a gap in percent through x 0.9224 x 4/7.
TEST(GridCalculator, GapsFollowTheWeights) {
    const struct {
        const char* what;
        std::function<void(CarSet&)> tweak;
        std::vector<std::string> leaders;   // the cars at +0.00%
        std::string othersGap;
    } cases[] = {
        {"all alike", [](CarSet&) {}, {}, "+0.00%"},
        {"1000 more grip", [](CarSet& s) { driverOfSlot(s, 9).gripQual += 1000; }, {"Quist"}, "+2.33%"},
        {"100 more power", [](CarSet& s) { s.teams[4].powerQual += 100; }, {"Nakamura", "Quist"}, "+2.41%"},
        {"a tenth of a percent", [](CarSet& s) { s.teams[0].powerQual += 3; }, {"Albers", "Moreau"}, "+0.07%"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        CarSet set = equalSample();
        c.tweak(set);
        const WorkingTable table = grid(set);
        ASSERT_EQ(table.shown, 28);
        for (std::size_t i = 0; i < 28; ++i) {
            const CarEntry& e = table.entries[i];
            const bool leader = i < c.leaders.size();
            if (leader) {
                EXPECT_EQ(e.driverText(), c.leaders[i]);
            }
            EXPECT_EQ(e.gapText(), leader ? "+0.00%" : c.othersGap) << e.driverText();
        }
    }
}

TEST(GridCalculator, EqualScoresGoInByteOrderOfTheNames) {
    CarSet set = equalSample();
    setFieldText(set.drivers[5].name, "\xC9lan");   // É sorts after every ASCII letter
    setFieldText(set.drivers[6].name, "albers");    // lower case after upper case
    std::vector<std::string> expected;
    for (const DriverRecord& d : std::span(set.drivers).subspan(1, 28)) expected.emplace_back(d.name.data());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(expected.back(), "\xC9lan");
    EXPECT_EQ(column(grid(set), &CarEntry::driverText), expected);
    EXPECT_EQ(column(race(set), &CarEntry::driverText), expected);
}

TEST(GridCalculator, FiguresAreMeasuredAgainstTheLastSlotFloored) {
    const struct {
        const char* what;
        std::function<void(CarSet&)> tweak;
        int powerReference;
        int gripReference;
    } cases[] = {
        {"last car slower", [](CarSet& s) { s.teams[13].powerQual = 650; }, 650, 25000},
        {"last car fastest: not the minimum", [](CarSet& s) { s.teams[13].powerQual = 900; }, 900, 25000},
        {"last grip read signed, floored", [](CarSet& s) { driverOfSlot(s, 27).gripQual = 40000; }, 700, -9999},
        {"last power below the floor", [](CarSet& s) { s.teams[13].powerQual = std::uint16_t(-12000); }, -9999, 25000},
        {"last car disabled", [](CarSet& s) { s.teams[13].disabled[1] = 1; }, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        CarSet set = equalSample();
        c.tweak(set);
        const WorkingTable table = grid(set);
        for (const CarEntry& e : table.entries) {
            const int slot = int(e.slot);
            const bool disabled = set.teams[std::size_t(slot / 2)].disabled[std::size_t(slot % 2)] != 0;
            const int power = disabled ? 0 : std::int16_t(set.teams[std::size_t(slot / 2)].powerQual);
            const int grip = disabled ? 0 : std::int16_t(driverOfSlot(set, slot).gripQual);
            EXPECT_EQ(e.power, power - c.powerReference) << slot;
            EXPECT_EQ(e.grip, grip - c.gripReference) << slot;
        }
    }
}

// Disabled cars leave the grid at its end, in slot order; the labels follow
// the position whatever is shown.
TEST(GridCalculator, DisabledCarsGoLast) {
    const struct {
        std::vector<int> disabledSlots;
        int shown;
        std::vector<std::string> lastLabels;   // of the last shown cars
    } cases[] = {
        {{}, 28, {"ROW 13", "DNQ", "DNQ"}},
        {{5}, 27, {"ROW 13", "ROW 13", "DNQ"}},
        {{0, 27}, 26, {"ROW 13", "ROW 13"}},
    };
    for (const auto& c : cases) {
        CarSet set = calculatorSample();
        for (int slot : c.disabledSlots) set.teams[std::size_t(slot / 2)].disabled[std::size_t(slot % 2)] = 1;
        const WorkingTable table = grid(set);
        ASSERT_EQ(table.shown, c.shown);
        for (std::size_t i = 0; i < c.disabledSlots.size(); ++i) {
            const CarEntry& e = table.entries[std::size_t(c.shown) + i];
            EXPECT_EQ(e.slot, std::uint32_t(c.disabledSlots[i]));
            EXPECT_EQ(e.disabled, 1u);
            EXPECT_EQ(e.driverText(), "");
        }
        const auto labels = column(table, &CarEntry::labelText);
        EXPECT_TRUE(std::equal(c.lastLabels.rbegin(), c.lastLabels.rend(), labels.rbegin())) << c.shown;
        EXPECT_EQ(labels[1], "POLE");
    }
}

// No car, one car: nothing divides by zero or reads past the table; the one
// car shown leads with a gap of zero.
TEST(GridCalculator, SetsWithFewCars) {
    for (const int enabledSlot : {-1, 0, 27}) {
        CarSet set = calculatorSample();
        for (int slot = 0; slot < 28; ++slot) {
            set.teams[std::size_t(slot / 2)].disabled[std::size_t(slot % 2)] = slot != enabledSlot;
            set.teams[std::size_t(slot / 2)].failureProbability = 0;
        }
        for (const WorkingTable& table : {grid(set, true), race(set, {.randomGrip = true, .carFailure = true})}) {
            ASSERT_EQ(table.shown, enabledSlot < 0 ? 0 : 1) << enabledSlot;
            for (const CarEntry& e : table.entries) EXPECT_FALSE(e.gapText().empty());
            if (enabledSlot >= 0) {
                EXPECT_EQ(table.entries[0].slot, std::uint32_t(enabledSlot));
                EXPECT_EQ(table.entries[0].gapText(), "+0.00%");
            }
        }
    }
}

// With random grip each driver loses rand() % range of grip (no draw for a
// range of 0), and the result is kept within 15751..32767.
TEST(GridCalculator, RandomGripDrawsInSlotOrderAndClamps) {
    CarSet set = equalSample();
    driverOfSlot(set, 3).gripRandom = 1000;
    driverOfSlot(set, 20).gripRandom = 7;
    driverOfSlot(set, 8).gripQual = 15000;   // range 0: clamped only under random grip
    driverOfSlot(set, 11).gripQual = 15800;
    driverOfSlot(set, 11).gripRandom = 32767;
    for (const std::uint32_t seed : {0u, 1u, 99u}) {
        Rand draws(seed);
        const int d3 = draws() % 1000, d11 = draws() % 32767, d20 = draws() % 7;
        const struct {
            bool randomGrip;
            int slot;
            int grip;
        } cases[] = {
            {false, 3, 25000},
            {false, 8, 15000},
            {false, 11, 15800},
            {false, 20, 25000},
            {true, 3, 25000 - d3},
            {true, 8, 15751},
            {true, 11, std::max(15800 - d11, 15751)},
            {true, 20, 25000 - d20},
        };
        for (const auto& c : cases) {
            const WorkingTable table = grid(set, c.randomGrip, seed);
            EXPECT_EQ(entryOfSlot(table, c.slot).grip - entryOfSlot(table, 27).grip, c.grip - 25000)
                << "seed " << seed << " slot " << c.slot << " random " << c.randomGrip;
        }
    }
    // Nothing else is drawn: the generator goes on where three draws leave it.
    Rand rand(5), expected(5);
    (void)computeGrid(set.teams, set.drivers, true, rand);
    for (int i = 0; i < 3; ++i) expected();
    EXPECT_EQ(rand(), expected());
}

// The grid's two non-qualifiers carry DNQ marks 1 and 2 in the race; without
// car failure they race like the others, and with two cars disabled the marks
// fall on those.
TEST(RaceCalculator, NonQualifiersAndFailures) {
    CarSet set = calculatorSample();
    const WorkingTable startingGrid = grid(set);
    const std::uint32_t dnq1 = startingGrid.entries[26].slot, dnq2 = startingGrid.entries[27].slot;

    const WorkingTable plain = race(set);
    EXPECT_EQ(entryOfSlot(plain, int(dnq1)).dnq, 1u);
    EXPECT_EQ(entryOfSlot(plain, int(dnq2)).dnq, 2u);
    for (const CarEntry& e : plain.entries) {
        EXPECT_EQ(e.label[0], '\0');
        EXPECT_EQ(e.gapText().front(), '+') << "no DNF or DNQ without car failure";
    }

    CarSet twoOff = set;
    twoOff.teams[0].disabled[0] = twoOff.teams[13].disabled[1] = 1;
    const WorkingTable shortField = race(twoOff, {.carFailure = true});
    EXPECT_EQ(entryOfSlot(shortField, 0).dnq, 1u);
    EXPECT_EQ(entryOfSlot(shortField, 27).dnq, 2u);
    for (const CarEntry& e : shortField.shownEntries()) EXPECT_NE(e.gapText(), "DNQ");
}

// Each car draws rand() % 32767 in slot order and fails when 0.8 of its
// failure probability (truncated) is above the draw. Finishers come first,
// then the failed cars, least fragile first, then the two non-qualifiers.
TEST(RaceCalculator, FailedCarsAreClassifiedAfterTheFinishers) {
    CarSet set = calculatorSample();
    for (int t = 0; t < kRacingTeams; ++t)
        set.teams[std::size_t(t)].failureProbability = std::uint16_t(20000 + 900 * t);
    set.teams[6].failureProbability = 1;       // 0.8 truncates to 0: never fails
    set.teams[9].failureProbability = 32767;   // 26213 against draws of 0..32766
    const std::uint32_t dnq1 = grid(set).entries[26].slot, dnq2 = grid(set).entries[27].slot;
    int failures = 0;
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        const WorkingTable table = race(set, {.carFailure = true}, seed);
        Rand draws(seed);
        for (int slot = 0; slot < 28; ++slot) {
            const int failure = set.teams[std::size_t(slot / 2)].failureProbability;
            const bool fails = int(failure * 0.8) > draws() % 32767;
            EXPECT_EQ(entryOfSlot(table, slot).dnf, fails ? std::uint32_t(failure) : 0u) << seed << " " << slot;
            failures += fails;
        }
        EXPECT_EQ(table.entries[26].slot, dnq1);
        EXPECT_EQ(table.entries[27].slot, dnq2);
        std::uint32_t lastDnf = 0;
        bool finishing = true;
        for (std::size_t i = 0; i < 26; ++i) {
            const CarEntry& e = table.entries[i];
            EXPECT_EQ(e.gapText() == "DNF", e.dnf != 0);
            if (e.dnf == 0) {
                EXPECT_TRUE(finishing) << "a finisher after a failed car, seed " << seed;
                continue;
            }
            finishing = false;
            EXPECT_GE(e.dnf, lastDnf);
            lastDnf = e.dnf;
        }
        EXPECT_EQ(table.entries[26].gapText(), "DNQ");
    }
    EXPECT_GT(failures, 20 * 10);
}

}   // namespace
}   // namespace tarvel
