#include "common/Checksum.h"

#include <gtest/gtest.h>

namespace tarvel {
namespace {

// Sum modulo 65536 and the hash that rotates its top bits back into the bottom;
// pieces fed one after another give the result of the whole.
TEST(Checksum, SumRotatingHashAndPieces) {
    EXPECT_EQ(computeChecksum(Bytes{1, 2, 3}), (Checksum{6, 83}));   // ((1 << 3) + 2) << 3 + 3
    EXPECT_EQ(computeChecksum(Bytes(5, 255)), (Checksum{1275, 0x36C9}));
    EXPECT_EQ(computeChecksum(Bytes(300, 255)).sum, (300 * 255) % 65536);
    EXPECT_EQ(computeChecksum(Bytes{}), (Checksum{0, 0}));
    Bytes data;
    for (int i = 0; i < 10000; ++i) data.push_back(std::uint8_t(i * 37 + i / 7));
    Checksum pieces;
    pieces.update(std::span(data).first(1));
    pieces.update(std::span(data).subspan(1, 4000));
    pieces.update(std::span(data).subspan(4001));
    EXPECT_EQ(pieces, computeChecksum(data));
}

TEST(Checksum, TrailerIsAppendedCheckedAndRewritten) {
    Bytes data{10, 20, 30, 40, 50};
    appendChecksum(data);
    ASSERT_EQ(data.size(), 9u);
    EXPECT_EQ(loadU16(&data[5]), 150);
    EXPECT_TRUE(checksumTrailerMatches(data));
    data[2] ^= 1;
    EXPECT_FALSE(checksumTrailerMatches(data));
    ASSERT_TRUE(writeChecksumTrailer(data));
    EXPECT_TRUE(checksumTrailerMatches(data));
    Checksum stored;
    EXPECT_FALSE(readChecksumTrailer(Bytes{1, 2, 3}, stored));
    EXPECT_FALSE(checksumTrailerMatches(Bytes{1, 2, 3}));
    EXPECT_TRUE(checksumTrailerMatches(Bytes{0, 0, 0, 0}));   // the trailer of nothing
}

}  // namespace
}  // namespace tarvel
