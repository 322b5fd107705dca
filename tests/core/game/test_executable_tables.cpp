#include "GameTestSupport.h"
#include "common/Messages.h"
#include "game/GameExecutable.h"
#include "game/GameNames.h"
#include "game/StateFile.h"

#include <gtest/gtest.h>

namespace tarvel {
namespace {
namespace fs = std::filesystem;
using namespace test;
using test::fixture::at;

class ExecutableTables : public ::testing::Test {
protected:
    void makeGame(int release = 0) {
        this->release = release;
        GameFixtureOptions options;
        options.release = release;
        options.stateFile = false;
        options.otherFiles = false;
        makeTestGame(folder.path(), options);
        exe = folder.path() / "GP2.EXE";
    }
    Status importTables(CarSet& set, bool useStateFile = false) {
        return TransferExecutableTables(set, folder.path(), {release, useStateFile});
    }
    Status exportTables(const CarSet& set) {
        return TransferExecutableTables(set, folder.path(), ExecutableTransferOptions{release, false});
    }
    void poke(std::uint32_t offset, std::initializer_list<std::uint8_t> bytes) {
        pokeFile(exe, offset, std::span<const std::uint8_t>(bytes.begin(), bytes.size()));
    }
    void pokeU16(std::uint32_t offset, std::uint16_t value) { poke(offset, {std::uint8_t(value), std::uint8_t(value >> 8)}); }
    std::uint32_t numbersAt() const { return at(fixture::kNumbers, release); }

