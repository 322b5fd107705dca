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
            std::vector<int> got{t.powerRace, t.powerQual, t.failureProbability, t.teamOrder, t.highNose};
            std::vector<int> want{fixtureRacePowerRaw(team) - 32817, fixtureQualPowerRaw(team) - 32817, fixtureFailureRaw(team),
                                  fixturePitBox(team) - 1, fixtureHighNose(team)};
            for (int seat = 0; seat < 2; ++seat) {
                const int n = fixtureDriverNumber(team, seat);
                const DriverRecord& d = set.drivers[std::size_t(n)];
                got.insert(got.end(), {t.driver[std::size_t(seat)], t.disabled[std::size_t(seat)], d.gripQual, d.gripRace, d.gripRandom, d.inUse});
                want.insert(want.end(), {n, 0, fixtureGripQualRaw(n), fixtureGripRaceRaw(n), fixtureGripRangeRaw(n), 1});
            }
            EXPECT_EQ(got, want) << "release " << r << " team " << team;
        }
        // The fixture flags team 0's second seat (number + 128) and no other.
        EXPECT_EQ((std::array<int, 3>{set.teams[0].flagS[0], set.teams[0].flagS[1], set.teams[1].flagS[0]}), (std::array<int, 3>{0, 1, 0}));
        for (int k = 0; k < 152; ++k)
            EXPECT_EQ(k < 128 ? set.carNumbersImport.partA[std::size_t(k)] : set.carNumbersImport.partB[std::size_t(k - 128)], fixtureLayoutByte(k));
        EXPECT_NE(set.carNumbers, set.carNumbersImport) << "the import fills the second copy only";
    }
}

