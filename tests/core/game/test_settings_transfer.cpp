#include "GameTestSupport.h"
#include "carset/SettingsDefaults.h"
#include "common/Messages.h"
#include "game/GameSettingsTransfer.h"
#include "game/GameTransfer.h"
#include "game/GlobalCarSettings.h"
#include "game/LapsAndPoints.h"
#include "game/OnboardCameras.h"
#include "game/StateFile.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

namespace tarvel {
namespace {
namespace fs = std::filesystem;
using namespace test;

// Where the settings sit in the game, written out here from the game's layout.
constexpr std::uint32_t kAids = 1224468, kRecordsA = 1029530, kRecordsB = 1078954, kFuelShown = 937730,
                        kFuelPrac = 673688, kFuelQual = 704464;
constexpr std::uint32_t kPowerRace = 678552, kPowerQual = 678559, kPitSpeed = 1280068, kNoLimit = 596851,
                        kWeight = 1282248, kCpuWeight = 1282252, kGrip = 1282272, kRandomPower = 678669,
                        kTeamPower = 678539;
constexpr std::uint32_t kCameraTable = 1274714;
constexpr std::uint32_t kLapsAt = 1951848, kPointsAt = 1954061, kDriverZeroAt = 1951847;
constexpr std::uint32_t kStateRaceLength = 647, kStateTurns = 6464, kStateCpuMode = 6468;

std::uint32_t shifted(std::uint32_t base, int release) { return base + std::uint32_t(fixture::kShift[std::size_t(release)]); }

class SettingsTransfer : public ::testing::Test {
protected:
    void makeGame(int release = 0, bool stateFile = true) {
        GameFixtureOptions options;
        options.release = release;
        options.stateFile = stateFile;
        options.otherFiles = false;
        fs::remove_all(folder.path());
        makeTestGame(folder.path(), options);
        access = GameAccess{folder.path(), release, stateFile, &progress};
    }
    fs::path exe() const { return folder.path() / "GP2.EXE"; }
    fs::path state() const { return folder.path() / "F1GSTATE.SAV"; }
    void poke(const fs::path& file, std::uint32_t offset, std::vector<std::uint8_t> bytes) { pokeFile(file, offset, bytes); }

