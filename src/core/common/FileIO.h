#pragma once
// Whole-file reads and writes, game file lookup and file attributes.

#include "common/ByteIO.h"
#include "common/Result.h"

#include <filesystem>
#include <optional>
#include <string_view>

namespace tarvel {

// The whole file, or std::nullopt when it cannot be opened or read.
std::optional<Bytes> readWholeFile(const std::filesystem::path& path);
// Writes through a temporary file beside the target ("NAME.tarvel-tmp-PID-N",
// created exclusively and flushed to the disk) and renames it over the target:
// whenever the process stops, the target is the old file or the new one. On
// failure the target is left as it was and nothing is left behind; temporary
// files that a killed process left are removed by the next write of the target.
bool writeFileAtomically(const std::filesystem::path& path, std::span<const std::uint8_t> data,
                         std::string* reason = nullptr);

// Makes a file writable (the read-only attribute cleared); true when it exists
// and is writable afterwards.
[[nodiscard]] bool clearReadOnly(const std::filesystem::path& path);

// True when two file names differ at most in the case of their letters, as
// DOS names compare.
bool sameFileName(std::string_view a, std::string_view b);

// Finds a file inside the game folder whatever the case of each component:
// installations copied from CD have upper-case names, others lower-case.
// `relative` may use backslashes ("GAMEJAMS\\BRZJAMS\\BRZ1.JAM"). Returns the
// existing path, or std::nullopt.
std::optional<std::filesystem::path> findGameFile(const std::filesystem::path& gameFolder, std::string_view relative);
// As findGameFile, but when the file does not exist, the path it would have
// (existing folders matched, the rest as given).
std::filesystem::path gameFilePath(const std::filesystem::path& gameFolder, std::string_view relative);

}  // namespace tarvel
