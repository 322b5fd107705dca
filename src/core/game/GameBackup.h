#pragma once
// Backups of the game files an export writes. Each export gets a folder of its
// own under the game folder's backups, named by its time (the backup's ID),
// holding a copy of every file it will write and a manifest (relative path,
// size and SHA-256 of each copy) that is written last: a backup without its
// manifest is incomplete and never restored. The newest ten of a game folder
// are kept.

#include "common/Result.h"

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tarvel {

constexpr int kBackupsKept = 10;

struct BackupEntry {
    std::string relative;   // below the game folder, '/'-separated, as the file is named on disk
    std::uint64_t size = 0;
    std::string sha256;     // lower-case hex
};

struct GameBackup {
    std::string id;                  // "20261123-214205", "-02" ... added within one second
    std::filesystem::path folder;
    bool complete = false;           // the manifest is there and readable
    std::vector<BackupEntry> files;
    std::uint64_t totalSize() const;
};

// The entries of a manifest's text; false for a damaged manifest (a bad
// header, size or hash, or a path that leaves the backup folder).
bool parseBackupManifest(std::string_view text, std::vector<BackupEntry>& files);

// Where backups live: $TARVEL_BACKUPS when set, else $XDG_DATA_HOME/tarvel/backups,
// else ~/.local/share/tarvel/backups (%LOCALAPPDATA%\tarvel\backups on Windows).
std::filesystem::path defaultBackupsRoot();
// One game folder's backups: its folder name and a hash of its absolute path.
std::filesystem::path gameBackupsFolder(const std::filesystem::path& root, const std::filesystem::path& gameFolder);

// Copies the existing files among `relativeFiles` (game names, any case,
// backslash-separated) into a new backup, flushed to disk, the manifest last;
// then removes the oldest backups beyond ten. "Couldn't Back Up Game Files - %s."
Result<GameBackup> BackUpGameFiles(const std::filesystem::path& root, const std::filesystem::path& gameFolder,
                                   const std::vector<std::string>& relativeFiles, std::time_t now);

// The game folder's backups, newest first.
std::vector<GameBackup> listGameBackups(const std::filesystem::path& root, const std::filesystem::path& gameFolder);

// Puts a backup's files back (`id` empty: the newest backup). Every copy is
// checked against the manifest before anything is written; an incomplete or
// altered backup is refused and nothing is written. Each file goes back through
// a temporary file and a rename, and the temporary files an interrupted write
// left in the game folder are removed.
Result<GameBackup> RestoreGameFiles(const std::filesystem::path& root, const std::filesystem::path& gameFolder,
                                    const std::string& id);

// Removes the temporary files an interrupted write left in the game folder;
// returns how many.
int removeInterruptedWrites(const std::filesystem::path& gameFolder);

}  // namespace tarvel
