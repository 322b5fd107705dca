#pragma once
// An open car set file (.GP2) and the items stored in it: the header's
// directory, bounds-checked reads and the decoding of stored items.

#include "carset/AssetKinds.h"
#include "carset/CarSet.h"
#include "common/ByteIO.h"
#include "common/Result.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>

namespace tarvel {

namespace carsetfile {
constexpr int kHeaderSize = 256;
constexpr int kCurrentVersion = 180;
constexpr int kCurrentSubVersion = 6;
// Directory entries (5 bytes each: u8 count, u32 offset) by their header offset.
constexpr int kEntryLiveries = 64;
constexpr int kEntryHelmetSheet = 69;
constexpr int kEntryWheels = assetkinds::kDirectoryWheels;
constexpr int kEntryJams = assetkinds::kDirectoryJams;
constexpr int kEntryTeams = 84;
constexpr int kEntrySettings = 89;
constexpr int kEntryInformation = 94;
constexpr int kEntrySounds = assetkinds::kDirectorySounds;
constexpr int kEntryCockpits = assetkinds::kDirectoryCockpits;
constexpr int kEntryMenuHelmets = assetkinds::kDirectoryMenuHelmets;
constexpr int kSettingsBlockSize = 338;
// Size of the team and driver block for a sub-version.
int teamBlockSize(int subVersion);
}  // namespace carsetfile

// An open car set file. It stays open for as long as a set refers to it, so
// that renaming or deleting the file on disk does not break later item reads.
// Every read is checked against the file's size; a damaged offset or length
// gives an error, never a read outside the file.
class CarSetFileHandle {
public:
    struct DirectoryEntry {
        std::uint8_t count = 0;
        std::uint32_t offset = 0;
    };

    // "Couldn't Open Car Set File." when the file cannot be opened.
    static Result<std::shared_ptr<CarSetFileHandle>> open(const std::filesystem::path& path);
    CarSetFileHandle(const CarSetFileHandle&) = delete;
    CarSetFileHandle& operator=(const CarSetFileHandle&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::uint64_t size() const { return size_; }
    // Version and sub-version fields of the header (0 when the file has no
    // "TARVEL" header).
    int version() const;
    int subVersion() const;
    DirectoryEntry directoryEntry(int entryOffset) const;

    // `length` bytes at `offset`; fails when they are not all inside the file.
    Result<Bytes> readAt(std::uint64_t offset, std::size_t length) const;
    // The stored item (u8 coded flag, u32 length, bytes) at `offset`, decoded.
    // `expectedRawLength` 0 accepts any length; otherwise the decoded item must
    // have exactly that length.
    Result<Bytes> readItemAt(std::uint64_t offset, std::size_t expectedRawLength) const;
    // File offset of slot `slot`'s entry in a slotted section: the section of
    // directory entry `directoryEntryOffset` starts with `mapPrefix` bytes, then
    // an index map of `mapLength` bytes and the offset table.
    Result<std::uint64_t> slotOffset(int directoryEntryOffset, int slot, int mapLength, int mapPrefix = 0) const;
    // One item of a slotted section, decoded. `itemPrefix` bytes (a cockpit's
    // colour record) lie between the slot's offset and its stored item.
    Result<Bytes> readStoredItem(int directoryEntryOffset, int slot, int mapLength, std::size_t expectedRawLength,
                                 int mapPrefix = 0, int itemPrefix = 0) const;
    // Stored size of a cockpit colour record in this file's version.
    int cockpitRecordStoredSize() const;

private:
    CarSetFileHandle() = default;
    std::filesystem::path path_;
    mutable std::ifstream file_;
    std::uint64_t size_ = 0;
    std::array<std::uint8_t, carsetfile::kHeaderSize> header_{};
};

// A slot's item whatever its status: status 2 from the set's storedItems,
// status 1 from the outside file (a sound's whole WAV file, a picture's pixel
// rows bottom-up, a cockpit's file bytes), a cockpit of status 3 from the
// design held in the set; "Couldn't Load File." for a slot outside the table. Pictures are 256 x jamRows (wheels, JAM files) or
// 104 x 104 (menu helmets) pixel bytes.
Result<Bytes> readAssetBytes(const CarSet& set, AssetKind kind, int slot);

}  // namespace tarvel
