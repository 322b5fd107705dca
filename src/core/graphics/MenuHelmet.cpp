#include "graphics/MenuHelmet.h"

#include "common/FileIO.h"
#include "common/PatchableFile.h"
#include "graphics/Palette.h"

#include <algorithm>
#include <cstdio>
#include <string>

namespace tarvel {
namespace fs = std::filesystem;

namespace {

constexpr const char* kMenuFileRelative = "BITMAPS\\F1PCSVGA.BIN";
constexpr std::size_t kEntryLengthField = 4;
constexpr int kLongestRun = 128;
constexpr std::uint8_t kLastLiteralControl = 127;
constexpr std::size_t kProgressPathChars = 17;

std::size_t entryOffset(int index) { return kMenuIndexOffset + kMenuIndexEntrySize * std::size_t(index); }
bool isMenuHelmetSlot(int slot) { return slot >= 0 && slot < kMenuHelmetCount; }

// "...\F1PCSVGA.BIN #326": the end of the path and the game's picture number.
void reportFile(Progress* progress, const fs::path& path, int slot) {
    if (!progress) return;
    std::string text = path.string();
    if (text.size() > kProgressPathChars) text.erase(0, text.size() - kProgressPathChars);
    char number[16];
    std::snprintf(number, sizeof number, " #%.3d", slot + kMenuHelmetFirstNumber);
    progress->setFile(text + number);
}

// A picture can be replaced in place only when its data lies after the index
// and ends before the next picture's data, which lies inside the file; any
// other index is damaged and moving the tail would overwrite other pictures
// or the index itself.
bool replaceableInPlace(std::uint64_t offset, std::uint64_t length, std::uint64_t nextOffset, std::uint64_t fileSize) {
    return offset >= entryOffset(kMenuIndexEntries) && offset + length <= nextOffset && nextOffset <= fileSize;
}

bool isMenuHelmetPicture(const BitmapBuffer& picture) {
    return picture.valid() && picture.width == kMenuHelmetSide && picture.height == kMenuHelmetSide;
}

// The menu file's bytes, edited in memory.
struct MenuBytes {
    Bytes& bytes;
    std::uint64_t size() const { return bytes.size(); }
    bool read(std::uint64_t at, std::span<std::uint8_t> out) const {
        if (at > bytes.size() || out.size() > bytes.size() - at) return false;
        std::copy_n(bytes.begin() + std::ptrdiff_t(at), out.size(), out.begin());
        return true;
    }
    bool write(std::uint64_t at, std::span<const std::uint8_t> data) {
        if (at > bytes.size() || data.size() > bytes.size() - at) return false;
        std::copy(data.begin(), data.end(), bytes.begin() + std::ptrdiff_t(at));
        return true;
    }
    bool writeData(std::uint64_t at, std::span<const std::uint8_t> data) { return write(at, data); }
    bool moveTail(std::uint64_t tailStart, std::int64_t delta) { return tarvel::moveTail(bytes, std::size_t(tailStart), delta); }
    bool resize(std::uint64_t newSize) {
        bytes.resize(std::size_t(newSize));
        return true;
    }
    bool finish() { return true; }
};

// The game's menu file, edited in place with a 1024-byte work buffer.
struct MenuFile {
    PatchableFile file;
    std::uint64_t size() const { return file.size(); }
    bool read(std::uint64_t at, std::span<std::uint8_t> out) { return file.read(at, out); }
    bool write(std::uint64_t at, std::span<const std::uint8_t> data) { return file.write(at, data); }
    bool writeData(std::uint64_t at, std::span<const std::uint8_t> data) { return writeInPieces(file, at, data); }
    bool moveTail(std::uint64_t tailStart, std::int64_t delta) { return moveFileTail(file, tailStart, delta); }
    bool resize(std::uint64_t newSize) { return file.resize(newSize); }
    bool finish() { return file.close(); }
};

// Replaces slot's coded data: the data after it moves by the change in length
// (the file grows first, or is cut last) and the later index offsets follow.
template <class Store>
Status replaceMenuPictureIn(Store& store, int slot, std::span<const std::uint8_t> coded) {
    const auto failed = [] { return fail(MessageId::FailedToExportMenuHelmet); };
    if (!isMenuHelmetSlot(slot) || coded.empty()) return failed();
    std::uint8_t entry[kEntryLengthField + 4];
    std::uint8_t field[4];
    if (!store.read(entryOffset(slot), entry) || !store.read(entryOffset(slot + 1), field)) return failed();
    const std::uint32_t offset = loadU32(entry);
    const std::uint32_t oldLength = loadU32(entry + kEntryLengthField);
    const std::uint32_t nextOffset = loadU32(field);
    const std::uint64_t oldSize = store.size();
    if (!replaceableInPlace(offset, oldLength, nextOffset, oldSize)) return failed();
    const std::int64_t d = std::int64_t(coded.size()) - std::int64_t(oldLength);
    if (d != 0) {
        if (!store.moveTail(nextOffset, d)) return failed();
        for (int i = slot + 1; i < kMenuIndexEntries; ++i) {
            if (!store.read(entryOffset(i), field)) return failed();
            storeU32(field, std::uint32_t(std::int64_t(loadU32(field)) + d));
            if (!store.write(entryOffset(i), field)) return failed();
        }
    }
    std::uint8_t length[4];
    storeU32(length, std::uint32_t(coded.size()));
    if (!store.writeData(offset, coded) || !store.write(entryOffset(slot) + kEntryLengthField, length)) return failed();
    if (d < 0 && !store.resize(std::uint64_t(std::int64_t(oldSize) + d))) return failed();
    if (!store.finish()) return failed();
    return {};
}

}  // namespace

fs::path menuFilePath(const fs::path& gameFolder) { return gameFilePath(gameFolder, kMenuFileRelative); }

Result<MenuPictureEntry> readMenuIndexEntry(std::span<const std::uint8_t> file, int index) {
    if (index < 0 || index >= kMenuIndexEntries) return fail(MessageId::FailedToImportMenuHelmet);
    ByteReader in(file, 0);
    in.seek(entryOffset(index));
    MenuPictureEntry entry;
    entry.offset = in.u32();
    entry.length = in.u32();
    entry.width = in.u16();
    entry.height = in.u16();
    if (!in.ok()) return fail(MessageId::FailedToImportMenuHelmet);
    return entry;
}

Result<Bytes> decodeMenuPackets(std::span<const std::uint8_t> coded, int width, int height) {
    if (width <= 0 || height <= 0 || width > kMenuPictureMaxWidth || height > kMenuPictureMaxHeight)
        return fail(MessageId::FailedToImportMenuHelmet);
    Bytes pixels(std::size_t(paddedRowLength(width)) * std::size_t(height), 0);
    std::size_t out = 0;
    ByteReader in(coded);
    while (in.remaining() > 0) {
        std::uint8_t control = in.u8();
        if (control <= kLastLiteralControl) {
            std::size_t count = std::size_t(control) + 1;
            auto literal = in.view(count);
            if (!in.ok() || count > pixels.size() - out) return fail(MessageId::FailedToImportMenuHelmet);
            std::copy(literal.begin(), literal.end(), pixels.begin() + std::ptrdiff_t(out));
            out += count;
        } else {
            std::size_t count = 257u - control;
            std::uint8_t value = in.u8();
            if (!in.ok() || count > pixels.size() - out) return fail(MessageId::FailedToImportMenuHelmet);
            std::fill_n(pixels.begin() + std::ptrdiff_t(out), count, value);
            out += count;
        }
    }
    return pixels;
}

Result<BitmapBuffer> decodeMenuPicture(std::span<const std::uint8_t> file, int index) {
    auto entry = readMenuIndexEntry(file, index);
    if (!entry) return fail(entry.error());
    if (std::uint64_t(entry->offset) + entry->length > file.size()) return fail(MessageId::FailedToImportMenuHelmet);
    auto pixels = decodeMenuPackets(file.subspan(entry->offset, entry->length), entry->width, entry->height);
    if (!pixels) return fail(pixels.error());
    BitmapBuffer bitmap(entry->width, entry->height);
    if (!bitmap.valid()) return fail(MessageId::FailedToImportMenuHelmet);
    // The file holds the top row first; the bitmap the bottom row first.
    const std::size_t stride = std::size_t(bitmap.stride());
    for (int k = 0; k < bitmap.height; ++k)
        std::copy_n(pixels->begin() + std::ptrdiff_t(stride * std::size_t(k)), stride, bitmap.topRow(k));
    setBitmapPalette(bitmap, MenuPalette);
    return bitmap;
}

Bytes codeMenuRow(std::span<const std::uint8_t> row) {
    Bytes coded;
    std::size_t i = 0;
    while (i < row.size()) {
        std::size_t run = 1;
        while (i + run < row.size() && run < std::size_t(kLongestRun) && row[i + run] == row[i]) ++run;
        coded.push_back(std::uint8_t((257u - run) & 0xFF));
        coded.push_back(row[i]);
        i += run;
    }
    return coded;
}

Bytes codeMenuHelmet(const BitmapBuffer& picture) {
    Bytes coded;
    if (!isMenuHelmetPicture(picture)) return coded;
    coded.reserve(kMenuHelmetMaxCoded);
    for (int k = 0; k < kMenuHelmetSide; ++k) {
        Bytes row = codeMenuRow(std::span<const std::uint8_t>(picture.topRow(k), std::size_t(kMenuHelmetSide)));
        coded.insert(coded.end(), row.begin(), row.end());
    }
    return coded;
}

Status replaceMenuPicture(Bytes& file, int slot, std::span<const std::uint8_t> coded) {
    MenuBytes store{file};
    return replaceMenuPictureIn(store, slot, coded);
}

Result<BitmapBuffer> readMenuHelmet(const fs::path& gameFolder, int slot, Progress* progress) {
    if (!isMenuHelmetSlot(slot)) return fail(MessageId::FailedToImportMenuHelmet);
    auto path = findGameFile(gameFolder, kMenuFileRelative);
    if (!path) return fail(MessageId::FailedToImportMenuHelmet);
    reportFile(progress, *path, slot);
    auto bytes = readWholeFile(*path);
    if (!bytes) return fail(MessageId::FailedToImportMenuHelmet);
    return decodeMenuPicture(*bytes, slot);
}

Status ImportMenuHelmetFromGame(const fs::path& gameFolder, int slot, const fs::path& bitmapPath, Progress* progress) {
    auto bitmap = readMenuHelmet(gameFolder, slot, progress);
    if (!bitmap) return fail(bitmap.error());
    if (!writeBitmapFile(bitmapPath, encodeBitmapKeepingPalette(*bitmap))) return fail(MessageId::FailedToImportMenuHelmet);
    return {};
}

Status ExportMenuHelmetToGame(const fs::path& gameFolder, int slot, const BitmapBuffer& picture, Progress* progress) {
    if (!isMenuHelmetSlot(slot)) return fail(MessageId::FailedToExportMenuHelmet);
    Bytes coded = codeMenuHelmet(picture);
    if (coded.empty()) return fail(MessageId::FailedToExportMenuHelmet);
    auto path = findGameFile(gameFolder, kMenuFileRelative);
    if (!path || !clearReadOnly(*path)) return fail(MessageId::FailedToExportMenuHelmet);
    reportFile(progress, *path, slot);
    MenuFile store;
    if (!store.file.open(*path, PatchableFile::Update)) return fail(MessageId::FailedToExportMenuHelmet);
    return replaceMenuPictureIn(store, slot, coded);
}

}  // namespace tarvel
