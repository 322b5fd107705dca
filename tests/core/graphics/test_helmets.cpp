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

// Helmet n is the 74x15 rectangle at column n / 12, row n % 12 from the top:
// storing writes that rectangle only (an empty helmet clears it), extracting
// reads it back, swapping exchanges two and a self-swap changes nothing.
TEST(HelmetSheet, RectanglesOfThreeColumnsOfTwelve) {
    const BitmapBuffer sheet = numberedSheet();
    for (int n : {0, 11, 13, 26, 27}) {
        BitmapBuffer single = blankSingleHelmet(), blank = blankSingleHelmet();
        ASSERT_TRUE(ExtractHelmet(sheet, n, single));
        const int m = (n + 3) % 28, left = 74 * (m / 12), top = 15 * (m % 12);
        for (const BitmapBuffer* stored : {&single, &blank}) {
            BitmapBuffer other = numberedSheet();
            ASSERT_TRUE(StoreHelmet(other, m, *stored));
            int wrong = 0;
            for (int y = 0; y < 180; ++y)
                for (int x = 0; x < 256; ++x) {
                    const bool inside = x >= left && x < left + 74 && y >= top && y < top + 15;
                    const std::uint8_t expected = !inside ? pixelAt(sheet, x, y)
                                                  : stored == &blank ? pixelAt(blank, x - left, y - top)
                                                                     : pixelAt(sheet, x - left + 74 * (n / 12), y - top + 15 * (n % 12));
                    wrong += pixelAt(other, x, y) != expected;
                }
            EXPECT_EQ(wrong, 0) << n;
        }
    }
    BitmapBuffer swapped = sheet, expected = sheet, first = blankSingleHelmet(), last = blankSingleHelmet();
    SwapHelmets(swapped, 5, 5);
    EXPECT_EQ(swapped.data, sheet.data);
    SwapHelmets(swapped, 0, 27);
    ASSERT_TRUE(ExtractHelmet(sheet, 0, first) && ExtractHelmet(sheet, 27, last));
    ASSERT_TRUE(StoreHelmet(expected, 0, last) && StoreHelmet(expected, 27, first));
    EXPECT_EQ(swapped.data, expected.data);
}

// Numbers outside 0-27 and pictures of the wrong size fail and change nothing.
TEST(HelmetSheet, BadNumbersAndSizesFailAndChangeNothing) {
    const BitmapBuffer sheet = numberedSheet();
    BitmapBuffer other = sheet, single = blankSingleHelmet(), wrong(74, 16);
    for (auto status : {StoreHelmet(other, 28, single), StoreHelmet(other, -1, single), StoreHelmet(other, 0, wrong)})
        EXPECT_EQ(status.error().id, MessageId::ImportFailed);
    EXPECT_EQ(other.data, sheet.data);
    for (auto status : {ExtractHelmet(sheet, 28, single), ExtractHelmet(sheet, -1, single), ExtractHelmet(sheet, 0, wrong),
                        ExtractHelmet(BitmapBuffer(256, 179), 0, single)})
        EXPECT_EQ(status.error().id, MessageId::ExportFailed);
    EXPECT_EQ(single.data, blankSingleHelmet().data);
}

// The default sheet: the built-in helmet in three colourings (61/52 kept, to
// 221/217, to 30/25) with its first pixel byte never recoloured, zeros elsewhere.
TEST(HelmetSheet, DefaultSheetIsPinned) {
    EXPECT_EQ(digest(builtinSingleHelmet().data), "2204:1756cf4091a1699d");
    EXPECT_EQ(digest(BuildDefaultHelmetSheet().data), "47144:1ab3498bdd54a8be");
}

// Single helmets and sheets are saved and loaded at their own sizes only.
TEST(HelmetFiles, SheetAndSingleSizesAreEnforced) {
    ScratchFolder dir;
    ASSERT_TRUE(SaveSingleHelmet(dir / "one.bmp", builtinSingleHelmet(), {}));
    auto one = LoadSingleHelmet(dir / "one.bmp");
    ASSERT_TRUE(one);
    EXPECT_EQ(one->data, builtinSingleHelmet().data);
    EXPECT_FALSE(LoadHelmetSheet(dir / "one.bmp"));
    ASSERT_TRUE(SaveBitmap8(dir / "tall.bmp", BitmapBuffer(74, 16), {}));
    ASSERT_TRUE(SaveBitmap8(dir / "wide.bmp", BitmapBuffer(75, 15), {}));
    EXPECT_FALSE(LoadSingleHelmet(dir / "tall.bmp"));
    EXPECT_FALSE(LoadSingleHelmet(dir / "wide.bmp"));
    EXPECT_FALSE(SaveHelmetSheet(dir / "x.bmp", builtinSingleHelmet(), {}));
    ASSERT_TRUE(SaveHelmetSheet(dir / "sheet.bmp", BuildDefaultHelmetSheet(), {}));
    auto back = LoadHelmetSheet(dir / "sheet.bmp");
    ASSERT_TRUE(back);
    EXPECT_EQ(back->data, BuildDefaultHelmetSheet().data);
}

}  // namespace
}  // namespace tarvel::test