    TempFolder folder{"exe"};
    fs::path exe;
    int release = 0;
};

TEST_F(ExecutableTables, ImportReadsEveryTableOfEveryRelease) {
    for (int r = 0; r < 7; ++r) {
        makeGame(r);
        CarSet set;
        ASSERT_TRUE(importTables(set)) << "release " << r;
        for (int team = 0; team < 14; ++team) {
            const TeamRecord& t = set.teams[std::size_t(team)];
            EXPECT_EQ(t.powerRace, fixtureRacePowerRaw(team) - 32817);
            EXPECT_EQ(t.powerQual, fixtureQualPowerRaw(team) - 32817);
            EXPECT_EQ(t.failureProbability, fixtureFailureRaw(team));
            EXPECT_EQ(t.teamOrder, fixturePitBox(team) - 1);
            EXPECT_EQ(t.highNose, fixtureHighNose(team));
            for (int seat = 0; seat < 2; ++seat) {
                int n = fixtureDriverNumber(team, seat);
                EXPECT_EQ(t.driver[std::size_t(seat)], n);
                EXPECT_EQ(t.disabled[std::size_t(seat)], 0);
                const DriverRecord& d = set.drivers[std::size_t(n)];
                EXPECT_EQ(d.gripQual, fixtureGripQualRaw(n));
                EXPECT_EQ(d.gripRace, fixtureGripRaceRaw(n));
                EXPECT_EQ(d.gripRandom, fixtureGripRangeRaw(n));
                EXPECT_EQ(d.inUse, 1);
            }
        }
        EXPECT_EQ(set.teams[0].flagS[1], 1);
        EXPECT_EQ(set.teams[0].flagS[0], 0);
        EXPECT_EQ(set.teams[1].flagS[0], 0);
        for (int k = 0; k < 128; ++k) EXPECT_EQ(set.carNumbersImport.partA[std::size_t(k)], fixtureLayoutByte(k));
        for (int k = 0; k < 24; ++k) EXPECT_EQ(set.carNumbersImport.partB[std::size_t(k)], fixtureLayoutByte(128 + k));
        EXPECT_NE(set.carNumbers, set.carNumbersImport) << "the import fills the second copy only";
    }
}

TEST_F(ExecutableTables, ImportConvertsNamesFromTheGameCodePage) {
    makeGame();
    CarSet set;
    ASSERT_TRUE(importTables(set));
    EXPECT_EQ(fieldText(set.teams[0].name), "\xC9quipe Rouge");
    EXPECT_EQ(fieldText(set.teams[0].engine), "Moteur V10 \xE9");
    EXPECT_EQ(fieldText(set.drivers[1].name), "Fran\xE7ois Le Pilote 1234");
    EXPECT_EQ(fieldText(set.teams[5].name), "Team 05");
    EXPECT_EQ(fieldText(set.drivers[14].name), "Driver 14");
    // A name field without terminator loses its last byte.
    poke(at(fixture::kNames, 0) + 960 + 13, {'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H', 'I', 'J', 'K', 'L', 'M'});
    ASSERT_TRUE(importTables(set));
    EXPECT_EQ(fieldText(set.teams[1].name), "ABCDEFGHIJKL");
}

TEST_F(ExecutableTables, ImportClampsPowerFailureAndGrips) {
    makeGame(3);
    const std::pair<std::uint32_t, std::uint16_t> pokes[] = {
        {at(fixture::kRacePower, 3), 0},                 // below the offset: power 0
        {at(fixture::kQualPower, 3), 40000},             // far above: 1579
        {at(fixture::kRacePower, 3) + 2, 32817 + 1579},
        {at(fixture::kQualPower, 3) + 2, 32817 + 1580},
        {at(fixture::kFailure, 3), 40000},
        {at(fixture::kFailure, 3) + 2, 32767},
        {at(fixture::kGripPair, 3), 100},                // number 1 qualifying grip
        {at(fixture::kGripPair, 3) + 2, 65535},          // number 1 race grip
        {at(fixture::kGripPair, 3) + 4, 15751},
        {at(fixture::kGripPair, 3) + 6, 32768},
        {at(fixture::kGripRange, 3), 50000},
    };
    for (auto [offset, value] : pokes) pokeU16(offset, value);
    CarSet set;
    ASSERT_TRUE(importTables(set));
    const TeamRecord &t0 = set.teams[0], &t1 = set.teams[1];
    EXPECT_EQ((std::array<int, 6>{t0.powerRace, t0.powerQual, t1.powerRace, t1.powerQual, t0.failureProbability, t1.failureProbability}),
              (std::array<int, 6>{0, 1579, 1579, 1579, 32767, 32767}));
    const DriverRecord &d1 = set.drivers[1], &d2 = set.drivers[2];
    EXPECT_EQ((std::array<int, 5>{d1.gripQual, d1.gripRace, d2.gripQual, d2.gripRace, d1.gripRandom}),
              (std::array<int, 5>{15751, 32767, 15751, 32767, 32767}));
}

TEST(DriverNumbers, TableIsCheckedWithTheFlagBitTakenOffAbove128) {
    std::array<std::uint8_t, 28> good{};
    for (int k = 0; k < 28; ++k) good[std::size_t(k)] = std::uint8_t(k + 1);
    struct Case {
        int seat;
        std::uint8_t value;
        bool valid;
    };
    const Case cases[] = {{3, 128, false},        // exactly 128 is not reduced and exceeds 40
                          {3, 128 + 40, true},    // flagged 40
                          {3, 41, false},
                          {3, 1 + 128, false},    // team 0's first number again
                          {3, 0, true}};          // one empty seat
    for (const Case& c : cases) {
        auto raw = good;
        raw[std::size_t(c.seat)] = c.value;
        EXPECT_EQ(driverNumbersValid(raw), c.valid) << c.seat << " " << int(c.value);
    }
    auto threeEmpty = good;
    threeEmpty[0] = threeEmpty[1] = threeEmpty[2] = 0;
    EXPECT_FALSE(driverNumbersValid(threeEmpty));
    threeEmpty[2] = 3;
    EXPECT_TRUE(driverNumbersValid(threeEmpty));
}

TEST_F(ExecutableTables, FlaggedNumbersImportAndBadOnesAreRefused) {
    makeGame();
    CarSet set;
    poke(numbersAt() + 3, {128 + 40});
    ASSERT_TRUE(importTables(set));
    EXPECT_EQ(set.teams[1].driver[1], 40);
    EXPECT_EQ(set.teams[1].flagS[1], 1);
    poke(numbersAt() + 3, {41});
    auto result = importTables(set);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().id, MessageId::BadDriverNumbers);
}

TEST_F(ExecutableTables, TwoEmptySeatsBecomeDisabledCarsThreeAreRefused) {
    makeGame();
    poke(numbersAt() + 27, {40});   // team 13, second seat: number 40 instead of 29
    poke(numbersAt() + 6, {0});     // team 3, first seat
    poke(numbersAt() + 15, {0});    // team 7, second seat
    CarSet set;
    set.teams[3].disabled[1] = 1;   // a seat disabled before the import holds a driver in the game
    ASSERT_TRUE(importTables(set));
    // Spare places 35..28 take 39..32 (40 is in use); then the empty seats 31 and 30.
    for (int spare = 0; spare < 8; ++spare) EXPECT_EQ(set.spareDriverNumber(spare), 32 + spare) << spare;
    EXPECT_EQ(set.teams[7].driver[1], 31);
    EXPECT_EQ(set.teams[3].driver[0], 30);
    EXPECT_EQ(set.teams[7].disabled[1], 1);
    EXPECT_EQ(set.teams[3].disabled[0], 1);
    EXPECT_EQ(set.teams[3].disabled[1], 0);
    const DriverRecord& filler = set.drivers[30];
    EXPECT_EQ(fieldText(filler.name), "Drivers Name");
    EXPECT_EQ(filler.gripRace, 30751);
    EXPECT_EQ(filler.gripQual, 30751);
    EXPECT_EQ(filler.gripRandom, 500);
    EXPECT_EQ(filler.inUse, 1);

    poke(numbersAt() + 20, {0});
    auto result = importTables(set);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().id, MessageId::BadDriverNumbers);
}

