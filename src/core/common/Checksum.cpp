#include "common/Checksum.h"

namespace tarvel {

void Checksum::update(std::span<const std::uint8_t> data) {
    std::uint32_t s = sum;
    std::uint32_t h = hash;
    for (std::uint8_t b : data) {
        s += b;
        h = (((h << 3) | (h >> 13)) + b) & 0xFFFFu;
    }
    sum = std::uint16_t(s);
    hash = std::uint16_t(h);
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
