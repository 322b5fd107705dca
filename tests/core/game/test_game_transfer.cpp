#include "GameTestSupport.h"
#include "common/Messages.h"
#include "game/GameTransfer.h"
#include "game/StateFile.h"

#include <gtest/gtest.h>

#include <tuple>

namespace tarvel {
namespace {
namespace fs = std::filesystem;
using namespace test;
using test::fixture::at;

class GameTransfer : public ::testing::Test {
protected:
    void makeGame(GameFixtureOptions options = {}) {
        options.otherFiles = false;
        context.gameFolder = makeTestGame(folder.path(), options);
        context.version = options.release;
        context.workingFolder = folder.path() / "work";
        fs::create_directories(context.workingFolder);
    }
    void select(std::initializer_list<int> items) {
        selection.fill(0);
        for (int item : items) selection[std::size_t(item)] = 1;
    }
    fs::path exe() const { return folder.path() / "GP2.EXE"; }
    fs::path state() const { return folder.path() / "F1GSTATE.SAV"; }

    TempFolder folder{"transfer"};
    GameContext context;
    CarSet set;
    TransferSelection selection{};
    bool changed = false;
    RecordingProgress progress;
};

// Names, numbers and cockpit colours come from the state file when it is valid,
// from the executable when it is missing or its trailer is wrong; performance,
// pit crew colours and the car number layout (the import copy taken over)
// always come from the executable.
TEST_F(GameTransfer, ImportTakesNamesFromAValidStateFileOnly) {
    const std::tuple<bool, bool, std::string, std::string, int> rows[] = {
        {true, true, "Save Team 00", "Save Driver 01", fixtureCockpitColour(7, true)},
        {true, false, "\xC9quipe Rouge", "Fran\xE7ois Le Pilote 1234", fixtureCockpitColour(7, false)},
        {false, true, "\xC9quipe Rouge", "Fran\xE7ois Le Pilote 1234", fixtureCockpitColour(7, false)}};
    for (const auto& [present, valid, team, driver, cockpit] : rows) {
        GameFixtureOptions options;
        options.stateFile = present;
        options.validStateTrailer = valid;
        makeGame(options);
        select({0, 44, 47});
        RecordingProgress recorded;
        ASSERT_TRUE(ImportFromGame(set, selection, context, recorded, changed));
        EXPECT_EQ(std::tuple(fieldText(set.teams[0].name), fieldText(set.drivers[1].name), int(set.teams[2].teamBytesA[1])),
                  std::tuple(team, driver, cockpit));
        EXPECT_EQ((std::array<int, 3>{set.teams[4].powerRace, set.teams[2].teamBytesB[3], set.carNumbers.partA[10]}),
                  (std::array<int, 3>{fixtureRacePowerRaw(4) - 32817, fixturePitCrewColour(35), fixtureLayoutByte(10)}));
        EXPECT_TRUE(changed);
        EXPECT_EQ(recorded.categories, (std::vector<std::string>{"Team Data", "Cockpit Colours", "Pit Crew Colours"}));
        EXPECT_EQ(recorded.files.at(0), "GP2.EXE");
    }
}

// A failed import keeps the set's own car number layout.
TEST_F(GameTransfer, FailedImportKeepsTheFirstLayoutCopy) {
    makeGame();
    pokeFile(state(), fixture::kStateNumbers, std::array<std::uint8_t, 3>{0, 0, 0});
    WriteStateFileChecksum(state());
    select({0});
    CarNumberLayout before = set.carNumbers;
    auto result = ImportFromGame(set, selection, context, progress, changed);
    EXPECT_EQ(result.error().id, MessageId::BadDriverNumbers);
    EXPECT_EQ(set.carNumbers, before);
}

// Both files pinned whole after an export: with a valid state file, names and
// colours go into both and the trailer is renewed (read-only files are made
// writable); a state file with a wrong trailer is left alone.
TEST_F(GameTransfer, ExportWritesTheStateFileOnlyWhenItIsValid) {
    const std::tuple<bool, std::string, std::string> rows[] = {
        {true, "5702937:097b424fd36af7ff", "16004:e9bcd5133bcf2866"}, {false, "5702937:097b424fd36af7ff", "16004:5d4764b22763d367"}};
    for (const auto& [valid, exeDigest, stateDigest] : rows) {
        GameFixtureOptions options;
        options.validStateTrailer = valid;
        makeGame(options);
        const Bytes stateBefore = readFileBytes(state());
        for (const fs::path& file : {exe(), state()})
            fs::permissions(file, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write, fs::perm_options::remove);
        select({0, 44});
        setFieldText(set.teams[3].name, "Both Files");
        setFieldText(set.drivers[std::size_t(set.teams[3].driver[0])].name, "Named Twice");
        set.teams[3].teamBytesA = {9, 8, 7};
        ASSERT_TRUE(ExportToGame(set, selection, context, progress));
        EXPECT_EQ(digest(readFileBytes(exe())), exeDigest);
        EXPECT_EQ(digest(readFileBytes(state())), stateDigest);
        EXPECT_EQ(CheckStateFile(folder.path()), valid);
        if (!valid) {
            EXPECT_EQ(readFileBytes(state()), stateBefore);
        }
    }
}

// What is exported comes back for every release, with upper- or lower-case names.
TEST_F(GameTransfer, ExportThenImportRoundTripForEveryRelease) {
    for (int release = 0; release < 7; ++release) {
        GameFixtureOptions options;
        options.release = release;
        options.lowerCase = release % 2 == 1;
        makeGame(options);
        CarSet source;
        for (int team = 0; team < 14; ++team) {
            setFieldText(source.teams[std::size_t(team)].name, "\xC4quipe " + std::to_string(team));
            source.teams[std::size_t(team)].powerQual = std::uint16_t(700 + team);
            source.teams[std::size_t(team)].teamBytesB[3] = std::uint16_t(30 + team);
        }
        setFieldText(source.drivers[std::size_t(source.teams[0].driver[1])].name, "\xD1o\xF1o Mu\xF1oz Hern\xE1ndez Jr");
        source.drivers[std::size_t(source.teams[0].driver[1])].gripQual = 23456;
        select({0, 44, 47});
        ASSERT_TRUE(ExportToGame(source, selection, context, progress)) << "release " << release;

        CarSet back;
        ASSERT_TRUE(ImportFromGame(back, selection, context, progress, changed)) << "release " << release;
        for (int team = 0; team < 14; ++team) {
            const TeamRecord *a = &back.teams[std::size_t(team)], *b = &source.teams[std::size_t(team)];
            EXPECT_EQ(std::tuple(fieldText(a->name), a->powerQual, a->teamOrder, a->teamBytesA, a->teamBytesB[3]),
                      std::tuple(fieldText(b->name), b->powerQual, b->teamOrder, b->teamBytesA, b->teamBytesB[3])) << team;
        }
        const DriverRecord& driver = back.drivers[std::size_t(back.teams[0].driver[1])];
        EXPECT_EQ(fieldText(driver.name), "\xD1o\xF1o Mu\xF1oz Hern\xE1ndez Jr");
        EXPECT_EQ(driver.gripQual, 23456);
        EXPECT_EQ(back.carNumbers, source.carNumbers);
    }
}

// An abort during the first item stops before the next; what was read stays.
TEST_F(GameTransfer, AbortDuringTheFirstItemStopsBeforeTheNext) {
    makeGame();
    select({0, 44});
    progress.abortAfter = "Team Data";
    auto before = set.teams[1].teamBytesA;
    EXPECT_EQ(messageText(ImportFromGame(set, selection, context, progress, changed).error()), "Import from Game Aborted.");
    EXPECT_EQ(progress.categories, std::vector<std::string>{"Team Data"});
    EXPECT_EQ(set.teams[1].teamBytesA, before);
    EXPECT_EQ(fieldText(set.teams[0].name), "Save Team 00") << "what was read stays";

    Bytes exeBefore = readFileBytes(exe());
    RecordingProgress exportProgress;
    exportProgress.abortAfter = "Team Data";
    set.teams[1].teamBytesA = {3, 3, 3};
    EXPECT_EQ(messageText(ExportToGame(set, selection, context, exportProgress).error()), "Export to Game Aborted.");
    EXPECT_EQ(exportProgress.categories, std::vector<std::string>{"Team Data"});
    EXPECT_EQ(readFileBytes(exe())[at(fixture::kCockpit, 0) + 3], exeBefore[at(fixture::kCockpit, 0) + 3]);
}

// A failing item carries its own message and no item runs after it; an abort
// during a failing item reports the abort, with the failure as a notice.
TEST_F(GameTransfer, FailuresCarryTheItemsMessage) {
    makeGame();
    fs::resize_file(exe(), 1950000);
    select({44});
    EXPECT_EQ(messageText(ImportFromGame(set, selection, context, progress, changed).error()), "Couldn't Read Data from GP2.EXE.");
    EXPECT_EQ(messageText(ExportToGame(set, selection, context, progress).error()), "GP2.EXE was not Patched Correctly.");
    select({0, 44, 47});
    RecordingProgress second;
    EXPECT_FALSE(ExportToGame(set, selection, context, second));
    EXPECT_EQ(second.categories, std::vector<std::string>{"Team Data"});
    RecordingProgress aborting;
    aborting.abortAfter = "Team Data";
    std::vector<Message> notices;
    EXPECT_EQ(ExportToGame(set, selection, context, aborting, &notices).error().id, MessageId::ExportAborted);
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_EQ(messageText(notices.front()), "GP2.EXE was not Patched Correctly.");
    RecordingProgress importAborting;
    importAborting.abortAfter = "Team Data";
    EXPECT_EQ(ImportFromGame(set, selection, context, importAborting, changed).error().id, MessageId::ImportAborted);
}

// An empty selection does nothing; a missing game file is refused before any
// item runs or any file is written; an unknown release is refused.
TEST_F(GameTransfer, EmptySelectionMissingFileAndUnknownRelease) {
    makeGame();
    select({});
    const Bytes exeBefore = readFileBytes(exe()), stateBefore = readFileBytes(state());
    ASSERT_TRUE(ImportFromGame(set, selection, context, progress, changed));
    ASSERT_TRUE(ExportToGame(set, selection, context, progress));
    EXPECT_EQ(set.teams[0].powerRace, CarSet().teams[0].powerRace);
    EXPECT_EQ(readFileBytes(exe()), exeBefore);
    select({0});
    context.version = -1;
    EXPECT_EQ(messageText(ImportFromGame(set, selection, context, progress, changed).error()), "Unsupported Version.");
    EXPECT_EQ(ExportToGame(set, selection, context, progress).error().id, MessageId::UnsupportedVersion);
    context.version = 0;
    fs::remove(exe());
    EXPECT_EQ(messageText(ExportToGame(set, selection, context, progress).error()), "File Not Found - GP2.EXE.");
    EXPECT_EQ(ImportFromGame(set, selection, context, progress, changed).error().id, MessageId::FileNotFound);
    EXPECT_TRUE(progress.categories.empty());
    EXPECT_EQ(readFileBytes(state()), stateBefore);
}

// Labels and game files of the item table, and which items can be transferred.
TEST(TransferItems, TableAndSelection) {
    const std::tuple<int, std::string_view, std::string_view, std::string_view> rows[] = {
        {0, "Team Data", "GP2.EXE", ""}, {1, "", "GAMEJAMS\\WILLIAMS.JAM", ""}, {14, "Car JAMs", "", ""},
        {15, "", "", "HELMETS1.JAM"}, {30, "", "", "F1PCSVGA.BIN"}, {45, "", "", "CPITHI.PCX"},
        {46, "", "BITMAPS\\CPITLOW.PCX", ""}, {100, "", "SOUND\\SAMPLE.CAT", ""}, {157, "Laps Data", "", ""},
        {158, "JAM Files", "", ""}, {356, "JAM Files", "", ""}};
    for (const auto& [item, label, gameFile, displayName] : rows) {
        const auto& info = transferItemInfo(item);
        if (!label.empty()) {
            EXPECT_EQ(info.label, label) << item;
        }
        if (!gameFile.empty()) {
            EXPECT_EQ(info.gameFile, gameFile) << item;
        }
        if (!displayName.empty()) {
            EXPECT_EQ(info.displayName, displayName) << item;
        }
    }
    for (int item : {0, 1, 14, 15, 16, 43, 44, 47, 48, 51, 52, 54, 155, 156, 157, 158, 356}) EXPECT_TRUE(transferItemAvailable(item)) << item;
    for (int item : {45, 46, 53, 55, 154, -1, 357}) EXPECT_FALSE(transferItemAvailable(item)) << item;
    TransferSelection all;
    selectAvailableTransferItems(all);
    for (int item = 0; item < kTransferItemCount; ++item)
        EXPECT_EQ(all[std::size_t(item)] != 0, transferItemAvailable(item)) << item;
}

TEST(TransferItems, ParseList) {
    auto list = parseTransferItemList("0,44,47");
    ASSERT_TRUE(list);
    EXPECT_EQ((std::array<int, 4>{(*list)[0], (*list)[44], (*list)[47], (*list)[1]}), (std::array<int, 4>{1, 1, 1, 0}));
    auto refused = parseTransferItemList("0,40-60");
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().id, MessageId::ItemNotAvailable);
    EXPECT_EQ(refused.error().arg, "45") << "the first item of the range that cannot be transferred";
    for (std::string_view bad : {"", "x", "5-3", "357", "0,,44", "-1", "44-", "0 ,44"}) {
        auto r = parseTransferItemList(bad);
        ASSERT_FALSE(r) << bad;
        EXPECT_EQ(r.error().id, MessageId::InvalidField) << bad;
    }
}

}  // namespace
}  // namespace tarvel

