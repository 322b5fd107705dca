#pragma once
// The 4-byte checksum trailer of the car set file and the game's state file:
// a 16-bit sum of the bytes and a 16-bit hash that is rotated left by 3 before
// each byte is added.

#include "common/ByteIO.h"

#include <cstdint>
#include <span>

namespace tarvel {

constexpr std::size_t kChecksumTrailerSize = 4;

struct Checksum {
    std::uint16_t sum = 0;
    std::uint16_t hash = 0;

    // Adds bytes; feeding a buffer in pieces gives the same result as feeding it whole.
    void update(std::span<const std::uint8_t> data);
    bool operator==(const Checksum&) const = default;
};

Checksum computeChecksum(std::span<const std::uint8_t> data);

// Appends the trailer of everything in `data`.
void appendChecksum(Bytes& data);
// Overwrites the last four bytes of `data` with the trailer of the bytes before them.
bool writeChecksumTrailer(std::span<std::uint8_t> data);
// The trailer stored in the last four bytes of `data`; false when there are fewer.
bool readChecksumTrailer(std::span<const std::uint8_t> data, Checksum& stored);
// Whether the last four bytes of `data` are the trailer of the bytes before them.
bool checksumTrailerMatches(std::span<const std::uint8_t> data);

}  // namespace tarvel
