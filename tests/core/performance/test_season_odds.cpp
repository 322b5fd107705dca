#include "performance/SeasonOdds.h"

#include "fixtures/PerformanceSamples.h"

#include <gtest/gtest.h>

#include <array>
#include <numeric>

namespace tarvel {
namespace {

std::uint64_t total(const SeasonOdds& odds, std::uint64_t CarOdds::*count) {
    return std::accumulate(odds.cars.begin(), odds.cars.end(), std::uint64_t(0),
                           [&](std::uint64_t sum, const CarOdds& c) { return sum + c.*count; });
}

// Counts that must agree whatever the draws: places 1..n handed out in every
// race, at most one win and three podiums a race, two non-qualifiers a race
// with car failure on, none without; points only where the table gives some.
TEST(SeasonOdds, CountsAgreeWithEachOther) {
    constexpr std::array<std::uint16_t, 26> kSixPlaces = {10, 6, 4, 3, 2, 1}, kWinnerOnly = {9};
    CarSet twoOff = test::calculatorSample();
    twoOff.teams[5].disabled[0] = twoOff.teams[8].disabled[1] = 1;
    const struct {
        CarSet set;
        CalculatorOptions options;
        std::span<const std::uint16_t> points;
        std::size_t shown;
    } cases[] = {
        {test::calculatorSample(), {}, kSixPlaces, 28},
        {test::calculatorSample(), {.randomGrip = true}, kWinnerOnly, 28},
        {test::calculatorSample(), {.randomGrip = true, .carFailure = true}, kSixPlaces, 28},
        {twoOff, {.carFailure = true}, {}, 26},
    };
    const std::uint64_t runs = 200;
    for (const auto& c : cases) {
        Rand rand(11);
        const SeasonOdds odds = runSeason(c.set.teams, c.set.drivers, c.points, c.options, runs, rand);
        ASSERT_EQ(odds.cars.size(), c.shown);
        EXPECT_EQ(total(odds, &CarOdds::positionSum), runs * c.shown * (c.shown + 1) / 2);
        EXPECT_LE(total(odds, &CarOdds::podiums), 3 * runs);
        const bool failures = c.options.carFailure;
        EXPECT_TRUE(failures ? total(odds, &CarOdds::wins) <= runs : total(odds, &CarOdds::wins) == runs);
        EXPECT_EQ(total(odds, &CarOdds::dnq), failures && c.shown == 28 ? 2 * runs : 0);
        EXPECT_EQ(total(odds, &CarOdds::dnf) > 0, failures);
        const auto pointPlaces = std::count_if(c.points.begin(), c.points.end(), [](std::uint16_t p) { return p > 0; });
        EXPECT_LE(total(odds, &CarOdds::points), std::uint64_t(pointPlaces) * runs);
        for (std::size_t i = 0; i < odds.cars.size(); ++i) {
            const CarOdds& car = odds.cars[i];
            EXPECT_TRUE(i == 0 || car.slot > odds.cars[i - 1].slot);
            EXPECT_LE(car.wins, car.podiums);
            if (pointPlaces <= 1) {
                EXPECT_EQ(car.points, pointPlaces == 1 ? car.wins : 0u);   // only the winner scores, or none
            } else {
                EXPECT_LE(car.podiums, car.points);
            }
            EXPECT_LE(car.points + car.dnf + car.dnq, runs);
            EXPECT_GE(car.positionSum, runs);
            EXPECT_LE(car.positionSum, runs * c.shown);
            EXPECT_EQ(car.team.find('('), std::string::npos);   // the race's team text
        }
    }
}

TEST(SeasonOdds, BestFirst) {
    SeasonOdds odds;
    // slot, wins, podiums, points, positionSum
    for (auto [slot, w, p, pts, sum] : {std::array<std::uint64_t, 5>{0, 0, 0, 1, 90},
                                        {1, 2, 3, 4, 50},
                                        {2, 2, 5, 5, 40},
                                        {3, 0, 0, 1, 80},
                                        {4, 0, 0, 0, 80},
                                        {5, 0, 0, 1, 80}})
        odds.cars.push_back({.slot = std::uint32_t(slot), .wins = w, .podiums = p, .points = pts, .positionSum = sum});
    std::vector<std::uint32_t> order;
    for (const CarOdds& c : bestFirst(odds)) order.push_back(c.slot);
    EXPECT_EQ(order, (std::vector<std::uint32_t>{2, 1, 3, 5, 0, 4}));
}

}   // namespace
}   // namespace tarvel
