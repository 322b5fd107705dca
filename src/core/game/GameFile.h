#pragma once
// Random access to one of the game's files: reads and in-place writes at
// absolute offsets, each checked against the file's length first, so that a
// short or damaged file fails the transfer instead of being read past its end
// or grown.

#include "common/ByteIO.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>
#include <string_view>

namespace tarvel {

class GameFile {
public:
    enum Mode { ReadOnly, Update };

    // False when the file cannot be opened in the mode.
    bool open(const std::filesystem::path& path, Mode mode);
    bool isOpen() const { return file_.is_open(); }
    std::uint64_t size() const { return size_; }

    bool read(std::uint64_t offset, std::span<std::uint8_t> out);
    bool write(std::uint64_t offset, std::span<const std::uint8_t> data);
    bool readU8(std::uint64_t offset, std::uint8_t& value);
    bool readU16(std::uint64_t offset, std::uint16_t& value);
    bool writeU8(std::uint64_t offset, std::uint8_t value);
    bool writeU16(std::uint64_t offset, std::uint16_t value);
    // Flushes and closes; false when a write could not be completed.
    bool close();

private:
    bool fits(std::uint64_t offset, std::size_t count) const {
        return offset <= size_ && count <= size_ - offset;
    }
    std::fstream file_;
    std::uint64_t size_ = 0;
    bool failed_ = false;
};

// A name field in the game's code page from one in the Windows code page and
// back; the result has exactly the field's size, so a conversion never moves
// the bytes that follow.
void nameToGame(std::span<const char> windowsField, std::span<std::uint8_t> gameField);
void nameFromGame(std::span<const std::uint8_t> gameField, std::span<char> windowsField);

// "Spare%.2d" for number n, "Not Used" for 13, zero-padded to 24 bytes.
void placeholderDriverName(int number, std::span<std::uint8_t, 24> out);

}  // namespace tarvel