TEST_F(ExecutableTables, PitBoxChecks) {
    makeGame();
    const std::uint32_t pit = at(fixture::kPitBox, 0);
    for (std::uint8_t bad : {std::uint8_t(0), std::uint8_t(15), std::uint8_t(13)}) {   // 13 is team 1's box already
        poke(pit, {bad});
        CarSet set;
        auto result = importTables(set);
        ASSERT_FALSE(result) << int(bad);
        EXPECT_EQ(result.error().id, MessageId::BadPitBoxNumbers);
    }
}

TEST_F(ExecutableTables, StateFileModeLeavesNamesAndNumbersAlone) {
    makeGame();
    CarSet set;
    set.teams[0].driver = {33, 34};
    setFieldText(set.teams[0].name, "Kept");
    ASSERT_TRUE(importTables(set, true));
    EXPECT_EQ(fieldText(set.teams[0].name), "Kept");
    EXPECT_EQ(set.teams[0].driver[0], 33);
    EXPECT_EQ(set.drivers[33].gripQual, fixtureGripQualRaw(33)) << "grips still come from the executable";
}

TEST_F(ExecutableTables, TruncatedOrMissingExecutableFails) {
    makeGame();
    fs::resize_file(exe, 1931300);
    CarSet set;
    auto result = importTables(set);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().id, MessageId::CouldntReadGp2Exe);
    auto written = exportTables(set);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().id, MessageId::Gp2ExeNotPatched);
    EXPECT_EQ(fs::file_size(exe), 1931300u) << "a write never grows the file";
    fs::remove(exe);
    EXPECT_EQ(importTables(set).error().id, MessageId::CouldntReadGp2Exe);
}

CarSet editedSet() {
    CarSet set;
    for (int team = 0; team < 14; ++team) {
        TeamRecord& t = set.teams[std::size_t(team)];
        setFieldText(t.name, team == 2 ? "\xC4\xE9\xE8\xFC\xF1\xE7 Team!" : "Team X" + std::to_string(team));   // 12 characters
        setFieldText(t.engine, "Eng\xF6ne " + std::to_string(team));
        t.powerRace = std::uint16_t(team * 100 + 7);
        t.powerQual = std::uint16_t(1579 - team);
        t.failureProbability = std::uint16_t(team * 2000);
        t.highNose = team % 3 == 0 ? 5 : 0;
        t.teamOrder = std::int16_t((team + 3) % 14);
        t.driver = {std::int16_t(2 * team + 1 + (team >= 6 ? 1 : 0)), std::int16_t(2 * team + 2 + (team >= 6 ? 1 : 0))};
        t.flagS = {std::uint16_t(team == 4), std::uint16_t(team == 9)};
        t.disabled = {0, 0};
    }
    for (int n = 1; n <= 40; ++n) {
        DriverRecord& d = set.drivers[std::size_t(n)];
        setFieldText(d.name, n == 3 ? "Jos\xE9 Mar\xED" "a Gonz\xE1lez Pe\xF1" : "Pilot " + std::to_string(n));   // 23 characters
        d.gripRace = std::uint16_t(16000 + 100 * n);
        d.gripQual = std::uint16_t(17000 + 90 * n);
        d.gripRandom = std::uint16_t(n * 11);
    }
    for (std::size_t k = 0; k < 128; ++k) set.carNumbers.partA[k] = std::uint8_t(255 - k);
    for (std::size_t k = 0; k < 24; ++k) set.carNumbers.partB[k] = std::uint8_t(k + 9);
    return set;
}

