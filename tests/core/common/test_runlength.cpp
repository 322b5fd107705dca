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
    Bytes raw(41984, 7), expected;
    for (int i = 0; i < 666; ++i) expected.insert(expected.end(), {255, 7});
    expected.insert(expected.end(), {192 + 26, 7});
    EXPECT_EQ(encode(raw), expected);
    EXPECT_EQ(runLengthCodedSize(raw), expected.size());
    EXPECT_EQ(decode(expected), raw);
}

TEST(RunLength, RunLimitsAndEscapes) {
    const std::pair<Bytes, Bytes> cases[] = {
        {Bytes(63, 9), {255, 9}},             // a run of 63 is one pair
        {Bytes(64, 9), {255, 9, 9}},          // 64: a pair and a single byte
        {Bytes(64, 200), {255, 200, 193, 200}},
        {Bytes(126, 1), {255, 1, 255, 1}},
        {{5, 5}, {194, 5}},                   // two equal bytes are still a run
        {{192}, {192}},                       // 192 is a literal
        {{193}, {193, 193}},                  // 193 and above are escaped when single
        {{255}, {193, 255}},
        {{0, 192, 1}, {0, 192, 1}},
        {Bytes(63, 192), {255, 192}},
        {{}, {}},
    };
    for (const auto& [raw, coded] : cases) {
        EXPECT_EQ(encode(raw), coded) << raw.size();
        EXPECT_EQ(decode(coded), raw) << raw.size();
    }
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

TEST(RunLength, DecoderRefusesDamagedInputAndOutputPastTheLimit) {
    struct Case {
        Bytes coded;
        std::size_t limit;
        bool ok;
    };
    const Case cases[] = {
        {{1, 2, 200}, 100, false},   // a run code as the last byte has no value byte
        {{1, 2, 3}, 2, false},       // a literal past the limit
        {{255, 4}, 62, false},       // a run past the limit
        {{255, 4}, 63, true},
    };
    for (const Case& c : cases) {
        Bytes out;
        EXPECT_EQ(runLengthDecode(c.coded, out, c.limit), c.ok) << c.limit;
    }
}

TEST(RunLength, CodedOnlyBelowNineTenthsOfRaw) {
    // Car bitmap, helmet sheet and menu helmet limits.
    const std::tuple<std::size_t, std::size_t, bool> cases[] = {
        {41984, 37784, true}, {41984, 37785, false}, {46080, 41471, true}, {46080, 41472, false},
        {10816, 9733, true},  {10816, 9734, false},  {100, 0, false},      {1, 0, false}, {0, 0, false}};
    for (auto [raw, coded, pays] : cases) EXPECT_EQ(runLengthPays(raw, coded), pays) << raw << " " << coded;
}

}  // namespace
}  // namespace tarvel
