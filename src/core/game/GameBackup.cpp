#include "game/GameBackup.h"

#include "common/FileIO.h"
#include "common/Platform.h"
#include "common/Sha256.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <system_error>

namespace tarvel {
namespace fs = std::filesystem;

namespace {

constexpr const char* kManifestName = "MANIFEST";
constexpr const char* kManifestHeader = "tarvel-backup 1";
constexpr const char* kTemporaryMark = ".tarvel-tmp";

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::string(value) : std::string();
}

std::string timeId(std::time_t now) {
    std::tm parts{};
#if defined(_WIN32)
    localtime_s(&parts, &now);
#else
    localtime_r(&now, &parts);
#endif
    char text[32];
    std::strftime(text, sizeof text, "%Y%m%d-%H%M%S", &parts);
    return text;
}

fs::path absoluteFolder(const fs::path& folder) {
    std::error_code ec;
    fs::path full = fs::weakly_canonical(fs::absolute(folder, ec), ec);
    if (ec) full = folder;
    // "/games/gp2/" and "/games/gp2" are the same folder.
    if (!full.has_filename()) full = full.parent_path();
    return full;
}

Failure backupFailed(const std::string& what) { return fail(MessageId::CouldntBackUpGame, what); }

std::string manifestText(const std::vector<BackupEntry>& files) {
    std::ostringstream out;
    out << kManifestHeader << '\n';
    for (const BackupEntry& entry : files) out << entry.size << ' ' << entry.sha256 << ' ' << entry.relative << '\n';
    return out.str();
}

// The manifest's entries; false for a missing or damaged manifest.
bool readManifest(const fs::path& folder, std::vector<BackupEntry>& files) {
    const auto data = readWholeFile(folder / kManifestName);
    return data && parseBackupManifest(std::string_view(reinterpret_cast<const char*>(data->data()), data->size()),
                                       files);
}

void removeOldest(const fs::path& root, const fs::path& gameFolder) {
    std::vector<GameBackup> backups = listGameBackups(root, gameFolder);
    std::error_code ec;
    for (std::size_t i = kBackupsKept; i < backups.size(); ++i) fs::remove_all(backups[i].folder, ec);
}

}  // namespace

bool parseBackupManifest(std::string_view text, std::vector<BackupEntry>& files) {
    std::vector<BackupEntry> parsed;
    bool first = true;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) return false;   // every line ends with its newline
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end + 1);
        if (first) {
            if (line != kManifestHeader) return false;
            first = false;
            continue;
        }
        const std::size_t space = line.find(' ');
        const std::size_t second = space == std::string_view::npos ? space : line.find(' ', space + 1);
        if (second == std::string_view::npos || second + 1 >= line.size()) return false;
        BackupEntry entry;
        const std::string_view size = line.substr(0, space);
        const auto [at, ec] = std::from_chars(size.data(), size.data() + size.size(), entry.size);
        if (size.empty() || ec != std::errc() || at != size.data() + size.size()) return false;
        entry.sha256 = std::string(line.substr(space + 1, second - space - 1));
        entry.relative = std::string(line.substr(second + 1));
        // A copy lies inside its backup folder: no absolute paths, no climbing out.
        const fs::path relative(entry.relative);
        if (entry.sha256.size() != 64 ||
            entry.sha256.find_first_not_of("0123456789abcdef") != std::string::npos || relative.is_absolute() ||
            relative.has_root_name() ||
            std::any_of(relative.begin(), relative.end(), [](const fs::path& part) { return part == ".."; }))
            return false;
        parsed.push_back(std::move(entry));
    }
    if (first) return false;
    files = std::move(parsed);
    return true;
}

std::uint64_t GameBackup::totalSize() const {
    std::uint64_t total = 0;
    for (const BackupEntry& entry : files) total += entry.size;
    return total;
}

fs::path defaultBackupsRoot() {
    if (std::string own = environment("TARVEL_BACKUPS"); !own.empty()) return own;
#if defined(_WIN32)
    return fs::path(environment("LOCALAPPDATA")) / "tarvel" / "backups";
#else
    if (std::string data = environment("XDG_DATA_HOME"); !data.empty()) return fs::path(data) / "tarvel" / "backups";
    return fs::path(environment("HOME")) / ".local" / "share" / "tarvel" / "backups";
#endif
}

fs::path gameBackupsFolder(const fs::path& root, const fs::path& gameFolder) {
    const fs::path full = absoluteFolder(gameFolder);
    const std::string text = full.generic_string();
    const std::string hash =
        sha256Hex(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size())).substr(0, 12);
    std::string name = full.filename().string();
    if (name.empty()) name = "game";
    return root / (name + "-" + hash);
}