    TempFolder folder{"settings"};
    GameAccess access;
    RecordingProgress progress;
};

// Raw bytes of the game and the word each reads as; each row on a fresh game.
TEST_F(SettingsTransfer, GameSettingsReadDecodesAndClamps) {
    struct Row {
        bool inState;
        std::uint32_t offset;
        std::vector<std::uint8_t> bytes;
        int word;
        int expected;
    };
    const Row rows[] = {
        {false, kAids + 3, {0x55}, 3, 0x55},
        {false, kFuelPrac, {0, 0}, 9, 1},
        {false, kFuelPrac, {51, 0}, 9, 50},
        {false, kFuelPrac, {20, 1}, 9, 50},   // read as 16 bits
        {false, kFuelQual, {49, 0}, 10, 50},
        {false, kFuelQual, {50, 0}, 10, 50},
        {false, kFuelQual, {0, 0}, 10, 1},
        {false, kRecordsA, {0x72, 0x38}, 6, 0},
        {false, kRecordsA, {0x90, 0x90}, 6, 1},
        {false, kRecordsA, {0x73, 0x38}, 6, 1},
        {false, kRecordsB, {0x72, 0x5C}, 6, 1},   // only the first site is read, and 0 there reads as on
        {false, kFuelShown, {0x74}, 7, 0},
        {false, kFuelShown, {0xEB}, 7, 1},
        {true, kStateRaceLength, {0}, 5, 1},
        {true, kStateRaceLength, {200}, 5, 100},
        {true, kStateTurns, {60}, 8, 50},
        {true, kStateTurns, {0}, 8, 0},
    };
    for (const Row& row : rows) {
        makeGame();
        poke(row.inState ? state() : exe(), row.offset, row.bytes);
        if (row.inState) {
            ASSERT_TRUE(WriteStateFileChecksum(state()));
        }
        std::array<std::uint16_t, 11> words{};
        ASSERT_TRUE(TransferGameSettings(words, TransferDirection::Import, access)) << row.offset;
        EXPECT_EQ(words[std::size_t(row.word)], row.expected) << "offset " << row.offset;
    }
}

// Each switch on and off writes its instruction bytes; nothing else moves.
TEST_F(SettingsTransfer, GameSettingsPatchSitesOnAndOff) {
    const std::tuple<int, int, std::vector<std::uint8_t>, std::vector<std::uint8_t>, std::uint8_t> rows[] = {
        {0, 0, {0x72, 0x38}, {0x72, 0x5C}, 0x74},
        {1, 0, {0x90, 0x90}, {0x90, 0x90}, 0x74},
        {0, 1, {0x72, 0x38}, {0x72, 0x5C}, 0xEB},
    };
    for (const auto& [records, fuelShown, siteA, siteB, siteFuel] : rows) {
        makeGame(3, false);
        std::array<std::uint16_t, 11> words{1, 2, 4, 8, 127, 55, std::uint16_t(records), std::uint16_t(fuelShown), 7, 30, 1};
        ASSERT_TRUE(TransferGameSettings(words, TransferDirection::Export, access));
        const Bytes file = readFileBytes(exe());
        EXPECT_EQ(std::vector<std::uint8_t>(file.begin() + kRecordsA, file.begin() + kRecordsA + 2), siteA);
        EXPECT_EQ(std::vector<std::uint8_t>(file.begin() + kRecordsB, file.begin() + kRecordsB + 2), siteB);
        EXPECT_EQ(file[kFuelShown], siteFuel);
        EXPECT_EQ(std::vector<std::uint8_t>(file.begin() + kAids, file.begin() + kAids + 5),
                  (std::vector<std::uint8_t>{1, 2, 4, 8, 127}));
        EXPECT_EQ(std::tuple(file[kFuelPrac], file[kFuelQual]), std::tuple(std::uint8_t(30), std::uint8_t(0)));
    }
}

// Lap counts go into the table and into each circuit's record: 32 bytes.
TEST_F(SettingsTransfer, LapsAreWrittenTwiceAndClampedOnRead) {
    for (int release : {0, 6}) {
        makeGame(release);
        const Bytes before = readFileBytes(exe());
        std::array<std::uint16_t, 16> laps{};
        for (int k = 0; k < 16; ++k) laps[std::size_t(k)] = std::uint16_t(100 + k);
        ASSERT_TRUE(TransferLaps(laps, TransferDirection::Export, access));
        const Bytes after = readFileBytes(exe());
        int changed = 0;
        for (std::size_t i = 0; i < after.size(); ++i) changed += after[i] != before[i];
        EXPECT_EQ(changed, 32) << release;
        const std::uint32_t table = shifted(kLapsAt, release);
        EXPECT_EQ(after[table + 15], 115);
        EXPECT_EQ(after[table + 1991 + 7 * 15], 115);

        poke(exe(), table, {2, 200});
        ASSERT_TRUE(TransferLaps(laps, TransferDirection::Import, access));
        EXPECT_EQ(std::tuple(laps[0], laps[1], laps[2]), std::tuple(3, 124, 102));
    }
}

TEST_F(SettingsTransfer, PointsClampOnRead) {
    makeGame(2);
    poke(exe(), shifted(kPointsAt, 2), {150, 99, 0});
    std::array<std::uint16_t, 26> points = pointsPreset(PointsPreset::All);
    ASSERT_TRUE(TransferPoints(points, TransferDirection::Import, access));
    EXPECT_EQ(std::tuple(points[0], points[1], points[2], points[25]), std::tuple(99, 99, 0, 0));
}

TEST(SettingsEncoding, PitSpeedAndAngles) {
    for (const auto& [raw, value] : {std::pair{700, 1}, {716, 1}, {1039, 1}, {1040, 2}, {65516, 201}, {65535, 201}})
        EXPECT_EQ(decodePitSpeed(std::uint16_t(raw)), value) << raw;
    for (const auto& [value, raw] : {std::pair{1, 716}, {2, 1040}, {201, 65516}})
        EXPECT_EQ(encodePitSpeed(std::uint16_t(value)), raw) << value;
    for (const auto& [degrees, units] : {std::pair{180, 32767}, {-180, -32767}, {90, 16384}, {-90, -16384}, {1, 182}, {0, 0}})
        EXPECT_EQ(angleToGame(degrees), units) << degrees;
    for (const auto& [units, degrees] : {std::pair{32767, 180}, {-32768, -180}, {91, 0}, {92, 1}, {-92, -1}, {16384, 90}})
        EXPECT_EQ(angleFromGame(std::int16_t(units)), degrees) << units;
    EXPECT_EQ(weightLabel(600), "600kg [1323lb]");
    EXPECT_EQ(speedLabel(81), "81kph [50mph]");
}

// The camera table at its fixed offset: coordinates of -32768 read as -32767,
// angles through the game's units.
TEST_F(SettingsTransfer, CamerasReadAndWrite) {
    makeGame(4);
    std::vector<std::uint8_t> first{0x00, 0x80, 0x00, 0x80, 0xFF, 0x7F, 0xFF, 0x7F, 0x00, 0x80, 0x5C, 0x00, 0x34, 0x12, 0xFF, 0xFF};
    poke(exe(), kCameraTable, first);
    std::array<std::uint16_t, 72> cameras{};
    ASSERT_TRUE(ReadWriteCameras(cameras, TransferDirection::Import, access));
    EXPECT_EQ((std::vector<int>(cameras.begin(), cameras.begin() + 8)),
              (std::vector<int>{32769, 32769, 32767, 180, std::uint16_t(-180), 1, 0x1234, 0xFFFF}));

    setCameraDefaults(cameras.data());
    cameras[8 + 4] = std::uint16_t(-180);
    ASSERT_TRUE(ReadWriteCameras(cameras, TransferDirection::Export, access));
    const Bytes file = readFileBytes(exe());
    EXPECT_EQ(u16At(file, kCameraTable + 0 * 2 + 6), std::uint16_t(-32767)) << "camera 1's direction";
    EXPECT_EQ(u16At(file, kCameraTable + 16 + 4 * 2 + 0), std::uint16_t(-32767)) << "camera 2's pitch";
    EXPECT_EQ(u16At(file, kCameraTable + 16 * 8 + 2), std::uint16_t(-64)) << "camera 9's z";
    EXPECT_EQ(u16At(file, kCameraTable + 12), 32768) << "camera 1's first tuning value";
}

// Raw bytes of the game and the car settings word each reads as.
TEST_F(SettingsTransfer, GlobalCarSettingsReadDecodesAndClamps) {
    struct Row {
        int release;
        std::uint32_t offset;
        std::vector<std::uint8_t> bytes;
        int word;
        int expected;
    };
    const Row rows[] = {
        {5, kDriverZeroAt, {255}, 0, 1},
        {6, kDriverZeroAt + 112, {254}, 0, 0},
        {6, kDriverZeroAt + 112, {255}, 0, 1},
        {0, kPowerRace, {0xD0, 0x07}, 1, 1579},
        {0, kPowerQual, {0x20, 0x03}, 2, 800},
        {0, kPitSpeed, {0xBC, 0x02}, 3, 1},   // 700
        {0, kPitSpeed, {0xFF, 0xFF}, 3, 201},
        {0, kNoLimit, {0x74}, 4, 0},
        {0, kNoLimit, {0xEB}, 4, 1},
        {0, kWeight, {100, 0}, 5, 401},
        {0, kCpuWeight, {0xFF, 0xFF}, 6, 4000},
        {0, kGrip, {0x70, 0x11, 0x01, 0x00}, 8, 1000},   // 70000: all four bytes count
        {0, kGrip, {0xF4, 0x01, 0x00, 0x00}, 8, 500},
        {0, kRandomPower, {0x90}, 9, 0},
        {0, kRandomPower, {0xE8}, 9, 1},
        {0, kTeamPower, {255}, 10, 0},
        {0, kTeamPower, {254}, 10, 1},
    };
    for (const Row& row : rows) {
        makeGame(row.release);
        poke(exe(), row.offset, row.bytes);
        std::array<std::uint16_t, 11> words{};
        ASSERT_TRUE(TransferGlobalCarSettings(words, TransferDirection::Import, access)) << row.offset;
        EXPECT_EQ(words[std::size_t(row.word)], row.expected) << "offset " << row.offset;
    }
}

// The computer cars' mode lives in the state file: without one it is neither
// read nor written, and the state file keeps its trailer right when it is.
TEST_F(SettingsTransfer, StateFileWordsNeedAUsableStateFile) {
    for (bool useState : {true, false}) {
        makeGame(1);
        access.useStateFile = useState;
        poke(state(), kStateCpuMode, {2});
        poke(state(), kStateRaceLength, {40});
        ASSERT_TRUE(WriteStateFileChecksum(state()));
        std::array<std::uint16_t, 11> car{}, game{};
        car[7] = 9;
        game[5] = 9;
        ASSERT_TRUE(TransferGlobalCarSettings(car, TransferDirection::Import, access));
        ASSERT_TRUE(TransferGameSettings(game, TransferDirection::Import, access));
        EXPECT_EQ(std::tuple(car[7], game[5]), useState ? std::tuple(2, 40) : std::tuple(9, 9));

        const Bytes before = readFileBytes(state());
        car[7] = 1;
        game[5] = 77;
        game[8] = 12;
        ASSERT_TRUE(TransferGlobalCarSettings(car, TransferDirection::Export, access));
        ASSERT_TRUE(TransferGameSettings(game, TransferDirection::Export, access));
        const Bytes after = readFileBytes(state());
        if (!useState) {
            EXPECT_EQ(after, before);
            continue;
        }
        EXPECT_EQ(std::tuple(after[kStateCpuMode], after[kStateRaceLength], after[kStateTurns]), std::tuple(1, 77, 12));
        EXPECT_TRUE(CheckStateFile(folder.path()));
        EXPECT_EQ(progress.files.back(), "F1GSTATE.SAV");
    }
}

// The bytes an export of items 52, 54 and 155-157 may change, from the game's layout.
std::vector<bool> touchedBytes(std::size_t size, int release) {
    std::vector<bool> touched(size, false);
    const auto mark = [&](std::uint32_t offset, std::uint32_t count) {
        for (std::uint32_t i = 0; i < count; ++i) touched.at(offset + i) = true;
    };
    mark(kAids, 5), mark(kRecordsA, 2), mark(kRecordsB, 2), mark(kFuelShown, 1), mark(kFuelPrac, 1), mark(kFuelQual, 1);
    mark(shifted(kDriverZeroAt, release), 1), mark(kPowerRace, 2), mark(kPowerQual, 2), mark(kPitSpeed, 2);
    mark(kNoLimit, 1), mark(kWeight, 2), mark(kCpuWeight, 2), mark(kGrip, 4), mark(kRandomPower, 5);
    mark(kTeamPower, 1), mark(kTeamPower + 365, 1), mark(kCameraTable, 144), mark(shifted(kPointsAt, release), 26);
    mark(shifted(kLapsAt, release), 16);
    for (std::uint32_t k = 0; k < 16; ++k) mark(shifted(kLapsAt, release) + 1991 + 7 * k, 1);
    return touched;
}

std::vector<std::size_t> untouchedChanges(const Bytes& before, const Bytes& after, const std::vector<bool>& touched) {
    std::vector<std::size_t> outside;
    for (std::size_t i = 0; i < before.size(); ++i)
        if (before[i] != after[i] && !touched[i]) outside.push_back(i);
    return outside;
}

template <std::size_t N>
void setWords(CarSet& set, SettingsRange range, const std::array<std::uint16_t, N>& values) {
    std::copy(values.begin(), values.end(), set.settings.range(range));
}
std::vector<std::uint16_t> wordsOf(const CarSet& set, SettingsRange range) {
    return {set.settings.range(range), set.settings.range(range) + range.count};
}

// Export then import through the sequence for every release, with and
// without a state file: only the settings' own bytes change, everything comes
// back, and the imported records are taken over (the state file's words only
// when there is one).
TEST_F(SettingsTransfer, ExportThenImportEveryRelease) {
    CarSet source;
    setWords(source, settings::kGame, std::array<std::uint16_t, 11>{1, 2, 4, 8, 16, 37, 1, 1, 12, 33, 44});
    setWords(source, settings::kGlobalCar, std::array<std::uint16_t, 11>{1, 1000, 1100, 150, 1, 700, 900, 2, 640, 0, 1});
    setWords(source, settings::kPoints, pointsPreset(PointsPreset::All));
    for (int k = 0; k < 16; ++k) source.settings.words[std::size_t(settings::kLaps.first + k)] = std::uint16_t(3 + 7 * k);
    std::uint16_t* cameras = source.settings.range(settings::kCameras);
    cameras[8 * 2 + 0] = std::uint16_t(-32767), cameras[8 * 2 + 4] = std::uint16_t(-180), cameras[8 * 2 + 5] = 45;

    TransferSelection items{};
    for (int item : {52, 54, 155, 156, 157}) items[std::size_t(item)] = 1;
    for (int release = 0; release < 7; ++release)
        for (bool withState : {true, false}) {
            SCOPED_TRACE("release " + std::to_string(release) + (withState ? " with" : " without") + " state file");
            makeGame(release, withState);
            const GameContext context{folder.path(), release, {}, folder.path(), {}};
            const Bytes exeBefore = readFileBytes(exe());
            const Bytes stateBefore = withState ? readFileBytes(state()) : Bytes{};
            EXPECT_EQ(exportTargetFiles(source, items, context).size(), withState ? 2u : 1u);
            ASSERT_TRUE(ExportToGame(source, items, context, progress));
            EXPECT_EQ(untouchedChanges(exeBefore, readFileBytes(exe()), touchedBytes(exeBefore.size(), release)),
                      std::vector<std::size_t>{});
            if (withState) {
                std::vector<bool> stateTouched(stateBefore.size(), false);
                for (std::size_t at : {std::size_t(kStateRaceLength), std::size_t(kStateTurns), std::size_t(kStateCpuMode)})
                    stateTouched[at] = true;
                for (std::size_t i = stateBefore.size() - 4; i < stateBefore.size(); ++i) stateTouched[i] = true;
                EXPECT_EQ(untouchedChanges(stateBefore, readFileBytes(state()), stateTouched), std::vector<std::size_t>{});
                EXPECT_TRUE(CheckStateFile(folder.path()));
            }

            CarSet back;
            bool changed = false;
            ASSERT_TRUE(ImportFromGame(back, items, context, progress, changed));
            std::vector<std::uint16_t> game = wordsOf(source, settings::kGame), car = wordsOf(source, settings::kGlobalCar);
            if (!withState) {
                game[5] = kDefaultGameSettings[5], game[8] = kDefaultGameSettings[8];
                car[7] = kDefaultGlobalCarSettings[7];
            }
            EXPECT_EQ(wordsOf(back, settings::kGame), game);
            EXPECT_EQ(wordsOf(back, settings::kGameImport), game);
            EXPECT_EQ(wordsOf(back, settings::kGlobalCar), car);
            for (const auto& [first, copy] : {std::pair{settings::kCameras, settings::kCamerasImport},
                                              {settings::kPoints, settings::kPointsImport},
                                              {settings::kLaps, settings::kLapsImport}}) {
                EXPECT_EQ(wordsOf(back, first), wordsOf(source, first));
                EXPECT_EQ(wordsOf(back, copy), wordsOf(source, first));
            }
        }
}

// An unknown release opens nothing; a write that fails stops the sequence
// with GP2.EXE's message and no later item runs.
TEST_F(SettingsTransfer, UnknownReleaseAndFailedWrite) {
    makeGame();
    const Bytes before = readFileBytes(exe());
    std::array<std::uint16_t, 16> laps{};
    std::array<std::uint16_t, 72> cameras{};
    for (int version : {-1, 7}) {
        access.version = version;
        EXPECT_EQ(TransferLaps(laps, TransferDirection::Export, access).error().id, MessageId::UnsupportedVersion);
        EXPECT_EQ(ReadWriteCameras(cameras, TransferDirection::Export, access).error().id, MessageId::UnsupportedVersion);
    }
    EXPECT_TRUE(progress.files.empty());
    TransferSelection items{};
    for (int item : {52, 54, 155}) items[std::size_t(item)] = 1;
    CarSet set;
    GameContext context{folder.path(), -1, {}, folder.path(), {}};
    EXPECT_EQ(ExportToGame(set, items, context, progress).error().id, MessageId::UnsupportedVersion);
    EXPECT_EQ(readFileBytes(exe()), before);

    // Long enough for the cameras but not for the car settings' first byte.
    fs::resize_file(exe(), 1300000);
    context.version = 0;
    RecordingProgress failing;
    const auto result = ExportToGame(set, items, context, failing);
    ASSERT_FALSE(result);
    EXPECT_EQ(messageText(result.error()), "GP2.EXE was not Patched Correctly.");
    EXPECT_EQ(failing.categories, std::vector<std::string>{"Car Settings"});
    const Bytes cut = readFileBytes(exe());
    EXPECT_EQ(Bytes(cut.begin() + kCameraTable, cut.begin() + kCameraTable + 144),
              Bytes(before.begin() + kCameraTable, before.begin() + kCameraTable + 144));
    bool changed = false;
    EXPECT_EQ(ImportFromGame(set, items, context, failing, changed).error().id, MessageId::CouldntReadGp2Exe);
}

}  // namespace
}  // namespace tarvel
