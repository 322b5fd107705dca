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

#include <cstring>

namespace tarvel::test {
namespace {

std::string slotPath(const AssetSlot& slot) { return fieldText(slot.path); }

TEST(CarSetPictures, DefaultsAreTheBuiltInLiveryAndSheet) {
    CarSet set;
    for (auto& livery : set.liveries) livery.assign(kLiveryPixels, 9);
    fillDefaultPictures(set);
    for (const auto& livery : set.liveries) {
        ASSERT_EQ(livery.size(), std::size_t(kLiveryPixels));
        EXPECT_EQ(std::memcmp(livery.data(), kBuiltinLiveryPixels, livery.size()), 0);
    }
    BitmapBuffer sheet = BuildDefaultHelmetSheet();
    ASSERT_EQ(set.helmetSheet.size(), std::size_t(kHelmetSheetPixels));
    EXPECT_TRUE(std::equal(set.helmetSheet.begin(), set.helmetSheet.end(), sheet.pixels()));
}

TEST(CarSetPictures, BuiltInLiveryHasPaintNumberPlatesAndTransparency) {
    BitmapBuffer livery = defaultLiveryBitmap();
    int transparent = 0;
    for (std::size_t i = 0; i < livery.pixelBytes(); ++i) transparent += livery.pixels()[i] == 0;
    EXPECT_GT(transparent, 2000);
    EXPECT_LT(transparent, 41984 / 2);
    // The number plates (bottom-up positions) are white inside a black rim.
    struct Plate { int x, y, w, h; };
    for (Plate p : {Plate{244, 150, 12, 14}, Plate{2, 150, 12, 14}, Plate{114, 28, 14, 11}, Plate{184, 28, 14, 11}}) {
        EXPECT_EQ(livery.row(p.y + p.h / 2)[p.x + p.w / 2], 31) << p.x;
        EXPECT_EQ(livery.row(p.y)[p.x + 1], 1) << p.x;
    }
    for (int r = 0; r < 164; ++r) ASSERT_EQ(livery.row(r)[0], 0) << "the strip column is left unpainted";
}

TEST(CarSetPictures, LiveryLoadSetsSourceAndDirtyAndFailureChangesNothing) {
    ScratchFolder dir;
    CarSet set;
    fillDefaultPictures(set);
    BitmapBuffer picture(256, 164);
    pixelAt(picture, 7, 9) = 77;
    ASSERT_TRUE(SaveBitmap8(dir / "car.bmp", picture, {}));
    ASSERT_TRUE(loadTeamLivery(set, 5, dir / "car.bmp"));
    EXPECT_EQ(set.team(5).carBitmap.status, kAssetExternal);
    EXPECT_EQ(slotPath(set.team(5).carBitmap), (dir / "car.bmp").string());
    EXPECT_EQ(set.liveries[5][std::size_t(164 - 1 - 9) * 256 + 7], 77);

    CarSet before = set;
    ASSERT_TRUE(SaveBitmap8(dir / "bad.bmp", BitmapBuffer(256, 165), {}));
    auto refused = loadTeamLivery(set, 6, dir / "bad.bmp");
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().id, MessageId::CouldntLoadBitmap);
    EXPECT_EQ(set.liveries[6], before.liveries[6]);
    EXPECT_EQ(set.team(6).carBitmap.status, before.team(6).carBitmap.status);
    EXPECT_FALSE(loadTeamLivery(set, 14, dir / "car.bmp")) << "only teams 0-13 have liveries";

