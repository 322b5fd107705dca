#include "graphics/MenuHelmet.h"

#include "common/FileIO.h"
#include "common/FileTail.h"
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
    if (!isMenuHelmetSlot(slot) || coded.empty()) return fail(MessageId::FailedToExportMenuHelmet);
    auto entry = readMenuIndexEntry(file, slot);
    auto next = readMenuIndexEntry(file, slot + 1);
    if (!entry || !next || file.size() < entryOffset(kMenuIndexEntries) ||
        !replaceableInPlace(entry->offset, entry->length, next->offset, file.size()))
        return fail(MessageId::FailedToExportMenuHelmet);
    const std::size_t oldSize = file.size();
    const std::int64_t d = std::int64_t(coded.size()) - std::int64_t(entry->length);
    if (d != 0) {
        if (!moveTail(file, next->offset, d)) return fail(MessageId::FailedToExportMenuHelmet);
        for (int i = slot + 1; i < kMenuIndexEntries; ++i) {
            std::uint8_t* field = file.data() + entryOffset(i);
            storeU32(field, std::uint32_t(std::int64_t(loadU32(field)) + d));
        }
    }
    if (entry->offset > file.size()) return fail(MessageId::FailedToExportMenuHelmet);
    if (entry->offset + coded.size() > file.size()) file.resize(entry->offset + coded.size());
    std::copy(coded.begin(), coded.end(), file.begin() + std::ptrdiff_t(entry->offset));
    storeU32(file.data() + entryOffset(slot) + kEntryLengthField, std::uint32_t(coded.size()));
    if (d < 0) file.resize(std::size_t(std::int64_t(oldSize) + d));
    return {};
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

Status ExportMenuHelmet(const fs::path& gameFolder, int slot, const fs::path& bitmapPath, Progress* progress) {
    auto bitmap = readMenuHelmet(gameFolder, slot, progress);
    if (!bitmap) return fail(bitmap.error());
    if (!writeBitmapFile(bitmapPath, encodeBitmapKeepingPalette(*bitmap))) return fail(MessageId::FailedToImportMenuHelmet);
    return {};
}

Status ImportMenuHelmet(const fs::path& gameFolder, int slot, const BitmapBuffer& picture, Progress* progress) {
    const auto failed = [] { return fail(MessageId::FailedToExportMenuHelmet); };
    if (!isMenuHelmetSlot(slot)) return failed();
    Bytes coded = codeMenuHelmet(picture);
    if (coded.empty()) return failed();
    auto path = findGameFile(gameFolder, kMenuFileRelative);
    if (!path || !clearReadOnly(*path)) return failed();
    reportFile(progress, *path, slot);
    PatchableFile file;
    if (!file.open(*path)) return failed();

    std::uint8_t entry[kMenuIndexEntrySize];
    if (!file.read(entryOffset(slot), entry, sizeof entry)) return failed();
    const std::uint32_t offset = loadU32(entry);
    const std::uint32_t oldLength = loadU32(entry + kEntryLengthField);
    const std::int64_t d = std::int64_t(coded.size()) - std::int64_t(oldLength);
    const std::uint64_t oldSize = file.size();
    std::uint8_t field[4];
    if (!file.read(entryOffset(slot + 1), field, sizeof field)) return failed();
    const std::uint32_t nextOffset = loadU32(field);
    if (!replaceableInPlace(offset, oldLength, nextOffset, oldSize)) return failed();
    if (d != 0) {
        if (!moveFileTail(file, nextOffset, d)) return failed();
        for (int i = slot + 1; i < kMenuIndexEntries; ++i) {
            if (!file.read(entryOffset(i), field, sizeof field)) return failed();
            storeU32(field, std::uint32_t(std::int64_t(loadU32(field)) + d));
            if (!file.write(entryOffset(i), field, sizeof field)) return failed();
        }
    }
    if (offset > file.size()) return failed();
    if (!writeInPieces(file, offset, coded)) return failed();
    std::uint8_t length[4];
    storeU32(length, std::uint32_t(coded.size()));
    if (!file.write(entryOffset(slot) + kEntryLengthField, length, sizeof length) || !file.flush()) return failed();
    if (d < 0 && !file.resize(std::uint64_t(std::int64_t(oldSize) + d))) return failed();
    return {};
}

}  // namespace tarvel
