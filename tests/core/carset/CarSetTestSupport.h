#pragma once
// Helpers for the car set tests: a scratch folder per test and small file
// writers.

#include "carset/CarSet.h"
#include "common/ByteIO.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace tarvel::test {

class ScratchFolder {
public:
    ScratchFolder() {
        static std::atomic<int> counter{0};
        path_ = std::filesystem::temp_directory_path() /
                ("tarvel-carset-test-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~ScratchFolder() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

inline void writeFile(const std::filesystem::path& path, const Bytes& data) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data.data()), std::streamsize(data.size()));
}

inline Bytes readFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

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

// Team and driver tables equal field by field, except slotIndex and the
// livery statuses, which every load and save rewrites.
inline void expectSameTables(const CarSet& a, const CarSet& b) {
    for (int i = 0; i < kTeamSlots; ++i) {
        SCOPED_TRACE("team " + std::to_string(i));
        const TeamRecord& x = a.teams[i];
        const TeamRecord& y = b.teams[i];
        EXPECT_EQ(x.name, y.name);
        EXPECT_EQ(x.engine, y.engine);
        EXPECT_EQ(x.powerRace, y.powerRace);
        EXPECT_EQ(x.powerQual, y.powerQual);
        EXPECT_EQ(x.failureProbability, y.failureProbability);
        EXPECT_EQ(x.highNose, y.highNose);
        EXPECT_EQ(x.teamBytesA, y.teamBytesA);
        EXPECT_EQ(x.teamBytesB, y.teamBytesB);
        EXPECT_EQ(x.driver, y.driver);
        EXPECT_EQ(x.disabled, y.disabled);
        EXPECT_EQ(x.flagS, y.flagS);
        EXPECT_EQ(x.teamOrder, y.teamOrder);
    }
    for (int n = 0; n <= kDriverNumbers; ++n) {
        SCOPED_TRACE("driver " + std::to_string(n));
        const DriverRecord& x = a.drivers[n];
        const DriverRecord& y = b.drivers[n];
        EXPECT_EQ(x.name, y.name);
        EXPECT_EQ(x.gripRace, y.gripRace);
        EXPECT_EQ(x.gripQual, y.gripQual);
        EXPECT_EQ(x.gripRandom, y.gripRandom);
        EXPECT_EQ(x.inUse, y.inUse);
    }
}

}  // namespace tarvel::test