// Names come from the game's code page; a field without terminator loses its last byte.
TEST_F(ExecutableTables, ImportConvertsNamesFromTheGameCodePage) {
    makeGame();
    CarSet set;
    ASSERT_TRUE(importTables(set));
    EXPECT_EQ((std::vector<std::string>{fieldText(set.teams[0].name), fieldText(set.teams[0].engine), fieldText(set.drivers[1].name),
                                        fieldText(set.teams[5].name), fieldText(set.drivers[14].name)}),
              (std::vector<std::string>{"\xC9quipe Rouge", "Moteur V10 \xE9", "Fran\xE7ois Le Pilote 1234", "Team 05", "Driver 14"}));
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

// Seat 3's number in an otherwise good table: exactly 128 is not reduced and
// exceeds 40, a flagged 40 is fine, 41 is not, a flagged repeat of team 0's
// first number is not, and one empty seat is fine.
TEST(DriverNumbers, TableIsCheckedWithTheFlagBitTakenOffAbove128) {
    std::array<std::uint8_t, 28> good{};
    for (int k = 0; k < 28; ++k) good[std::size_t(k)] = std::uint8_t(k + 1);
    const std::pair<std::uint8_t, bool> cases[] = {{128, false}, {128 + 40, true}, {41, false}, {1 + 128, false}, {0, true}};
    for (auto [value, valid] : cases) {
        auto raw = good;
        raw[3] = value;
        EXPECT_EQ(driverNumbersValid(raw), valid) << int(value);
    }
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
    EXPECT_EQ((std::array<int, 5>{set.teams[7].driver[1], set.teams[3].driver[0], set.teams[7].disabled[1], set.teams[3].disabled[0],
                                  set.teams[3].disabled[1]}),
              (std::array<int, 5>{31, 30, 1, 1, 0}));
    const DriverRecord& filler = set.drivers[30];
    EXPECT_EQ(fieldText(filler.name), "Drivers Name");
    EXPECT_EQ((std::array<int, 4>{filler.gripRace, filler.gripQual, filler.gripRandom, filler.inUse}), (std::array<int, 4>{30751, 30751, 500, 1}));
    poke(numbersAt() + 20, {0});
    EXPECT_EQ(importTables(set).error().id, MessageId::BadDriverNumbers);
}

TEST_F(ExecutableTables, PitBoxChecks) {
    makeGame();
    const std::uint32_t pit = at(fixture::kPitBox, 0);
    for (std::uint8_t bad : {std::uint8_t(0), std::uint8_t(15), std::uint8_t(13)}) {   // 13 is team 1's box already
        poke(pit, {bad});
        CarSet set;
        EXPECT_EQ(importTables(set).error().id, MessageId::BadPitBoxNumbers) << int(bad);
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

// A short executable is neither read nor grown by a write; a missing one is not read.
TEST_F(ExecutableTables, TruncatedOrMissingExecutableFails) {
    makeGame();
    fs::resize_file(exe, 1931300);
    CarSet set;
    EXPECT_EQ(importTables(set).error().id, MessageId::CouldntReadGp2Exe);
    EXPECT_EQ(exportTables(set).error().id, MessageId::Gp2ExeNotPatched);
    EXPECT_EQ(fs::file_size(exe), 1931300u);
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

// The exported executable pinned whole: numbers with the flag bit and 0 for a
// disabled seat, an empty number map, high nose pairs normalised to 1, pit
// boxes with the spare slots 15-20, power, failure, grips (qualifying first),
// the grip range, the car number layout, and names in the game's code page
// with "Not Used" and "SpareNN" for unseated numbers.
TEST_F(ExecutableTables, ExportWritesTheTablesInTheGameEncoding) {
    makeGame(1);
    CarSet set = editedSet();
    set.teams[5].disabled[1] = 1;
    ASSERT_TRUE(exportTables(set));
    EXPECT_EQ(digest(readFileBytes(exe)), "5702937:5c54a3d27c928d4f");
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

// Cockpit and pit crew colours: 0 becomes 1 and values above 218 become 218 on
// import; the export writes them raw or, with the green fix, moved and capped at 216.
TEST_F(ExecutableTables, ColourTables) {
    makeGame(2);
    poke(at(fixture::kCockpit, 2) + 4, {0});
    poke(fixture::pitCrewAt(2) + 17, {0, 219, 218, 255});
    CarSet set;
    ASSERT_TRUE(ImportCockpitColours(set, folder.path(), {2, false}));
    ASSERT_TRUE(ImportPitCrewColours(set, folder.path(), {2, false}));
    EXPECT_EQ((std::array<int, 3>{set.teams[0].teamBytesA[0], set.teams[1].teamBytesA[1], set.teams[13].teamBytesA[2]}),
              (std::array<int, 3>{fixtureCockpitColour(0, false), 1, fixtureCockpitColour(41, false)}));
    EXPECT_EQ(set.teams[0].teamBytesB[5], fixturePitCrewColour(5));
    EXPECT_EQ((std::array<int, 4>{set.teams[1].teamBytesB[1], set.teams[1].teamBytesB[2], set.teams[1].teamBytesB[3], set.teams[1].teamBytesB[4]}),
              (std::array<int, 4>{1, 218, 218, 218}));

    set.teams[0].teamBytesA = {104, 123, 110};
    set.teams[1].teamBytesA = {194, 213, 193};
    set.teams[2].teamBytesB[0] = 214;
    set.teams[2].teamBytesB[15] = 200;
    const std::uint32_t c = at(fixture::kCockpit, 2), p = fixture::pitCrewAt(2);
    for (bool fix : {false, true}) {
        ASSERT_TRUE(ExportCockpitColours(set, folder.path(), {2, false}, fix));
        ASSERT_TRUE(ExportPitCrewColours(set, folder.path(), {2, false}, fix));
        const Bytes data = readFileBytes(exe);
        EXPECT_EQ(Bytes(data.begin() + c, data.begin() + c + 6), fix ? (Bytes{216, 216, 216, 214, 216, 193}) : (Bytes{104, 123, 110, 194, 213, 193}));
        EXPECT_EQ((Bytes{data[p + 32], data[p + 47]}), fix ? (Bytes{214, 216}) : (Bytes{214, 200}));
    }
}

TEST(PaletteFix, MovesGreensUpThePalette) {
    std::array<std::uint8_t, 8> bytes{103, 104, 110, 123, 124, 193, 194, 213};
    applyPaletteFix(bytes);
    EXPECT_EQ(bytes, (std::array<std::uint8_t, 8>{103, 217, 222, 233, 124, 193, 214, 233}));
}

}  // namespace
}  // namespace tarvel