TEST_F(ExecutableTables, ExportWritesTheTablesInTheGameEncoding) {
    makeGame(1);
    CarSet set = editedSet();
    set.teams[5].disabled[1] = 1;
    ASSERT_TRUE(exportTables(set));
    Bytes data = readFileBytes(exe);
    ASSERT_EQ(data.size(), kFixtureExeSize);
    const std::uint32_t names = at(fixture::kNames, 1), numbers = numbersAt(), pit = at(fixture::kPitBox, 1);
    // Offset and byte: numbers (a flagged seat, a disabled seat), the high nose
    // pairs (normalised to 1), pit boxes and the car number layout.
    const std::pair<std::uint32_t, int> bytes[] = {
        {numbers + 0, 1}, {numbers + 8, 9 + 128}, {numbers + 11, 0},
        {fixture::kHighNose + 0, 0}, {fixture::kHighNose + 53, 1}, {fixture::kHighNose + 4, 2}, {fixture::kHighNose + 4 + 53, 0},
        {pit + 0, 4}, {pit + 11, 1}, {fixture::kLayout, 255}, {fixture::kLayout + 128, 9}, {fixture::kLayout + 151, 32}};
    for (auto [offset, value] : bytes) EXPECT_EQ(data[offset], value) << offset;
    for (int n = 0; n < 40; ++n) EXPECT_EQ(data[at(fixture::kNumberMap, 1) + std::uint32_t(n)], 0);
    for (int slot = 14; slot < 20; ++slot) EXPECT_EQ(data[pit + std::uint32_t(slot)], slot + 1);
    // Words: power, failure, grips (qualifying first) and the grip range.
    const std::pair<std::uint32_t, int> words[] = {
        {at(fixture::kRacePower, 1) + 2, 32817 + 107}, {at(fixture::kQualPower, 1) + 2, 32817 + 1578},
        {at(fixture::kFailure, 1) + 4, 4000}, {at(fixture::kGripPair, 1) + 8, 17000 + 270},
        {at(fixture::kGripPair, 1) + 10, 16000 + 300}, {at(fixture::kGripRange, 1) + 8, 33}};
    for (auto [offset, value] : words) EXPECT_EQ(u16At(data, offset), value) << offset;
    // Names: placeholders, a disabled seat's driver, the game's code page.
    const std::tuple<std::uint32_t, std::size_t, std::string> texts[] = {
        {names + 24 * 12, 24, "Not Used"}, {names + 24 * 39, 24, "Spare40"}, {names + 24 * 29, 24, "Spare30"},
        {names + 24 * 11, 24, "Pilot 12"}, {names + 24 * 2, 24, "Jos\x82 Mar\xa1" "a Gonz\xa0lez Pe\xa4"},
        {names + 960 + 13 * 2, 13, "\x8e\x82\x8a\x81\xa4\x87 Team!"}};
    for (const auto& [offset, size, text] : texts) EXPECT_EQ(fieldAt(data, offset, size), text) << offset;
}

TEST_F(ExecutableTables, ExportThenImportGivesBackTheTeamDataForEveryRelease) {
    for (int r = 0; r < 7; ++r) {
        makeGame(r);
        CarSet set = editedSet();
        ASSERT_TRUE(exportTables(set));
        CarSet back;
        ASSERT_TRUE(importTables(back)) << "release " << r;
        // What the game keeps of a team and its drivers (the high nose as 0 or 1).
        const auto kept = [](const CarSet& s, int team) {
            const TeamRecord& t = s.teams[std::size_t(team)];
            std::vector<std::string> text{fieldText(t.name), fieldText(t.engine)};
            std::vector<int> values{t.powerRace, t.powerQual, t.failureProbability, t.highNose ? 1 : 0, t.teamOrder};
            for (int seat = 0; seat < 2; ++seat) {
                const DriverRecord& d = s.drivers[std::size_t(t.driver[std::size_t(seat)])];
                text.push_back(fieldText(d.name));
                values.insert(values.end(), {t.driver[std::size_t(seat)], t.flagS[std::size_t(seat)], d.gripRace, d.gripQual, d.gripRandom});
            }
            return std::pair{text, values};
        };
        for (int team = 0; team < 14; ++team) EXPECT_EQ(kept(back, team), kept(set, team)) << "release " << r << " team " << team;
        EXPECT_EQ(back.carNumbersImport, set.carNumbers);
    }
}

