#include "CliTestSupport.h"

#include "carset/CarSet.h"
#include "carset/CarSetFile.h"
#include "carset/CarSetPictures.h"
#include "common/FileIO.h"
#include "core/graphics/GraphicsTestSupport.h"
#include "fixtures/JamFixture.h"
#include "fixtures/MenuFileFixture.h"
#include "graphics/Bitmap.h"
#include "graphics/Jam.h"
#include "graphics/MenuHelmet.h"

#include <gtest/gtest.h>


namespace tarvel::cli {
namespace {
namespace fs = std::filesystem;
using test::pixelAt;

class GraphicsCli : public CliFixture {
protected:
    std::string path(const std::string& name) { return at(name); }
};

TEST_F(GraphicsCli, LiveryExportAndImport) {
    std::string set = newSet();
    auto exported = cli({"livery", "export", set, "3", path("team3.bmp")});
    ASSERT_EQ(exported.status, kExitOk) << exported.err;
    auto livery = LoadBitmap8(path("team3.bmp"), 256, 164);
    ASSERT_TRUE(livery);
    auto builtin = defaultLiveryBitmap();
    EXPECT_TRUE(std::equal(livery->pixels(), livery->pixels() + livery->pixelBytes(), builtin.pixels()));

    for (int x = 0; x < 256; ++x) pixelAt(*livery, x, 80) = 43;
    ASSERT_TRUE(SaveBitmap8(path("red.bmp"), *livery, {}));
    auto imported = cli({"livery", "import", set, "3", path("red.bmp"), "-o", path("out.gp2")});
    ASSERT_EQ(imported.status, kExitOk) << imported.err;
    CarSet loaded;
    ASSERT_TRUE(loadCarSet(loaded, path("out.gp2"), {}));
    EXPECT_EQ(loaded.liveries[3][std::size_t(164 - 1 - 80) * 256 + 10], 43);
    EXPECT_NE(loaded.liveries[2][std::size_t(164 - 1 - 80) * 256 + 10], 43);
}

TEST_F(GraphicsCli, LiveryFailuresAndUsage) {
    std::string set = newSet();
    ASSERT_TRUE(SaveBitmap8(path("small.bmp"), BitmapBuffer(256, 163), {}));
    auto refused = cli({"livery", "import", set, "0", path("small.bmp"), "-o", path("out.gp2")});
    EXPECT_EQ(refused.status, kExitFailed);
    EXPECT_EQ(refused.err, "Couldn't Load Bitmap.\n");
    EXPECT_FALSE(fs::exists(path("out.gp2")));
    EXPECT_EQ(cli({"livery", "export", set, "14", path("x.bmp")}).status, kExitUsage);
    EXPECT_EQ(cli({"livery", "export", set, "zero", path("x.bmp")}).status, kExitUsage);
    EXPECT_EQ(cli({"livery", "import", set, "0", path("small.bmp")}).status, kExitUsage) << "-o is required";
    EXPECT_FALSE(fs::exists(path("x.bmp")));
}

TEST_F(GraphicsCli, HelmetsExportAndImport) {
    std::string set = newSet();
    ASSERT_EQ(cli({"helmets", "export", set, path("h.bmp")}).status, kExitOk);
    auto sheet = LoadBitmap8(path("h.bmp"), 256, 180);
    ASSERT_TRUE(sheet);
    for (int x = 0; x < 74; ++x) pixelAt(*sheet, x, 0) = 150;
    ASSERT_TRUE(SaveBitmap8(path("h2.bmp"), *sheet, {}));
    ASSERT_EQ(cli({"helmets", "import", set, path("h2.bmp"), "-o", path("out.gp2")}).status, kExitOk);
    CarSet loaded;
    ASSERT_TRUE(loadCarSet(loaded, path("out.gp2"), {}));
    EXPECT_EQ(loaded.helmetSheet[std::size_t(179) * 256 + 5], 150);
}

TEST_F(GraphicsCli, JamInfoAndScramble) {
    auto info = cli({"jam", "info", "19"});
    EXPECT_EQ(info.status, kExitOk);
    EXPECT_EQ(info.out, "BRZJAMS\\BRZ1.JAM 198 23 206\n");
    EXPECT_EQ(cli({"jam", "info", "218"}).status, kExitUsage);

    Bytes data(4 * 10 + 3);
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = std::uint8_t(i);
    ASSERT_TRUE(writeFileAtomically(path("plain"), data));
    ASSERT_EQ(cli({"jam", "scramble", path("plain"), path("scrambled")}).status, kExitOk);
    Bytes expected = data;
    JamScramble(expected);
    EXPECT_EQ(*readWholeFile(path("scrambled")), expected);
    auto missing = cli({"jam", "scramble", path("nothing"), path("out")});
    EXPECT_EQ(missing.status, kExitFailed);
    EXPECT_EQ(missing.err, "File Not Found - " + path("nothing") + ".\n");
    EXPECT_FALSE(fs::exists(path("out")));
}

TEST_F(GraphicsCli, JamDecodeAndPatchWithSettings) {
    fs::path game = folder / "game";
    test::writeJamFile(game, 0, 4);
    auto decoded = cli({"--set", "ClearJam=0", "jam", "decode", "--game", game.string(), "0", path("w.bmp")});
    ASSERT_EQ(decoded.status, kExitOk) << decoded.err;
    auto bitmap = LoadBitmap8(path("w.bmp"), 256, 164);
    ASSERT_TRUE(bitmap);
    for (int x = 0; x < 256; ++x)
        for (int y = 0; y < 164; ++y) pixelAt(*bitmap, x, y) = std::uint8_t((x / 16) * 2);
    ASSERT_TRUE(SaveBitmap8(path("p.bmp"), *bitmap, {}));
    auto patched = cli({"--set", "FixStrip=0", "jam", "patch", "--game", game.string(), "0", path("p.bmp")});
    ASSERT_EQ(patched.status, kExitOk) << patched.err;
    auto file = readWholeFile(game / "GAMEJAMS" / "WILLIAMS.JAM");
    JamScramble(*file);
    auto back = convertJamToBitmap(*file, 0, {});
    ASSERT_TRUE(back);
    EXPECT_EQ(back->data, bitmap->data) << "FixStrip off: the picture comes back as it was";

    auto wrong = cli({"jam", "patch", "--game", game.string(), "1", path("p.bmp")});
    EXPECT_EQ(wrong.status, kExitFailed);
    EXPECT_EQ(wrong.err, "Failed to Patch JAM File.\n");
    auto noFile = cli({"jam", "decode", "--game", game.string(), "5", path("none.bmp")});
    EXPECT_EQ(noFile.status, kExitFailed);
    EXPECT_EQ(noFile.err, "Failed to Convert JAM File.\n");
    EXPECT_FALSE(fs::exists(path("none.bmp")));
    EXPECT_EQ(cli({"jam", "decode", "0", path("none.bmp")}).status, kExitUsage) << "--game is required";
}

TEST_F(GraphicsCli, MenuHelmetDecodeAndPatch) {
    fs::path game = folder / "game";
    auto file = test::writeMenuFile(game, 6);
    Bytes before = *readWholeFile(file);
    ASSERT_EQ(cli({"menuhelmet", "decode", "--game", game.string(), "2", path("m.bmp")}).status, kExitOk);
    auto picture = LoadBitmap8(path("m.bmp"), 104, 104, false);
    ASSERT_TRUE(picture);
    pixelAt(*picture, 0, 0) = 255;   // kept as it is: menu pictures have their own palette
    ASSERT_TRUE(writeFileAtomically(path("m2.bmp"), encodeBitmapKeepingPalette(*picture)));
    auto patched = cli({"menuhelmet", "patch", "--game", game.string(), "2", path("m2.bmp")});
    ASSERT_EQ(patched.status, kExitOk) << patched.err;
    auto after = readWholeFile(file);
    auto decoded = decodeMenuPicture(*after, 2);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(pixelAt(*decoded, 0, 0), 255);
    EXPECT_TRUE(std::equal(decoded->pixels(), decoded->pixels() + decoded->pixelBytes(), picture->pixels()));
    EXPECT_NE(*after, before);
    EXPECT_EQ(cli({"menuhelmet", "patch", "--game", game.string(), "28", path("m2.bmp")}).status, kExitUsage);
}

}  // namespace
}  // namespace tarvel::cli
