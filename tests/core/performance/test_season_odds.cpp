#include "performance/SeasonOdds.h"

#include "fixtures/PerformanceSamples.h"

#include <gtest/gtest.h>

#include <array>
#include <numeric>

namespace tarvel {
namespace {

constexpr std::array<std::uint16_t, 26> kSixPlaces = {10, 6, 4, 3, 2, 1};

SeasonOdds season(const CarSet& set, CalculatorOptions options, std::uint64_t runs, std::uint32_t seed,
                  std::span<const std::uint16_t> points = kSixPlaces) {
    Rand rand(seed);
    return runSeason(set.teams, set.drivers, points, options, runs, rand);
}

std::uint64_t total(const SeasonOdds& odds, std::uint64_t CarOdds::*count) {
    return std::accumulate(odds.cars.begin(), odds.cars.end(), std::uint64_t(0),
                           [&](std::uint64_t sum, const CarOdds& c) { return sum + c.*count; });
}

// Counts that must agree whatever the draws: places 1..n handed out in every
// race, at most one win and three podiums a race, two non-qualifiers a race
// with car failure on, none without.
TEST(SeasonOdds, CountsAgreeWithEachOther) {
    CarSet twoOff = test::calculatorSample();
    twoOff.teams[5].disabled[0] = twoOff.teams[8].disabled[1] = 1;
    const struct {
        const char* what;
        CarSet set;
        CalculatorOptions options;
        std::size_t shown;
    } cases[] = {
        {"plain", test::calculatorSample(), {}, 28},
        {"random grip", test::calculatorSample(), {.randomGrip = true}, 28},
        {"car failure", test::calculatorSample(), {.randomGrip = true, .carFailure = true}, 28},
        {"two cars disabled", twoOff, {.carFailure = true}, 26},
    };
    const std::uint64_t runs = 200;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const SeasonOdds odds = season(c.set, c.options, runs, 11);
        ASSERT_EQ(odds.cars.size(), c.shown);
        EXPECT_EQ(odds.runs, runs);
        EXPECT_EQ(total(odds, &CarOdds::positionSum), runs * c.shown * (c.shown + 1) / 2);
        EXPECT_LE(total(odds, &CarOdds::wins), runs);
        EXPECT_LE(total(odds, &CarOdds::podiums), 3 * runs);
        EXPECT_LE(total(odds, &CarOdds::points), 6 * runs);
        const bool failures = c.options.carFailure;
        EXPECT_EQ(total(odds, &CarOdds::dnq), failures && c.shown == 28 ? 2 * runs : 0);
        EXPECT_EQ(total(odds, &CarOdds::dnf) > 0, failures);
        if (!failures) {
            EXPECT_EQ(total(odds, &CarOdds::wins), runs);
        }
        for (std::size_t i = 0; i < odds.cars.size(); ++i) {
            const CarOdds& car = odds.cars[i];
            if (i > 0) {
                EXPECT_GT(car.slot, odds.cars[i - 1].slot);
            }
            EXPECT_LE(car.wins, car.podiums);
            EXPECT_LE(car.podiums, car.points);
            EXPECT_LE(car.points + car.dnf + car.dnq, runs);
            EXPECT_GE(car.positionSum, runs);
            EXPECT_LE(car.positionSum, runs * c.shown);
            EXPECT_FALSE(car.driver.empty());
            EXPECT_EQ(car.team.find('('), std::string::npos);   // the race's team text
        }
    }
}

TEST(SeasonOdds, RepeatsForASeedAndVariesWithIt) {
    const CarSet set = test::calculatorSample();
    const CalculatorOptions options{.randomGrip = true, .carFailure = true};
    auto wins = [](const SeasonOdds& odds) {
        std::vector<std::uint64_t> out;
        for (const CarOdds& c : odds.cars) out.push_back(c.wins * 1000000 + c.dnf * 1000 + c.positionSum);
        return out;
    };
    EXPECT_EQ(wins(season(set, options, 100, 4)), wins(season(set, options, 100, 4)));
    EXPECT_NE(wins(season(set, options, 100, 4)), wins(season(set, options, 100, 5)));
    // One race without randomness is the calculator's order.
    const SeasonOdds one = season(set, {}, 1, 0);
    Rand rand(0);
    const WorkingTable race = computeRace(set.teams, set.drivers, {}, rand);
    for (const CarOdds& c : one.cars) {
        const auto at = std::find_if(race.entries.begin(), race.entries.end(), [&](const CarEntry& e) { return e.slot == c.slot; });
        EXPECT_EQ(c.positionSum, std::uint64_t(at - race.entries.begin()) + 1);
        EXPECT_EQ(c.wins, at == race.entries.begin() ? 1u : 0u);
    }
}

TEST(SeasonOdds, PointsFollowTheSetsTable) {
    const CarSet set = test::calculatorSample();
    const std::array<std::uint16_t, 26> winnerOnly = {9};
    const SeasonOdds odds = season(set, {.randomGrip = true}, 300, 2, winnerOnly);
    for (const CarOdds& c : odds.cars) EXPECT_EQ(c.points, c.wins);
    const SeasonOdds none = season(set, {.randomGrip = true}, 300, 2, std::span<const std::uint16_t>());
    EXPECT_EQ(total(none, &CarOdds::points), 0u);
}

TEST(SeasonOdds, BestFirst) {
    SeasonOdds odds;
    odds.runs = 10;
    auto car = [](std::uint32_t slot, std::uint64_t wins, std::uint64_t podiums, std::uint64_t points, std::uint64_t sum) {
        CarOdds c;
        c.slot = slot;
        c.wins = wins;
        c.podiums = podiums;
        c.points = points;
        c.positionSum = sum;
        return c;
    };
    odds.cars = {car(0, 0, 0, 1, 90), car(1, 2, 3, 4, 50), car(2, 2, 5, 5, 40), car(3, 0, 0, 1, 80),
                 car(4, 0, 0, 0, 80), car(5, 0, 0, 1, 80)};
    std::vector<std::uint32_t> order;
    for (const CarOdds& c : bestFirst(odds)) order.push_back(c.slot);
    EXPECT_EQ(order, (std::vector<std::uint32_t>{2, 1, 3, 5, 0, 4}));
}

}  // namespace
}  // namespace tarvel