namespace tarvel {
namespace {

TEST(TransferWords, SayWhatChangesAndWhatWasDone) {
    auto changes = [](int changed, int unchanged) {
        std::vector<FileChange> list;
        for (int i = 0; i < changed + unchanged; ++i) list.push_back({"F" + std::to_string(i), i < changed ? 10u : 0u});
        return list;
    };
    const struct {
        std::vector<FileChange> changes;
        const char* text;
    } cases[] = {
        {changes(0, 3), "No file of the game will change."},
        {changes(1, 2), "1 of the game's files will change: F0. A backup of them is kept first."},
        {changes(3, 1), "3 of the game's files will change: F0, F1 and F2. A backup of them is kept first."},
        {changes(8, 0), "8 of the game's files will change: F0, F1, F2, F3, F4 and 3 more. A backup of them is kept first."},
    };
    for (const auto& c : cases) EXPECT_EQ(describeExportChanges(c.changes), c.text);
    const TransferReport one{1, {"GP2.EXE"}, ""};
    const TransferReport many{221, {"GP2.EXE", "F1GSTATE.SAV"}, "20261124-001500"};
    EXPECT_EQ(describeImport(one, "/g/"), "Imported 1 item from /g/: 1 file read.");
    EXPECT_EQ(describeExport(one, "/g/"), "Exported 1 item to /g/: 1 file written.");
    EXPECT_EQ(describeExport(many, "/g/"), "Exported 221 items to /g/: 2 files written; backup 20261124-001500 kept.");
}

}  // namespace
}  // namespace tarvel
