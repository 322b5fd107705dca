#include "common/FileTail.h"

#include <algorithm>
#include <array>
#include <system_error>

namespace tarvel {
namespace fs = std::filesystem;

bool PatchableFile::open(const fs::path& path) {
    close();
    path_ = path;
    stream_.open(path, std::ios::binary | std::ios::in | std::ios::out);
    return stream_.is_open();
}

void PatchableFile::close() {
    if (stream_.is_open()) stream_.close();
    stream_.clear();
}

std::uint64_t PatchableFile::size() {
    std::error_code ec;
    if (!flush()) return 0;
    auto n = fs::file_size(path_, ec);
    return ec ? 0 : n;
}

bool PatchableFile::read(std::uint64_t offset, void* out, std::size_t n) {
    if (!stream_.is_open()) return false;
    stream_.clear();
    stream_.seekg(std::streamoff(offset));
    if (!stream_) return false;
    stream_.read(static_cast<char*>(out), std::streamsize(n));
    bool ok = std::size_t(stream_.gcount()) == n;
    stream_.clear();
    return ok;
}

bool PatchableFile::write(std::uint64_t offset, const void* data, std::size_t n) {
    if (!stream_.is_open()) return false;
    stream_.clear();
    stream_.seekp(std::streamoff(offset));
    if (!stream_) return false;
    stream_.write(static_cast<const char*>(data), std::streamsize(n));
    return bool(stream_);
}

bool PatchableFile::flush() {
    if (!stream_.is_open()) return false;
    stream_.clear();
    return bool(stream_.flush());
}

bool PatchableFile::resize(std::uint64_t newSize) {
    if (!flush()) return false;
    std::error_code ec;
    fs::resize_file(path_, newSize, ec);
    // The stream's buffer may hold a stale view of the old end.
    stream_.close();
    stream_.clear();
    stream_.open(path_, std::ios::binary | std::ios::in | std::ios::out);
    return !ec && stream_.is_open();
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
            if (!file.read(pos, piece.data(), std::size_t(length))) return false;
            if (!file.write(pos - std::uint64_t(-delta), piece.data(), std::size_t(length))) return false;
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
        if (!file.read(pos, piece.data(), std::size_t(length))) return false;
        if (!file.write(pos + std::uint64_t(delta), piece.data(), std::size_t(length))) return false;
        if (pos == tailStart) break;
        length = kFilePieceSize;
        pos -= length;
    }
    return file.flush();
}

bool writeInPieces(PatchableFile& file, std::uint64_t offset, std::span<const std::uint8_t> data) {
    for (std::size_t done = 0; done < data.size(); done += kFilePieceSize) {
        std::size_t length = std::min(kFilePieceSize, data.size() - done);
        if (!file.write(offset + done, data.data() + done, length)) return false;
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
