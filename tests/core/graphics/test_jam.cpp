#include "GraphicsTestSupport.h"
#include "fixtures/JamFixture.h"
#include "graphics/Jam.h"
#include "graphics/JamCatalogue.h"

#include "common/FileIO.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace tarvel::test {
namespace {

// ---- scrambling -------------------------------------------------------------

TEST(JamScramble, WholeWordsXorTheKeyTimesFivePerWordAndOnlyTheFirstTailByteChanges) {
    Bytes zeros(12, 0);
    JamScramble(zeros);
    EXPECT_EQ(zeros, (Bytes{0x65, 0xF1, 0x82, 0xB0, 0xF9, 0xB6, 0x8E, 0x72, 0xDD, 0x92, 0xC9, 0x3C}));
    for (std::size_t tail = 1; tail < 4; ++tail) {
        Bytes original(4 * 5 + tail);
        for (std::size_t i = 0; i < original.size(); ++i) original[i] = std::uint8_t(i * 37 + 11);
        Bytes data = original;
        JamScramble(data);
        EXPECT_EQ(data[20], std::uint8_t(original[20] ^ std::uint8_t(0xB082F165u * 5u * 5u * 5u * 5u * 5u))) << tail;
        EXPECT_TRUE(std::equal(data.begin() + 21, data.end(), original.begin() + 21)) << tail;
        JamScramble(data);
        EXPECT_EQ(data, original) << tail;
    }
}

TEST(JamCatalogue, EntriesAndBounds) {
    struct Case {
        int number;
        std::string_view path;
        int height, images, maxPalette;
    };
    const Case cases[] = {{0, "WILLIAMS.JAM", 164, 1, 203}, {14, "HELMETS1.JAM", 180, 28, 221},
                          {19, "BRZJAMS\\BRZ1.JAM", 198, 23, 206}, {22, "BRZJAMS\\HORBRZ.JAM", 192, 8, 0},
                          {217, "SPGRID2.JAM", 95, 40, 64}, {218, "", 0, 0, 0}, {-1, "", 0, 0, 0}};
    for (const Case& c : cases) {
        const JamFileInfo info = JamInfo(c.number);
        EXPECT_EQ(info.cataloguePath, c.path) << c.number;
        EXPECT_EQ(info.canvasHeight, c.height) << c.number;
        EXPECT_EQ(info.imageCount, c.images) << c.number;
        EXPECT_EQ(info.maxPalette, c.maxPalette) << c.number;
    }
    EXPECT_EQ(jamCatalogueEntry(218), nullptr);
    EXPECT_TRUE(isCarJam(14));
    EXPECT_FALSE(isCarJam(15));
}

// ---- layout -----------------------------------------------------------------

Bytes plainJam(int number, std::uint32_t seed = 1) { return makeJamFile(number, seed, false); }

TEST(JamLayout, FixtureParsesForEveryCatalogueNumber) {
    for (int n = 0; n < kJamCatalogueSize; ++n) {
        Bytes jam = plainJam(n);
        auto layout = parseJam(jam, n);
        ASSERT_TRUE(layout) << n;
        EXPECT_EQ(layout->imageCount, JamInfo(n).imageCount);
        EXPECT_EQ(layout->canvasStart, jam.size() - 256u * std::size_t(JamInfo(n).canvasHeight));
    }
}

TEST(JamLayout, DamagedFilesAreRefused) {
    Bytes good = plainJam(19);
    ASSERT_TRUE(parseJam(good, 19));
    EXPECT_FALSE(parseJam(good, 20)) << "image count and height differ from the catalogue";
    EXPECT_FALSE(parseJam(std::span(good).first(3), 19));
    EXPECT_FALSE(parseJam(std::span(good).first(good.size() - 256 * 198 + 10), 19)) << "canvas cut";

    // Entry 0 wider than the canvas, starting at row 190 of 198, or with its
    // colour tables past the table area.
    const std::tuple<std::size_t, std::uint16_t, std::size_t> damage[] = {{4 + 4, 300, 2}, {4 + 1, 190, 1}, {4 + 12, 0xFFF0, 2}};
    Bytes tables;
    for (auto [offset, value, width] : damage) {
        Bytes bad = good;
        bad[offset] = std::uint8_t(value);
        if (width == 2) bad[offset + 1] = std::uint8_t(value >> 8);
        EXPECT_FALSE(parseJam(bad, 19)) << offset;
        tables = bad;
    }
    EXPECT_FALSE(convertJamToBitmap(tables, 19, {}));
}

// ---- conversion ---------------------------------------------------------------

GraphicsOptions options(bool clearJam, bool fixStrip, bool fixGreen) {
    GraphicsOptions o;
    o.clearJam = clearJam;
    o.fixStrip = fixStrip;
    o.fixGreen = fixGreen;
    return o;
}

// Converting, rebuilding from the picture and converting again gives the same
// picture, apart from the colour strip and the moved greens of car files: the
// strip and the green fix touch nothing else.
void expectRoundTrip(int number, const GraphicsOptions& o) {
    SCOPED_TRACE(testing::Message() << "number " << number << " clear " << o.clearJam << " strip " << o.fixStrip
                                    << " green " << o.fixGreen);
    Bytes jam = plainJam(number, 7);
    auto first = convertJamToBitmap(jam, number, o);
    ASSERT_TRUE(first);
    // The strip adds colour 0 to every car image: leave room for it in the
    // (nearly full) colour tables of the fixture's car files.
    if (o.fixStrip && isCarJam(number))
        for (std::size_t i = 0; i < first->pixelBytes(); ++i) first->pixels()[i] &= 0xF0;
    Bytes rebuilt = jam;
    RecordingProgress progress;
    auto size = BuildJamFromBitmap(rebuilt, *first, number, o, &progress);
    ASSERT_TRUE(size);
    EXPECT_EQ(*size, rebuilt.size());
    EXPECT_EQ(progress.beeps, 0);
    EXPECT_EQ(int(progress.subImages.size()), JamInfo(number).imageCount);
    // Header and entries are kept exactly.
    auto layout = parseJam(jam, number);
    ASSERT_TRUE(layout);
    EXPECT_TRUE(std::equal(jam.begin(), jam.begin() + std::ptrdiff_t(layout->tablesStart), rebuilt.begin()));
    auto second = convertJamToBitmap(rebuilt, number, o);
    ASSERT_TRUE(second);

    std::set<std::pair<int, int>> strip;
    if (o.fixStrip && isCarJam(number))
        for (const auto& e : layout->entries)
            for (int j = 0; j < std::min(e.height, 32); ++j) strip.insert({e.x, e.y + j});
    bool greensMoved = o.fixGreen && isCarJam(number);
    int differences = 0;
    for (int y = 0; y < JamInfo(number).canvasHeight; ++y)
        for (int x = 0; x < 256; ++x) {
            if (strip.count({x, y})) continue;
            std::uint8_t a = pixelAt(*first, x, y), b = pixelAt(*second, x, y);
            if (greensMoved && ((a >= 104 && a <= 123) || (a >= 194 && a <= 213))) continue;
            if (a != b) ++differences;
        }
    EXPECT_EQ(differences, 0);
}

TEST(JamConvert, RoundTripForTeamHelmetWheelAndTrackFilesWithEveryOption) {
    for (int number : {0, 13, 14, 15, 18, 19, 22, 217})
        for (int mask = 0; mask < 8; ++mask) expectRoundTrip(number, options(mask & 1, mask & 2, mask & 4));
}

TEST(JamConvert, RebuiltTablesAreSortedDistinctColoursInFourCopies) {
    const int number = 19;
    Bytes jam = plainJam(number, 3);
    BitmapBuffer picture(256, JamInfo(number).canvasHeight);
    auto layout = parseJam(jam, number);
    ASSERT_TRUE(layout);
    const auto& e = layout->entries[0];
    ASSERT_GE(e.colourCount, 3);
    // Image 0 painted with three colours in descending order of appearance.
    for (int y = e.y; y < e.y + e.height; ++y)
        for (int x = e.x; x < e.x + e.width; ++x) pixelAt(picture, x, y) = x % 3 == 0 ? 200 : x % 3 == 1 ? 90 : 5;
    auto size = BuildJamFromBitmap(jam, picture, number, {});
    ASSERT_TRUE(size);
    auto rebuilt = parseJam(jam, number);
    ASSERT_TRUE(rebuilt);
    const std::size_t K = std::size_t(e.colourCount);
    const std::uint8_t* table = &jam[rebuilt->tablesStart + e.colourOffset];
    for (std::size_t copy = 0; copy < 4; ++copy) {
        EXPECT_EQ(table[copy * K + 0], 5);
        EXPECT_EQ(table[copy * K + 1], 90);
        EXPECT_EQ(table[copy * K + 2], 200);
        for (std::size_t k = 3; k < K; ++k) EXPECT_EQ(table[copy * K + k], 0);
    }
    // Canvas: local colour numbers.
    const std::uint8_t* canvas = &jam[rebuilt->canvasStart];
    EXPECT_EQ(canvas[std::size_t(e.y) * 256 + std::size_t(e.x)], (e.x % 3 == 0) ? 2 : (e.x % 3 == 1) ? 1 : 0);
    // File size: the last entry's tables end the table area.
    const auto& last = rebuilt->entries.back();
    EXPECT_EQ(*size, rebuilt->tablesStart + last.colourOffset + 4u * std::size_t(last.colourCount) + 256u * 198u);
}

TEST(JamConvert, ColourCountZeroImagesAreLeftUntouched) {
    const int number = 19;   // the fixture gives image 3 no colour table
    Bytes jam = plainJam(number, 5);
    auto layout = parseJam(jam, number);
    ASSERT_TRUE(layout);
    const auto& e = layout->entries[3];
    ASSERT_EQ(e.colourCount, 0);
    auto bitmap = convertJamToBitmap(jam, number, options(true, true, true));
    ASSERT_TRUE(bitmap);
    for (int y = e.y; y < e.y + e.height; ++y)
        for (int x = e.x; x < e.x + e.width; ++x)
            ASSERT_EQ(pixelAt(*bitmap, x, y), jam[layout->canvasStart + std::size_t(y) * 256 + std::size_t(x)]);
    // And back: the bitmap's bytes land in the canvas as they are.
    BitmapBuffer picture(256, 198);
    for (int y = 0; y < 198; ++y)
        for (int x = 0; x < 256; ++x) pixelAt(picture, x, y) = std::uint8_t(x ^ y);
    ASSERT_TRUE(BuildJamFromBitmap(jam, picture, number, options(true, true, true)));
    auto rebuilt = parseJam(jam, number);
    for (int y = e.y; y < e.y + e.height; ++y)
        for (int x = e.x; x < e.x + e.width; ++x)
            ASSERT_EQ(jam[rebuilt->canvasStart + std::size_t(y) * 256 + std::size_t(x)], std::uint8_t(x ^ y));
}

TEST(JamConvert, PixelEqualToColourCountReadsTableOneAndAboveIsTransparent) {
    const int number = 20;
    Bytes jam = plainJam(number, 9);
    auto layout = parseJam(jam, number);
    ASSERT_TRUE(layout);
    const auto& e = layout->entries[0];
    const std::size_t K = std::size_t(e.colourCount);
    ASSERT_GT(K, 0u);
    ASSERT_LT(K, 255u);
    jam[layout->tablesStart + e.colourOffset + K] = 77;   // first byte of table 1
    std::uint8_t* canvas = &jam[layout->canvasStart];
    canvas[std::size_t(e.y) * 256 + std::size_t(e.x)] = std::uint8_t(K);
    canvas[std::size_t(e.y) * 256 + std::size_t(e.x) + 1] = std::uint8_t(K + 1);
    canvas[std::size_t(e.y) * 256 + std::size_t(e.x) + 2] = 1;
    auto bitmap = convertJamToBitmap(jam, number, {});
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(pixelAt(*bitmap, e.x, e.y), 77);
    EXPECT_EQ(pixelAt(*bitmap, e.x + 1, e.y), 0);
    EXPECT_EQ(pixelAt(*bitmap, e.x + 2, e.y), jam[layout->tablesStart + e.colourOffset + 1]);
}

TEST(JamConvert, ClearJamBlanksCanvasOutsideEveryImage) {
    const int number = 19;
    Bytes jam = plainJam(number, 11);
    auto layout = parseJam(jam, number);
    ASSERT_TRUE(layout);
    const auto& e = layout->entries[0];
    const int gapX = e.x + e.width;   // the fixture leaves one column between cells
    std::uint8_t& raw = jam[layout->canvasStart + std::size_t(e.y) * 256 + std::size_t(gapX)];
    raw = 123;
    auto cleared = convertJamToBitmap(jam, number, options(true, false, false));
    auto kept = convertJamToBitmap(jam, number, options(false, false, false));
    ASSERT_TRUE(cleared && kept);
    EXPECT_EQ(pixelAt(*cleared, gapX, e.y), 0);
    EXPECT_EQ(pixelAt(*kept, gapX, e.y), 123);
}

// A team file whose only image has a short colour table.
Bytes teamJamWithColourCount(int count) {
    Bytes jam = plainJam(0, 2);
    storeU16(&jam[4 + 16], std::uint16_t(count));
    return jam;
}

TEST(JamConvert, SurplusColoursBeepAndBecomeLocalColourZero) {
    Bytes jam = teamJamWithColourCount(5);
    BitmapBuffer picture(256, 164);
    const std::uint8_t colours[7] = {0, 10, 20, 30, 40, 50, 60};
    for (int y = 0; y < 164; ++y)
        for (int x = 0; x < 256; ++x) pixelAt(picture, x, y) = colours[(x + y) % 7];
    RecordingProgress progress;
    auto size = BuildJamFromBitmap(jam, picture, 0, options(true, false, false), &progress);
    ASSERT_TRUE(size);
    EXPECT_EQ(progress.beeps, 1);
    ASSERT_EQ(progress.colours.size(), 1u);
    EXPECT_EQ(progress.colours[0], std::make_pair(7, 5));
    EXPECT_EQ(*size, 4u + 32u + 20u + 256u * 164u);
    const std::uint8_t* canvas = &jam[*size - 256u * 164u];
    for (int x = 0; x < 14; ++x) {
        std::uint8_t colour = colours[x % 7];
        std::uint8_t expected = colour >= 50 ? 0 : std::uint8_t(colour / 10);
        EXPECT_EQ(canvas[std::size_t(163 - 163) * 256 + std::size_t(x)] , expected) << x;
    }
    auto back = convertJamToBitmap(jam, 0, {});
    ASSERT_TRUE(back);
    EXPECT_EQ(pixelAt(*back, 5, 0), 0) << "colour 50 reads back as table entry 0";
    EXPECT_EQ(pixelAt(*back, 3, 0), 30);
}

TEST(JamConvert, ColourStripCoversAtMost32RowsAndReadsOnPastTableZero) {
    Bytes jam = teamJamWithColourCount(5);
    BitmapBuffer picture(256, 164);
    const std::uint8_t colours[5] = {0, 10, 20, 30, 40};
    for (int y = 0; y < 164; ++y)
        for (int x = 0; x < 256; ++x) pixelAt(picture, x, y) = colours[(x + 2 * y) % 5];
    for (int x = 1; x < 12; ++x) pixelAt(picture, x, 0) = 20;
    ASSERT_TRUE(BuildJamFromBitmap(jam, picture, 0, options(true, true, false)));
    auto back = convertJamToBitmap(jam, 0, options(true, false, false));
    ASSERT_TRUE(back);
    // Rows 0-4: table 0; rows 5-19: the three following copies, zeros replaced
    // by table[1]; row 20: the strip's own first pixel (0, replaced); rows
    // 21-31: the canvas's top row as it lay.
    const std::uint8_t expected[32] = {0,  10, 20, 30, 40, 10, 10, 20, 30, 40, 10, 10, 20, 30, 40, 10,
                                       10, 20, 30, 40, 10, 20, 20, 20, 20, 20, 20, 20, 20, 20, 20, 20};
    for (int j = 0; j < 32; ++j) EXPECT_EQ(pixelAt(*back, 0, j), expected[j]) << "row " << j;
    for (int j = 32; j < 164; ++j) ASSERT_EQ(pixelAt(*back, 0, j), colours[(2 * j) % 5]) << "row " << j;
    // Without FixStrip the column is the picture's own.
    Bytes plain = teamJamWithColourCount(5);
    ASSERT_TRUE(BuildJamFromBitmap(plain, picture, 0, options(true, false, false)));
    auto plainBack = convertJamToBitmap(plain, 0, {});
    for (int j = 1; j < 32; ++j) EXPECT_EQ(pixelAt(*plainBack, 0, j), colours[(2 * j) % 5]) << "row " << j;
}

TEST(JamConvert, FixGreenMovesTheGreensOfCarFilesOnce) {
    const std::pair<int, int> cases[] = {{104, 218}, {105, 218}, {110, 222}, {123, 233}, {194, 214},
                                         {213, 233}, {103, 103}, {124, 124}, {214, 214}, {193, 193}};
    BitmapBuffer picture(256, 164);
    for (int y = 0; y < 164; ++y)
        for (int x = 0; x < 256; ++x) pixelAt(picture, x, y) = std::uint8_t(cases[(x / 8) % 10].first);
    Bytes jam = plainJam(0, 2);
    ASSERT_TRUE(BuildJamFromBitmap(jam, picture, 0, options(true, false, true)));
    auto back = convertJamToBitmap(jam, 0, {});
    ASSERT_TRUE(back);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(pixelAt(*back, 8 * i + 3, 50), cases[i].second) << cases[i].first;
}

TEST(JamConvert, BuildRefusesMismatchedTemplateOrBitmap) {
    Bytes jam = plainJam(0);
    Bytes before = jam;
    BitmapBuffer wrongHeight(256, 163);
    EXPECT_FALSE(BuildJamFromBitmap(jam, wrongHeight, 0, {}));
    BitmapBuffer right(256, 164);
    EXPECT_FALSE(BuildJamFromBitmap(jam, right, 1 + 14, {})) << "template is not a wheel file";
    EXPECT_EQ(jam, before);
}

// ---- the game's files ------------------------------------------------------------

TEST(GameJam, PatchAndExportThroughTheGameFolder) {
    ScratchFolder game;
    // Lower-case folder names, as on some installations.
    Bytes scrambled = makeJamFile(19, 21);
    writeFileBytes(game / "gamejams" / "brzjams" / "brz1.jam", scrambled);
    const auto bmp = game / "out.bmp";
    RecordingProgress progress;
    ASSERT_TRUE(ExportJamToBitmap(game.path(), 19, bmp, {}, &progress));
    ASSERT_EQ(progress.files.size(), 1u);
    auto picture = LoadBitmap8(bmp, 256, 198);
    ASSERT_TRUE(picture);
    Bytes plain = scrambled;
    JamScramble(plain);
    auto direct = convertJamToBitmap(plain, 19, {});
    ASSERT_TRUE(direct);
    // Loading repairs white (255 -> 31).
    auto expected = decodeBitmap8(encodeBitmap8(*direct, {}), 256, 198);
    ASSERT_TRUE(expected);
    EXPECT_TRUE(std::equal(picture->pixels(), picture->pixels() + picture->pixelBytes(), expected->pixels()));

    // Patch with a changed picture; the file stays scrambled and reads back.
    for (int x = 0; x < 256; ++x) pixelAt(*picture, x, 0) = pixelAt(*picture, x, 1);
    const auto file = game / "gamejams" / "brzjams" / "brz1.jam";
    std::filesystem::permissions(file, std::filesystem::perms::owner_write, std::filesystem::perm_options::remove);
    ASSERT_TRUE(PatchGameJam(game.path(), *picture, 19, {}));
    auto written = readWholeFile(file);
    ASSERT_TRUE(written);
    JamScramble(*written);
    auto again = convertJamToBitmap(*written, 19, {});
    ASSERT_TRUE(again);
    EXPECT_TRUE(std::equal(picture->pixels(), picture->pixels() + picture->pixelBytes(), again->pixels()));

    auto missing = PatchGameJam(game.path(), *picture, 20, {});
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().id, MessageId::FailedToPatchJam);
    EXPECT_FALSE(ExportJamToBitmap(game.path(), 20, game / "none.bmp", {}));
    EXPECT_FALSE(std::filesystem::exists(game / "none.bmp"));
}

}  // namespace
}  // namespace tarvel::test