TEST_F(ExecutableTables, ColourTablesImport) {
    makeGame(2);
    poke(at(fixture::kCockpit, 2) + 4, {0});
    poke(fixture::pitCrewAt(2) + 17, {0, 219, 218, 255});
    CarSet set;
    ASSERT_TRUE(ImportCockpitColours(set, folder.path(), {2, false}));
    ASSERT_TRUE(ImportPitCrewColours(set, folder.path(), {2, false}));
    EXPECT_EQ(set.teams[0].teamBytesA[0], fixtureCockpitColour(0, false));
    EXPECT_EQ(set.teams[1].teamBytesA[1], 1) << "colour 0 becomes 1";
    EXPECT_EQ(set.teams[13].teamBytesA[2], fixtureCockpitColour(41, false));
    EXPECT_EQ(set.teams[0].teamBytesB[5], fixturePitCrewColour(5));
    EXPECT_EQ(set.teams[1].teamBytesB[1], 1);
    EXPECT_EQ(set.teams[1].teamBytesB[2], 218);
    EXPECT_EQ(set.teams[1].teamBytesB[3], 218);
    EXPECT_EQ(set.teams[1].teamBytesB[4], 218);
}

TEST_F(ExecutableTables, ColourTablesExportRawOrWithTheGreenFix) {
    makeGame(4);
    CarSet set;
    set.teams[0].teamBytesA = {104, 123, 110};
    set.teams[1].teamBytesA = {194, 213, 193};
    set.teams[2].teamBytesB[0] = 214;
    set.teams[2].teamBytesB[15] = 200;
    ASSERT_TRUE(ExportCockpitColours(set, folder.path(), {4, false}, false));
    ASSERT_TRUE(ExportPitCrewColours(set, folder.path(), {4, false}, false));
    Bytes raw = readFileBytes(exe);
    EXPECT_EQ(raw[at(fixture::kCockpit, 4) + 0], 104);
    EXPECT_EQ(raw[at(fixture::kCockpit, 4) + 4], 213);
    EXPECT_EQ(raw[fixture::pitCrewAt(4) + 47], 200);

    ASSERT_TRUE(ExportCockpitColours(set, folder.path(), {4, false}, true));
    ASSERT_TRUE(ExportPitCrewColours(set, folder.path(), {4, false}, true));
    Bytes fixed = readFileBytes(exe);
    const std::uint32_t c = at(fixture::kCockpit, 4);
    EXPECT_EQ(fixed[c + 0], 216);   // 217 capped
    EXPECT_EQ(fixed[c + 1], 216);   // 233 capped
    EXPECT_EQ(fixed[c + 2], 216);   // 222 capped
    EXPECT_EQ(fixed[c + 3], 214);
    EXPECT_EQ(fixed[c + 4], 216);
    EXPECT_EQ(fixed[c + 5], 193);
    EXPECT_EQ(fixed[fixture::pitCrewAt(4) + 32], 214);
    EXPECT_EQ(fixed[fixture::pitCrewAt(4) + 47], 216);
}

TEST(PaletteFix, MovesGreensUpThePalette) {
    std::array<std::uint8_t, 8> bytes{103, 104, 110, 123, 124, 193, 194, 213};
    applyPaletteFix(bytes);
    EXPECT_EQ(bytes, (std::array<std::uint8_t, 8>{103, 217, 222, 233, 124, 193, 214, 233}));
}

TEST(PowerEncoding, Limits) {
    EXPECT_EQ(encodePower(0), 32817);
    EXPECT_EQ(encodePower(1579), 34396);
    EXPECT_EQ(decodePower(32816), 0);
    EXPECT_EQ(decodePower(34396), 1579);
    EXPECT_EQ(decodePower(34397), 1579);
    EXPECT_EQ(decodePower(33000), 183);
}

}  // namespace
}  // namespace tarvel
