#include "fixtures/GameFixture.h"
#include "game/GameVersion.h"

#include <gtest/gtest.h>


namespace tarvel {
namespace {
namespace fs = std::filesystem;
using test::TempFolder;

TEST(GameVersion, RecognisesEveryRelease) {
    TempFolder folder("version");
    for (int release = 0; release < kGameReleaseCount; ++release) {
        // Odd releases installed with lower-case names.
        const auto exe = folder.path() / (release % 2 ? "gp2.exe" : "GP2.EXE");
        test::writeFileBytes(exe, test::makeGameExecutable(release));
        EXPECT_EQ(DetectGameVersion(folder.path()), release) << "release " << release;
        fs::remove(exe);
    }
}

TEST(GameVersion, OneByteNeighboursUkAndUs) {
    TempFolder folder("version");
    Bytes exe(kGameExeSize, 0);
    // "UUK": the release-5 place reads "UU", the release-0 place "UK".
    exe[5671741] = 'U';
    exe[5671742] = 'U';
    exe[5671743] = 'K';
    test::writeFileBytes(folder.path() / "GP2.EXE", exe);
    EXPECT_EQ(DetectGameVersion(folder.path()), 0);
    // "US" one byte earlier: release 0 sees "S" then 0 and does not match.
    exe[5671742] = 'S';
    exe[5671743] = 0;
    test::writeFileBytes(folder.path() / "GP2.EXE", exe);
    EXPECT_EQ(DetectGameVersion(folder.path()), 5);
}

TEST(GameVersion, LengthLimitIsTheLargestTagOffset) {
    TempFolder folder("version");
    Bytes exe(5675467, 0);
    exe[5671742] = 'U';
    exe[5671743] = 'K';
    test::writeFileBytes(folder.path() / "GP2.EXE", exe);
    EXPECT_EQ(DetectGameVersion(folder.path()), -1) << "a file one byte short is refused despite its tag";
    exe.push_back(0);
    test::writeFileBytes(folder.path() / "GP2.EXE", exe);
    EXPECT_EQ(DetectGameVersion(folder.path()), 0);
}

TEST(GameVersion, UnrecognisedOrMissing) {
    TempFolder folder("version");
    EXPECT_EQ(DetectGameVersion(folder.path()), -1);
    test::writeFileBytes(folder.path() / "GP2.EXE", Bytes(kGameExeSize, 'x'));
    EXPECT_EQ(DetectGameVersion(folder.path()), -1);
    test::writeFileBytes(folder.path() / "GP2.EXE", Bytes(100, 0));
    EXPECT_EQ(DetectGameVersion(folder.path()), -1);
}

TEST(GameVersion, OffsetTablesFollowTheReleaseShift) {
    for (int table = 0; table < int(GameTable::Count_); ++table) {
        if (GameTable(table) == GameTable::PitCrewColours) continue;
        for (int v = 0; v < kGameReleaseCount; ++v)
            EXPECT_EQ(int(gameTableOffset(GameTable(table), v)) - int(gameTableOffset(GameTable(table), 0)),
                      kGameReleases[std::size_t(v)].dataShift)
                << "table " << table << " release " << v;
    }
    // Pit crew colours move differently for two releases.
    EXPECT_EQ(gameTableOffset(GameTable::PitCrewColours, 1), 1992140u);
    EXPECT_EQ(gameTableOffset(GameTable::PitCrewColours, 2), 1992172u);
    EXPECT_EQ(gameTableOffset(GameTable::PitCrewColours, 6), 1992188u);
}

}  // namespace
}  // namespace tarvel
