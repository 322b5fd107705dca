#pragma once
// What the standard library lacks, wrapped for each platform: files written
// durably, pushing a folder entry out to the disk, and whether a process lives.

#include <cstdint>
#include <filesystem>
#include <span>

namespace tarvel {

// Flushes a written file to the disk; false when it cannot be opened or synced.
[[nodiscard]] bool syncFileToDisk(const std::filesystem::path& path);
// Flushes a folder's entries (a rename in it) to the disk where the platform
// allows it; true where there is nothing to do.
[[nodiscard]] bool syncFolderToDisk(const std::filesystem::path& folder);

// Writes `data` to a new file `name` that must not exist yet, flushed to the
// disk before it is closed. Where the platform allows it, the data goes into an
// unnamed file that gets its name only once it is complete, so that a process
// killed meanwhile leaves nothing behind. False when `name` exists or anything
// fails; nothing is left then.
[[nodiscard]] bool createFileDurably(const std::filesystem::path& name, std::span<const std::uint8_t> data);

// A descriptor that becomes readable when the process is asked to end
// (SIGTERM, SIGINT), for an event loop to watch; each request can be read from
// it as one byte, the signal's number. -1 where the platform has none.
int terminationRequestDescriptor();

long currentProcessId();
// False only when no process `pid` exists any more.
bool processMayBeAlive(long pid);

}  // namespace tarvel
