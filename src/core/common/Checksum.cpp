#include "common/Checksum.h"

namespace tarvel {

void Checksum::update(std::span<const std::uint8_t> data) {
    // The sum and the hash run as separate loops: the sum vectorises, the
    // hash is one rotate and one add per byte.
    std::uint32_t s = 0;
    for (std::uint8_t b : data) s += b;
    sum = std::uint16_t(sum + s);
    std::uint16_t h = hash;
    for (std::uint8_t b : data) h = std::uint16_t(std::uint16_t((h << 3) | (h >> 13)) + b);
    hash = h;
}

Checksum computeChecksum(std::span<const std::uint8_t> data) {
    Checksum c;
    c.update(data);
    return c;
}

void appendChecksum(Bytes& data) {
    Checksum c = computeChecksum(data);
    std::uint8_t trailer[kChecksumTrailerSize];
    storeU16(trailer, c.sum);
    storeU16(trailer + 2, c.hash);
    data.insert(data.end(), trailer, trailer + kChecksumTrailerSize);
}

bool writeChecksumTrailer(std::span<std::uint8_t> data) {
    if (data.size() < kChecksumTrailerSize) return false;
    std::size_t body = data.size() - kChecksumTrailerSize;
    Checksum c = computeChecksum(data.first(body));
    storeU16(&data[body], c.sum);
    storeU16(&data[body + 2], c.hash);
    return true;
}

bool readChecksumTrailer(std::span<const std::uint8_t> data, Checksum& stored) {
    if (data.size() < kChecksumTrailerSize) return false;
    std::size_t body = data.size() - kChecksumTrailerSize;
    stored.sum = loadU16(&data[body]);
    stored.hash = loadU16(&data[body + 2]);
    return true;
}

bool checksumTrailerMatches(std::span<const std::uint8_t> data) {
    Checksum stored;
    if (!readChecksumTrailer(data, stored)) return false;
    return computeChecksum(data.first(data.size() - kChecksumTrailerSize)) == stored;
}

}  // namespace tarvel
