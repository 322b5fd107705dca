// The open car set file and the items read from it or from the outside
// files that a slot names.
#include "carset/CarSetFile.h"

#include "carset/CarSetFileFormat.h"
#include "common/FileIO.h"
#include "common/RunLength.h"
#include "graphics/Bitmap.h"
#include "graphics/JamCatalogue.h"
#include "graphics/MenuHelmet.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace tarvel {

namespace fs = std::filesystem;
using namespace carsetfile;

namespace {

Result<Bytes> readSoundFile(const fs::path& path) {
    std::error_code ec;
    if (!fs::exists(path, ec)) return fail(MessageId::FileNotFound, path.string());
    auto refused = [&](std::string reason) {
        return fail(aboutFile(Message{MessageId::CouldntLoadSound, {}, std::move(reason)}, path));
    };
    auto data = readWholeFile(path);
    if (!data) return refused("the file could not be read");
    if (data->size() < 8 || std::memcmp(data->data(), "RIFF", 4) != 0) return refused("not a RIFF WAVE sound file");
    std::uint64_t length = std::uint64_t(loadU32(data->data() + 4)) + 8;
    if (length > data->size())
        return refused("the file ends at byte " + groupedNumber(data->size()) + " inside its sound data (" +
                       groupedNumber(length) + " bytes announced)");
    data->resize(std::size_t(length));
    return std::move(*data);
}

Result<Bytes> readPictureFile(const fs::path& path, int width, int height) {
    std::error_code ec;
    if (!fs::exists(path, ec)) return fail(MessageId::FileNotFound, path.string());
    auto bitmap = LoadBitmap8(path, width, height);
    if (!bitmap) return fail(bitmap.error());
    // Rows are padded to 4 bytes; the stored item holds them unpadded.
    Bytes pixels;
    pixels.reserve(std::size_t(width) * std::size_t(height));
    for (int r = 0; r < height; ++r) pixels.insert(pixels.end(), bitmap->row(r), bitmap->row(r) + width);
    return pixels;
}

std::string itemSizeReason(std::uint64_t offset, std::size_t length, std::size_t expected) {
    return "the item at byte " + groupedNumber(offset) + " holds " + groupedNumber(length) + " bytes where " +
           groupedNumber(expected) + " are expected";
}

int jamRows(int number) { return JamInfo(number).canvasHeight; }

fs::path slotPath(const AssetSlot& slot) { return fs::path(fieldText(slot.path)); }

}  // namespace

namespace {
constexpr std::string_view kEndsAt = "the file ends at byte ";
constexpr std::string_view kBeforeByte = ", before byte ";
}  // namespace

std::string carsetfile::endOfFileReason(std::uint64_t fileSize, std::uint64_t readFrom) {
    std::string reason = std::string(kEndsAt) + groupedNumber(fileSize);
    if (readFrom >= fileSize) reason += std::string(kBeforeByte) + groupedNumber(readFrom);
    return reason;
}

std::string carsetfile::placeEndOfFile(const std::string& reason, std::string_view what) {
    // Only the first reader to meet the end names the place.
    if (!reason.starts_with(kEndsAt) || reason.contains(" inside ") || reason.contains(", before the ")) return reason;
    const std::size_t before = reason.find(kBeforeByte);
    if (before == std::string::npos) return reason + " inside " + std::string(what);
    return reason.substr(0, before) + ", before " + std::string(what) + " at byte " +
           reason.substr(before + kBeforeByte.size());
}

std::string carsetfile::headerMagic(std::span<const std::uint8_t> header) {
    std::string s;
    for (std::size_t i = 0; i < kMagicSize && i < header.size() && header[i] != 0; ++i) s += char(header[i]);
    return s;
}

void carsetfile::setSlotReference(AssetSlot& slot, int index) {
    slot.path.fill(0);
    storeU16(reinterpret_cast<std::uint8_t*>(slot.path.data()) + 2, std::uint16_t(index));
}

std::vector<int> carsetfile::presentSlots(std::span<const AssetSlot> slots, int firstSlot, bool takeNotStored) {
    std::vector<int> present;
    for (int i = firstSlot; i < int(slots.size()); ++i) {
        auto s = slots[std::size_t(i)].status;
        if (s == kAssetExternal || s == kAssetStored || (takeNotStored && s == kAssetNotStored)) present.push_back(i);
    }
    return present;
}

