#include "GraphicsTestSupport.h"
#include "graphics/BuiltinPictures.h"
#include "graphics/Helmets.h"

#include <gtest/gtest.h>

namespace tarvel::test {
namespace {

// A sheet whose every pixel tells its own position.
BitmapBuffer numberedSheet() {
    BitmapBuffer sheet = blankHelmetSheet();
    for (int y = 0; y < 180; ++y)
        for (int x = 0; x < 256; ++x) pixelAt(sheet, x, y) = std::uint8_t(x * 31 + y * 7);
    return sheet;
}

// Top-left corner of helmet n counted from the top of the picture.
std::pair<int, int> topLeft(int n) { return {74 * (n / 12), 15 * (n % 12)}; }

// Only helmet n's rectangle of `after` differs from `before`, and it holds `single`.
void expectOnlyHelmetChanged(const BitmapBuffer& before, const BitmapBuffer& after, int n, const BitmapBuffer& single) {
    auto [left, top] = topLeft(n);
    int wrong = 0;
    for (int y = 0; y < 180; ++y)
        for (int x = 0; x < 256; ++x) {
            bool inside = x >= left && x < left + 74 && y >= top && y < top + 15;
            wrong += pixelAt(after, x, y) != (inside ? pixelAt(single, x - left, y - top) : pixelAt(before, x, y));
        }
    EXPECT_EQ(wrong, 0) << "helmet " << n;
}

TEST(HelmetSheet, ExtractAndStoreCopyOneRectangleOfThreeColumnsOfTwelve) {
    const BitmapBuffer sheet = numberedSheet();
    for (int n : {0, 11, 13, 26, 27}) {
        BitmapBuffer single = blankSingleHelmet();
        ASSERT_TRUE(ExtractHelmet(sheet, n, single));
        BitmapBuffer other = numberedSheet();
        ASSERT_TRUE(StoreHelmet(other, (n + 3) % 28, single));
        expectOnlyHelmetChanged(sheet, other, (n + 3) % 28, single);
        // An empty helmet clears its rectangle and nothing else.
        ASSERT_TRUE(StoreHelmet(other, (n + 3) % 28, blankSingleHelmet()));
        expectOnlyHelmetChanged(sheet, other, (n + 3) % 28, blankSingleHelmet());
    }
}

TEST(HelmetSheet, BadNumbersAndSizesFailAndChangeNothing) {
    const BitmapBuffer sheet = numberedSheet();
    BitmapBuffer other = sheet, single = blankSingleHelmet();
    const BitmapBuffer wrongSingle(74, 16), wrongSheet(256, 179);
    for (auto status : {StoreHelmet(other, 28, single), StoreHelmet(other, -1, single), StoreHelmet(other, 0, wrongSingle)}) {
        ASSERT_FALSE(status);
        EXPECT_EQ(status.error().id, MessageId::ImportFailed);
    }
    EXPECT_EQ(other.data, sheet.data);
    BitmapBuffer wrong = wrongSingle;
    for (auto status : {ExtractHelmet(sheet, 28, single), ExtractHelmet(sheet, -1, single), ExtractHelmet(sheet, 0, wrong),
                        ExtractHelmet(wrongSheet, 0, single)}) {
        ASSERT_FALSE(status);
        EXPECT_EQ(status.error().id, MessageId::ExportFailed);
    }
    EXPECT_EQ(single.data, blankSingleHelmet().data);
}

TEST(HelmetSheet, SwapExchangesRectanglesAndSelfSwapDoesNothing) {
    BitmapBuffer sheet = numberedSheet();
    const BitmapBuffer original = sheet;
    SwapHelmets(sheet, 5, 5);
    EXPECT_EQ(sheet.data, original.data);
    SwapHelmets(sheet, 0, 27);
    BitmapBuffer first = blankSingleHelmet(), last = blankSingleHelmet();
    ASSERT_TRUE(ExtractHelmet(original, 0, first));
    ASSERT_TRUE(ExtractHelmet(original, 27, last));
    BitmapBuffer expected = original;
    ASSERT_TRUE(StoreHelmet(expected, 0, last));
    ASSERT_TRUE(StoreHelmet(expected, 27, first));
    EXPECT_EQ(sheet.data, expected.data);
}

TEST(HelmetSheet, BuiltinHelmetUsesTheRecolouredIndexes) {
    BitmapBuffer single = builtinSingleHelmet();
    int yellow = 0, shade = 0;
    for (std::size_t i = 0; i < single.pixelBytes(); ++i) {
        yellow += single.pixels()[i] == 61;
        shade += single.pixels()[i] == 52;
    }
    EXPECT_GT(yellow, 100);
    EXPECT_GT(shade, 20);
}

TEST(HelmetSheet, DefaultSheetColouringsAndFirstByteQuirk) {
    // The built-in helmet's first pixel is a shade that the colourings change,
    // so the quirk shows in the sheet.
    ASSERT_EQ(kBuiltinHelmetPixels[0], 52);
    BitmapBuffer sheet = BuildDefaultHelmetSheet();
    BitmapBuffer builtin = builtinSingleHelmet();
    auto expectedPixel = [&](int colouring, std::size_t index) {
        std::uint8_t p = builtin.pixels()[index];
        if (index == 0) return p;   // the first pixel byte is never recoloured
        if (colouring >= 1) p = p == 61 ? 221 : p == 52 ? 217 : p;
        if (colouring >= 2) p = p == 221 ? 30 : p == 217 ? 25 : p;
        return p;
    };
    int colouringOf[28];
    for (int n : {0, 3, 6, 9, 13, 16, 19, 22, 26}) colouringOf[n] = 0;
    for (int n : {2, 5, 8, 11, 12, 15, 18, 21, 25}) colouringOf[n] = 1;
    for (int n : {1, 4, 7, 10, 14, 17, 20, 23, 24, 27}) colouringOf[n] = 2;
    BitmapBuffer single = blankSingleHelmet();
    for (int n = 0; n < 28; ++n) {
        ASSERT_TRUE(ExtractHelmet(sheet, n, single));
        int wrong = 0;
        for (int r = 0; r < 15; ++r)
            for (int x = 0; x < 74; ++x) {
                std::size_t index = std::size_t(r) * 76 + std::size_t(x);
                wrong += single.pixels()[index] != expectedPixel(colouringOf[n], index);
            }
        EXPECT_EQ(wrong, 0) << "helmet " << n;
    }
    // Pixels outside the 28 rectangles stay 0.
    for (int y = 0; y < 180; ++y)
        for (int x = 222; x < 256; ++x) ASSERT_EQ(pixelAt(sheet, x, y), 0);
    for (int y = 60; y < 180; ++y) ASSERT_EQ(pixelAt(sheet, 150, y), 0) << y;
}

TEST(HelmetFiles, SheetAndSingleSizesAreEnforced) {
    ScratchFolder dir;
    GraphicsOptions options;
    ASSERT_TRUE(SaveSingleHelmet(dir / "one.bmp", builtinSingleHelmet(), options));
    auto one = LoadSingleHelmet(dir / "one.bmp");
    ASSERT_TRUE(one);
    EXPECT_EQ(one->data, builtinSingleHelmet().data);
    EXPECT_FALSE(LoadHelmetSheet(dir / "one.bmp"));
    ASSERT_TRUE(SaveBitmap8(dir / "tall.bmp", BitmapBuffer(74, 16), options));
    ASSERT_TRUE(SaveBitmap8(dir / "wide.bmp", BitmapBuffer(75, 15), options));
    EXPECT_FALSE(LoadSingleHelmet(dir / "tall.bmp"));
    EXPECT_FALSE(LoadSingleHelmet(dir / "wide.bmp"));
    EXPECT_FALSE(SaveHelmetSheet(dir / "x.bmp", builtinSingleHelmet(), options));
    BitmapBuffer sheet = BuildDefaultHelmetSheet();
    ASSERT_TRUE(SaveHelmetSheet(dir / "sheet.bmp", sheet, options));
    auto back = LoadHelmetSheet(dir / "sheet.bmp");
    ASSERT_TRUE(back);
    EXPECT_EQ(back->data, sheet.data);
}

}  // namespace
}  // namespace tarvel::test
