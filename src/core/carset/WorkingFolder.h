#pragma once
// The per-process working folder that holds temporary asset files.

#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

namespace tarvel {

// "tarvel-" followed by the start time in seconds formatted with "%.9x", inside
// the system's temporary folder.
std::filesystem::path workingFolderPath(std::time_t startTime);

// Temporary asset file names inside the working folder.
std::filesystem::path teamBitmapFile(const std::filesystem::path& folder, int team);    // TEAM%.2d.BMP
std::filesystem::path jamBitmapFile(const std::filesystem::path& folder, int number);   // JAM%.3d.BMP
std::filesystem::path soundFile(const std::filesystem::path& folder, int slot);         // WAV%.2d.WAV
std::filesystem::path menuHelmetFile(const std::filesystem::path& folder, int slot);    // MENU%.2d.BMP
std::filesystem::path helmetFile(const std::filesystem::path& folder, int n);           // THEL%.2d.BMP
std::filesystem::path temporaryCarSetFile(const std::filesystem::path& folder);         // TARVEL.TMP

// Deletes the temporary asset files of the folder (not the folder).
void deleteTemporaryAssetFiles(const std::filesystem::path& folder);

// Writes the owning process's id into the working folder ("tarvel.pid"), so
// that a later editor can tell a folder left by a process that has ended.
[[nodiscard]] bool markWorkingFolderOwner(const std::filesystem::path& folder, long pid);

// Removes the working folders in `tempFolder` that editors which no longer
// run left behind (killed, crashed): those whose owner process has ended, and
// those without an owner older than `unownedAge` seconds. `ownFolder` is never
// touched. Gives back the folders removed.
std::vector<std::filesystem::path> sweepStaleWorkingFolders(const std::filesystem::path& tempFolder,
                                                            const std::filesystem::path& ownFolder,
                                                            long unownedAge = 24 * 60 * 60);

}  // namespace tarvel
