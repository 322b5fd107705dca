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

// Runs of at most 63, escapes of single bytes above 192, and a whole livery of one colour.
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
        {Bytes(41984, 7), {}},                // 666 full pairs and a run of 26
    };
    for (auto [raw, coded] : cases) {
        if (raw.size() == 41984) {
            for (int i = 0; i < 666; ++i) coded.insert(coded.end(), {255, 7});
            coded.insert(coded.end(), {192 + 26, 7});
        }
        EXPECT_EQ(encode(raw), coded) << raw.size();
        EXPECT_EQ(runLengthCodedSize(raw), coded.size()) << raw.size();
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

// Random stretches of runs and literals (every byte value) against the rules above.
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

// A run code without its value byte, and literals or runs past the limit.
TEST(RunLength, DecoderRefusesDamagedInputAndOutputPastTheLimit) {
    const std::tuple<Bytes, std::size_t, bool> cases[] = {
        {{1, 2, 200}, 100, false}, {{1, 2, 3}, 2, false}, {{255, 4}, 62, false}, {{255, 4}, 63, true}};
    for (const auto& [coded, limit, ok] : cases) {
        Bytes out;
        EXPECT_EQ(runLengthDecode(coded, out, limit), ok) << limit;
    }
}

// Coding pays only below nine tenths: car bitmap, helmet sheet and menu helmet limits.
TEST(RunLength, CodedOnlyBelowNineTenthsOfRaw) {
    const std::tuple<std::size_t, std::size_t, bool> cases[] = {
        {41984, 37784, true}, {41984, 37785, false}, {46080, 41471, true}, {46080, 41472, false},
        {10816, 9733, true},  {10816, 9734, false},  {100, 0, false},      {1, 0, false}, {0, 0, false}};
    for (auto [raw, coded, pays] : cases) EXPECT_EQ(runLengthPays(raw, coded), pays) << raw << " " << coded;
}

}  // namespace
}  // namespace tarvel
