#include "GraphicsTestSupport.h"
#include "common/FileIO.h"
#include "common/FileTail.h"
#include "fixtures/MenuFileFixture.h"
#include "graphics/MenuHelmet.h"
#include "graphics/Palette.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tarvel::test {
namespace {

std::uint32_t indexField(const Bytes& file, int entry, int field) {
    return loadU32(&file[4576 + 14 * std::size_t(entry) + std::size_t(field)]);
}

TEST(MenuPicture, FixturePicturesDecodeIncludingPaddedWidths) {
    MenuFixture fixture = makeMenuFixture(3);
    int padded = 0;
    for (int i = 0; i < 42; ++i) {
        SCOPED_TRACE(i);
        auto bitmap = decodeMenuPicture(fixture.file, i);
        ASSERT_TRUE(bitmap);
        ASSERT_EQ(bitmap->width, fixture.widths[std::size_t(i)]);
        ASSERT_EQ(bitmap->height, fixture.heights[std::size_t(i)]);
        if (bitmap->width % 4) ++padded;
        const Bytes& expected = fixture.pictures[std::size_t(i)];
        const std::size_t stride = std::size_t(bitmap->stride());
        for (int k = 0; k < bitmap->height; ++k)
            ASSERT_TRUE(std::equal(bitmap->topRow(k), bitmap->topRow(k) + stride, expected.begin() + std::ptrdiff_t(stride * std::size_t(k))))
                << "row " << k;
    }
    EXPECT_GT(padded, 0) << "the fixture has pictures of widths that need padding";
    auto helmet = decodeMenuPicture(fixture.file, 0);
    // The menu palette, not the game palette.
    const std::uint8_t* palette = helmet->data.data() + kBitmapInfoHeaderSize;
    EXPECT_EQ(palette[4 * 1 + 0], 0xDC);
    EXPECT_EQ(palette[4 * 1 + 1], 0xF8);
    EXPECT_EQ(palette[4 * 1 + 2], 0xF0);
}

TEST(MenuPicture, PacketsDecodeLiteralsAndRunsAndRefuseOverruns) {
    const Bytes coded = {2, 7, 8, 9, 0xFE, 5, 0x81, 6};   // 3 literals, run of 3, run of 128
    auto pixels = decodeMenuPackets(coded, 134, 1);
    ASSERT_TRUE(pixels);
    ASSERT_EQ(pixels->size(), 136u);
    EXPECT_EQ((*pixels)[0], 7);
    EXPECT_EQ((*pixels)[2], 9);
    EXPECT_EQ((*pixels)[3], 5);
    EXPECT_EQ((*pixels)[5], 5);
    EXPECT_EQ((*pixels)[6], 6);
    EXPECT_EQ((*pixels)[133], 6);
    EXPECT_EQ((*pixels)[134], 0);
    EXPECT_FALSE(decodeMenuPackets(coded, 100, 1)) << "more pixels than the picture holds";
    EXPECT_FALSE(decodeMenuPackets(Bytes{5, 1, 2}, 104, 1)) << "literal past the coded data";
    EXPECT_FALSE(decodeMenuPackets(Bytes{0x90}, 104, 1)) << "run without its pixel";
}

TEST(MenuPicture, RowCoderUsesOnlyRunPairs) {
    Bytes uniform(104, 42);
    EXPECT_EQ(codeMenuRow(uniform), (Bytes{153, 42}));
    Bytes different(104);
    for (int i = 0; i < 104; ++i) different[std::size_t(i)] = std::uint8_t(i);
    Bytes coded = codeMenuRow(different);
    ASSERT_EQ(coded.size(), 208u);
    for (int i = 0; i < 104; ++i) {
        EXPECT_EQ(coded[2 * std::size_t(i)], 0);
        EXPECT_EQ(coded[2 * std::size_t(i) + 1], i);
    }
    Bytes longRun(200, 9);
    EXPECT_EQ(codeMenuRow(longRun), (Bytes{129, 9, 185, 9}));   // 128 then 72
    Bytes mixed = {1, 1, 2, 3, 3, 3};
    EXPECT_EQ(codeMenuRow(mixed), (Bytes{255, 1, 0, 2, 254, 3}));
}

BitmapBuffer helmetPicture(int seed) {
    BitmapBuffer picture(104, 104);
    for (int y = 0; y < 104; ++y)
        for (int x = 0; x < 104; ++x) pixelAt(picture, x, y) = std::uint8_t(((x / (seed + 1)) + y * seed) & 0xFF);
    return picture;
}

TEST(MenuPicture, HelmetCodingRoundTripsTopRowFirst) {
    BitmapBuffer picture = helmetPicture(3);
    Bytes coded = codeMenuHelmet(picture);
    ASSERT_FALSE(coded.empty());
    EXPECT_LE(coded.size(), kMenuHelmetMaxCoded);
    auto pixels = decodeMenuPackets(coded, 104, 104);
    ASSERT_TRUE(pixels);
    for (int k = 0; k < 104; ++k)
        ASSERT_TRUE(std::equal(picture.topRow(k), picture.topRow(k) + 104, pixels->begin() + 104 * k)) << k;
    EXPECT_TRUE(codeMenuHelmet(BitmapBuffer(104, 103)).empty());
}

// Replacement in memory: the picture changes, the others stay, later offsets shift.
void expectReplacement(int slot, const BitmapBuffer& picture) {
    MenuFixture fixture = makeMenuFixture(11);
    Bytes file = fixture.file;
    const Bytes coded = codeMenuHelmet(picture);
    const std::int64_t d = std::int64_t(coded.size()) - std::int64_t(indexField(file, slot, 4));
    SCOPED_TRACE(testing::Message() << "slot " << slot << " d " << d);
    ASSERT_TRUE(replaceMenuPicture(file, slot, coded));
    EXPECT_EQ(std::int64_t(file.size()), std::int64_t(fixture.file.size()) + d);
    EXPECT_EQ(indexField(file, slot, 4), coded.size());
    for (int i = 0; i < 42; ++i) {
        std::int64_t shift = i > slot ? d : 0;
        EXPECT_EQ(std::int64_t(indexField(file, i, 0)), std::int64_t(indexField(fixture.file, i, 0)) + shift) << i;
        if (i == slot) continue;
        auto decoded = decodeMenuPicture(file, i);
        ASSERT_TRUE(decoded) << i;
        const std::size_t stride = std::size_t(decoded->stride());
        for (int k = 0; k < decoded->height; ++k)
            ASSERT_TRUE(std::equal(decoded->topRow(k), decoded->topRow(k) + stride,
                                   fixture.pictures[std::size_t(i)].begin() + std::ptrdiff_t(stride * std::size_t(k))));
    }
    auto replaced = decodeMenuPicture(file, slot);
    ASSERT_TRUE(replaced);
    EXPECT_TRUE(std::equal(replaced->pixels(), replaced->pixels() + replaced->pixelBytes(), picture.pixels()));
    // Header and trailing bytes kept.
    EXPECT_TRUE(std::equal(file.begin(), file.begin() + 4576, fixture.file.begin()));
    EXPECT_TRUE(std::equal(file.end() - 37, file.end(), fixture.file.end() - 37));
}

TEST(MenuPicture, ReplacementGrowsShrinksOrKeepsLength) {
    expectReplacement(4, helmetPicture(0));        // many short runs: grows
    BitmapBuffer plain(104, 104);
    expectReplacement(4, plain);                   // one run pair a row: shrinks
    expectReplacement(27, helmetPicture(0));       // entries 28-41 shift too
    expectReplacement(0, plain);
    // Same length: the slot's own coded data, re-coded, decoded from the fixture.
    MenuFixture fixture = makeMenuFixture(11);
    auto own = decodeMenuPicture(fixture.file, 9);
    ASSERT_TRUE(own);
    Bytes file = fixture.file;
    Bytes coded = codeMenuHelmet(*own);
    storeU32(&file[4576 + 14 * 9 + 4], std::uint32_t(coded.size()));   // pretend it was coded by us
    Bytes shifted = file;
    std::int64_t d = std::int64_t(coded.size()) - std::int64_t(indexField(fixture.file, 9, 4));
    // Rebuild the file so that slot 9 holds exactly `coded`.
    ASSERT_TRUE(moveTail(shifted, indexField(fixture.file, 10, 0), d));
    if (d < 0) shifted.resize(std::size_t(std::int64_t(shifted.size()) + d));
    std::copy(coded.begin(), coded.end(), shifted.begin() + indexField(fixture.file, 9, 0));
    for (int i = 10; i < 42; ++i) storeU32(&shifted[4576 + 14 * std::size_t(i)], std::uint32_t(indexField(fixture.file, i, 0) + d));
    Bytes before = shifted;
    ASSERT_TRUE(replaceMenuPicture(shifted, 9, coded));
    EXPECT_EQ(shifted, before);
}

TEST(MenuPicture, ReplacementRefusesBadSlotsAndEmptyData) {
    Bytes file = makeMenuFile(2);
    Bytes before = file;
    Bytes coded = codeMenuHelmet(helmetPicture(1));
    EXPECT_FALSE(replaceMenuPicture(file, 28, coded));
    EXPECT_FALSE(replaceMenuPicture(file, -1, coded));
    EXPECT_FALSE(replaceMenuPicture(file, 3, Bytes{}));
    Bytes tiny(100);
    EXPECT_FALSE(replaceMenuPicture(tiny, 0, coded));
    EXPECT_EQ(file, before);
}

TEST(MenuPicture, DamagedIndexIsRefusedBeforeAnythingMoves) {
    const Bytes good = makeMenuFile(6);
    const Bytes coded = codeMenuHelmet(BitmapBuffer(104, 104));   // shorter than slot 5's data
    auto damaged = [&](int entry, int field, std::uint32_t value) {
        Bytes file = good;
        storeU32(&file[4576 + 14 * std::size_t(entry) + std::size_t(field)], value);
        return file;
    };
    const std::uint32_t offset5 = indexField(good, 5, 0);
    const std::uint32_t offset6 = indexField(good, 6, 0);
    const std::vector<Bytes> files = {
        damaged(5, 4, offset6 - offset5 + 1),             // runs into picture 6
        damaged(5, 0, 4576 + 14 * 3),                     // points into the index
        damaged(6, 0, std::uint32_t(good.size()) + 10),   // next picture past the end
        damaged(6, 0, offset5),                           // next picture before this one ends
    };
    for (std::size_t i = 0; i < files.size(); ++i) {
        SCOPED_TRACE(i);
        Bytes file = files[i];
        EXPECT_FALSE(replaceMenuPicture(file, 5, coded));
        EXPECT_EQ(file, files[i]);

        ScratchFolder game;
        auto path = writeMenuFile(game.path(), 6);
        {
            std::ofstream out(path, std::ios::binary | std::ios::trunc);
            out.write(reinterpret_cast<const char*>(files[i].data()), std::streamsize(files[i].size()));
        }
        EXPECT_FALSE(ImportMenuHelmet(game.path(), 5, BitmapBuffer(104, 104)));
        EXPECT_EQ(*readWholeFile(path), files[i]);
    }
    // The undamaged file is accepted.
    Bytes file = good;
    EXPECT_TRUE(replaceMenuPicture(file, 5, coded));
}

// ---- the game's file -----------------------------------------------------------------

TEST(MenuHelmetFile, ImportInPlaceMatchesTheInMemoryReplacement) {
    for (int slot : {0, 13, 27}) {
        for (int kind = 0; kind < 2; ++kind) {
            SCOPED_TRACE(testing::Message() << "slot " << slot << " kind " << kind);
            ScratchFolder game;
            auto path = writeMenuFile(game.path(), 5);
            Bytes expected = *readWholeFile(path);
            BitmapBuffer picture = kind == 0 ? helmetPicture(0) : BitmapBuffer(104, 104);
            ASSERT_TRUE(replaceMenuPicture(expected, slot, codeMenuHelmet(picture)));
            RecordingProgress progress;
            ASSERT_TRUE(ImportMenuHelmet(game.path(), slot, picture, &progress));
            EXPECT_EQ(*readWholeFile(path), expected);
            ASSERT_EQ(progress.files.size(), 1u);
            EXPECT_TRUE(progress.files[0].ends_with("F1PCSVGA.BIN #" + std::to_string(326 + slot))) << progress.files[0];
            EXPECT_LE(progress.files[0].size(), 17u + 5u);
        }
    }
}

TEST(MenuHelmetFile, ExportWritesABitmapWithTheMenuPalette) {
    ScratchFolder game;
    writeMenuFile(game.path(), 8);
    MenuFixture fixture = makeMenuFixture(8);
    ASSERT_TRUE(ExportMenuHelmet(game.path(), 6, game / "m.bmp"));
    auto file = readWholeFile(game / "m.bmp");
    ASSERT_TRUE(file);
    ASSERT_EQ(file->size(), 1078u + 104u * 104u);
    EXPECT_EQ(loadU32(&(*file)[2]), 1078u + 104u * 104u);
    EXPECT_EQ(loadU32(&(*file)[54 + 4 * 5]) & 0xFFFFFF, MenuPalette[5]);
    // Bottom-up in the file: its last row is the picture's top row.
    EXPECT_TRUE(std::equal(file->end() - 104, file->end(), fixture.pictures[6].begin()));
    EXPECT_FALSE(ExportMenuHelmet(game.path(), 28, game / "n.bmp"));
    EXPECT_FALSE(std::filesystem::exists(game / "n.bmp"));
    ScratchFolder empty;
    auto missing = ExportMenuHelmet(empty.path(), 0, empty / "n.bmp");
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().id, MessageId::FailedToImportMenuHelmet);
    auto missingImport = ImportMenuHelmet(empty.path(), 0, BitmapBuffer(104, 104));
    ASSERT_FALSE(missingImport);
    EXPECT_EQ(missingImport.error().id, MessageId::FailedToExportMenuHelmet);
}