Result<GameBackup> BackUpGameFiles(const fs::path& root, const fs::path& gameFolder,
                                   const std::vector<std::string>& relativeFiles, std::time_t now) {
    const fs::path game = absoluteFolder(gameFolder);
    const fs::path parent = gameBackupsFolder(root, game);
    std::error_code ec;
    fs::create_directories(parent, ec);
    GameBackup backup;
    backup.id = timeId(now);
    for (int n = 2; fs::exists(parent / backup.id, ec); ++n) {
        char suffix[16];
        std::snprintf(suffix, sizeof suffix, "-%02d", n);
        backup.id = timeId(now) + suffix;
    }
    backup.folder = parent / backup.id;
    if (!fs::create_directories(backup.folder, ec)) return backupFailed(backup.folder.string());

    for (const std::string& name : relativeFiles) {
        const auto found = findGameFile(game, name);
        if (!found) continue;   // a file the export will create has nothing to keep
        const std::string relative = found->lexically_relative(game).generic_string();
        if (std::any_of(backup.files.begin(), backup.files.end(),
                        [&](const BackupEntry& e) { return e.relative == relative; }))
            continue;
        const auto data = readWholeFile(*found);
        if (!data) return backupFailed(found->string());
        const fs::path copy = backup.folder / fs::path(relative);
        fs::create_directories(copy.parent_path(), ec);
        if (!writeFileAtomically(copy, *data) || !syncFileToDisk(copy)) return backupFailed(copy.string());
        backup.files.push_back(BackupEntry{relative, data->size(), sha256Hex(*data)});
    }
    const std::string manifest = manifestText(backup.files);
    const fs::path manifestPath = backup.folder / kManifestName;
    if (!writeFileAtomically(manifestPath,
                             std::span(reinterpret_cast<const std::uint8_t*>(manifest.data()), manifest.size())) ||
        !syncFileToDisk(manifestPath) || !syncFolderToDisk(backup.folder))
        return backupFailed(manifestPath.string());
    backup.complete = true;
    removeOldest(root, game);
    return backup;
}

std::vector<GameBackup> listGameBackups(const fs::path& root, const fs::path& gameFolder) {
    std::vector<GameBackup> backups;
    std::error_code ec;
    for (const fs::directory_entry& entry : fs::directory_iterator(gameBackupsFolder(root, gameFolder), ec)) {
        if (!entry.is_directory(ec)) continue;
        GameBackup backup;
        backup.id = entry.path().filename().string();
        backup.folder = entry.path();
        backup.complete = readManifest(entry.path(), backup.files);
        if (!backup.complete) backup.files.clear();
        backups.push_back(std::move(backup));
    }
    std::sort(backups.begin(), backups.end(), [](const GameBackup& a, const GameBackup& b) { return a.id > b.id; });
    return backups;
}

Result<GameBackup> RestoreGameFiles(const fs::path& root, const fs::path& gameFolder, const std::string& id) {
    const std::vector<GameBackup> backups = listGameBackups(root, gameFolder);
    const auto chosen = std::find_if(backups.begin(), backups.end(),
                                     [&](const GameBackup& b) { return id.empty() || b.id == id; });
    if (chosen == backups.end()) return id.empty() ? fail(MessageId::NoBackups) : fail(MessageId::BackupNotFound, id);
    if (!chosen->complete) return fail(MessageId::BackupIncomplete, chosen->id);

    // Every copy is read and checked before the first file is written.
    std::vector<Bytes> copies;
    for (const BackupEntry& entry : chosen->files) {
        auto data = readWholeFile(chosen->folder / fs::path(entry.relative));
        if (!data || data->size() != entry.size || sha256Hex(*data) != entry.sha256)
            return fail(MessageId::BackupAltered, entry.relative);
        copies.push_back(std::move(*data));
    }
    const fs::path game = absoluteFolder(gameFolder);
    for (std::size_t i = 0; i < copies.size(); ++i) {
        const fs::path target = game / fs::path(chosen->files[i].relative);
        std::error_code ec;
        fs::create_directories(target.parent_path(), ec);
        if (!writeFileAtomically(target, copies[i]) || !syncFileToDisk(target))
            return fail(MessageId::CouldntWriteFile, target.string());
    }
    removeInterruptedWrites(game);
    return *chosen;
}

int removeInterruptedWrites(const fs::path& gameFolder) {
    int removed = 0;
    std::error_code ec;
    std::vector<fs::path> leftovers;
    for (auto it = fs::recursive_directory_iterator(gameFolder, ec); !ec && it != fs::recursive_directory_iterator();
         it.increment(ec)) {
        if (it->is_regular_file(ec) && it->path().filename().string().find(kTemporaryMark) != std::string::npos)
            leftovers.push_back(it->path());
    }
    for (const fs::path& path : leftovers) removed += fs::remove(path, ec) ? 1 : 0;
    return removed;
}

}  // namespace tarvel