    ASSERT_TRUE(saveTeamLivery(set, 5, dir / "again.bmp", {}));
    auto again = LoadBitmap8(dir / "again.bmp", 256, 164);
    ASSERT_TRUE(again);
    EXPECT_EQ(pixelAt(*again, 7, 9), 77);
}

TEST(CarSetPictures, TeamCarFromAndIntoTheGame) {
    ScratchFolder game, work;
    writeJamFile(game.path(), 12, 3);
    CarSet set;
    fillDefaultPictures(set);
    GraphicsOptions options;
    ASSERT_TRUE(importTeamCarFromGame(set, 12, game.path(), work.path(), options));
    const auto working = jamBitmapFile(work.path(), 12);
    EXPECT_TRUE(std::filesystem::exists(working));
    EXPECT_EQ(slotPath(set.team(12).carBitmap), working.string());
    EXPECT_EQ(set.team(12).carBitmap.status, kAssetExternal);
    Bytes plain = makeJamFile(12, 3, false);
    auto expected = convertJamToBitmap(plain, 12, options);
    ASSERT_TRUE(expected);
    auto repaired = decodeBitmap8(encodeBitmap8(*expected, {}), 256, 164);
    EXPECT_TRUE(std::equal(set.liveries[12].begin(), set.liveries[12].end(), repaired->pixels()));

    // Export the default livery into the game's file and read it back.
    fillDefaultPictures(set);
    options.fixStrip = false;
    ASSERT_TRUE(exportTeamCarToGame(set, 12, game.path(), options));
    auto file = readWholeFile(game / "GAMEJAMS/SIMTEK.JAM");
    ASSERT_TRUE(file);
    JamScramble(*file);
    auto back = convertJamToBitmap(*file, 12, options);
    ASSERT_TRUE(back);
    EXPECT_EQ(std::memcmp(back->pixels(), kBuiltinLiveryPixels, back->pixelBytes()), 0);

    auto missing = importTeamCarFromGame(set, 3, game.path(), work.path(), options);
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().id, MessageId::FailedToConvertJam);
    auto notPatched = exportTeamCarToGame(set, 3, game.path(), options);
    ASSERT_FALSE(notPatched);
    EXPECT_EQ(notPatched.error().id, MessageId::FailedToPatchJam);
}

TEST(CarSetPictures, HelmetSheetFromAndIntoTheGame) {
    ScratchFolder game, work;
    writeJamFile(game.path(), kHelmetsJam, 8);
    CarSet set;
    fillDefaultPictures(set);
    GraphicsOptions options;
    options.fixStrip = false;
    ASSERT_TRUE(exportHelmetsToGame(set, game.path(), options));
    std::vector<std::uint8_t> defaults = set.helmetSheet;
    set.helmetSheet.assign(kHelmetSheetPixels, 0);
    ASSERT_TRUE(importHelmetsFromGame(set, game.path(), work.path(), options));
    EXPECT_TRUE(std::filesystem::exists(jamBitmapFile(work.path(), 14)));
    // The fixture's helmet rectangles match the sheet layout: every helmet comes back.
    BitmapBuffer sheet = helmetSheetBitmap(set);
    BitmapBuffer original = BuildDefaultHelmetSheet();
    BitmapBuffer a = blankSingleHelmet(), b = blankSingleHelmet();
    for (int n = 0; n < 28; ++n) {
        ASSERT_TRUE(ExtractHelmet(sheet, n, a));
        ASSERT_TRUE(ExtractHelmet(original, n, b));
        EXPECT_EQ(a.data, b.data) << n;
    }
    ScratchFolder empty;
    auto failedImport = importHelmetsFromGame(set, empty.path(), work.path(), options);
    ASSERT_FALSE(failedImport);
    EXPECT_EQ(failedImport.error().id, MessageId::ImportFailed);
    auto failedExport = exportHelmetsToGame(set, empty.path(), options);
    ASSERT_FALSE(failedExport);
    EXPECT_EQ(failedExport.error().id, MessageId::ExportFailed);
}

TEST(CarSetPictures, HelmetSheetFiles) {
    ScratchFolder dir;
    CarSet set;
    fillDefaultPictures(set);
    ASSERT_TRUE(saveHelmetSheetFile(set, dir / "s.bmp", {}));
    CarSet other;
    other.helmetSheet.assign(kHelmetSheetPixels, 3);
    ASSERT_TRUE(loadHelmetSheetFile(other, dir / "s.bmp"));
    EXPECT_EQ(other.helmetSheet, set.helmetSheet);
    std::vector<std::uint8_t> kept = other.helmetSheet;
    EXPECT_FALSE(loadHelmetSheetFile(other, dir / "missing.bmp"));
    EXPECT_EQ(other.helmetSheet, kept);
}

}  // namespace
}  // namespace tarvel::test
