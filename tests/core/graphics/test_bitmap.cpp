#include "GraphicsTestSupport.h"
#include "common/FileIO.h"
#include "graphics/Bitmap.h"
#include "graphics/Palette.h"

#include <gtest/gtest.h>

namespace tarvel::test {
namespace {

BitmapBuffer patterned(int width, int height) {
    BitmapBuffer b(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) pixelAt(b, x, y) = std::uint8_t((x * 7 + y * 13) % 255);   // never 255
    return b;
}

// The whole file pinned: header fields, the game palette (with the alternative
// greens 214-233 only when asked), rows padded to four bytes, bottom row first.
TEST(Bitmap, EncodedFileIsPinned) {
    const BitmapBuffer b = patterned(74, 15);
    EXPECT_EQ(b.stride(), 76);
    GraphicsOptions alt;
    alt.gp2Palette = true;
    EXPECT_EQ(digest(encodeBitmap8(b, {})), "2218:1480aea1a7295267");
    EXPECT_EQ(digest(encodeBitmap8(b, alt)), "2218:f76725d6e5f9b8cf");
}

// Saving and loading keeps every pixel and header byte of an odd width; a
// missing folder or an empty picture fails and leaves no file.
TEST(Bitmap, SaveAndLoadRoundTrip) {
    ScratchFolder dir;
    BitmapBuffer b = patterned(75, 15);
    ASSERT_TRUE(SaveBitmap8(dir / "a.bmp", b, {}));
    auto loaded = LoadBitmap8(dir / "a.bmp", 75, 15);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->data, b.data);
    EXPECT_FALSE(SaveBitmap8(dir / "no-such-folder" / "x.bmp", BitmapBuffer(4, 4), {}));
    EXPECT_EQ(SaveBitmap8(dir / "y.bmp", BitmapBuffer(), {}).error().id, MessageId::CouldntSaveBitmap);
    EXPECT_FALSE(std::filesystem::exists(dir / "y.bmp"));
    EXPECT_FALSE(LoadBitmap8(dir / "missing.bmp", 74, 15));
}

// Wrong size, a depth of 4, RLE, not "BM", top-down rows and a cut file are refused.
TEST(Bitmap, WrongSizeDepthOrCompressionIsRefused) {
    const Bytes good = encodeBitmap8(patterned(74, 15), {});
    ASSERT_TRUE(decodeBitmap8(good, 74, 15));
    for (auto [width, height] : {std::pair{74, 16}, {75, 15}, {73, 15}}) EXPECT_FALSE(decodeBitmap8(good, width, height));
    const std::tuple<std::size_t, std::uint32_t, std::size_t> damage[] = {{28, 4, 2}, {30, 1, 4}, {0, 'X', 1}, {22, std::uint32_t(-15), 4}};
    for (auto [offset, value, width] : damage) {
        Bytes bad = good;
        for (std::size_t k = 0; k < width; ++k) bad[offset + k] = std::uint8_t(value >> (8 * k));
        EXPECT_FALSE(decodeBitmap8(bad, 74, 15)) << offset;
    }
    EXPECT_EQ(decodeBitmap8(std::span(good).first(good.size() - 1), 74, 15).error().id, MessageId::CouldntLoadBitmap);
}

// Loading puts the game palette back and turns white (255) into 31; pixels
// 192-255 become transparent only when every file entry 192-255 shares one
// component with the transparent colour.
TEST(Bitmap, LoadingRepairsWhiteAndTheTransparentRange) {
    BitmapBuffer b(8, 1);
    const Bytes values{191, 192, 250, 255, 31, 0, 100, 230};
    std::copy(values.begin(), values.end(), b.topRow(0));
    Bytes file = encodeBitmap8(b, {});
    auto row = [](const auto& r) { return Bytes(r->topRow(0), r->topRow(0) + 8); };
    for (int i = 0; i < 256; ++i) {   // a foreign palette whose upper entries share one component with the transparent colour
        std::uint8_t* e = &file[54 + 4 * std::size_t(i)];
        e[0] = e[1] = e[2] = 0x11;
        if (i >= 192) e[i % 3] = i % 3 == 0 ? 0x7F : i % 3 == 1 ? 0xAB : 0x97;
    }
    file[54 + 4 * 255] = 1;   // but one
    auto plain = decodeBitmap8(file, 8, 1);
    ASSERT_TRUE(plain);
    EXPECT_EQ(row(plain), (Bytes{191, 192, 250, 31, 31, 0, 100, 230}));
    EXPECT_EQ(plain->data[kBitmapInfoHeaderSize], 0x7F) << "game palette put back";
    file[54 + 4 * 255] = 0x7F;
    auto repaired = decodeBitmap8(file, 8, 1);
    ASSERT_TRUE(repaired);
    EXPECT_EQ(row(repaired), (Bytes{191, 0, 0, 0, 31, 0, 100, 0}));
}

// Another tool's bitmaps: uncompressed 8-bit files of either header version
// load with the same colours through their own palette order; RLE, true
// colour and 4-bit files are refused.
TEST(BitmapInterop, ImageMagickUncompressedLoadsAndCompressedOrDeepIsRefused) {
    if (!std::filesystem::exists("/usr/bin/convert")) GTEST_SKIP() << "ImageMagick not installed";
    ScratchFolder dir;
    BitmapBuffer b = patterned(256, 164);
    ASSERT_TRUE(SaveBitmap8(dir / "ours.bmp", b, {}));
    const std::pair<const char*, const char*> conversions[] = {{"v5.bmp", "-compress none "}, {"v3.bmp", "-compress none BMP3:"},
        {"rle.bmp", "-compress RLE BMP3:"}, {"deep.bmp", "-type TrueColor BMP3:"}, {"four.bmp", "-colors 16 -compress none BMP3:"}};
    for (auto [name, options] : conversions)
        ASSERT_EQ(std::system(("/usr/bin/convert " + (dir / "ours.bmp").string() + " " + options + (dir / name).string() + " >/dev/null 2>&1").c_str()), 0);
    for (const char* name : {"v5.bmp", "v3.bmp"}) {
        const Bytes file = readFileBytes(dir / name);
        ASSERT_EQ(loadU16(&file[28]), 8) << name;
        auto loaded = LoadBitmap8(dir / name, 256, 164);
        ASSERT_TRUE(loaded) << name;
        const std::size_t palette = 14 + loadU32(&file[14]);
        int wrong = 0;
        for (int y = 0; y < 164; ++y)
            for (int x = 0; x < 256; ++x) {
                const std::uint8_t* e = &file[palette + 4u * pixelAt(*loaded, x, y)];
                wrong += (std::uint32_t(e[2]) << 16 | std::uint32_t(e[1]) << 8 | e[0]) != GamePalette[pixelAt(b, x, y)];
            }
        EXPECT_EQ(wrong, 0) << name;
    }
    EXPECT_EQ(loadU16(&readFileBytes(dir / "four.bmp")[28]), 4);
    for (const char* name : {"rle.bmp", "deep.bmp", "four.bmp"}) EXPECT_FALSE(LoadBitmap8(dir / name, 256, 164)) << name;
    EXPECT_FALSE(LoadBitmap8(dir / "v3.bmp", 256, 165));
}

}  // namespace
}  // namespace tarvel::test
