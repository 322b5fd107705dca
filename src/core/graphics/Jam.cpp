#include "graphics/Jam.h"

#include "common/FileIO.h"
#include "graphics/JamCatalogue.h"

#include <algorithm>
#include <array>
#include <string>

namespace tarvel {
namespace fs = std::filesystem;

namespace {

constexpr std::size_t kCanvasWidth = kJamCanvasWidth;
constexpr int kColourTableCopies = 4;

// FixGreen: the greens 104-123 move into the range 214-233 (in steps of
// 0.8125), then 194-213 move up by 20.
// Rounded (104 becomes 218), unlike applyPaletteFix for the colour tables, which truncates (217) and then caps at 216.
constexpr int kGreenFirst = 104;
constexpr int kGreenLast = 123;
constexpr std::array<std::uint8_t, 20> kGreenMap{218, 218, 219, 220, 221, 222, 222, 223, 224, 225,
                                                 226, 226, 227, 228, 229, 230, 231, 231, 232, 233};
constexpr int kDarkGreenFirst = 194;
constexpr int kDarkGreenLast = 213;
constexpr int kDarkGreenShift = 20;

constexpr std::uint8_t fixGreen(std::uint8_t p) {
    if (p >= kGreenFirst && p <= kGreenLast) p = kGreenMap[std::size_t(p - kGreenFirst)];
    if (p >= kDarkGreenFirst && p <= kDarkGreenLast) p = std::uint8_t(p + kDarkGreenShift);
    return p;
}

std::string catalogueRelativePath(const JamCatalogueEntry& entry) { return std::string("GAMEJAMS\\") + entry.path; }

std::uint8_t byteAt(const Bytes& data, std::size_t at) { return at < data.size() ? data[at] : 0; }

// Sub-image i's rectangle as canvas offsets; callers have checked it lies on the canvas.
template <class F>
void forEachPixel(const JamImageEntry& e, std::size_t canvasStart, F&& f) {
    for (int row = 0; row < e.height; ++row) {
        std::size_t base = canvasStart + std::size_t(e.y + row) * kCanvasWidth + std::size_t(e.x);
        for (int col = 0; col < e.width; ++col) f(base + std::size_t(col));
    }
}

void rebuildImage(Bytes& jam, const JamLayout& layout, const JamImageEntry& e, bool carFile,
                  const GraphicsOptions& options, Progress* progress) {
    const std::size_t K = std::size_t(e.colourCount);
    const std::size_t tableStart = layout.tablesStart + e.colourOffset;
    const int stripRows = std::min(e.height, kJamStripRows);
    const std::size_t canvas = layout.canvasStart;
    auto stripPixel = [&](int j) -> std::uint8_t& {
        return jam[canvas + std::size_t(e.y + j) * kCanvasWidth + std::size_t(e.x)];
    };

    if (options.fixStrip && carFile)
        for (int j = 0; j < stripRows; ++j) stripPixel(j) = 0;
    if (options.fixGreen && carFile) forEachPixel(e, canvas, [&](std::size_t at) { jam[at] = fixGreen(jam[at]); });

    // Distinct indexes in order of first appearance, then sorted.
    std::array<std::uint8_t, 256> list{};
    std::array<bool, 256> seen{};
    std::size_t found = 0;
    forEachPixel(e, canvas, [&](std::size_t at) {
        std::uint8_t p = jam[at];
        if (!seen[p]) {
            seen[p] = true;
            list[found++] = p;
        }
    });
    std::sort(list.begin(), list.begin() + std::ptrdiff_t(found));
    if (K < found && progress) progress->beep();

    for (int copy = 0; copy < kColourTableCopies; ++copy)
        for (std::size_t k = 0; k < K; ++k) jam[tableStart + std::size_t(copy) * K + k] = k < 256 ? list[k] : 0;

    if (options.fixStrip && carFile) {
        // The strip reads on past table 0 into the following bytes as they lie.
        for (int j = 0; j < stripRows; ++j) {
            std::uint8_t v = byteAt(jam, tableStart + std::size_t(j));
            if (j >= 1 && v == 0) v = byteAt(jam, tableStart + 1);
            stripPixel(j) = v;
        }
    }

    std::array<std::uint8_t, 256> inverse{};
    for (std::size_t k = 0; k < K; ++k) inverse[jam[tableStart + k]] = std::uint8_t(k);
    forEachPixel(e, canvas, [&](std::size_t at) { jam[at] = inverse[jam[at]]; });
    if (progress) progress->setColours(int(found), int(K));
}

}  // namespace

void JamScramble(std::span<std::uint8_t> data) {
    std::uint32_t key = kJamScrambleKey;
    std::size_t words = data.size() / 4;
    for (std::size_t i = 0; i < words; ++i) {
        std::uint8_t* p = data.data() + 4 * i;
        storeU32(p, loadU32(p) ^ key);
        key *= 5u;
    }
    // Of a trailing partial word only its first byte is scrambled.
    if (data.size() % 4 != 0) data[4 * words] ^= std::uint8_t(key);
}

Result<JamLayout> parseJam(std::span<const std::uint8_t> jam, int number) {
    const JamCatalogueEntry* catalogue = jamCatalogueEntry(number);
    if (!catalogue) return fail(MessageId::FailedToConvertJam);
    ByteReader in(jam);
    JamLayout layout;
    layout.imageCount = in.u16();
    layout.canvasHeight = in.u16();
    if (!in.ok() || layout.imageCount != catalogue->images || layout.canvasHeight != catalogue->height)
        return fail(MessageId::FailedToConvertJam);
    layout.tablesStart = kJamHeaderSize + kJamEntrySize * std::size_t(layout.imageCount);
    std::size_t canvasBytes = kCanvasWidth * std::size_t(layout.canvasHeight);
    if (jam.size() < layout.tablesStart + canvasBytes) return fail(MessageId::FailedToConvertJam);
    layout.canvasStart = jam.size() - canvasBytes;

    layout.entries.reserve(std::size_t(layout.imageCount));
    for (int i = 0; i < layout.imageCount; ++i) {
        ByteReader entry(jam, kJamHeaderSize + kJamEntrySize * std::size_t(i));
        JamImageEntry e;
        e.x = entry.u8();
        e.y = entry.u8();
        entry.skip(2);
        e.width = entry.u16();
        e.height = entry.u16();
        entry.skip(4);
        e.colourOffset = entry.u16();
        entry.skip(2);
        e.colourCount = entry.u16();
        if (!entry.ok()) return fail(MessageId::FailedToConvertJam);
        if (e.colourCount > 0) {
            bool onCanvas = e.x + e.width <= kJamCanvasWidth && e.y + e.height <= layout.canvasHeight;
            bool tablesInside = layout.tablesStart + e.colourOffset + kColourTableCopies * std::size_t(e.colourCount) <=
                                layout.canvasStart;
            if (!onCanvas || !tablesInside) return fail(MessageId::FailedToConvertJam);
        }
        layout.entries.push_back(e);
    }
    return layout;
}

Result<std::size_t> BuildJamFromBitmap(Bytes& jam, const BitmapBuffer& bitmap, int number,
                                       const GraphicsOptions& options, Progress* progress) {
    auto parsed = parseJam(jam, number);
    if (!parsed) return fail(MessageId::FailedToPatchJam);
    JamLayout layout = std::move(*parsed);
    const int H = layout.canvasHeight;
    if (!bitmap.valid() || bitmap.width != kJamCanvasWidth || bitmap.height != H) return fail(MessageId::FailedToPatchJam);

    // The rebuilt file ends with the last entry's colour tables and the canvas.
    std::size_t tablesEnd = layout.tablesStart;
    if (!layout.entries.empty()) {
        const JamImageEntry& last = layout.entries.back();
        tablesEnd += last.colourOffset + kColourTableCopies * std::size_t(last.colourCount);
    }
    for (const JamImageEntry& e : layout.entries)
        if (e.colourCount > 0 && layout.tablesStart + e.colourOffset + kColourTableCopies * std::size_t(e.colourCount) > tablesEnd)
            return fail(MessageId::FailedToPatchJam);
    const std::size_t newSize = tablesEnd + kCanvasWidth * std::size_t(H);
    jam.resize(newSize);
    layout.canvasStart = tablesEnd;

    for (int r = 0; r < H; ++r)
        std::copy_n(bitmap.row(H - 1 - r), kCanvasWidth, jam.begin() + std::ptrdiff_t(layout.canvasStart + std::size_t(r) * kCanvasWidth));

    const bool carFile = isCarJam(number);
    for (int i = 0; i < layout.imageCount; ++i) {
        const JamImageEntry& e = layout.entries[std::size_t(i)];
        if (progress) progress->setSubImage(i + 1, layout.imageCount);
        if (e.colourCount == 0) {
            if (progress) progress->setColours(256, 256);
            continue;
        }
        rebuildImage(jam, layout, e, carFile, options, progress);
    }
    return newSize;
}

Result<BitmapBuffer> convertJamToBitmap(std::span<const std::uint8_t> jam, int number, const GraphicsOptions& options,
                                        Progress* progress) {
    auto parsed = parseJam(jam, number);
    if (!parsed) return fail(MessageId::FailedToConvertJam);
    const JamLayout& layout = *parsed;
    const int H = layout.canvasHeight;
    Bytes canvas(jam.begin() + std::ptrdiff_t(layout.canvasStart), jam.end());
    Bytes covered(options.clearJam ? canvas.size() : 0, 0);

    for (int i = 0; i < layout.imageCount; ++i) {
        const JamImageEntry& e = layout.entries[std::size_t(i)];
        // Coverage counts every sub-image, clipped to the canvas.
        int right = std::min(e.x + e.width, kJamCanvasWidth);
        int bottom = std::min(e.y + e.height, H);
        if (options.clearJam && right > e.x)
            for (int row = e.y; row < bottom; ++row)
                std::fill_n(covered.begin() + std::ptrdiff_t(std::size_t(row) * kCanvasWidth + std::size_t(e.x)), right - e.x, 1);
        if (progress) progress->setSubImage(i + 1, layout.imageCount);
        if (e.colourCount == 0) continue;
        const std::size_t K = std::size_t(e.colourCount);
        const std::size_t table = layout.tablesStart + e.colourOffset;
        // p == K is looked up as well: it reads the first byte of table 1.
        std::array<std::uint8_t, 256> lookup{};
        for (std::size_t p = 0; p < 256 && p <= K; ++p) lookup[p] = jam[table + p];
        forEachPixel(e, 0, [&](std::size_t at) { canvas[at] = lookup[canvas[at]]; });
    }
    if (options.clearJam)
        for (std::size_t at = 0; at < canvas.size(); ++at)
            if (!covered[at]) canvas[at] = 0;

    BitmapBuffer bitmap(kJamCanvasWidth, H, options.gp2Palette);
    if (!bitmap.valid()) return fail(MessageId::FailedToConvertJam);
    for (int r = 0; r < H; ++r)
        std::copy_n(canvas.begin() + std::ptrdiff_t(std::size_t(r) * kCanvasWidth), kCanvasWidth, bitmap.row(H - 1 - r));
    return bitmap;
}

fs::path gameJamPath(const fs::path& gameFolder, int number) {
    const JamCatalogueEntry* entry = jamCatalogueEntry(number);
    if (!entry) return {};
    return gameFilePath(gameFolder, catalogueRelativePath(*entry));
}

namespace {

// The game's file for `number`, unscrambled.
Result<Bytes> readUnscrambled(const fs::path& gameFolder, int number, MessageId failure, Progress* progress) {
    const JamCatalogueEntry* entry = jamCatalogueEntry(number);
    if (!entry) return fail(failure);
    auto path = findGameFile(gameFolder, catalogueRelativePath(*entry));
    if (!path) return fail(failure);
    if (progress) progress->setFile(entry->path);
    auto bytes = readWholeFile(*path);
    if (!bytes) return fail(failure);
    JamScramble(*bytes);
    return std::move(*bytes);
}

}  // namespace

Result<Bytes> BuildGameJam(const fs::path& gameFolder, const BitmapBuffer& bitmap, int number,
                          const GraphicsOptions& options, Progress* progress) {
    auto jam = readUnscrambled(gameFolder, number, MessageId::FailedToPatchJam, progress);
    if (!jam) return fail(jam.error());
    auto size = BuildJamFromBitmap(*jam, bitmap, number, options, progress);
    if (!size) return fail(MessageId::FailedToPatchJam);
    JamScramble(*jam);
    return std::move(*jam);
}

Status PatchGameJam(const fs::path& gameFolder, const BitmapBuffer& bitmap, int number, const GraphicsOptions& options,
                    Progress* progress) {
    auto rebuilt = BuildGameJam(gameFolder, bitmap, number, options, progress);
    if (!rebuilt) return fail(rebuilt.error());
    auto path = findGameFile(gameFolder, catalogueRelativePath(*jamCatalogueEntry(number)));
    if (!path || !clearReadOnly(*path) || !writeFileAtomically(*path, *rebuilt)) return fail(MessageId::FailedToPatchJam);
    return {};
}

Result<BitmapBuffer> readGameJamBitmap(const fs::path& gameFolder, int number, const GraphicsOptions& options,
                                       Progress* progress) {
    auto jam = readUnscrambled(gameFolder, number, MessageId::FailedToConvertJam, progress);
    if (!jam) return fail(jam.error());
    return convertJamToBitmap(*jam, number, options, progress);
}

Status ExportJamToBitmap(const fs::path& gameFolder, int number, const fs::path& bitmapPath,
                         const GraphicsOptions& options, Progress* progress) {
    auto bitmap = readGameJamBitmap(gameFolder, number, options, progress);
    if (!bitmap) return fail(bitmap.error());
    if (!writeBitmapFile(bitmapPath, encodeBitmapKeepingPalette(*bitmap))) return fail(MessageId::FailedToConvertJam);
    return {};
}

}  // namespace tarvel
