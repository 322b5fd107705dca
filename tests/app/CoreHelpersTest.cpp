// The core rules the window relies on: titles, grips, seats, team moves,
// the mosaic reveal and the game's location.

#include "carset/DocumentTitle.h"
#include "carset/DriverSeats.h"
#include "carset/GripForm.h"
#include "carset/TeamSwap.h"
#include "game/GameLocation.h"
#include "graphics/MosaicReveal.h"

#include "fixtures/GameFixture.h"

#include <gtest/gtest.h>

#include <fstream>
#include <vector>

namespace tarvel::test {
namespace {

TEST(DocumentTitle, ShowsDotsWithoutFileAndSkipsZeroCounts) {
    CarSet set;
    EXPECT_EQ(documentTitle(set), "Tarvel-32 v1.86 - [ ..... ]");
    set.soundCount = 100;
    set.menuHelmetCount = 1;
    EXPECT_EQ(documentTitle(set), "Tarvel-32 v1.86 - [ ..... ] - H(1) - S(100)");
}

TEST(DocumentTitle, SaveQuestionUpperCasesTheFileTitle) {
    CarSet set;
    EXPECT_EQ(messageText(saveChangesQuestion(set)), "Save Changes to Car Set?");
    set.document.hasFile = true;
    set.document.path = "/some/where/my set.gp2";
    EXPECT_EQ(messageText(saveChangesQuestion(set)), "Save Changes to MY SET.GP2?");
}

TEST(GripForm, ConvertsBothWaysAtTheRangeEnds) {
    EXPECT_EQ(gripToDisplay(15751, false), 0);
    EXPECT_EQ(gripToDisplay(32767, false), 17016);
    EXPECT_EQ(gripToDisplay(20000, true), 20000);
    EXPECT_EQ(*gripFromDisplay(0, false), 15751);
    EXPECT_EQ(*gripFromDisplay(17016, false), 32767);
    EXPECT_EQ(*gripFromDisplay(15751, true), 15751);
    EXPECT_EQ(gripFromDisplay(-1, false).error().id, MessageId::RangeDriverGripLow);
    EXPECT_EQ(gripFromDisplay(17017, false).error().id, MessageId::RangeDriverGripLow);
    EXPECT_EQ(gripFromDisplay(15750, true).error().id, MessageId::RangeDriverGripHigh);
    EXPECT_EQ(gripFromDisplay(32768, true).error().id, MessageId::RangeDriverGripHigh);
    EXPECT_EQ(*gripRandomFromDisplay(32767), 32767);
    EXPECT_EQ(gripRandomFromDisplay(-1).error().id, MessageId::RangeDriverGripRandom);
    EXPECT_EQ(gripRandomFromDisplay(32768).error().id, MessageId::RangeDriverGripRandom);
}

TEST(DriverSeats, SeatsRunThroughTeamsThenSpares) {
    EXPECT_EQ(seatAt(0), (Seat{0, 0}));
    EXPECT_EQ(seatAt(27), (Seat{13, 1}));
    EXPECT_EQ(seatAt(28), (Seat{14, 0}));
    for (int i = 0; i < kSeats; ++i) EXPECT_EQ(seatIndex(seatAt(i)), i);
}

TEST(DriverSeats, RenumberingOntoATakenNumberExchangesNumbersAndKeepsRecords) {
    CarSet set;
    setFieldText(set.driver(1).name, "One");
    setFieldText(set.driver(5).name, "Five");
    ASSERT_TRUE(renumberDriver(set, Seat{0, 0}, 5));
    EXPECT_EQ(set.team(0).driver[0], 5);
    EXPECT_EQ(set.team(2).driver[0], 1);
    EXPECT_EQ(fieldText(set.driver(5).name), "One");
    EXPECT_EQ(fieldText(set.driver(1).name), "Five");
    EXPECT_TRUE(set.document.dirty);
}

TEST(DriverSeats, RenumberingOntoAFreeNumberMovesTheRecord) {
    CarSet set;
    setFieldText(set.driver(3).name, "Three");
    ASSERT_TRUE(renumberDriver(set, Seat{1, 0}, 39));
    EXPECT_EQ(set.team(1).driver[0], 39);
    EXPECT_EQ(fieldText(set.driver(39).name), "Three");
    EXPECT_EQ(set.driver(39).inUse, 1);
    EXPECT_EQ(set.driver(3).inUse, 0);
    EXPECT_EQ(renumberDriver(set, Seat{1, 0}, 0).error().id, MessageId::BadDriverNumbers);
    EXPECT_EQ(renumberDriver(set, Seat{1, 0}, 41).error().id, MessageId::BadDriverNumbers);
}

TEST(DriverSeats, DriverZeroShowsAndTakesNumberOneAsZero) {
    CarSet set;
    EXPECT_EQ(shownDriverNumber(set, 1), 1);
    EXPECT_EQ(typedDriverNumber(set, 0), -1);
    set.settings.words[settings::kDriverZero] = 1;
    EXPECT_EQ(shownDriverNumber(set, 1), 0);
    EXPECT_EQ(typedDriverNumber(set, 0), 1);
    EXPECT_EQ(typedDriverNumber(set, 1), -1);
    EXPECT_EQ(typedDriverNumber(set, 2), 2);
}

TEST(DriverSeats, ExchangingSeatsKeepsFlagsWithTheSeat) {
    CarSet set;
    set.team(0).disabled[1] = 1;
    EXPECT_TRUE(exchangeSeats(set, Seat{0, 1}, Seat{17, 1}));
    EXPECT_EQ(set.team(0).driver[1], 36);
    EXPECT_EQ(set.team(17).driver[1], 2);
    EXPECT_EQ(set.team(0).disabled[1], 1);
    EXPECT_FALSE(exchangeSeats(set, Seat{0, 1}, Seat{0, 1}));
    EXPECT_FALSE(exchangeSeats(set, Seat{0, 1}, Seat{18, 0}));
}

TEST(TeamSwap, ListOrderAfterMovesBothWays) {
    const auto down = teamListAfterMove(1, 4);
    EXPECT_EQ(std::vector<int>(down.begin(), down.begin() + 6), (std::vector<int>{0, 2, 3, 4, 1, 5}));
    const auto up = teamListAfterMove(13, 0);
    EXPECT_EQ(up[0], 13);
    EXPECT_EQ(up[1], 0);
    EXPECT_EQ(up[13], 12);
    const auto same = teamListAfterMove(3, 3);
    for (int i = 0; i < kRacingTeams; ++i) EXPECT_EQ(same[std::size_t(i)], i);
}

TEST(TeamSwap, MoveKeepsSlotsOutsideTheTeamsAndRefusesBadIndexes) {
    CarSet set;
    setFieldText(set.team(14).name, "spare");
    set.team(14).driver[0] = 29;
    EXPECT_FALSE(moveTeam(set, 0, 14));
    EXPECT_FALSE(moveTeam(set, -1, 3));
    EXPECT_FALSE(set.document.dirty);
    ASSERT_TRUE(moveTeam(set, 13, 0));
    EXPECT_EQ(fieldText(set.team(14).name), "spare");
    EXPECT_EQ(set.team(14).driver[0], 29);
    EXPECT_EQ(set.team(0).driver[0], 27);   // team 13's first driver
}

TEST(TeamSwap, EveryTeamsPitPositionSurvivesAMove) {
    CarSet set;
    for (int i = 0; i < kRacingTeams; ++i) set.team(i).teamOrder = std::int16_t(kRacingTeams - 1 - i);
    std::vector<std::string> pitNamesBefore;
    for (int i = 0; i < kRacingTeams; ++i) {
        setFieldText(set.team(i).name, "N" + std::to_string(i));
    }
    for (int i = 0; i < kRacingTeams; ++i) pitNamesBefore.push_back(fieldText(set.team(set.team(i).teamOrder).name));
    ASSERT_TRUE(moveTeam(set, 2, 9));
    for (int i = 0; i < kRacingTeams; ++i)
        EXPECT_EQ(fieldText(set.team(set.team(i).teamOrder).name), pitNamesBefore[std::size_t(i)]) << i;
}

TEST(MosaicReveal, OrderIsTheColumnMajorListShuffledBySwaps) {
    for (int block = 1; block <= 4; ++block) {
        Rand rand(5);
        const auto order = mosaicOrder(block, rand);
        ASSERT_EQ(order.size(), 100u);
        // Entry i*10+j starts as (i*b, j*b); entry k is swapped with entry rand() % 100.
        Rand replay(5);
        std::array<int, 100> index{};
        for (int k = 0; k < 100; ++k) index[std::size_t(k)] = k;
        for (int k = 0; k < 100; ++k) std::swap(index[std::size_t(k)], index[std::size_t(replay() % 100)]);
        for (int k = 0; k < 100; ++k) {
            EXPECT_EQ(order[std::size_t(k)].x, block * (index[std::size_t(k)] / 10)) << block;
            EXPECT_EQ(order[std::size_t(k)].y, block * (index[std::size_t(k)] % 10)) << block;
        }
    }
}

TEST(MosaicReveal, AllStepsTogetherCopyEveryPixelOfTheLivery) {
    std::vector<std::uint8_t> source(static_cast<std::size_t>(kLiveryPixels));
    for (std::size_t i = 0; i < source.size(); ++i) source[i] = std::uint8_t(1 + i % 250);
    for (int block = 1; block <= 4; ++block) {
        std::vector<std::uint8_t> target(source.size(), 0);
        Rand rand(9);
        const auto order = mosaicOrder(block, rand);
        for (int k = 0; k < 50; ++k) copyMosaicStep(source, target, kLiveryWidth, kLiveryHeight, block, order[std::size_t(k)]);
        EXPECT_NE(target, source) << block;   // half-way, part of the picture is still missing
        for (int k = 50; k < 100; ++k) copyMosaicStep(source, target, kLiveryWidth, kLiveryHeight, block, order[std::size_t(k)]);
        EXPECT_EQ(target, source) << block;
    }
}

TEST(MosaicReveal, OneStepCopiesOnlyItsBlocks) {
    std::vector<std::uint8_t> source(25 * 25, 7), target(25 * 25, 0);
    copyMosaicStep(source, target, 25, 25, 2, MosaicOffset{18, 0});
    // Blocks at x 18-19 and 38 (outside), y 0-1 and 20-21.
    EXPECT_EQ(target[0 * 25 + 18], 7);
    EXPECT_EQ(target[1 * 25 + 19], 7);
    EXPECT_EQ(target[21 * 25 + 19], 7);
    EXPECT_EQ(target[2 * 25 + 18], 0);
    EXPECT_EQ(target[0 * 25 + 20], 0);
    EXPECT_EQ(std::count(target.begin(), target.end(), 7), 8);
    // Too small buffers and block 0 copy nothing.
    std::vector<std::uint8_t> small(10, 0);
    copyMosaicStep(source, small, 25, 25, 2, MosaicOffset{0, 0});
    EXPECT_EQ(std::count(small.begin(), small.end(), 7), 0);
    EXPECT_EQ(mosaicBlockSize(9), 4);
    EXPECT_EQ(mosaicBlockSize(0), 0);
    EXPECT_EQ(mosaicBlockSize(-3), 0);
}

TEST(GameLocation, AcceptsOnlyAnExistingGp2ExeInAnyCase) {
    TempFolder temp("location");
    std::ofstream(temp.path() / "gp2.Exe") << "x";
    std::ofstream(temp.path() / "GP3.EXE") << "x";
    const auto folder = gameFolderFromExecutable((temp.path() / "gp2.Exe").string());
    ASSERT_TRUE(folder);
    EXPECT_EQ(*folder, temp.path().string() + "/");
    EXPECT_FALSE(gameFolderFromExecutable((temp.path() / "GP3.EXE").string()));
    EXPECT_FALSE(gameFolderFromExecutable((temp.path() / "missing" / "GP2.EXE").string()));
    EXPECT_FALSE(gameFolderFromExecutable(""));
    EXPECT_EQ(gameExecutableText("/g/"), "/g/GP2.EXE");
    EXPECT_EQ(gameExecutableText(""), "");
}

TEST(GameLocation, LaunchLineQuotesTheExecutableOrFillsTheCommand) {
    EXPECT_EQ(gameLaunchCommandLine("", "/g/GP2.EXE"), "\"/g/GP2.EXE\"");
    EXPECT_EQ(gameLaunchCommandLine("dosbox \"%s\" -c \"%s\"", "/g/GP2.EXE"), "dosbox \"/g/GP2.EXE\" -c \"/g/GP2.EXE\"");
    EXPECT_EQ(gameLaunchCommandLine("run 100%", "/x"), "run 100%");
}

}  // namespace
}  // namespace tarvel::test
