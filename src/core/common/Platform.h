#pragma once
// What the standard library lacks, wrapped for each platform: pushing a
// written file (and the folder entry that names it) out to the disk.

#include <filesystem>

namespace tarvel {

// Flushes a written file to the disk; false when it cannot be opened or synced.
[[nodiscard]] bool syncFileToDisk(const std::filesystem::path& path);
// Flushes a folder's entries (a rename in it) to the disk where the platform
// allows it; true where there is nothing to do.
[[nodiscard]] bool syncFolderToDisk(const std::filesystem::path& folder);

}  // namespace tarvel