// ---- moving a file's tail -----------------------------------------------------------

TEST(FileTail, MovesMatchTheInMemoryMoveForEveryPieceShape) {
    for (std::size_t tail : {0u, 1u, 1023u, 1024u, 1025u, 2048u, 3000u}) {
        for (std::int64_t delta : {-700, -1, 1, 5, 1500}) {
            SCOPED_TRACE(testing::Message() << "tail " << tail << " delta " << delta);
            ScratchFolder dir;
            Bytes original(2000 + tail);
            for (std::size_t i = 0; i < original.size(); ++i) original[i] = std::uint8_t(i * 131 + i / 256);
            {
                std::ofstream out(dir / "f", std::ios::binary);
                out.write(reinterpret_cast<const char*>(original.data()), std::streamsize(original.size()));
            }
            PatchableFile file;
            ASSERT_TRUE(file.open(dir / "f"));
            ASSERT_TRUE(moveFileTail(file, 2000, delta));
            file.close();
            Bytes expected = original;
            ASSERT_TRUE(moveTail(expected, 2000, delta));
            auto actual = readWholeFile(dir / "f");
            ASSERT_TRUE(actual);
            EXPECT_EQ(*actual, expected);
            // The tail lands delta bytes away, whole.
            EXPECT_TRUE(std::equal(original.begin() + 2000, original.end(), expected.begin() + 2000 + delta));
        }
    }
}

TEST(FileTail, RefusesTailsOutsideTheFile) {
    ScratchFolder dir;
    {
        std::ofstream out(dir / "f", std::ios::binary);
        out << "0123456789";
    }
    PatchableFile file;
    ASSERT_TRUE(file.open(dir / "f"));
    EXPECT_FALSE(moveFileTail(file, 11, 1));
    EXPECT_FALSE(moveFileTail(file, 3, -4));
    EXPECT_TRUE(moveFileTail(file, 3, 0));
    EXPECT_EQ(file.size(), 10u);
    Bytes data(10);
    EXPECT_FALSE(moveTail(data, 11, 1));
    EXPECT_FALSE(moveTail(data, 3, -4));
    PatchableFile none;
    EXPECT_FALSE(none.open(dir / "missing"));
}

}  // namespace
}  // namespace tarvel::test