int carsetfile::teamBlockSize(int subVersion) {
    int size = 2 * kTeamSlots * kTeamNameSize + 3 * 2 * kTeamSlots + kTeamSlots * (1 + 3 + 16) + 7 * kTeamSlots +
               kDriverNumbers * (kDriverNameSize + 3 * 2 + 1);
    if (subVersion >= 4) size += 2 * kTeamSlots * kTeamNameSize + kDriverNumbers * kDriverNameSize;
    if (subVersion >= 5) size += int(sizeof(CarNumberLayout::partA) + sizeof(CarNumberLayout::partB));
    return size;
}

Result<std::shared_ptr<CarSetFileHandle>> CarSetFileHandle::open(const fs::path& path) {
    std::shared_ptr<CarSetFileHandle> handle(new CarSetFileHandle());
    handle->path_ = path;
    std::error_code ec;
    if (fs::is_directory(path, ec)) return fail(aboutFile(cannotOpen("a folder, not a file").error(), path));
    if (!fs::exists(path, ec)) return fail(aboutFile(cannotOpen("no such file").error(), path));
    handle->file_.open(path, std::ios::binary);
    if (!handle->file_) return fail(aboutFile(cannotOpen("the file could not be opened for reading").error(), path));
    handle->file_.seekg(0, std::ios::end);
    std::streamoff end = handle->file_.tellg();
    if (!handle->file_ || end < 0) return fail(aboutFile(cannotRead().error(), path));
    handle->size_ = std::uint64_t(end);
    std::size_t headerBytes = std::size_t(std::min<std::uint64_t>(handle->size_, kHeaderSize));
    auto header = handle->readAt(0, headerBytes);
    if (!header) return fail(aboutFile(cannotRead().error(), path));
    std::copy(header->begin(), header->end(), handle->header_.begin());
    return handle;
}

int CarSetFileHandle::version() const {
    if (headerMagic(header_) != kMagic) return 0;
    return loadU16(&header_[7]);
}

int CarSetFileHandle::subVersion() const { return version() ? header_[9] : 0; }

CarSetFileHandle::DirectoryEntry CarSetFileHandle::directoryEntry(int entryOffset) const {
    DirectoryEntry e;
    if (entryOffset < 0 || entryOffset + 5 > kHeaderSize) return e;
    e.count = header_[std::size_t(entryOffset)];
    e.offset = loadU32(&header_[std::size_t(entryOffset) + 1]);
    return e;
}

Result<Bytes> CarSetFileHandle::readAt(std::uint64_t offset, std::size_t length) const {
    if (offset > size_ || length > size_ - offset) return invalid(endOfFileReason(size_, offset));
    Bytes data(length);
    if (length == 0) return data;
    file_.clear();
    file_.seekg(std::streamoff(offset));
    file_.read(reinterpret_cast<char*>(data.data()), std::streamsize(length));
    if (!file_ || std::size_t(file_.gcount()) != length) return cannotRead();
    return data;
}

Result<Bytes> CarSetFileHandle::readItemAt(std::uint64_t offset, std::size_t expectedRawLength) const {
    auto head = readAt(offset, kItemHeaderSize);
    if (!head) return fail(head.error());
    std::uint8_t coded = (*head)[0];
    std::uint32_t length = loadU32(head->data() + 1);
    if (coded > 1) return invalid("an item at byte " + groupedNumber(offset) + " has an unknown coding");
    if (coded == 0 && expectedRawLength != 0 && length != expectedRawLength)
        return invalid(itemSizeReason(offset, length, expectedRawLength));
    auto stored = inside(readAt(offset + kItemHeaderSize, length), "the item at byte " + groupedNumber(offset));
    if (!stored) return fail(stored.error());
    if (coded == 0) {
        if (length > kMaxItemLength) return invalid("an item at byte " + groupedNumber(offset) + " is too long");
        return stored;
    }
    Bytes raw;
    std::size_t limit = expectedRawLength != 0 ? expectedRawLength : kMaxItemLength;
    raw.reserve(expectedRawLength);
    if (!runLengthDecode(*stored, raw, limit))
        return invalid("the packed data of the item at byte " + groupedNumber(offset) + " is damaged");
    if (expectedRawLength != 0 && raw.size() != expectedRawLength)
        return invalid(itemSizeReason(offset, raw.size(), expectedRawLength));
    return raw;
}

