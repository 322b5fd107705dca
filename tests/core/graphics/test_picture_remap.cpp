#include "GraphicsTestSupport.h"
#include "graphics/Palette.h"
#include "graphics/PaletteMapping.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tarvel::test {
namespace {
namespace fs = std::filesystem;

int nearest(PicturePalette palette, std::uint32_t rgb) {
    return nearestColour(palette, std::uint8_t(rgb >> 16), std::uint8_t(rgb >> 8), std::uint8_t(rgb));
}

// Every allowed colour maps to itself or to an equal colour's lower index,
// reserved ones never come out, and known colours land where they should.
TEST(PaletteMapping, NearestAllowedColourTiesToTheLowerIndex) {
    for (PicturePalette palette : {PicturePalette::Game, PicturePalette::Menu})
        for (int i = 0; i < 256; ++i) {
            const std::uint32_t c = paletteColours(palette)[std::size_t(i)];
            const int j = nearest(palette, c);
            EXPECT_TRUE(mappingMayChoose(palette, j)) << i;
            EXPECT_TRUE(!mappingMayChoose(palette, i) || (j <= i && paletteColours(palette)[std::size_t(j)] == c)) << i;
        }
    for (int i : {0, 214, 233, 240, 255}) EXPECT_FALSE(mappingMayChoose(PicturePalette::Game, i)) << i;
    for (int i : {1, 213, 234, 239}) EXPECT_TRUE(mappingMayChoose(PicturePalette::Game, i)) << i;
    // Black and white, the midpoint of greys 1 and 2, the transparent colour's
    // neighbour, and a red whose exact match (243) is reserved.
    const std::pair<std::uint32_t, int> known[] = {{0x000000, 1}, {0xFFFFFF, 31}, {0x171717, 1}, {0x181818, 2},
                                                   {0x97AB80, 97}, {0xFF0000, 43}};
    for (auto [rgb, index] : known) EXPECT_EQ(nearest(PicturePalette::Game, rgb), index) << std::hex << rgb;
    EXPECT_EQ(nearest(PicturePalette::Menu, 0x000000), 0);
}

// A horizontal grey ramp: with dithering the mean colour of the columns stays
// within a grey level of the ramp (over four neighbouring columns, as error
// diffusion trades error between them); plain nearest colour is off by up to
// half a grey step (8 levels).
TEST(PaletteMapping, DitheredGradientTracksTheRamp) {
    const auto grey = [](int x) { return 24 + x * 200 / 255; };
    const RgbaPicture ramp = rgbaPicture(256, 64, [&](int x, int) { return 0x01010100u * std::uint32_t(grey(x)) | 0xFF; });
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

// A PNG's pixels with alpha below 128 become 0, and so do opaque pixels of
// exactly the transparent colour; neither passes error on.
TEST(PaletteMapping, TransparentPixelsOfAPngBecomeZero) {
    const RgbaPicture p = rgbaPicture(4, 3, [](int x, int y) -> std::uint32_t {
        if (y == 2) return x % 2 ? 0x97AB7FFF : 0x97AB80FF;
        return (x == 0 ? 0x80808000 : 0x8B8F0700) | std::uint32_t(y == 0 ? 127 - x : 128 + x);
    });
    auto read = decodeRgbaPicture(pngFile(p), 4, 3);
    ASSERT_TRUE(read);
    for (bool dither : {false, true}) {
        const BitmapBuffer m = mapToPalette(*read, PicturePalette::Game, dither);
        EXPECT_EQ(Bytes(m.pixels(), m.pixels() + 12), (Bytes{97, 0, 97, 0, 15, 48, 48, 48, 0, 0, 0, 0})) << dither;
    }
}

// 24- and 32-bit rows in either order, and 32-bit bit fields with alpha, give
// the same picture; an alpha mask that is all zeros means opaque.
TEST(PictureFile, TrueColourBmpInBothRowOrders) {
    const RgbaPicture p = rgbaPicture(3, 2, [](int x, int y) { return std::uint32_t(0x10203000 + 0x40 * x + 0x1000000 * y) | 0xFF; });
    RgbaPicture clear = p;
    for (std::size_t i = 3; i < clear.rgba.size(); i += 4) clear.rgba[i] = 0;
    const std::tuple<const RgbaPicture&, int, bool, bool> cases[] = {
        {p, 24, false, false}, {p, 24, true, false}, {p, 32, false, false}, {p, 32, true, false}, {p, 32, true, true}, {clear, 32, false, true}};
    for (auto [picture, bits, topDown, bitFields] : cases) {
        auto read = decodeRgbaPicture(trueColourBmp(picture, bits, topDown, bitFields), 3, 2);
        ASSERT_TRUE(read) << read.error().detail;
        EXPECT_EQ(read->rgba, p.rgba) << bits << topDown << bitFields;
    }
}

// Every refusal keeps the program's message and names the file and the reason.
TEST(PictureFile, RefusalsSayWhichFileAndWhy) {
    ScratchFolder dir;
    const RgbaPicture livery = rgbaPicture(256, 164, [](int x, int) { return std::uint32_t(x) << 24 | 0xFF; });
    const Bytes eightBit = encodeBitmap8(BitmapBuffer(256, 164), {});
    auto poked = [](Bytes b, std::size_t at, std::uint32_t value, int width) {
        for (int k = 0; k < width; ++k) b[at + std::size_t(k)] = std::uint8_t(value >> (8 * k));
        return b;
    };
    auto cut = [](const Bytes& b, std::size_t n) { return Bytes(b.begin(), b.begin() + std::ptrdiff_t(n)); };
    const std::string game = " in the game palette; use --remap to map its colours to the game palette";
    struct Case {
        const char* name;
        Bytes file;
        bool remap;
        std::string detail;
        int height = 164;
    };
    const Case cases[] = {
        {"HELMETS.BMP", Bytes{'G', 'I', 'F', '8'}, false, "HELMETS.BMP: not a BMP file"},
        {"LIVERY.BMP", trueColourBmp(livery, 24), false, "LIVERY.BMP: 24-bit colour; Tarvel needs 8-bit pictures" + game},
        {"A.BMP", trueColourBmp(livery, 32, true), false, "A.BMP: 32-bit colour; Tarvel needs 8-bit pictures" + game},
        {"L.PNG", pngFile(livery), false, "L.PNG: a PNG picture; Tarvel needs 8-bit BMP pictures" + game},
        {"W.BMP", trueColourBmp(rgbaPicture(300, 164, [](int, int) { return 0xFFu; }), 24), true, "W.BMP: 300 x 164 pixels; a livery is 256 x 164"},
        {"W.PNG", pngFile(livery), true, "W.PNG: 256 x 164 pixels; the helmet sheet is 256 x 180", 180},
        {"D.BMP", poked(eightBit, 22, std::uint32_t(-164), 4), false, "D.BMP: 256 x 164 pixels; Tarvel needs 256 x 198 here", 198},
        {"D.BMP", poked(eightBit, 22, std::uint32_t(-164), 4), false, "D.BMP: rows stored top row first; Tarvel needs 8-bit bitmaps stored bottom row first"},
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
        {"S.BMP", poked(eightBit, 10, 50, 4), false, "S.BMP: the pixel rows start at byte 50, inside the header"},
        {"B.PNG", poked(pngFile(livery), 40, 0xFFFF, 2), true, "B.PNG: a damaged PNG file (", 164},
    };
    for (const Case& c : cases) {
        writeFileBytes(dir / c.name, c.file);
        RemapOptions options{.remap = c.remap};
        options.hint = "use --remap to map its colours to the game palette";
        auto loaded = LoadPictureForGame(dir / c.name, 256, c.height, options);
        ASSERT_FALSE(loaded) << c.detail;
        EXPECT_EQ(messageText(loaded.error()), "Couldn't Load Bitmap.");
        // A damaged PNG's reason ends with libpng's own words.
        EXPECT_EQ(loaded.error().detail.substr(0, c.detail.ends_with("(") ? c.detail.size() : std::string::npos), c.detail);
    }
    EXPECT_EQ(LoadPictureForGame(dir / "NONE.BMP", 256, 164, {}).error().detail, "NONE.BMP: there is no such file");
}

// An 8-bit bitmap is taken by its indices without remapping (with the
// loader's repairs) and by its palette's colours with it.
TEST(PictureFile, EightBitBitmapByIndicesOrByColours) {
    ScratchFolder dir;
    BitmapBuffer b(4, 1);
    const Bytes indices{0, 48, 255, 230};
    std::copy(indices.begin(), indices.end(), b.row(0));
    writeFileBytes(dir / "E.BMP", encodeBitmap8(b, {}));
    auto plain = LoadPictureForGame(dir / "E.BMP", 4, 1, {});
    auto mapped = LoadPictureForGame(dir / "E.BMP", 4, 1, {.remap = true});
    ASSERT_TRUE(plain && mapped);
    EXPECT_EQ(Bytes(plain->row(0), plain->row(0) + 4), (Bytes{0, 48, 31, 230}));
    EXPECT_EQ(Bytes(mapped->row(0), mapped->row(0) + 4), (Bytes{0, 48, 31, 115}));
}

// ImageMagick's PNGs (palette, 8 and 16 bits per sample, with alpha) load,
// and a mapped livery saved as BMP is one that ImageMagick reads.
TEST(PictureInterop, ImageMagickPngLoadsAndTheMappedLiveryReadsBack) {
    if (!fs::exists("/usr/bin/convert") || !fs::exists("/usr/bin/identify")) GTEST_SKIP() << "ImageMagick not installed";
    ScratchFolder dir;
    const std::string png = (dir / "IN.png").string(), bmp = (dir / "OUT.BMP").string(), said = (dir / "id.txt").string();
    for (const std::string type : {"PNG8", "PNG24", "PNG48", "PNG32"}) {
        ASSERT_EQ(std::system(("/usr/bin/convert -size 256x164 xc:'#8B8F07' -fill white -draw 'rectangle 0,0 9,9' " + type + ":" +
                               png + " >/dev/null 2>&1").c_str()), 0);
        auto livery = LoadPictureForGame(png, 256, 164, {.remap = true, .dither = true});
        ASSERT_TRUE(livery) << type << " " << livery.error().detail;
        EXPECT_EQ(pixelAt(*livery, 5, 5) * 1000 + pixelAt(*livery, 100, 100), 31048) << type;
        ASSERT_TRUE(SaveBitmap8(bmp, *livery, {}));
        ASSERT_EQ(std::system(("/usr/bin/identify -format '%m %w %h %z %k' " + bmp + " > " + said).c_str()), 0);
        const Bytes text = readFileBytes(said);
        EXPECT_EQ(std::string(text.begin(), text.end()), "BMP3 256 164 8 2") << type;
    }
}

}  // namespace
}  // namespace tarvel::test
