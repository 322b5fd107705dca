#pragma once
// SHA-256 of bytes and of files, through OpenSSL's libcrypto, as lower-case hex.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace tarvel {

std::string sha256Hex(std::span<const std::uint8_t> data);
// The file read in pieces; std::nullopt when it cannot be read.
std::optional<std::string> sha256OfFile(const std::filesystem::path& path);

}  // namespace tarvel
