#include "GraphicsTestSupport.h"
#include "common/FileIO.h"
#include "fixtures/MenuFileFixture.h"
#include "graphics/MenuHelmet.h"
#include "graphics/Palette.h"

#include <gtest/gtest.h>

namespace tarvel::test {
namespace {

std::uint32_t indexField(const Bytes& file, int entry, int field) {
    return loadU32(&file[4576 + 14 * std::size_t(entry) + std::size_t(field)]);
}

// The picture's rows, top first, against the fixture's padded rows.
bool samePicture(const BitmapBuffer& bitmap, const Bytes& rows) {
    const std::size_t stride = std::size_t(bitmap.stride());
    for (int k = 0; k < bitmap.height; ++k)
        if (!std::equal(bitmap.topRow(k), bitmap.topRow(k) + stride, rows.begin() + std::ptrdiff_t(stride * std::size_t(k))))
            return false;
    return true;
}

BitmapBuffer helmetPicture(int seed) {
    BitmapBuffer picture(104, 104);
    for (int y = 0; y < 104; ++y)
        for (int x = 0; x < 104; ++x) pixelAt(picture, x, y) = std::uint8_t(((x / (seed + 1)) + y * seed) & 0xFF);
    return picture;
}

// Every picture decodes at its size, padded widths included, in the menu palette.
TEST(MenuPicture, FixturePicturesDecodeIncludingPaddedWidthsInTheMenuPalette) {
    MenuFixture fixture = makeMenuFixture(3);
    int padded = 0;
    for (int i = 0; i < 42; ++i) {
        auto bitmap = decodeMenuPicture(fixture.file, i);
        ASSERT_TRUE(bitmap) << i;
        ASSERT_EQ(std::pair(bitmap->width, bitmap->height), std::pair(fixture.widths[std::size_t(i)], fixture.heights[std::size_t(i)])) << i;
        padded += bitmap->width % 4 != 0;
        EXPECT_TRUE(samePicture(*bitmap, fixture.pictures[std::size_t(i)])) << i;
    }
    EXPECT_GT(padded, 0);
    EXPECT_EQ(loadU32(decodeMenuPicture(fixture.file, 0)->data.data() + kBitmapInfoHeaderSize + 4) & 0xFFFFFF, MenuPalette[1]);
}

// Literal and run packets; more pixels than the picture holds, a literal past
// the coded data and a run without its pixel are refused.
TEST(MenuPicture, PacketsDecodeLiteralsAndRunsAndRefuseOverruns) {
    const Bytes coded = {2, 7, 8, 9, 0xFE, 5, 0x81, 6};   // 3 literals, run of 3, run of 128
    auto pixels = decodeMenuPackets(coded, 134, 1);
    ASSERT_TRUE(pixels);
    Bytes expected = {7, 8, 9, 5, 5, 5};
    expected.resize(134, 6);
    expected.resize(136, 0);
    EXPECT_EQ(*pixels, expected);
    EXPECT_FALSE(decodeMenuPackets(coded, 100, 1));
    EXPECT_FALSE(decodeMenuPackets(Bytes{5, 1, 2}, 104, 1));
    EXPECT_FALSE(decodeMenuPackets(Bytes{0x90}, 104, 1));
}

// The editor's coder writes each row as run pairs of at most 128 and refuses
// pictures that are not 104 x 104.
TEST(MenuPicture, RowCoderUsesRunPairsOfAtMost128) {
    Bytes ramp(104), rampCoded;
    for (int i = 0; i < 104; ++i) {
        ramp[std::size_t(i)] = std::uint8_t(i);
        rampCoded.insert(rampCoded.end(), {0, std::uint8_t(i)});
    }
    const std::pair<Bytes, Bytes> cases[] = {
        {Bytes(104, 42), {153, 42}},
        {Bytes(200, 9), {129, 9, 185, 9}},   // 128 then 72
        {{1, 1, 2, 3, 3, 3}, {255, 1, 0, 2, 254, 3}},
        {ramp, rampCoded},
    };
    for (const auto& [row, coded] : cases) EXPECT_EQ(codeMenuRow(row), coded);
    EXPECT_LE(codeMenuHelmet(helmetPicture(0)).size(), kMenuHelmetMaxCoded);
    EXPECT_TRUE(codeMenuHelmet(BitmapBuffer(104, 103)).empty());
}

// A replacement that grows, shrinks or keeps the file's length moves the later
// pictures and their offsets, keeps the header, the others and the trailing
// bytes, and decodes as the new picture; the same picture again changes nothing.
TEST(MenuPicture, ReplacementGrowsShrinksOrKeepsLength) {
    const MenuFixture fixture = makeMenuFixture(11);
    const std::pair<int, BitmapBuffer> cases[] = {
        {4, helmetPicture(0)},      // many short runs: grows
        {4, BitmapBuffer(104, 104)},   // one run pair a row: shrinks
        {27, helmetPicture(0)},     // entries 28-41 shift too
        {0, BitmapBuffer(104, 104)},
    };
    for (const auto& [slot, picture] : cases) {
        Bytes file = fixture.file;
        const Bytes coded = codeMenuHelmet(picture);
        const std::int64_t d = std::int64_t(coded.size()) - std::int64_t(indexField(file, slot, 4));
        SCOPED_TRACE(testing::Message() << "slot " << slot << " d " << d);
        ASSERT_TRUE(replaceMenuPicture(file, slot, coded));
        EXPECT_EQ(std::int64_t(file.size()), std::int64_t(fixture.file.size()) + d);
        EXPECT_EQ(indexField(file, slot, 4), coded.size());
        for (int i = 0; i < 42; ++i) {
            EXPECT_EQ(std::int64_t(indexField(file, i, 0)), std::int64_t(indexField(fixture.file, i, 0)) + (i > slot ? d : 0));
            auto decoded = decodeMenuPicture(file, i);
            ASSERT_TRUE(decoded) << i;
            if (i != slot) EXPECT_TRUE(samePicture(*decoded, fixture.pictures[std::size_t(i)])) << i;
            else EXPECT_TRUE(std::equal(decoded->pixels(), decoded->pixels() + decoded->pixelBytes(), picture.pixels()));
        }
        EXPECT_TRUE(std::equal(file.begin(), file.begin() + 4576, fixture.file.begin()));
        EXPECT_TRUE(std::equal(file.end() - 37, file.end(), fixture.file.end() - 37));
        // The same picture again changes nothing.
        const Bytes once = file;
        ASSERT_TRUE(replaceMenuPicture(file, slot, coded));
        EXPECT_EQ(file, once);
    }
}

// Bad slots, no data, a short file and a damaged index are refused before
// anything moves, in memory and in the game's file.
TEST(MenuPicture, BadSlotsDataOrIndexAreRefusedBeforeAnythingMoves) {
    const Bytes good = makeMenuFile(6);
    const Bytes coded = codeMenuHelmet(BitmapBuffer(104, 104));   // shorter than slot 5's data
    auto damaged = [&](int entry, int field, std::uint32_t value) {
        Bytes file = good;
        storeU32(&file[4576 + 14 * std::size_t(entry) + std::size_t(field)], value);
        return file;
    };
    const std::uint32_t offset5 = indexField(good, 5, 0), offset6 = indexField(good, 6, 0);
    struct Case {
        Bytes file;
        int slot;
        Bytes coded;
    };
    const Case cases[] = {
        {good, 28, coded},
        {good, -1, coded},
        {good, 3, {}},
        {Bytes(100), 0, coded},
        {damaged(5, 4, offset6 - offset5 + 1), 5, coded},             // runs into picture 6
        {damaged(5, 0, 4576 + 14 * 3), 5, coded},                     // points into the index
        {damaged(6, 0, std::uint32_t(good.size()) + 10), 5, coded},   // next picture past the end
        {damaged(6, 0, offset5), 5, coded},                           // next picture before this one ends
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(i);
        Bytes file = cases[i].file;
        EXPECT_FALSE(replaceMenuPicture(file, cases[i].slot, cases[i].coded));
        EXPECT_EQ(file, cases[i].file);
        if (i < 4) continue;
        ScratchFolder game;
        auto path = writeMenuFile(game.path(), 6);
        writeFileBytes(path, cases[i].file);
        EXPECT_FALSE(ExportMenuHelmetToGame(game.path(), cases[i].slot, BitmapBuffer(104, 104)));
        EXPECT_EQ(*readWholeFile(path), cases[i].file);
    }
}

// The in-place export gives the in-memory replacement's bytes and names the
// picture in the progress (at most 22 characters).
TEST(MenuHelmetFile, ExportToGameInPlaceMatchesTheReplacementInMemory) {
    for (int slot : {0, 27}) {
        for (const BitmapBuffer& picture : {helmetPicture(0), BitmapBuffer(104, 104)}) {
            SCOPED_TRACE(slot);
            ScratchFolder game;
            auto path = writeMenuFile(game.path(), 5);
            Bytes expected = *readWholeFile(path);
            ASSERT_TRUE(replaceMenuPicture(expected, slot, codeMenuHelmet(picture)));
            RecordingProgress progress;
            ASSERT_TRUE(ExportMenuHelmetToGame(game.path(), slot, picture, &progress));
            EXPECT_EQ(*readWholeFile(path), expected);
            ASSERT_EQ(progress.files.size(), 1u);
            EXPECT_TRUE(progress.files[0].ends_with("F1PCSVGA.BIN #" + std::to_string(326 + slot))) << progress.files[0];
            EXPECT_LE(progress.files[0].size(), 17u + 5u);
        }
    }
}

// The import writes a bottom-up bitmap in the menu palette; a bad slot or a
// missing file fails each way and leaves no file.
TEST(MenuHelmetFile, ImportFromGameWritesABitmapWithTheMenuPalette) {
    ScratchFolder game;
    writeMenuFile(game.path(), 8);
    MenuFixture fixture = makeMenuFixture(8);
    ASSERT_TRUE(ImportMenuHelmetFromGame(game.path(), 6, game / "m.bmp"));
    const Bytes file = readFileBytes(game / "m.bmp");
    ASSERT_EQ(file.size(), 1078u + 104u * 104u);
    EXPECT_EQ(loadU32(&file[2]), 1078u + 104u * 104u);
    EXPECT_EQ(loadU32(&file[54 + 4 * 5]) & 0xFFFFFF, MenuPalette[5]);
    EXPECT_TRUE(std::equal(file.end() - 104, file.end(), fixture.pictures[6].begin()));
    EXPECT_FALSE(ImportMenuHelmetFromGame(game.path(), 28, game / "n.bmp"));
    EXPECT_FALSE(std::filesystem::exists(game / "n.bmp"));
    ScratchFolder empty;
    EXPECT_EQ(ImportMenuHelmetFromGame(empty.path(), 0, empty / "n.bmp").error().id, MessageId::FailedToImportMenuHelmet);
    EXPECT_EQ(ExportMenuHelmetToGame(empty.path(), 0, BitmapBuffer(104, 104)).error().id, MessageId::FailedToExportMenuHelmet);
}

}  // namespace
}  // namespace tarvel::test
