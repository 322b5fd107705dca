#pragma once
// Little-endian reading and writing over byte buffers. Every read of outside
// data goes through ByteReader, which checks the bounds before it touches a
// byte and latches a failure instead of reading past the end.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

namespace tarvel {

using Bytes = std::vector<std::uint8_t>;

inline std::uint16_t loadU16(const std::uint8_t* p) { return std::uint16_t(p[0] | (p[1] << 8)); }
inline std::uint32_t loadU32(const std::uint8_t* p) {
    return std::uint32_t(p[0]) | (std::uint32_t(p[1]) << 8) | (std::uint32_t(p[2]) << 16) |
           (std::uint32_t(p[3]) << 24);
}
inline void storeU16(std::uint8_t* p, std::uint16_t v) {
    p[0] = std::uint8_t(v);
    p[1] = std::uint8_t(v >> 8);
}
inline void storeU32(std::uint8_t* p, std::uint32_t v) {
    p[0] = std::uint8_t(v);
    p[1] = std::uint8_t(v >> 8);
    p[2] = std::uint8_t(v >> 16);
    p[3] = std::uint8_t(v >> 24);
}

// Sequential reader with a sticky failure flag: once a read would pass the end,
// every later read returns zeros and ok() stays false.
class ByteReader {
public:
    explicit ByteReader(std::span<const std::uint8_t> data, std::size_t pos = 0)
        : data_(data), pos_(pos), ok_(pos <= data.size()) {}

    bool ok() const { return ok_; }
    std::size_t pos() const { return pos_; }
    std::size_t size() const { return data_.size(); }
    std::size_t remaining() const { return ok_ ? data_.size() - pos_ : 0; }

    bool seek(std::size_t pos) {
        if (pos > data_.size()) ok_ = false;
        else pos_ = pos;
        return ok_;
    }
    bool skip(std::size_t n) { return need(n) ? (pos_ += n, true) : false; }

    std::uint8_t u8() { return need(1) ? data_[pos_++] : 0; }
    std::uint16_t u16() {
        if (!need(2)) return 0;
        auto v = loadU16(&data_[pos_]);
        pos_ += 2;
        return v;
    }
    std::int16_t i16() { return std::int16_t(u16()); }
    std::uint32_t u32() {
        if (!need(4)) return 0;
        auto v = loadU32(&data_[pos_]);
        pos_ += 4;
        return v;
    }
    bool bytes(void* out, std::size_t n) {
        if (!need(n)) {
            if (n) std::memset(out, 0, n);
            return false;
        }
        if (n) std::memcpy(out, &data_[pos_], n);
        pos_ += n;
        return true;
    }
    std::span<const std::uint8_t> view(std::size_t n) {
        if (!need(n)) return {};
        auto s = data_.subspan(pos_, n);
        pos_ += n;
        return s;
    }

private:
    bool need(std::size_t n) {
        if (!ok_ || n > data_.size() - pos_) {
            ok_ = false;
            return false;
        }
        return true;
    }
    std::span<const std::uint8_t> data_;
    std::size_t pos_;
    bool ok_;
};

// Appending writer; patch*() overwrite bytes already written. A patch that
// would reach past the bytes written so far changes nothing and latches a
// failure that ok() reports, as ByteReader does for reads.
class ByteWriter {
public:
    bool ok() const { return ok_; }
    Bytes& data() { return data_; }
    std::size_t size() const { return data_.size(); }
    void u8(std::uint8_t v) { data_.push_back(v); }
    void u16(std::uint16_t v) {
        data_.push_back(std::uint8_t(v));
        data_.push_back(std::uint8_t(v >> 8));
    }
    void u32(std::uint32_t v) {
        u16(std::uint16_t(v));
        u16(std::uint16_t(v >> 16));
    }
    void bytes(const void* p, std::size_t n) {
        auto b = static_cast<const std::uint8_t*>(p);
        data_.insert(data_.end(), b, b + n);
    }
    void zeros(std::size_t n) { data_.insert(data_.end(), n, 0); }
    bool patchU8(std::size_t at, std::uint8_t v) {
        if (!written(at, 1)) return false;
        data_[at] = v;
        return true;
    }
    bool patchU32(std::size_t at, std::uint32_t v) {
        if (!written(at, 4)) return false;
        storeU32(&data_[at], v);
        return true;
    }

private:
    bool written(std::size_t at, std::size_t n) {
        if (at > data_.size() || n > data_.size() - at) ok_ = false;
        return ok_;
    }
    Bytes data_;
    bool ok_ = true;
};

}  // namespace tarvel
