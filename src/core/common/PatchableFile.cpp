#include "common/PatchableFile.h"

#include <algorithm>
#include <array>
#include <system_error>

namespace tarvel {
namespace fs = std::filesystem;

bool PatchableFile::open(const fs::path& path, Mode mode) {
    (void)close();   // whatever was open before is given up
    std::error_code ec;
    auto length = fs::file_size(path, ec);
    if (ec) return false;
    path_ = path;
    mode_ = mode;
    size_ = length;
    failed_ = false;
    return reopen();
}

bool PatchableFile::reopen() {
    auto flags = std::ios::binary | std::ios::in;
    if (mode_ == Update) flags |= std::ios::out;
    stream_.open(path_, flags);
    return stream_.is_open();
}

bool PatchableFile::read(std::uint64_t offset, std::span<std::uint8_t> out) {
    if (!stream_.is_open() || !fits(offset, out.size())) return false;
    stream_.clear();
    stream_.seekg(std::streamoff(offset));
    if (!stream_) return false;
    stream_.read(reinterpret_cast<char*>(out.data()), std::streamsize(out.size()));
    bool ok = bool(stream_) && std::size_t(stream_.gcount()) == out.size();
    stream_.clear();
    return ok;
}

bool PatchableFile::write(std::uint64_t offset, std::span<const std::uint8_t> data) {
    if (!stream_.is_open() || mode_ != Update || !fits(offset, data.size())) return false;
    stream_.clear();
    stream_.seekp(std::streamoff(offset));
    if (!stream_) return false;
    stream_.write(reinterpret_cast<const char*>(data.data()), std::streamsize(data.size()));
    if (!stream_) {
        failed_ = true;
        return false;
    }
    return true;
}

bool PatchableFile::readU8(std::uint64_t offset, std::uint8_t& value) { return read(offset, {&value, 1}); }

bool PatchableFile::readU16(std::uint64_t offset, std::uint16_t& value) {
    std::uint8_t b[2];
    if (!read(offset, b)) return false;
    value = loadU16(b);
    return true;
}

bool PatchableFile::writeU8(std::uint64_t offset, std::uint8_t value) { return write(offset, {&value, 1}); }

bool PatchableFile::writeU16(std::uint64_t offset, std::uint16_t value) {
    std::uint8_t b[2];
    storeU16(b, value);
    return write(offset, b);
}

bool PatchableFile::flush() {
    if (!stream_.is_open()) return false;
    stream_.clear();
    return bool(stream_.flush());
}

bool PatchableFile::resize(std::uint64_t newSize) {
    if (mode_ != Update || !flush()) return false;
    std::error_code ec;
    fs::resize_file(path_, newSize, ec);
    // The stream's buffer may hold a stale view of the old end.
    stream_.close();
    stream_.clear();
    if (ec || !reopen()) return false;
    size_ = newSize;
    return true;
}

bool PatchableFile::close() {
    if (!stream_.is_open()) {
        stream_.clear();
        return false;
    }
    stream_.flush();
    bool ok = bool(stream_) && !failed_;
    stream_.close();
    ok = ok && !stream_.fail();
    stream_.clear();
    return ok;
}

bool moveFileTail(PatchableFile& file, std::uint64_t tailStart, std::int64_t delta) {
    if (delta == 0) return true;
    std::uint64_t size = file.size();
    if (tailStart > size) return false;
    if (delta < 0 && tailStart < std::uint64_t(-delta)) return false;
    std::uint64_t tail = size - tailStart;
    std::uint64_t first = tail % kFilePieceSize;
    if (first == 0) first = kFilePieceSize;
    std::array<std::uint8_t, kFilePieceSize> piece{};

    if (delta < 0) {
        std::uint64_t pos = tailStart;
        std::uint64_t length = std::min<std::uint64_t>(first, tail);
        while (pos < size) {
            std::span<std::uint8_t> part(piece.data(), std::size_t(length));
            if (!file.read(pos, part) || !file.write(pos - std::uint64_t(-delta), part)) return false;
            pos += length;
            length = kFilePieceSize;
        }
        return file.flush();
    }

    if (!file.resize(size + std::uint64_t(delta))) return false;
    if (tail == 0) return true;
    std::uint64_t length = first;
    std::uint64_t pos = size - length;
    for (;;) {
        std::span<std::uint8_t> part(piece.data(), std::size_t(length));
        if (!file.read(pos, part) || !file.write(pos + std::uint64_t(delta), part)) return false;
        if (pos == tailStart) break;
        length = kFilePieceSize;
        pos -= length;
    }
    return file.flush();
}

bool writeInPieces(PatchableFile& file, std::uint64_t offset, std::span<const std::uint8_t> data) {
    for (std::size_t done = 0; done < data.size(); done += kFilePieceSize) {
        std::size_t length = std::min(kFilePieceSize, data.size() - done);
        if (!file.write(offset + done, data.subspan(done, length))) return false;
    }
    return file.flush();
}

bool moveTail(Bytes& data, std::size_t tailStart, std::int64_t delta) {
    if (tailStart > data.size()) return false;
    if (delta == 0) return true;
    if (delta < 0) {
        std::size_t back = std::size_t(-delta);
        if (tailStart < back) return false;
        std::copy(data.begin() + std::ptrdiff_t(tailStart), data.end(), data.begin() + std::ptrdiff_t(tailStart - back));
        return true;
    }
    std::size_t oldSize = data.size();
    data.resize(oldSize + std::size_t(delta));
    std::copy_backward(data.begin() + std::ptrdiff_t(tailStart), data.begin() + std::ptrdiff_t(oldSize), data.end());
    return true;
}

}  // namespace tarvel
