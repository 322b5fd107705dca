#include "common/ByteIO.h"
#include "common/FileIO.h"
#include "common/PatchableFile.h"
#include "fixtures/GameFixture.h"

#include <gtest/gtest.h>

namespace tarvel::test {
namespace {

// Reads and writes stay inside the file; a read-only file takes no write.
TEST(PatchableFile, ReadsAndWritesOnlyInsideTheFile) {
    TempFolder dir("patch");
    writeFileBytes(dir / "f", Bytes{1, 2, 3, 4, 5, 6});
    PatchableFile file;
    ASSERT_TRUE(file.open(dir / "f", PatchableFile::Update));
    std::uint16_t word = 0;
    EXPECT_TRUE(file.readU16(4, word));
    EXPECT_EQ(word, 0x0605);
    EXPECT_FALSE(file.readU16(5, word)) << "one byte short";
    EXPECT_FALSE(file.writeU16(5, 7)) << "would grow the file";
    EXPECT_FALSE(file.writeU8(std::uint64_t(-1), 7));
    EXPECT_TRUE(file.writeU16(0, 0x0A09));
    EXPECT_FALSE(moveFileTail(file, 11, 1));
    EXPECT_FALSE(moveFileTail(file, 3, -4));
    EXPECT_TRUE(file.close());
    EXPECT_EQ(readFileBytes(dir / "f"), (Bytes{9, 10, 3, 4, 5, 6}));
    PatchableFile readOnly;
    ASSERT_TRUE(readOnly.open(dir / "f", PatchableFile::ReadOnly));
    EXPECT_FALSE(readOnly.writeU8(0, 1));
    EXPECT_FALSE(PatchableFile().open(dir / "missing", PatchableFile::ReadOnly));
    Bytes data(10);
    EXPECT_FALSE(moveTail(data, 11, 1));
    EXPECT_FALSE(moveTail(data, 3, -4));
}

// Moving a file's tail in pieces gives what the in-memory move gives, for
// tails shorter, equal to and longer than one piece, in both directions.
TEST(PatchableFile, TailMovesMatchTheInMemoryMoveForEveryPieceShape) {
    for (std::size_t tail : {0u, 1u, 1023u, 1024u, 1025u, 3000u}) {
        for (std::int64_t delta : {-700, -1, 0, 1, 1500}) {
            SCOPED_TRACE(testing::Message() << "tail " << tail << " delta " << delta);
            TempFolder dir("tail");
            Bytes original(2000 + tail);
            for (std::size_t i = 0; i < original.size(); ++i) original[i] = std::uint8_t(i * 131 + i / 256);
            writeFileBytes(dir / "f", original);
            PatchableFile file;
            ASSERT_TRUE(file.open(dir / "f", PatchableFile::Update));
            ASSERT_TRUE(moveFileTail(file, 2000, delta));
            EXPECT_TRUE(file.close());
            Bytes expected = original;
            ASSERT_TRUE(moveTail(expected, 2000, delta));
            EXPECT_EQ(readFileBytes(dir / "f"), expected);
            EXPECT_TRUE(std::equal(original.begin() + 2000, original.end(), expected.begin() + 2000 + delta));
        }
    }
}

// Patches past the written bytes fail, change nothing and mark the writer.
TEST(ByteWriter, PatchesPastTheWrittenBytesFailAndChangeNothing) {
    ByteWriter w;
    w.zeros(5);
    EXPECT_TRUE(w.patchU32(1, 0x04030201));
    EXPECT_TRUE(w.ok());
    EXPECT_FALSE(w.patchU32(2, 7));
    EXPECT_FALSE(w.patchU8(std::size_t(-1), 7));
    EXPECT_FALSE(w.ok());
    EXPECT_EQ(w.data(), (Bytes{0, 1, 2, 3, 4}));
}

}  // namespace
}  // namespace tarvel::test
