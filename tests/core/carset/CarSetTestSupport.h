#pragma once
// Helpers for the car set tests: a scratch folder per test, a sound file,
// and the shared car set samples.

#include "carset/CarSet.h"
#include "common/ByteIO.h"
#include "fixtures/CarSetSamples.h"
#include "fixtures/GameFixture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace tarvel::test {

struct ScratchFolder : TempFolder {
    ScratchFolder() : TempFolder("carset") {}
};

// A RIFF WAVE file of `dataBytes` sample bytes, followed by `junk` bytes that
// lie outside the RIFF chunk.
inline Bytes makeWave(std::size_t dataBytes, std::uint8_t seed, std::size_t junk = 0) {
    ByteWriter w;
    w.bytes("RIFF", 4);
    w.u32(std::uint32_t(36 + dataBytes));
    w.bytes("WAVEfmt ", 8);
    w.u32(16);
    w.u16(1);
    w.u16(1);
    w.u32(11025);
    w.u32(11025);
    w.u16(1);
    w.u16(8);
    w.bytes("data", 4);
    w.u32(std::uint32_t(dataBytes));
    for (std::size_t i = 0; i < dataBytes; ++i) w.u8(std::uint8_t(seed + i * 7 + (i >> 5)));
    for (std::size_t i = 0; i < junk; ++i) w.u8(0xEE);
    return std::move(w.data());
}

}  // namespace tarvel::test