Result<std::uint64_t> CarSetFileHandle::slotOffset(int directoryEntryOffset, int slot, int mapLength,
                                                   int mapPrefix) const {
    DirectoryEntry e = directoryEntry(directoryEntryOffset);
    if (e.count == 0 || slot < 0 || slot >= mapLength || mapPrefix < 0)
        return invalid("the file has no item table for slot " + std::to_string(slot));
    std::uint64_t mapAt = std::uint64_t(e.offset) + std::uint64_t(mapPrefix);
    auto position = inside(readAt(mapAt + std::uint64_t(slot), 1), "an item table");
    if (!position) return fail(position.error());
    int index = (*position)[0];
    if (index == 0) return invalid("the item table has no item for slot " + std::to_string(slot));
    auto entry = inside(readAt(mapAt + std::uint64_t(mapLength) + 4 * std::uint64_t(index - 1), 4), "an item table");
    if (!entry) return fail(entry.error());
    return std::uint64_t(loadU32(entry->data()));
}

Result<Bytes> CarSetFileHandle::readStoredItem(int directoryEntryOffset, int slot, int mapLength,
                                               std::size_t expectedRawLength, int mapPrefix, int itemPrefix) const {
    auto at = slotOffset(directoryEntryOffset, slot, mapLength, mapPrefix);
    if (!at) return fail(at.error());
    if (itemPrefix < 0) return invalid("an item table is damaged");
    return readItemAt(*at + std::uint64_t(itemPrefix), expectedRawLength);
}

int CarSetFileHandle::cockpitRecordStoredSize() const {
    return version() == 170 ? kCockpitRecordStoredSize170 : kCockpitRecordSize;
}

std::size_t assetItemLength(AssetKind kind, int slot) {
    const AssetKindInfo& k = assetKind(kind);
    switch (k.length) {
        case ItemLength::JamRows: return std::size_t(kLiveryWidth) * std::size_t(jamRows(k.jamBase + slot));
        case ItemLength::MenuHelmet: return kMenuHelmetPixels;
        case ItemLength::Any: break;
    }
    return 0;
}

const AssetSlot* findAssetSlot(const CarSet& set, AssetKind kind, int slot) {
    std::span<const AssetSlot> slots = assetKind(kind).view(set);
    return slot >= 0 && std::size_t(slot) < slots.size() ? &slots[std::size_t(slot)] : nullptr;
}

AssetSlot* findAssetSlot(CarSet& set, AssetKind kind, int slot) {
    std::span<AssetSlot> slots = assetKind(kind).editSlots(set);
    return slot >= 0 && std::size_t(slot) < slots.size() ? &slots[std::size_t(slot)] : nullptr;
}

Result<Bytes> readAssetBytes(const CarSet& set, AssetKind kind, int slot) {
    const AssetSlot* s = findAssetSlot(set, kind, slot);
    if (!s) return fail(MessageId::CouldntLoadFile);
    const AssetKindInfo& k = assetKind(kind);
    const std::size_t length = assetItemLength(kind, slot);
    switch (s->status) {
        case kAssetExternal: {
            const fs::path path = slotPath(*s);
            switch (k.source) {
                case SourceFile::Sound: return readSoundFile(path);
                case SourceFile::Picture: {
                    const int width = k.length == ItemLength::MenuHelmet ? kMenuHelmetSide : kLiveryWidth;
                    return readPictureFile(path, width, int(length / std::size_t(width)));
                }
                case SourceFile::Whole: {
                    std::error_code ec;
                    if (!fs::exists(path, ec)) return fail(MessageId::FileNotFound, path.string());
                    auto data = readWholeFile(path);
                    if (!data) return fail(MessageId::FailedToImportCockpit);
                    return std::move(*data);
                }
            }
            break;
        }
        case kAssetStored: {
            const CarSetFileHandle* file = set.storedItems.get();
            if (!file) return cannotOpen("the car set file of this item is no longer open");
            return file->readStoredItem(k.directoryEntry, slot, k.slotCount, length, k.mapPrefix,
                                        k.recordBeforeItem ? file->cockpitRecordStoredSize() : 0);
        }
        case kAssetNotStored:
            if (kind == AssetKind::Cockpit && !set.cockpitDesigns[std::size_t(slot)].empty())
                return set.cockpitDesigns[std::size_t(slot)];
            break;
        default: break;
    }
    return fail(MessageId::CouldntLoadFile);
}

}  // namespace tarvel
