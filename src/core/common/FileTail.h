#pragma once
// In-place editing of files whose records move: an existing file opened for
// reading and writing at absolute offsets, and the move of its tail (everything
// from one offset to the end) by a number of bytes, in pieces of 1024 bytes.

#include "common/ByteIO.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <span>

namespace tarvel {

constexpr std::size_t kFilePieceSize = 1024;

class PatchableFile {
public:
    // Opens an existing file for reading and writing; false when it cannot.
    bool open(const std::filesystem::path& path);
    bool isOpen() const { return stream_.is_open(); }
    std::uint64_t size();
    bool read(std::uint64_t offset, void* out, std::size_t n);
    bool write(std::uint64_t offset, const void* data, std::size_t n);
    // Extends (with zeros) or cuts the file.
    bool resize(std::uint64_t newSize);
    bool flush();
    void close();

private:
    std::filesystem::path path_;
    std::fstream stream_;
};

// Moves the bytes from `tailStart` to the end of the file by `delta` bytes.
// Growing: the file is first extended by delta, then the tail is copied from
// the back. Shrinking: the tail is copied from the front, and the file keeps
// its length (the caller cuts it when it has finished writing). The first
// piece is the tail length modulo 1024, or 1024.
bool moveFileTail(PatchableFile& file, std::uint64_t tailStart, std::int64_t delta);

// Writes data at offset in pieces of 1024 bytes.
bool writeInPieces(PatchableFile& file, std::uint64_t offset, std::span<const std::uint8_t> data);

// The same move on bytes in memory: grows the vector first when delta > 0;
// when shrinking it keeps its length like the file.
bool moveTail(Bytes& data, std::size_t tailStart, std::int64_t delta);

}  // namespace tarvel
