#pragma once
// In-place editing of an existing file at absolute offsets: the one writer for
// the game's files. Every read and write is checked against the file's length
// first, so that a short or damaged file fails the operation instead of being
// read past its end or grown by accident; the length changes only through
// resize(). Files whose records move (the menu pictures) also move their tail,
// everything from one offset to the end, in pieces of 1024 bytes.

#include "common/ByteIO.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>

namespace tarvel {

constexpr std::size_t kFilePieceSize = 1024;

class PatchableFile {
public:
    enum Mode { ReadOnly, Update };

    // False when the file does not exist or cannot be opened in the mode.
    [[nodiscard]] bool open(const std::filesystem::path& path, Mode mode);
    bool isOpen() const { return stream_.is_open(); }
    std::uint64_t size() const { return size_; }

    [[nodiscard]] bool read(std::uint64_t offset, std::span<std::uint8_t> out);
    [[nodiscard]] bool write(std::uint64_t offset, std::span<const std::uint8_t> data);
    [[nodiscard]] bool readU8(std::uint64_t offset, std::uint8_t& value);
    [[nodiscard]] bool readU16(std::uint64_t offset, std::uint16_t& value);
    [[nodiscard]] bool writeU8(std::uint64_t offset, std::uint8_t value);
    [[nodiscard]] bool writeU16(std::uint64_t offset, std::uint16_t value);
    // Extends (with zeros) or cuts the file.
    [[nodiscard]] bool resize(std::uint64_t newSize);
    [[nodiscard]] bool flush();
    // Flushes and closes; false when a write could not be completed.
    [[nodiscard]] bool close();

private:
    bool fits(std::uint64_t offset, std::size_t count) const { return offset <= size_ && count <= size_ - offset; }
    bool reopen();

    std::filesystem::path path_;
    std::fstream stream_;
    Mode mode_ = ReadOnly;
    std::uint64_t size_ = 0;
    bool failed_ = false;
};

// Moves the bytes from `tailStart` to the end of the file by `delta` bytes.
// Growing: the file is first extended by delta, then the tail is copied from
// the back. Shrinking: the tail is copied from the front, and the file keeps
// its length (the caller cuts it when it has finished writing). The first
// piece is the tail length modulo 1024, or 1024.
[[nodiscard]] bool moveFileTail(PatchableFile& file, std::uint64_t tailStart, std::int64_t delta);

// Writes data at offset in pieces of 1024 bytes.
[[nodiscard]] bool writeInPieces(PatchableFile& file, std::uint64_t offset, std::span<const std::uint8_t> data);

// The same move on bytes in memory: grows the vector first when delta > 0;
// when shrinking it keeps its length like the file.
[[nodiscard]] bool moveTail(Bytes& data, std::size_t tailStart, std::int64_t delta);

}  // namespace tarvel
