#include "GameTestSupport.h"
#include "common/Messages.h"
#include "game/StateFile.h"

#include <gtest/gtest.h>


namespace tarvel {
namespace {
namespace fs = std::filesystem;
using namespace test;

TEST(StateFileTrailer, SumAndRotatingValue) {
    struct Case {
        Bytes payload;
        StateFileTrailer trailer;
    };
    const Case cases[] = {
        {{}, {0, 0}},
        {{1, 2, 3}, {6, 83}},               // 1; (1 << 3) + 2 = 10; (10 << 3) + 3 = 83
        {{4, 0, 0, 0, 0}, {4, 16384}},      // 4, 32, 256, 2048, 16384
        {{4, 0, 0, 0, 0, 0}, {4, 2}},       // the top three bits rotate round
    };
    for (const Case& c : cases) EXPECT_EQ(computeStateFileTrailer(c.payload), c.trailer) << c.payload.size();
    // A long payload: both values wrap at 16 bits, as the fixture computes them.
    Bytes data = makeStateFile(true);
    EXPECT_EQ(computeStateFileTrailer(std::span(data).first(data.size() - 4)),
              (StateFileTrailer{u16At(data, data.size() - 4), u16At(data, data.size() - 2)}));
}

class StateFile : public ::testing::Test {
protected:
    void write(const Bytes& data) { writeFileBytes(path, data); }
    TempFolder folder{"state"};
    fs::path path = folder.path() / "F1GSTATE.SAV";
};

TEST_F(StateFile, PresentAbsentWrongTrailerReadOnly) {
    EXPECT_EQ(stateFileState(folder.path()), StateFileState::Absent);
    EXPECT_FALSE(CheckStateFile(folder.path()));
    write(makeStateFile(true));
    EXPECT_EQ(stateFileState(folder.path()), StateFileState::Valid);
    write(makeStateFile(false));
    EXPECT_EQ(stateFileState(folder.path()), StateFileState::Invalid);
    write(Bytes{0, 0, 0, 0});
    EXPECT_TRUE(CheckStateFile(folder.path())) << "an empty payload with a zero trailer is valid";
    write(Bytes{0, 0, 0});
    EXPECT_EQ(stateFileState(folder.path()), StateFileState::Invalid);

    write(makeStateFile(true));
    fs::permissions(path, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write, fs::perm_options::remove);
    EXPECT_TRUE(CheckStateFile(folder.path()));
    EXPECT_NE(fs::status(path).permissions() & fs::perms::owner_write, fs::perms::none) << "made writable by the test";
    fs::remove(path);
    writeFileBytes(folder.path() / "f1gstate.sav", Bytes(4, 0));
    EXPECT_TRUE(CheckStateFile(folder.path())) << "lower-case name";
    // Writing the checksum repairs a wrong trailer without changing the length.
    write(makeStateFile(false));
    ASSERT_TRUE(WriteStateFileChecksum(path));
    EXPECT_EQ(readFileBytes(path), makeStateFile(true));
    EXPECT_FALSE(WriteStateFileChecksum(folder.path() / "missing.sav"));
}

TEST_F(StateFile, ReadNamesAndNumbers) {
    Bytes data = makeStateFile(true);
    data[fixture::kStateNumbers + 5] = std::uint8_t(data[fixture::kStateNumbers + 5] + 128);
    write(data);
    CarSet set;
    setFieldText(set.drivers[30].name, "untouched");
    ASSERT_TRUE(ReadStateFileNames(set, folder.path()));
    EXPECT_EQ(fieldText(set.teams[3].name), "Save Team 03");
    EXPECT_EQ(fieldText(set.teams[13].engine), "Save Eng 13");
    EXPECT_EQ(set.teams[2].driver[1], fixtureDriverNumber(2, 1));
    EXPECT_EQ(set.teams[2].flagS[1], 1);
    EXPECT_EQ(set.teams[2].flagS[0], 0);
    EXPECT_EQ(fieldText(set.drivers[std::size_t(fixtureDriverNumber(6, 0))].name),
              "Save Driver " + std::to_string(fixtureDriverNumber(6, 0)));
    EXPECT_EQ(fieldText(set.drivers[30].name), "untouched") << "only the seated drivers are named";
}

TEST_F(StateFile, ReadRefusesBadNumbersAndShortFiles) {
    Bytes data = makeStateFile(true);
    data[fixture::kStateNumbers + 2] = 128;
    write(data);
    CarSet set;
    EXPECT_EQ(ReadStateFileNames(set, folder.path()).error().id, MessageId::BadDriverNumbers);
    data = makeStateFile(true);
    data.resize(15000);
    write(data);
    EXPECT_EQ(ReadStateFileNames(set, folder.path()).error().id, MessageId::CouldntReadStateFile);
    fs::remove(path);
    EXPECT_EQ(ReadStateFileNames(set, folder.path()).error().id, MessageId::CouldntReadStateFile);
}

// The written file pinned whole: names in the game's code page, numbers with
// the flag bit and 0 for a disabled seat (whose driver is still named), the
// number map, "Not Used" and "SpareNN" placeholders, a new trailer, and every
// other byte kept.
TEST_F(StateFile, WriteNamesNumbersMapAndTrailer) {
    Bytes before = makeStateFile(true);
    write(before);
    fs::permissions(path, fs::perms::owner_write, fs::perm_options::remove);
    CarSet set;
    for (int team = 0; team < 14; ++team) {
        setFieldText(set.teams[std::size_t(team)].name, "T\xE9" + std::to_string(team));
        setFieldText(set.teams[std::size_t(team)].engine, "E" + std::to_string(team));
        set.teams[std::size_t(team)].driver = {std::int16_t(team + 1 >= 13 ? team + 2 : team + 1), std::int16_t(team + 20)};
        set.teams[std::size_t(team)].disabled = {0, 0};
        set.teams[std::size_t(team)].flagS = {0, 0};
    }
    set.teams[4].disabled[0] = 1;
    set.teams[6].flagS[1] = 1;
    for (int n = 1; n <= 40; ++n) setFieldText(set.drivers[std::size_t(n)].name, "Racer " + std::to_string(n));
    ASSERT_TRUE(WriteStateFileNames(set, folder.path()));
    EXPECT_TRUE(CheckStateFile(folder.path()));
    EXPECT_EQ(digest(readFileBytes(path)), "16004:7cb5bdd031d8ff9f");
}

TEST_F(StateFile, WriteRefusesAShortFile) {
    Bytes data = makeStateFile(true);
    data.resize(15700);
    write(data);
    CarSet set;
    EXPECT_EQ(WriteStateFileNames(set, folder.path()).error().id, MessageId::StateFileNotPatched);
    EXPECT_EQ(readFileBytes(path), data);
}

}  // namespace
}  // namespace tarvel
