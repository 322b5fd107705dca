#include "common/RunLength.h"

#include <gtest/gtest.h>

#include <random>

namespace tarvel {
namespace {

Bytes encode(const Bytes& raw) {
    Bytes out;
    runLengthEncode(raw, out);
    return out;
}

Bytes decode(const Bytes& coded, std::size_t limit = 1u << 24) {
    Bytes out;
    EXPECT_TRUE(runLengthDecode(coded, out, limit));
    return out;
}

TEST(RunLength, LiveryOfEqualBytesCodesTo667Pairs) {
    Bytes raw(41984, 7);
    Bytes coded = encode(raw);
    ASSERT_EQ(coded.size(), 1334u);
    EXPECT_EQ(runLengthCodedSize(raw), 1334u);
    for (std::size_t i = 0; i < 666; ++i) {
        EXPECT_EQ(coded[2 * i], 255);
        EXPECT_EQ(coded[2 * i + 1], 7);
    }
    EXPECT_EQ(coded[1332], 192 + 26);
    EXPECT_EQ(coded[1333], 7);
    EXPECT_TRUE(runLengthPays(raw.size(), coded.size()));
    EXPECT_EQ(decode(coded), raw);
}

TEST(RunLength, RunLimitsAndEscapes) {
    // A run of 63 is one pair; 64 splits into a pair and a single byte.
    EXPECT_EQ(encode(Bytes(63, 9)), (Bytes{255, 9}));
    EXPECT_EQ(encode(Bytes(64, 9)), (Bytes{255, 9, 9}));
    EXPECT_EQ(encode(Bytes(64, 200)), (Bytes{255, 200, 193, 200}));
    EXPECT_EQ(encode(Bytes(126, 1)), (Bytes{255, 1, 255, 1}));
    // Two equal bytes are still a run.
    EXPECT_EQ(encode(Bytes{5, 5}), (Bytes{194, 5}));
    // 192 is a literal; 193 and above are escaped when single.
    EXPECT_EQ(encode(Bytes{192}), (Bytes{192}));
    EXPECT_EQ(encode(Bytes{193}), (Bytes{193, 193}));
    EXPECT_EQ(encode(Bytes{255}), (Bytes{193, 255}));
    EXPECT_EQ(encode(Bytes{0, 192, 1}), (Bytes{0, 192, 1}));
    EXPECT_EQ(decode(Bytes{192}), (Bytes{192}));
    EXPECT_EQ(decode(Bytes{193, 255}), (Bytes{255}));
    EXPECT_EQ(decode(Bytes{255, 192}), Bytes(63, 192));
    EXPECT_TRUE(encode(Bytes{}).empty());
}

// The coding rules written out byte by byte, as a reference for the coder.
Bytes referenceEncode(const Bytes& raw) {
    Bytes out;
    for (std::size_t i = 0; i < raw.size();) {
        std::size_t run = 1;
        while (i + run < raw.size() && raw[i + run] == raw[i] && run < 63) ++run;
        if (run >= 2) {
            out.push_back(std::uint8_t(192 + run));
            out.push_back(raw[i]);
        } else if (raw[i] > 192) {
            out.push_back(193);
            out.push_back(raw[i]);
        } else {
            out.push_back(raw[i]);
        }
        i += run;
    }
    return out;
}

TEST(RunLength, MatchesTheRulesAtEveryPositionOfALiteralStretch) {
    // Distinct neighbours with one disturbance (an equal pair, 192, 193, 255)
    // moved across the positions of a long literal stretch.
    Bytes base;
    for (int i = 0; i < 40; ++i) base.push_back(std::uint8_t((i * 5) % 180));
    EXPECT_EQ(encode(base), base);
    for (std::size_t at = 0; at < base.size(); ++at) {
        for (int kind = 0; kind < 4; ++kind) {
            Bytes raw = base;
            if (kind == 0 && at + 1 < raw.size()) raw[at + 1] = raw[at];
            if (kind == 1) raw[at] = 192;
            if (kind == 2) raw[at] = 193;
            if (kind == 3) raw[at] = 255;
            EXPECT_EQ(encode(raw), referenceEncode(raw)) << at << " " << kind;
        }
    }
}

TEST(RunLength, RoundTripOfMixedDataAndDryRunAgree) {
    std::mt19937 rng(1234);
    for (int trial = 0; trial < 50; ++trial) {
        Bytes raw;
        std::size_t n = rng() % 5000;
        while (raw.size() < n) {
            std::uint8_t b = std::uint8_t(rng());
            std::size_t run = (rng() % 4 == 0) ? rng() % 200 + 1 : 1;
            raw.insert(raw.end(), run, b);
        }
        Bytes coded = encode(raw);
        EXPECT_EQ(coded, referenceEncode(raw));
        EXPECT_EQ(runLengthCodedSize(raw), coded.size());
        EXPECT_EQ(decode(coded), raw);
    }
}

TEST(RunLength, DecoderRefusesDamagedInput) {
    Bytes out;
    // A run code as the last byte has no value byte.
    EXPECT_FALSE(runLengthDecode(Bytes{1, 2, 200}, out, 100));
    // Output would pass the limit, by a literal and by a run.
    out.clear();
    EXPECT_FALSE(runLengthDecode(Bytes{1, 2, 3}, out, 2));
    out.clear();
    EXPECT_FALSE(runLengthDecode(Bytes{255, 4}, out, 62));
    out.clear();
    EXPECT_TRUE(runLengthDecode(Bytes{255, 4}, out, 63));
    EXPECT_EQ(out, Bytes(63, 4));
}

TEST(RunLength, CodedOnlyBelowNineTenthsOfRaw) {
    // Car bitmap, helmet sheet and menu helmet limits.
    EXPECT_TRUE(runLengthPays(41984, 37784));
    EXPECT_FALSE(runLengthPays(41984, 37785));
    EXPECT_TRUE(runLengthPays(46080, 41471));
    EXPECT_FALSE(runLengthPays(46080, 41472));
    EXPECT_TRUE(runLengthPays(10816, 9733));
    EXPECT_FALSE(runLengthPays(10816, 9734));
    EXPECT_FALSE(runLengthPays(100, 0));
    EXPECT_FALSE(runLengthPays(1, 0));
    EXPECT_FALSE(runLengthPays(0, 0));
}

}  // namespace
}  // namespace tarvel
