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
        EXPECT_EQ((std::array<int, 3>{info.canvasHeight, info.imageCount, info.maxPalette}), (std::array<int, 3>{c.height, c.images, c.maxPalette}))
            << c.number;
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

// Conversion quirks: outside every image the canvas is blanked only with
// ClearJam; a pixel equal to the colour count reads table 1's first entry and
// one above it is transparent; images without a colour table pass raw bytes.
TEST(JamConvert, ClearJamColourCountAndTablelessImages) {
    const int number = 19;   // the fixture gives image 3 no colour table
    Bytes jam = plainJam(number, 11);
    auto layout = parseJam(jam, number);
    ASSERT_TRUE(layout);
    const auto& e = layout->entries[0];
    const std::size_t K = std::size_t(e.colourCount);
    ASSERT_TRUE(K > 0 && K < 255 && layout->entries[3].colourCount == 0);
    std::uint8_t* canvas = &jam[layout->canvasStart + std::size_t(e.y) * 256 + std::size_t(e.x)];
    canvas[e.width] = 123;   // the fixture leaves one column between cells
    canvas[0] = std::uint8_t(K), canvas[1] = std::uint8_t(K + 1), canvas[2] = 1;
    jam[layout->tablesStart + e.colourOffset + K] = 77;
    auto cleared = convertJamToBitmap(jam, number, options(true, true, true));
    auto kept = convertJamToBitmap(jam, number, options(false, false, false));
    ASSERT_TRUE(cleared && kept);
    EXPECT_EQ(pixelAt(*cleared, e.x + e.width, e.y), 0);
    EXPECT_EQ(pixelAt(*kept, e.x + e.width, e.y), 123);
    EXPECT_EQ((Bytes{pixelAt(*kept, e.x, e.y), pixelAt(*kept, e.x + 1, e.y), pixelAt(*kept, e.x + 2, e.y)}),
              (Bytes{77, 0, jam[layout->tablesStart + e.colourOffset + 1]}));
    const auto& t = layout->entries[3];
    for (int y = t.y; y < t.y + t.height; ++y)
        for (int x = t.x; x < t.x + t.width; ++x)
            ASSERT_EQ(pixelAt(*cleared, x, y), jam[layout->canvasStart + std::size_t(y) * 256 + std::size_t(x)]);
}

// Rebuilt files pinned whole. Each row's picture and options pin one rule of the
// builder: colour tables sorted, distinct and in four copies with local colour
// numbers in the canvas; surplus colours beep once and become local colour 0;
// the colour strip covers at most 32 rows (reading on past table 0) and only
// with FixStrip; FixGreen moves the greens of car files once; images without a
// colour table take the picture's bytes raw. Images whose tables are too short
// for the picture's colours beep once each.
TEST(JamConvert, RebuiltFilesArePinned) {
    auto painted = [](int number, auto colour) {
        BitmapBuffer picture(256, JamInfo(number).canvasHeight);
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < 256; ++x) pixelAt(picture, x, y) = std::uint8_t(colour(x, y));
        return picture;
    };
    const std::uint8_t greens[10] = {104, 105, 110, 123, 194, 213, 103, 124, 214, 193};
    BitmapBuffer strip = painted(0, [](int x, int y) { return (x + 2 * y) % 5 * 10; });
    for (int x = 1; x < 12; ++x) pixelAt(strip, x, 0) = 30;   // read again by the strip's last rows
    struct Row {
        const char* rule;
        int number, colourCount;
        BitmapBuffer picture;
        GraphicsOptions options;
        int beeps;
        std::string digest;
    };
    const Row rows[] = {
        {"sorted tables", 19, -1, painted(19, [](int x, int) { return x % 3 == 0 ? 200 : x % 3 == 1 ? 90 : 5; }), {}, 1, "53452:a84da19cdc54e584"},
        {"surplus colours", 0, 5, painted(0, [](int x, int y) { return (x + y) % 7 * 10; }), options(true, false, false), 1, "42040:8e535119ce1ae141"},
        {"strip", 0, 5, strip, options(true, true, false), 0, "42040:34f1ff2f00012190"},
        {"no strip", 0, 5, strip, options(true, false, false), 0, "42040:08e155aa0ae2896e"},
        {"greens", 0, -1, painted(0, [&](int x, int) { return greens[(x / 8) % 10]; }), options(true, false, true), 0, "42808:5b8b391010c8714c"},
        {"raw tableless image", 19, -1, painted(19, [](int x, int y) { return x ^ y; }), options(true, true, true), 19, "53452:a03adf5aca4ff103"},
    };
    for (const Row& row : rows) {
        Bytes jam = plainJam(row.number, 2);
        if (row.colourCount >= 0) storeU16(&jam[4 + 16], std::uint16_t(row.colourCount));
        RecordingProgress progress;
        auto size = BuildJamFromBitmap(jam, row.picture, row.number, row.options, &progress);
        ASSERT_TRUE(size) << row.rule;
        EXPECT_EQ(*size, jam.size()) << row.rule;
        EXPECT_EQ(progress.beeps, row.beeps) << row.rule;
        EXPECT_EQ(digest(jam), row.digest) << row.rule;
    }
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

    EXPECT_EQ(PatchGameJam(game.path(), *picture, 20, {}).error().id, MessageId::FailedToPatchJam);
    EXPECT_FALSE(ExportJamToBitmap(game.path(), 20, game / "none.bmp", {}));
    EXPECT_FALSE(std::filesystem::exists(game / "none.bmp"));
}

}  // namespace
}  // namespace tarvel::test
