#include "GraphicsTestSupport.h"
#include "common/FileIO.h"
#include "graphics/Bitmap.h"
#include "graphics/Palette.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

namespace tarvel::test {
namespace {

BitmapBuffer patterned(int width, int height) {
    BitmapBuffer b(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) pixelAt(b, x, y) = std::uint8_t((x * 7 + y * 13) % 255);   // never 255
    return b;
}

bool pixelsEqual(const BitmapBuffer& a, const BitmapBuffer& b) {
    if (a.width != b.width || a.height != b.height) return false;
    for (int y = 0; y < a.height; ++y)
        for (int x = 0; x < a.width; ++x)
            if (pixelAt(a, x, y) != pixelAt(b, x, y)) return false;
    return true;
}

TEST(Bitmap, HeaderFieldsAndGamePalette) {
    BitmapBuffer b(74, 15);
    ASSERT_TRUE(b.valid());
    EXPECT_EQ(b.stride(), 76);
    EXPECT_EQ(b.data.size(), 1064u + 76u * 15u);
    Bytes file = encodeBitmap8(b, {});
    ASSERT_EQ(file.size(), 1078u + 1140u);
    EXPECT_EQ(file[0], 'B');
    EXPECT_EQ(file[1], 'M');
    // Offset and 32-bit value: size, reserved, pixel offset, header size, width,
    // height, planes and depth, compression, image size, colours used and important.
    const std::pair<std::size_t, std::uint32_t> fields[] = {{2, 1078 + 1140}, {6, 0}, {10, 1078}, {14, 40}, {18, 74},
                                                            {22, 15}, {26, 1 | 8 << 16}, {30, 0}, {34, 0}, {46, 256}, {50, 256}};
    for (auto [offset, value] : fields) EXPECT_EQ(loadU32(&file[offset]), value) << offset;
    // Palette entries as blue, green, red, 0.
    EXPECT_EQ(loadU32(&file[54]), 0x0097AB7Fu);
    EXPECT_EQ(file[54 + 4 * 255], 0xFF);
    EXPECT_EQ(file[54 + 4 * 246 + 2], 0xA3);
    EXPECT_EQ(file[54 + 4 * 214 + 2], 0x41);   // 415A07
}

TEST(Bitmap, AlternativeGreensOnlyInTheirRangeAndOnlyWhenAsked) {
    BitmapBuffer b(4, 1);
    GraphicsOptions alt;
    alt.gp2Palette = true;
    Bytes plain = encodeBitmap8(b, {});
    Bytes green = encodeBitmap8(b, alt);
    for (int i = 0; i < 256; ++i) {
        std::uint32_t rgb = loadU32(&green[54 + 4 * std::size_t(i)]) & 0xFFFFFF;
        std::uint32_t base = loadU32(&plain[54 + 4 * std::size_t(i)]) & 0xFFFFFF;
        if (i >= 214 && i <= 233) EXPECT_NE(rgb, base) << i;
        else EXPECT_EQ(rgb, base) << i;
    }
    EXPECT_EQ(loadU32(&green[54 + 4 * 214]) & 0xFFFFFF, 0x534307u);
    EXPECT_EQ(loadU32(&green[54 + 4 * 233]) & 0xFFFFFF, 0xA3C76Fu);
}

TEST(Bitmap, SaveAndLoadRoundTripWithOddWidth) {
    ScratchFolder dir;
    BitmapBuffer b = patterned(75, 15);
    ASSERT_TRUE(SaveBitmap8(dir / "a.bmp", b, {}));
    EXPECT_EQ(std::filesystem::file_size(dir / "a.bmp"), 1078u + 76u * 15u);
    auto loaded = LoadBitmap8(dir / "a.bmp", 75, 15);
    ASSERT_TRUE(loaded);
    EXPECT_TRUE(pixelsEqual(*loaded, b));
    EXPECT_TRUE(std::equal(loaded->data.begin(), loaded->data.begin() + 1064, b.data.begin()));
}

TEST(Bitmap, WrongSizeDepthOrCompressionIsRefused) {
    const Bytes good = encodeBitmap8(patterned(74, 15), {});
    ASSERT_TRUE(decodeBitmap8(good, 74, 15));
    for (auto [width, height] : {std::pair{74, 16}, {75, 15}, {73, 15}}) EXPECT_FALSE(decodeBitmap8(good, width, height));
    // Offset, value and its width written over the good file: a depth of 4,
    // RLE, not "BM", top-down rows.
    const std::tuple<std::size_t, std::uint32_t, std::size_t> damage[] = {
        {28, 4, 2}, {30, 1, 4}, {0, 'X', 1}, {22, std::uint32_t(-15), 4}};
    for (auto [offset, value, width] : damage) {
        Bytes bad = good;
        for (std::size_t k = 0; k < width; ++k) bad[offset + k] = std::uint8_t(value >> (8 * k));
        EXPECT_FALSE(decodeBitmap8(bad, 74, 15)) << offset;
    }
    auto r = decodeBitmap8(std::span(good).first(good.size() - 1), 74, 15);
    ASSERT_FALSE(r);
    EXPECT_EQ(r.error().id, MessageId::CouldntLoadBitmap);
    ScratchFolder dir;
    EXPECT_FALSE(LoadBitmap8(dir / "missing.bmp", 74, 15));
}

TEST(Bitmap, WhiteBecomes31AndFilePaletteIsReplaced) {
    BitmapBuffer b = patterned(8, 2);
    pixelAt(b, 0, 0) = 255;
    pixelAt(b, 1, 0) = 200;
    Bytes file = encodeBitmap8(b, {});
    for (int i = 0; i < 256; ++i) file[54 + 4 * std::size_t(i)] = 0x11;   // a foreign palette
    auto loaded = decodeBitmap8(file, 8, 2);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(pixelAt(*loaded, 0, 0), 31);
    EXPECT_EQ(pixelAt(*loaded, 1, 0), 200) << "no repair: the upper palette is not the transparent colour";
    EXPECT_EQ(loaded->data[kBitmapInfoHeaderSize + 0], 0x7F) << "game palette put back";
}

TEST(Bitmap, TransparentRangeRepairNeedsEveryUpperEntryToMatchOneComponent) {
    BitmapBuffer b(8, 1);
    const std::uint8_t values[8] = {191, 192, 250, 255, 31, 0, 100, 230};
    for (int x = 0; x < 8; ++x) pixelAt(b, x, 0) = values[x];
    Bytes file = encodeBitmap8(b, {});
    auto entry = [&](int i) { return &file[54 + 4 * std::size_t(i)]; };
    // Entries 192-255 each share one component with the transparent colour.
    for (int i = 192; i < 256; ++i) {
        std::uint8_t* e = entry(i);
        e[0] = e[1] = e[2] = 0;
        e[i % 3] = i % 3 == 0 ? 0x7F : i % 3 == 1 ? 0xAB : 0x97;
    }
    auto repaired = decodeBitmap8(file, 8, 1);
    ASSERT_TRUE(repaired);
    const std::uint8_t expected[8] = {191, 0, 0, 0, 31, 0, 100, 0};
    for (int x = 0; x < 8; ++x) EXPECT_EQ(pixelAt(*repaired, x, 0), expected[x]) << x;

    entry(255)[0] = entry(255)[1] = entry(255)[2] = 1;   // one entry breaks the rule
    auto unrepaired = decodeBitmap8(file, 8, 1);
    ASSERT_TRUE(unrepaired);
    const std::uint8_t kept[8] = {191, 192, 250, 31, 31, 0, 100, 230};
    for (int x = 0; x < 8; ++x) EXPECT_EQ(pixelAt(*unrepaired, x, 0), kept[x]) << x;
}

TEST(Bitmap, FailedSaveLeavesNoFile) {
    ScratchFolder dir;
    BitmapBuffer b(4, 4);
    EXPECT_FALSE(SaveBitmap8(dir / "no-such-folder" / "x.bmp", b, {}));
    BitmapBuffer broken;
    auto r = SaveBitmap8(dir / "y.bmp", broken, {});
    ASSERT_FALSE(r);
    EXPECT_EQ(r.error().id, MessageId::CouldntSaveBitmap);
    EXPECT_FALSE(std::filesystem::exists(dir / "y.bmp"));
}

// ---- other tools' bitmaps ------------------------------------------------------------

bool haveTool(const char* path) { return std::filesystem::exists(path); }

int run(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()); }

// RGB of every pixel, top row first, through a palette of 0xRRGGBB.
Bytes rgbOf(const BitmapBuffer& b, bool alternativeGreens) {
    Bytes rgb;
    for (int y = 0; y < b.height; ++y)
        for (int x = 0; x < b.width; ++x) {
            std::uint32_t c = gamePaletteColour(pixelAt(b, x, y), alternativeGreens);
            rgb.push_back(std::uint8_t(c >> 16));
            rgb.push_back(std::uint8_t(c >> 8));
            rgb.push_back(std::uint8_t(c));
        }
    return rgb;
}

TEST(BitmapInterop, ImageMagickReadsOurBitmapsWithTheSameColours) {
    if (!haveTool("/usr/bin/convert")) GTEST_SKIP() << "ImageMagick not installed";
    ScratchFolder dir;
    BitmapBuffer b = patterned(256, 164);
    ASSERT_TRUE(SaveBitmap8(dir / "a.bmp", b, {}));
    ASSERT_EQ(run("/usr/bin/convert " + (dir / "a.bmp").string() + " -depth 8 rgb:" + (dir / "a.rgb").string()), 0);
    auto rgb = readWholeFile(dir / "a.rgb");
    ASSERT_TRUE(rgb);
    EXPECT_EQ(*rgb, rgbOf(b, false));
}

TEST(BitmapInterop, ImageMagickUncompressedLoadsAndCompressedOrDeepIsRefused) {
    if (!haveTool("/usr/bin/convert")) GTEST_SKIP() << "ImageMagick not installed";
    ScratchFolder dir;
    BitmapBuffer b = patterned(256, 164);
    ASSERT_TRUE(SaveBitmap8(dir / "ours.bmp", b, {}));
    const std::string in = (dir / "ours.bmp").string();
    ASSERT_EQ(run("/usr/bin/convert " + in + " -compress none " + (dir / "v5.bmp").string()), 0);
    ASSERT_EQ(run("/usr/bin/convert " + in + " -compress none BMP3:" + (dir / "v3.bmp").string()), 0);
    ASSERT_EQ(run("/usr/bin/convert " + in + " -compress RLE BMP3:" + (dir / "rle.bmp").string()), 0);
    ASSERT_EQ(run("/usr/bin/convert " + in + " -type TrueColor BMP3:" + (dir / "deep.bmp").string()), 0);
    ASSERT_EQ(run("/usr/bin/convert " + in + " -colors 16 -compress none BMP3:" + (dir / "four.bmp").string()), 0);
    for (const char* name : {"v5.bmp", "v3.bmp"}) {
        SCOPED_TRACE(name);
        auto file = readWholeFile(dir / name);
        ASSERT_TRUE(file);
        ASSERT_EQ(loadU16(&(*file)[28]), 8) << "ImageMagick kept 8 bits";
        auto loaded = LoadBitmap8(dir / name, 256, 164);
        ASSERT_TRUE(loaded);
        // ImageMagick may order its palette differently: compare colours
        // through the file's own palette.
        const std::size_t palette = 14 + loadU32(&(*file)[14]);
        int wrong = 0;
        for (int y = 0; y < 164; ++y)
            for (int x = 0; x < 256; ++x) {
                const std::uint8_t* e = &(*file)[palette + 4u * pixelAt(*loaded, x, y)];
                std::uint32_t rgb = std::uint32_t(e[2]) << 16 | std::uint32_t(e[1]) << 8 | e[0];
                if (rgb != GamePalette[pixelAt(b, x, y)]) ++wrong;
            }
        EXPECT_EQ(wrong, 0);
    }
    EXPECT_FALSE(LoadBitmap8(dir / "rle.bmp", 256, 164));
    EXPECT_FALSE(LoadBitmap8(dir / "deep.bmp", 256, 164));
    auto four = readWholeFile(dir / "four.bmp");
    ASSERT_TRUE(four);
    EXPECT_EQ(loadU16(&(*four)[28]), 4);
    EXPECT_FALSE(LoadBitmap8(dir / "four.bmp", 256, 164));
    EXPECT_FALSE(LoadBitmap8(dir / "v3.bmp", 256, 165));
}

}  // namespace
}  // namespace tarvel::test
