#include "GraphicsTestSupport.h"
#include "carset/CarSet.h"
#include "carset/CarSetPictures.h"
#include "carset/WorkingFolder.h"
#include "common/FileIO.h"
#include "fixtures/JamFixture.h"
#include "graphics/BuiltinPictures.h"
#include "graphics/Helmets.h"
#include "graphics/Jam.h"
#include "graphics/JamCatalogue.h"

#include <gtest/gtest.h>

namespace tarvel::test {
namespace {

// Every livery becomes the built-in one and the sheet the default sheet; the
// built-in livery itself (paint, white number plates in black rims, the
// unpainted strip column) is pinned whole.
TEST(CarSetPictures, DefaultsAreTheBuiltInLiveryAndSheet) {
    CarSet set;
    for (auto& livery : set.liveries) livery.assign(kLiveryPixels, 9);
    fillDefaultPictures(set);
    for (const auto& livery : set.liveries) EXPECT_EQ(livery, Bytes(kBuiltinLiveryPixels, kBuiltinLiveryPixels + kLiveryPixels));
    BitmapBuffer sheet = BuildDefaultHelmetSheet();
    EXPECT_EQ(set.helmetSheet, Bytes(sheet.pixels(), sheet.pixels() + kHelmetSheetPixels));
    EXPECT_EQ(digest(defaultLiveryBitmap().data), "43048:d7aa75ca84a0fd73");
}

// A loaded livery marks the team's slot external with its path; a refused
// file or a team past 13 changes nothing; saving writes the livery back.
TEST(CarSetPictures, LiveryFiles) {
    ScratchFolder dir;
    CarSet set;
    fillDefaultPictures(set);
    BitmapBuffer picture(256, 164);
    pixelAt(picture, 7, 9) = 77;
    ASSERT_TRUE(SaveBitmap8(dir / "car.bmp", picture, {}));
    ASSERT_TRUE(loadTeamLivery(set, 5, dir / "car.bmp"));
    EXPECT_EQ(set.team(5).carBitmap.status, kAssetExternal);
    EXPECT_EQ(fieldText(set.team(5).carBitmap.path), (dir / "car.bmp").string());
    EXPECT_EQ(set.liveries[5][std::size_t(164 - 1 - 9) * 256 + 7], 77);
    const CarSet before = set;
    ASSERT_TRUE(SaveBitmap8(dir / "bad.bmp", BitmapBuffer(256, 165), {}));
    EXPECT_EQ(loadTeamLivery(set, 6, dir / "bad.bmp").error().id, MessageId::CouldntLoadBitmap);
    EXPECT_EQ(set.liveries[6], before.liveries[6]);
    EXPECT_EQ(set.team(6).carBitmap.status, before.team(6).carBitmap.status);
    EXPECT_FALSE(loadTeamLivery(set, 14, dir / "car.bmp"));
    ASSERT_TRUE(saveTeamLivery(set, 5, dir / "again.bmp", {}));
    EXPECT_EQ(pixelAt(*LoadBitmap8(dir / "again.bmp", 256, 164), 7, 9), 77);
}

// A team's car comes from its game file into a working bitmap (white repaired)
// and goes back into the scrambled game file; a missing file fails each way.
TEST(CarSetPictures, TeamCarFromAndIntoTheGame) {
    ScratchFolder game, work;
    writeJamFile(game.path(), 12, 3);
    CarSet set;
    fillDefaultPictures(set);
    GraphicsOptions options;
    ASSERT_TRUE(importTeamCarFromGame(set, 12, game.path(), work.path(), options));
    EXPECT_EQ(fieldText(set.team(12).carBitmap.path), jamBitmapFile(work.path(), 12).string());
    EXPECT_TRUE(std::filesystem::exists(jamBitmapFile(work.path(), 12)));
    EXPECT_EQ(set.team(12).carBitmap.status, kAssetExternal);
    auto repaired = decodeBitmap8(encodeBitmap8(*convertJamToBitmap(makeJamFile(12, 3, false), 12, options), {}), 256, 164);
    EXPECT_EQ(set.liveries[12], Bytes(repaired->pixels(), repaired->pixels() + kLiveryPixels));

    fillDefaultPictures(set);
    options.fixStrip = false;
    ASSERT_TRUE(exportTeamCarToGame(set, 12, game.path(), options));
    Bytes file = readFileBytes(game / "GAMEJAMS/SIMTEK.JAM");
    JamScramble(file);
    auto back = convertJamToBitmap(file, 12, options);
    EXPECT_EQ(Bytes(back->pixels(), back->pixels() + back->pixelBytes()), Bytes(kBuiltinLiveryPixels, kBuiltinLiveryPixels + kLiveryPixels));
    EXPECT_EQ(importTeamCarFromGame(set, 3, game.path(), work.path(), options).error().id, MessageId::FailedToConvertJam);
    EXPECT_EQ(exportTeamCarToGame(set, 3, game.path(), options).error().id, MessageId::FailedToPatchJam);
}

// The sheet goes into the game's helmet file and comes back helmet by helmet;
// sheet files load and save, and a failed load keeps the sheet.
TEST(CarSetPictures, HelmetSheetFromAndIntoTheGameAndFiles) {
    ScratchFolder game, work;
    writeJamFile(game.path(), kHelmetsJam, 8);
    CarSet set;
    fillDefaultPictures(set);
    GraphicsOptions options;
    options.fixStrip = false;
    ASSERT_TRUE(exportHelmetsToGame(set, game.path(), options));
    set.helmetSheet.assign(kHelmetSheetPixels, 0);
    ASSERT_TRUE(importHelmetsFromGame(set, game.path(), work.path(), options));
    EXPECT_TRUE(std::filesystem::exists(jamBitmapFile(work.path(), 14)));
    BitmapBuffer sheet = helmetSheetBitmap(set), original = BuildDefaultHelmetSheet();
    BitmapBuffer a = blankSingleHelmet(), b = blankSingleHelmet();
    for (int n = 0; n < 28; ++n) {
        ASSERT_TRUE(ExtractHelmet(sheet, n, a) && ExtractHelmet(original, n, b));
        EXPECT_EQ(a.data, b.data) << n;
    }
    ScratchFolder empty;
    EXPECT_EQ(importHelmetsFromGame(set, empty.path(), work.path(), options).error().id, MessageId::ImportFailed);
    EXPECT_EQ(exportHelmetsToGame(set, empty.path(), options).error().id, MessageId::ExportFailed);

    ASSERT_TRUE(saveHelmetSheetFile(set, empty / "s.bmp", {}));
    CarSet other;
    other.helmetSheet.assign(kHelmetSheetPixels, 3);
    ASSERT_TRUE(loadHelmetSheetFile(other, empty / "s.bmp"));
    EXPECT_EQ(other.helmetSheet, set.helmetSheet);
    EXPECT_FALSE(loadHelmetSheetFile(other, empty / "missing.bmp"));
    EXPECT_EQ(other.helmetSheet, set.helmetSheet);
}

}  // namespace
}  // namespace tarvel::test
