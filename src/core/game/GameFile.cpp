#include "game/GameFile.h"

#include "common/CodePage.h"

#include <algorithm>
#include <cstdio>
#include <system_error>

namespace tarvel {

bool GameFile::open(const std::filesystem::path& path, Mode mode) {
    std::error_code ec;
    auto length = std::filesystem::file_size(path, ec);
    if (ec) return false;
    auto flags = std::ios::binary | std::ios::in;
    if (mode == Update) flags |= std::ios::out;
    file_.open(path, flags);
    if (!file_.is_open()) return false;
    size_ = length;
    failed_ = false;
    return true;
}

bool GameFile::read(std::uint64_t offset, std::span<std::uint8_t> out) {
    if (!file_.is_open() || !fits(offset, out.size())) return false;
    file_.clear();
    file_.seekg(std::streamoff(offset));
    if (!file_) return false;
    file_.read(reinterpret_cast<char*>(out.data()), std::streamsize(out.size()));
    return bool(file_) && std::size_t(file_.gcount()) == out.size();
}

bool GameFile::write(std::uint64_t offset, std::span<const std::uint8_t> data) {
    if (!file_.is_open() || !fits(offset, data.size())) return false;
    file_.clear();
    file_.seekp(std::streamoff(offset));
    if (!file_) return false;
    file_.write(reinterpret_cast<const char*>(data.data()), std::streamsize(data.size()));
    if (!file_) {
        failed_ = true;
        return false;
    }
    return true;
}

bool GameFile::readU8(std::uint64_t offset, std::uint8_t& value) { return read(offset, {&value, 1}); }

bool GameFile::readU16(std::uint64_t offset, std::uint16_t& value) {
    std::uint8_t b[2];
    if (!read(offset, b)) return false;
    value = loadU16(b);
    return true;
}

bool GameFile::writeU8(std::uint64_t offset, std::uint8_t value) { return write(offset, {&value, 1}); }

bool GameFile::writeU16(std::uint64_t offset, std::uint16_t value) {
    std::uint8_t b[2];
    storeU16(b, value);
    return write(offset, b);
}

bool GameFile::close() {
    if (!file_.is_open()) return false;
    file_.flush();
    bool ok = bool(file_) && !failed_;
    file_.close();
    return ok && !file_.fail();
}

void nameToGame(std::span<const char> windowsField, std::span<std::uint8_t> gameField) {
    std::string converted = windowsToOem(std::string_view(windowsField.data(), windowsField.size()));
    std::fill(gameField.begin(), gameField.end(), 0);
    std::size_t n = std::min(converted.size(), gameField.size());
    for (std::size_t i = 0; i < n; ++i) gameField[i] = std::uint8_t(converted[i]);
}

void nameFromGame(std::span<const std::uint8_t> gameField, std::span<char> windowsField) {
    std::string converted =
        oemToWindows(std::string_view(reinterpret_cast<const char*>(gameField.data()), gameField.size()));
    std::fill(windowsField.begin(), windowsField.end(), 0);
    std::size_t n = std::min(converted.size(), windowsField.size());
    std::copy_n(converted.begin(), n, windowsField.begin());
    if (!windowsField.empty()) windowsField.back() = 0;
}

void placeholderDriverName(int number, std::span<std::uint8_t, 24> out) {
    std::fill(out.begin(), out.end(), 0);
    char text[24] = {};
    if (number == 13) std::snprintf(text, sizeof text, "Not Used");
    else std::snprintf(text, sizeof text, "Spare%.2d", number);
    for (std::size_t i = 0; i < sizeof text && text[i]; ++i) out[i] = std::uint8_t(text[i]);
}

}  // namespace tarvel
