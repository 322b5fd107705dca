#include "performance/PerformanceFigures.h"

#include "fixtures/PerformanceSamples.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarvel {
namespace {

using K = FigureKind;
using D = StepDirection;

// What a typed field reads as: a number, or the message naming its range.
TEST(PerformanceFigures, TypedFieldsAreCheckedNeverClamped) {
    const struct {
        K kind;
        bool highGrip;
        std::string text;
        int value;             // when accepted
        std::string message;   // when refused
    } cases[] = {
        {K::Power, false, "1579", 1579, ""},
        {K::Power, false, "1580", 0, "Engine Power : 0 to 1579."},
        {K::Power, false, "", 0, ""},
        {K::Power, false, "-5", 0, "Engine Power : 0 to 1579."},
        {K::Power, false, "12a", 0, "Engine Power : 0 to 1579."},
        {K::Failure, false, "32767", 32767, ""},
        {K::Failure, false, "32768", 0, "Car Failure Probability : 0 to 32767."},
        {K::Grip, false, "17016", 17016, ""},
        {K::Grip, false, "17017", 0, "Driver Grip : 0 to 17016."},
        {K::Grip, true, "15750", 0, "Driver Grip : 15751 to 32767."},
        {K::Grip, true, "", 0, "Driver Grip : 15751 to 32767."},   // empty is 0, then checked
        {K::Grip, true, "32767", 32767, ""},
        {K::GripRange, false, "32768", 0, "Driver Grip Range : 0 to 32767."},
        {K::StepAmount, false, "32768", 0, "Enter positive integer 0 to 32767."},
        {K::StepAmount, false, "99999999999999999999", 0, "Enter positive integer 0 to 32767."},
    };
    for (const auto& c : cases) {
        Result<int> read = readFigure(c.kind, c.text, c.highGrip);
        if (c.message.empty()) {
            ASSERT_TRUE(read) << c.text;
            EXPECT_EQ(*read, c.value) << c.text;
        } else {
            ASSERT_FALSE(read) << c.text;
            EXPECT_EQ(messageText(read.error()), c.message) << c.text;
        }
    }
}

TEST(PerformanceFigures, StepsClampOnTheSideTheyMoveTo) {
    const struct {
        K kind;
        bool highGrip;
        int value, amount;
        D direction;
        int expected;
    } cases[] = {
        {K::Power, false, 1575, 10, D::Up, 1579},        {K::Power, false, 1569, 10, D::Up, 1579},
        {K::Power, false, 1568, 10, D::Up, 1578},        {K::Power, false, 5, 10, D::Down, 0},
        {K::Power, false, 2000, 10, D::Down, 1990},      {K::Failure, false, 32700, 100, D::Up, 32767},
        {K::Failure, false, 50, 100, D::Down, 0},        {K::Failure, false, 100, 100, D::Down, 0},
        {K::Failure, false, 32767, 32767, D::Up, 32767}, {K::Grip, false, 17010, 10, D::Up, 17016},
        {K::Grip, false, 5, 10, D::Down, 0},             {K::Grip, true, 15755, 10, D::Down, 15751},
        {K::Grip, true, 32760, 10, D::Up, 32767},        {K::Grip, true, 17010, 10, D::Up, 17020},
        {K::GripRange, false, 32700, 100, D::Up, 32767}, {K::GripRange, true, 30, 100, D::Down, 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(stepFigure(c.kind, c.value, c.amount, c.direction, c.highGrip), c.expected)
            << int(c.kind) << " " << c.value << (c.direction == D::Up ? " + " : " - ") << c.amount;
}

// A driver column steps the racing drivers in their shown form and the spare
// drivers by their stored values; a team column steps the 14 racing teams.
TEST(PerformanceFigures, ColumnStepsAndTheSpareDrivers) {
    const struct {
        Figure figure;
        bool highGrip;
        D direction;
        int amount;
        int racing, racingAfter;   // a racing driver's (or team's) stored value
        int spare, spareAfter;     // a spare driver's (or slot 14's) stored value
    } cases[] = {
        {Figure::GripQual, false, D::Up, 10, 20000, 20010, 20000, 17016},
        {Figure::GripQual, true, D::Up, 10, 20000, 20010, 20000, 20010},
        {Figure::GripRace, false, D::Down, 10, 15755, 15751, 5, 0},
        {Figure::GripRace, true, D::Down, 10, 15755, 15751, 15755, 15751},
        {Figure::GripRandom, false, D::Up, 100, 32700, 32767, 32700, 32767},
        {Figure::PowerRace, false, D::Up, 10, 1575, 1579, 1575, 1575},   // slot 14 is no racing team
        {Figure::Failure, false, D::Down, 100, 50, 0, 50, 50},
    };
    for (const auto& c : cases) {
        PerformanceTables tables = performanceTables(test::calculatorSample());
        for (int t = 0; t < kRacingTeams + kSpareSlots; ++t)
            for (int car = 0; car < 2; ++car)
                setFigureValue(tables, c.figure, t, car, t < kRacingTeams ? c.racing : c.spare);
        stepColumn(tables, c.figure, c.amount, c.direction, c.highGrip);
        for (int t = 0; t < kRacingTeams + kSpareSlots; ++t)
            for (int car = 0; car < 2; ++car)
                EXPECT_EQ(figureValue(tables, c.figure, t, car), t < kRacingTeams ? c.racingAfter : c.spareAfter)
                    << int(c.figure) << " slot " << t;
    }
}

TEST(PerformanceFigures, CommitCopiesTheFiguresAndSaysWhetherAnyChanged) {
    CarSet set = test::calculatorSample();
    PerformanceTables tables = performanceTables(set);
    EXPECT_FALSE(commitTeamFigures(set, tables) || commitDriverFigures(set, tables));
    tables.teams[3].failureProbability = 1234;
    setFieldText(tables.teams[3].name, "Other");   // only figures are taken from a team
    setFieldText(tables.drivers[30].name, "Renamed");
    EXPECT_TRUE(commitTeamFigures(set, tables));
    EXPECT_EQ(set.teams[3].failureProbability, 1234);
    EXPECT_STREQ(set.teams[3].name.data(), "Team D");
    EXPECT_TRUE(commitDriverFigures(set, tables));
    EXPECT_STREQ(set.drivers[30].name.data(), "Renamed");
}

}   // namespace
}   // namespace tarvel
