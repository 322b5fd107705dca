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
#include "graphics/PaletteMapping.h"

#include <gtest/gtest.h>

namespace tarvel::cli {
namespace {
namespace fs = std::filesystem;
using test::pixelAt;

bool samePixels(const BitmapBuffer& a, const BitmapBuffer& b) {
    return a.pixelBytes() == b.pixelBytes() && std::equal(a.pixels(), a.pixels() + a.pixelBytes(), b.pixels());
}

class GraphicsCli : public CliFixture {
protected:
    CarSet loaded(const std::string& name) {
        CarSet set;
        EXPECT_TRUE(loadCarSet(set, at(name), {}));
        return set;
    }
};

TEST_F(GraphicsCli, LiveryAndHelmetSheetExportAndImport) {
    std::string set = newSet();
    auto exported = cli({"livery", "export", set, "3", at("team3.bmp")});
    ASSERT_EQ(exported.status, kExitOk) << exported.err;
    auto livery = LoadBitmap8(at("team3.bmp"), 256, 164);
    ASSERT_TRUE(livery);
    EXPECT_TRUE(samePixels(*livery, defaultLiveryBitmap()));
    for (int x = 0; x < 256; ++x) pixelAt(*livery, x, 80) = 43;
    ASSERT_TRUE(SaveBitmap8(at("red.bmp"), *livery, {}));
    auto imported = cli({"livery", "import", set, "3", at("red.bmp"), "-o", at("out.gp2")});
    ASSERT_EQ(imported.status, kExitOk) << imported.err;
    CarSet out = loaded("out.gp2");
    EXPECT_EQ(out.liveries[3][std::size_t(164 - 1 - 80) * 256 + 10], 43);
    EXPECT_NE(out.liveries[2][std::size_t(164 - 1 - 80) * 256 + 10], 43);

    ASSERT_EQ(cli({"helmets", "export", set, at("h.bmp")}).status, kExitOk);
    auto sheet = LoadBitmap8(at("h.bmp"), 256, 180);
    ASSERT_TRUE(sheet);
    for (int x = 0; x < 74; ++x) pixelAt(*sheet, x, 0) = 150;
    ASSERT_TRUE(SaveBitmap8(at("h2.bmp"), *sheet, {}));
    ASSERT_EQ(cli({"helmets", "import", set, at("h2.bmp"), "-o", at("out.gp2")}).status, kExitOk);
    EXPECT_EQ(loaded("out.gp2").helmetSheet[std::size_t(179) * 256 + 5], 150);
}

TEST_F(GraphicsCli, LiveryFailuresAndUsage) {
    std::string set = newSet();
    ASSERT_TRUE(SaveBitmap8(at("small.bmp"), BitmapBuffer(256, 163), {}));
    auto refused = cli({"livery", "import", set, "0", at("small.bmp"), "-o", at("out.gp2")});
    EXPECT_EQ(refused.status, kExitFailed);
    EXPECT_EQ(refused.err, "Couldn't Load Bitmap.\nsmall.bmp: 256 x 163 pixels; a livery is 256 x 164\n");
    EXPECT_FALSE(fs::exists(at("out.gp2")));
    const std::vector<std::string> usage[] = {{"livery", "export", set, "14", at("x.bmp")},
                                              {"livery", "export", set, "zero", at("x.bmp")},
                                              {"livery", "import", set, "0", at("small.bmp")},   // -o is required
                                              {"livery", "import", set, "0", at("small.bmp"), "-o", at("x"), "--dither"},
                                              {"livery", "export", set, "0", at("x.bmp"), "--remap"},
                                              {"jam", "info", "218"}};
    for (const auto& args : usage) EXPECT_EQ(cli(args).status, kExitUsage) << args[3];
    EXPECT_FALSE(fs::exists(at("x.bmp")));
}

TEST_F(GraphicsCli, JamInfoAndScramble) {
    auto info = cli({"jam", "info", "19"});
    EXPECT_EQ(info.status, kExitOk);
    EXPECT_EQ(info.out, "BRZJAMS\\BRZ1.JAM 198 23 206\n");
    Bytes data(4 * 10 + 3);
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = std::uint8_t(i);
    ASSERT_TRUE(writeFileAtomically(at("plain"), data));
    ASSERT_EQ(cli({"jam", "scramble", at("plain"), at("scrambled")}).status, kExitOk);
    JamScramble(data);
    EXPECT_EQ(*readWholeFile(at("scrambled")), data);
    auto missing = cli({"jam", "scramble", at("nothing"), at("out")});
    EXPECT_EQ(missing.status, kExitFailed);
    EXPECT_EQ(missing.err, "File Not Found - " + at("nothing") + ".\n");
    EXPECT_FALSE(fs::exists(at("out")));
}

TEST_F(GraphicsCli, JamDecodeAndPatchWithSettings) {
    fs::path game = folder / "game";
    test::writeJamFile(game, 0, 4);
    auto decoded = cli({"--set", "ClearJam=0", "jam", "decode", "--game", game.string(), "0", at("w.bmp")});
    ASSERT_EQ(decoded.status, kExitOk) << decoded.err;
    auto bitmap = LoadBitmap8(at("w.bmp"), 256, 164);
    ASSERT_TRUE(bitmap);
    for (int x = 0; x < 256; ++x)
        for (int y = 0; y < 164; ++y) pixelAt(*bitmap, x, y) = std::uint8_t((x / 16) * 2);
    ASSERT_TRUE(SaveBitmap8(at("p.bmp"), *bitmap, {}));
    auto patched = cli({"--set", "FixStrip=0", "jam", "patch", "--game", game.string(), "0", at("p.bmp")});
    ASSERT_EQ(patched.status, kExitOk) << patched.err;
    auto file = readWholeFile(game / "GAMEJAMS" / "WILLIAMS.JAM");
    JamScramble(*file);
    auto back = convertJamToBitmap(*file, 0, {});
    ASSERT_TRUE(back);
    EXPECT_EQ(back->data, bitmap->data) << "FixStrip off: the picture comes back as it was";

    EXPECT_EQ(cli({"jam", "patch", "--game", game.string(), "1", at("p.bmp")}).err, "Failed to Patch JAM File.\n");
    auto noFile = cli({"jam", "decode", "--game", game.string(), "5", at("none.bmp")});
    EXPECT_EQ(noFile.status, kExitFailed);
    EXPECT_EQ(noFile.err, "Failed to Convert JAM File.\n");
    EXPECT_FALSE(fs::exists(at("none.bmp")));
    EXPECT_EQ(cli({"jam", "decode", "0", at("none.bmp")}).status, kExitUsage) << "--game is required";
}

TEST_F(GraphicsCli, MenuHelmetDecodeAndPatch) {
    fs::path game = folder / "game";
    auto file = test::writeMenuFile(game, 6);
    Bytes before = *readWholeFile(file);
    ASSERT_EQ(cli({"menuhelmet", "decode", "--game", game.string(), "2", at("m.bmp")}).status, kExitOk);
    auto picture = LoadBitmap8(at("m.bmp"), 104, 104, false);
    ASSERT_TRUE(picture);
    pixelAt(*picture, 0, 0) = 255;   // kept as it is: menu pictures have their own palette
    ASSERT_TRUE(writeFileAtomically(at("m2.bmp"), encodeBitmapKeepingPalette(*picture)));
    auto patched = cli({"menuhelmet", "patch", "--game", game.string(), "2", at("m2.bmp")});
    ASSERT_EQ(patched.status, kExitOk) << patched.err;
    auto after = readWholeFile(file);
    auto decoded = decodeMenuPicture(*after, 2);
    ASSERT_TRUE(decoded);
    EXPECT_TRUE(samePixels(*decoded, *picture));
    EXPECT_NE(*after, before);
    EXPECT_EQ(cli({"menuhelmet", "patch", "--game", game.string(), "28", at("m2.bmp")}).status, kExitUsage);
}

// Every command that takes a picture refuses a true-colour one without
// --remap, saying how to ask for it; with --remap (and --dither) it gives what
// the same command gives for an 8-bit bitmap of the mapped picture.
TEST_F(GraphicsCli, PictureCommandsTakeTrueColourWithRemap) {
    const std::string set = newSet();
    struct Case {
        std::vector<std::string> args;   // IN: the picture; OUT: the output set, or the game folder
        int width, height, bits;         // bits 0: a PNG
        PicturePalette palette;
        const char* gameFile;            // the result, else the set's livery 4 or helmet sheet
        bool dither;
    };
    const Case cases[] = {
        {{"livery", "import", set, "4", "IN", "-o", "OUT"}, 256, 164, 0, PicturePalette::Game, nullptr, false},
        {{"helmets", "import", set, "IN", "-o", "OUT"}, 256, 180, 32, PicturePalette::Game, nullptr, true},
        {{"jam", "patch", "--game", "OUT", "0", "IN"}, 256, 164, 24, PicturePalette::Game, "GAMEJAMS/WILLIAMS.JAM", false},
        {{"menuhelmet", "patch", "--game", "OUT", "5", "IN"}, 104, 104, 0, PicturePalette::Menu, "BITMAPS/F1PCSVGA.BIN", true},
    };
    int n = 0;
    for (const Case& c : cases) {
        const RgbaPicture p = test::rgbaPicture(c.width, c.height, [](int x, int y) {
            return std::uint32_t(x * 0x10305 + y * 0x70300) << 8 | (x < 3 && y < 3 ? 0 : 255);
        });
        const Bytes file = c.bits ? test::trueColourBmp(p, c.bits, c.bits == 32) : test::pngFile(p);
        const std::string in = at(c.bits ? "IN.BMP" : "IN.PNG");
        test::writeFileBytes(in, file);
        const BitmapBuffer mapped = mapToPalette(*decodeRgbaPicture(file, c.width, c.height), c.palette, c.dither);
        ASSERT_TRUE(writeFileAtomically(at("MAPPED.BMP"), encodeBitmapKeepingPalette(mapped)));
        // Runs the command into a fresh output: what it printed and the result.
        auto run = [&](const std::string& picture, std::vector<std::string> options) {
            const std::string out = at("out" + std::to_string(n++));
            if (c.gameFile) {
                test::writeJamFile(out, 0, 4);
                test::writeMenuFile(out, 6);
            }
            std::vector<std::string> args;
            for (const std::string& a : c.args) args.push_back(a == "IN" ? picture : a == "OUT" ? out : a);
            args.insert(args.end(), options.begin(), options.end());
            const Outcome outcome = cli(args);
            Bytes result;
            if (c.gameFile) result = *readWholeFile(fs::path(out) / c.gameFile);
            else if (fs::exists(out)) result = c.height == 180 ? loaded(out).helmetSheet : loaded(out).liveries[4];
            return std::pair{outcome, result};
        };
        auto [refused, untouched] = run(in, {});
        EXPECT_EQ(refused.status, kExitFailed) << c.args[0];
        EXPECT_TRUE(refused.err.starts_with("Couldn't Load Bitmap.\n" + fs::path(in).filename().string() + ": ")) << refused.err;
        EXPECT_TRUE(refused.err.ends_with("use --remap to map its colours to the " + std::string(paletteName(c.palette)) +
                                          " palette\n")) << refused.err;
        EXPECT_EQ(untouched.empty(), !c.gameFile) << "a refused import writes no set";
        auto [remapped, viaRemap] = run(in, c.dither ? std::vector<std::string>{"--remap", "--dither"} : std::vector<std::string>{"--remap"});
        auto [plain, viaIndices] = run(at("MAPPED.BMP"), {});
        EXPECT_EQ(remapped.status + plain.status, kExitOk) << remapped.err << plain.err;
        EXPECT_EQ(viaRemap, viaIndices) << c.args[0];
        EXPECT_NE(viaRemap, untouched) << c.args[0];
    }
}

}  // namespace
}  // namespace tarvel::cli
