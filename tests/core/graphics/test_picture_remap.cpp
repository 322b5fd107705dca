#include "GraphicsTestSupport.h"
#include "common/FileIO.h"
#include "graphics/Palette.h"
#include "graphics/PaletteMapping.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tarvel::test {
namespace {
namespace fs = std::filesystem;

std::uint32_t rgba(std::uint32_t rgb, std::uint8_t alpha = 255) { return rgb << 8 | alpha; }

// Every allowed colour maps to its own index or to an equal colour's lower
// one; no colour ever maps to a reserved index.
TEST(PaletteMapping, PaletteColoursMapToThemselvesAndNeverToReservedIndices) {
    for (PicturePalette palette : {PicturePalette::Game, PicturePalette::Menu}) {
        const auto colours = paletteColours(palette);
        for (int i = 0; i < 256; ++i) {
            const std::uint32_t c = colours[std::size_t(i)];
            const int j = nearestColour(palette, std::uint8_t(c >> 16), std::uint8_t(c >> 8), std::uint8_t(c));
            EXPECT_TRUE(mappingMayChoose(palette, j)) << i;
            if (mappingMayChoose(palette, i)) {
                EXPECT_EQ(colours[std::size_t(j)], c) << i;
                EXPECT_LE(j, i);
            }
        }
    }
    int allowed = 0;
    for (int i = 0; i < 256; ++i) allowed += mappingMayChoose(PicturePalette::Game, i);
    EXPECT_EQ(allowed, 219) << "1-213 and 234-239";
}

TEST(PaletteMapping, NearestColourByPlainDistanceTiesToTheLowerIndex) {
    struct Case {
        std::uint32_t rgb;
        int expected;
    };
    const Case cases[] = {
        {0x000000, 1},    // black: the darkest grey, never the transparent 0
        {0xFFFFFF, 31},   // white: 31, not its twin 255
        {0x171717, 1},    // midway between greys 1 (0x13) and 2 (0x1B): the lower
        {0x181818, 2},
        {0x97AB80, 97},   // next to the transparent colour: an opaque neighbour
        {0xFF0000, 43},   // pure red: from the red ramp, not the reserved 243
    };
    for (const Case& c : cases)
        EXPECT_EQ(nearestColour(PicturePalette::Game, std::uint8_t(c.rgb >> 16), std::uint8_t(c.rgb >> 8), std::uint8_t(c.rgb)),
                  c.expected)
            << std::hex << c.rgb;
    EXPECT_EQ(nearestColour(PicturePalette::Menu, 0, 0, 0), 0);
}

// A horizontal grey ramp: with dithering the mean colour of the columns
// stays within a grey level of the ramp (taken over four neighbouring columns,
// as error diffusion trades error between them); plain nearest colour is off
// by up to half a grey step (8 levels).
TEST(PaletteMapping, DitheredGradientTracksTheRamp) {
    const auto grey = [](int x) { return 24 + x * 200 / 255; };
    const RgbaPicture ramp = rgbaPicture(256, 64, [&](int x, int) { return rgba(0x010101u * std::uint32_t(grey(x))); });
    auto worstBand = [&](bool dither) {
        const BitmapBuffer mapped = mapToPalette(ramp, PicturePalette::Game, dither);
        double worst = 0;
        for (int band = 0; band + 4 <= 256; ++band) {
            double error = 0;
            for (int x = band; x < band + 4; ++x)
                for (int y = 0; y < 64; ++y) {
                    const std::uint32_t c = GamePalette[pixelAt(mapped, x, y)];
                    error += ((c >> 16 & 0xFF) + (c >> 8 & 0xFF) + (c & 0xFF)) / 3.0 - grey(x);
                }
            worst = std::max(worst, std::abs(error / (4 * 64)));
        }
        return worst;
    };
    EXPECT_LT(worstBand(true), 1.0);
    EXPECT_GT(worstBand(false), 3.0);
}

// Pixels with alpha below 128 become 0, and so do opaque pixels of exactly
// the transparent colour; both pass no error to their neighbours.
TEST(PaletteMapping, TransparentPixelsBecomeZero) {
    const RgbaPicture p = rgbaPicture(4, 3, [](int x, int y) {
        if (y == 2) return rgba(x % 2 ? 0x97AB7Fu : 0x97AB80u);
        return rgba(x == 0 ? 0x808080u : 0x8B8F07u, std::uint8_t(y == 0 ? 127 - x : 128 + x));
    });
    for (bool dither : {false, true}) {
        const BitmapBuffer mapped = mapToPalette(p, PicturePalette::Game, dither);
        EXPECT_EQ(Bytes(mapped.topRow(0), mapped.topRow(0) + 4), (Bytes{0, 0, 0, 0}));
        EXPECT_EQ(Bytes(mapped.topRow(1), mapped.topRow(1) + 4), (Bytes{15, 48, 48, 48})) << dither;
        EXPECT_EQ(Bytes(mapped.topRow(2), mapped.topRow(2) + 4), (Bytes{97, 0, 97, 0})) << dither;
    }
}

// Every colour type libpng writes comes back as RGBA: alpha where the format
// has it, 16-bit samples scaled, colour maps expanded.
TEST(PictureFile, PngOfEveryColourTypeIsRead) {
    const RgbaPicture p = rgbaPicture(3, 2, [](int x, int y) {
        const std::uint32_t colours[] = {0x838383FF, 0xFFFFFFFF, 0x00000000};
        return y == 0 ? colours[x] : 0x8B8F07FF;
    });
    struct Case {
        std::uint32_t format;
        Bytes expected;   // indices of the top row, then the bottom row's first
    };
    const Case cases[] = {
        {PNG_FORMAT_RGBA, {15, 31, 0, 48}},           {PNG_FORMAT_RGB, {15, 31, 1, 48}},
        {PNG_FORMAT_GA, {15, 31, 0, 16}},             {PNG_FORMAT_GRAY, {15, 31, 1, 16}},
        {PNG_FORMAT_LINEAR_RGB_ALPHA, {15, 31, 0, 48}},
    };
    for (const Case& c : cases) {
        auto picture = decodeRgbaPicture(pngFile(p, c.format), 3, 2);
        ASSERT_TRUE(picture) << c.format << " " << picture.error().detail;
        const BitmapBuffer mapped = mapToPalette(*picture, PicturePalette::Game, false);
        EXPECT_EQ((Bytes{pixelAt(mapped, 0, 0), pixelAt(mapped, 1, 0), pixelAt(mapped, 2, 0), pixelAt(mapped, 0, 1)}),
                  c.expected)
            << c.format;
    }
}

// 24- and 32-bit rows in either order, and 32-bit bit fields with alpha, give
// the same picture; an alpha mask that is all zeros means opaque.
TEST(PictureFile, TrueColourBmpInBothRowOrders) {
    const RgbaPicture p = rgbaPicture(3, 2, [](int x, int y) { return std::uint32_t(0x10203000 + 0x40 * x + 0x1000000 * y) | 0xFF; });
    struct Case {
        int bits;
        bool topDown;
        bool bitFields;
    };
    for (const Case c : {Case{24, false, false}, {24, true, false}, {32, false, false}, {32, true, false}, {32, false, true}}) {
        auto read = decodeRgbaPicture(trueColourBmp(p, c.bits, c.topDown, c.bitFields), 3, 2);
        ASSERT_TRUE(read) << c.bits << c.topDown << " " << read.error().detail;
        EXPECT_EQ(read->rgba, p.rgba) << c.bits << c.topDown << c.bitFields;
    }
    RgbaPicture clear = p;
    for (std::size_t i = 3; i < clear.rgba.size(); i += 4) clear.rgba[i] = 0;
    auto opaque = decodeRgbaPicture(trueColourBmp(clear, 32, false, true), 3, 2);
    ASSERT_TRUE(opaque);
    EXPECT_EQ(opaque->rgba, p.rgba);
}

// Every refusal keeps the program's message and names the file and the reason.
TEST(PictureFile, RefusalsSayWhichFileAndWhy) {
    ScratchFolder dir;
    const RgbaPicture livery = rgbaPicture(256, 164, [](int x, int) { return rgba(0x010000u * std::uint32_t(x)); });
    const Bytes eightBit = encodeBitmap8(BitmapBuffer(256, 164), {});
    auto poked = [](Bytes b, std::size_t at, std::uint32_t value, int width) {
        for (int k = 0; k < width; ++k) b[at + std::size_t(k)] = std::uint8_t(value >> (8 * k));
        return b;
    };
    auto cut = [](const Bytes& b, std::size_t n) { return Bytes(b.begin(), b.begin() + std::ptrdiff_t(n)); };
    Bytes damagedPng = pngFile(livery);
    damagedPng[40] ^= 0xFF;
    const std::string hint = "; use --remap to map its colours to the game palette";
    struct Case {
        const char* name;
        Bytes file;
        bool remap;
        std::string detail;
        int height = 164;
    };
    const Case cases[] = {
        {"HELMETS.BMP", Bytes{'G', 'I', 'F', '8'}, false, "HELMETS.BMP: not a BMP file"},
        {"LIVERY.BMP", trueColourBmp(livery, 24), false, "LIVERY.BMP: 24-bit colour; Tarvel needs 8-bit pictures in the game palette" + hint},
        {"A.BMP", trueColourBmp(livery, 32, true), false, "A.BMP: 32-bit colour; Tarvel needs 8-bit pictures in the game palette" + hint},
        {"L.PNG", pngFile(livery), false, "L.PNG: a PNG picture; Tarvel needs 8-bit BMP pictures in the game palette" + hint},
        {"W.BMP", trueColourBmp(rgbaPicture(300, 164, [](int, int) { return 0xFFu; }), 24), true, "W.BMP: 300 x 164 pixels; a livery is 256 x 164"},
        {"W.PNG", pngFile(rgbaPicture(256, 165, [](int, int) { return 0xFFu; })), true, "W.PNG: 256 x 165 pixels; a livery is 256 x 164"},
        {"X.BMP", cut(eightBit, 1078), false, "X.BMP: the file ends at byte 1,078 inside the pixel rows"},
        {"X.BMP", cut(eightBit, 600), true, "X.BMP: the file ends at byte 600 inside the palette"},
        {"T.BMP", cut(trueColourBmp(livery, 24), 70000), true, "T.BMP: the file ends at byte 70,000 inside the pixel rows"},
        {"H.BMP", cut(eightBit, 30), false, "H.BMP: the file ends at byte 30 inside its header"},
        {"R.BMP", poked(eightBit, 30, 1, 4), false, "R.BMP: compressed (RLE8); Tarvel reads uncompressed bitmaps"},
        {"R.BMP", poked(trueColourBmp(livery, 24), 30, 3, 4), true, "R.BMP: compressed (bit fields); Tarvel reads uncompressed bitmaps"},
        {"F.BMP", poked(eightBit, 28, 4, 2), false, "F.BMP: 4-bit colour; Tarvel needs 8-bit pictures in the game palette"},
        {"F.BMP", poked(eightBit, 28, 16, 2), true, "F.BMP: 16-bit colour; Tarvel needs 8-, 24- or 32-bit pictures"},
        {"O.BMP", poked(eightBit, 14, 12, 4), false, "O.BMP: an information header of 12 bytes; Tarvel reads Windows bitmaps, whose header has 40 bytes or more"},
        {"P.BMP", poked(eightBit, 46, 300, 4), true, "P.BMP: the header names 300 palette colours; an 8-bit bitmap has at most 256"},
        {"D.BMP", poked(eightBit, 22, std::uint32_t(-164), 4), false, "D.BMP: rows stored top row first; Tarvel needs 8-bit bitmaps stored bottom row first"},
        {"D.BMP", poked(eightBit, 22, std::uint32_t(-164), 4), false, "D.BMP: 256 x 164 pixels; the helmet sheet is 256 x 180", 180},
        {"S.BMP", poked(eightBit, 10, 50, 4), false, "S.BMP: the pixel rows start at byte 50, inside the header"},
        {"B.PNG", damagedPng, true, "B.PNG: a damaged PNG file ("},
    };
    for (const Case& c : cases) {
        writeFileBytes(dir / c.name, c.file);
        RemapOptions options{.remap = c.remap};
        options.hint = "use --remap to map its colours to the game palette";
        auto loaded = LoadPictureForGame(dir / c.name, 256, c.height, options);
        ASSERT_FALSE(loaded) << c.detail;
        EXPECT_EQ(messageText(loaded.error()), "Couldn't Load Bitmap.");
        EXPECT_TRUE(loaded.error().detail.starts_with(c.detail)) << loaded.error().detail;
        EXPECT_EQ(loaded.error().detail.size() == c.detail.size(), !c.detail.ends_with("(")) << loaded.error().detail;
    }
    EXPECT_EQ(LoadPictureForGame(dir / "NONE.BMP", 256, 164, {}).error().detail, "NONE.BMP: there is no such file");
}

// An 8-bit bitmap is taken by its indices without remapping (with the
// loader's repairs) and by its palette's colours with it.
TEST(PictureFile, EightBitBitmapByIndicesOrByColours) {
    ScratchFolder dir;
    BitmapBuffer b(4, 1);
    const Bytes indices{0, 48, 255, 230};
    std::copy(indices.begin(), indices.end(), b.topRow(0));
    writeFileBytes(dir / "E.BMP", encodeBitmap8(b, {}));
    auto plain = LoadPictureForGame(dir / "E.BMP", 4, 1, {});
    auto mapped = LoadPictureForGame(dir / "E.BMP", 4, 1, {.remap = true});
    ASSERT_TRUE(plain && mapped);
    EXPECT_EQ(Bytes(plain->topRow(0), plain->topRow(0) + 4), (Bytes{0, 48, 31, 230}));
    EXPECT_EQ(Bytes(mapped->topRow(0), mapped->topRow(0) + 4), (Bytes{0, 48, 31, 115}));
}

// Another tool's files: ImageMagick's PNGs (palette, 16-bit, with alpha) load,
// and a mapped livery saved as BMP is one that ImageMagick reads.
TEST(PictureInterop, ImageMagickPngLoadsAndTheMappedLiveryReadsBack) {
    if (!fs::exists("/usr/bin/convert") || !fs::exists("/usr/bin/identify")) GTEST_SKIP() << "ImageMagick not installed";
    ScratchFolder dir;
    for (const char* type : {"PNG8", "PNG48", "PNG32"}) {
        const fs::path png = dir / (std::string(type) + ".png");
        const std::string command = "/usr/bin/convert -size 256x164 xc:'#8B8F07' -fill '#FFFFFF' -draw 'rectangle 0,0 9,9' " +
                                    std::string(type) + ":" + png.string() + " >/dev/null 2>&1";
        ASSERT_EQ(std::system(command.c_str()), 0);
        auto livery = LoadPictureForGame(png, 256, 164, {.remap = true, .dither = true});
        ASSERT_TRUE(livery) << type << " " << livery.error().detail;
        EXPECT_EQ(pixelAt(*livery, 5, 5), 31) << type;
        EXPECT_EQ(pixelAt(*livery, 100, 100), 48) << type;
        ASSERT_TRUE(SaveBitmap8(dir / "OUT.BMP", *livery, {}));
        const std::string identify = "/usr/bin/identify -format '%m %w %h %z %k' " + (dir / "OUT.BMP").string() + " > " +
                                     (dir / "id.txt").string();
        ASSERT_EQ(std::system(identify.c_str()), 0);
        const Bytes said = readFileBytes(dir / "id.txt");
        EXPECT_EQ(std::string(said.begin(), said.end()), "BMP3 256 164 8 2") << type;
    }
}

}  // namespace
}  // namespace tarvel::test
