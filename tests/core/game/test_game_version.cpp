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

TEST(GameVersion, TagsAreReadAtTheirOffsetsInFilesLongEnoughForTheLastOne) {
    struct Case {
        std::size_t size;
        std::string text;   // written at 5671741, where release 5 reads; release 0 reads one byte later
        int release;
    };
    const Case cases[] = {
        {kGameExeSize, "UUK", 0},      // release 5's place reads "UU", release 0's "UK"
        {kGameExeSize, "US", 5},       // release 0 sees "S" then 0
        {5675467, "UUK", -1},          // one byte short of the last tag's end, despite the tag
        {5675468, "UUK", 0},
        {kGameExeSize, "xx", -1},
        {100, "", -1},
    };
    TempFolder folder("version");
    EXPECT_EQ(DetectGameVersion(folder.path()), -1) << "no GP2.EXE";
    for (const Case& c : cases) {
        Bytes exe(c.size, 0);
        std::copy(c.text.begin(), c.text.end(), exe.begin() + std::ptrdiff_t(std::min<std::size_t>(5671741, c.size)));
        test::writeFileBytes(folder.path() / "GP2.EXE", exe);
        EXPECT_EQ(DetectGameVersion(folder.path()), c.release) << c.size << " " << c.text;
    }
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
