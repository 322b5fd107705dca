// Parses arbitrary bytes as a backup manifest. Nothing may crash, and every
// entry a manifest is taken with stays inside its backup folder.

#include "game/GameBackup.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<tarvel::BackupEntry> files;
    if (!tarvel::parseBackupManifest(std::string_view(reinterpret_cast<const char*>(data), size), files)) return 0;
    for (const tarvel::BackupEntry& entry : files) {
        const std::filesystem::path relative(entry.relative);
        for (const auto& part : relative)
            if (part == "..") std::abort();
        if (relative.is_absolute() || entry.sha256.size() != 64) std::abort();
    }
    return 0;
}
