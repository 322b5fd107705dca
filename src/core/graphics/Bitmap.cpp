#include "graphics/Bitmap.h"

#include "common/Config.h"
#include "common/FileIO.h"
#include "graphics/Palette.h"
#include "graphics/PictureFile.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <system_error>

namespace tarvel {
namespace fs = std::filesystem;

namespace {

constexpr int kFirstTransparentRangeEntry = 192;
constexpr std::uint8_t kWhiteIndex = 255;
constexpr std::uint8_t kImportedWhite = 31;

bool sizeAcceptable(int width, int height) {
    return width > 0 && height > 0 && width <= kBitmapMaxSide && height <= kBitmapMaxSide;
}

}  // namespace

BitmapBuffer::BitmapBuffer(int w, int h, bool alternativeGreens) {
    if (!sizeAcceptable(w, h)) return;
    width = w;
    height = h;
    data.assign(kBitmapHeaderSize + pixelBytes(), 0);
    WriteBitmapHeader(data.data(), width, height, alternativeGreens);
}

GraphicsOptions graphicsOptions(const Config& config) {
    GraphicsOptions options;
    options.clearJam = config.clearJam;
    options.fixStrip = config.fixStrip;
    options.fixGreen = config.fixGreen;
    options.gp2Palette = config.gp2Palette;
    return options;
}

void WriteBitmapHeader(std::uint8_t* out, int width, int height, bool alternativeGreens) {
    storeU32(out + 0, kBitmapInfoHeaderSize);
    storeU32(out + 4, std::uint32_t(width));
    storeU32(out + 8, std::uint32_t(height));
    storeU16(out + 12, 1);     // planes
    storeU16(out + 14, 8);     // bits per pixel
    storeU32(out + 16, 0);     // no compression
    storeU32(out + 20, 0);     // image size
    storeU32(out + 24, 0);     // horizontal resolution
    storeU32(out + 28, 0);     // vertical resolution
    storeU32(out + 32, 256);   // colours used
    storeU32(out + 36, 256);   // colours important
    std::uint8_t* palette = out + kBitmapInfoHeaderSize;
    for (int i = 0; i < 256; ++i) {
        std::uint32_t rgb = gamePaletteColour(i, alternativeGreens);
        palette[4 * i + 0] = std::uint8_t(rgb);
        palette[4 * i + 1] = std::uint8_t(rgb >> 8);
        palette[4 * i + 2] = std::uint8_t(rgb >> 16);
        palette[4 * i + 3] = 0;
    }
}

void WriteBitmapHeader(BitmapBuffer& bitmap, bool alternativeGreens) {
    if (bitmap.data.size() < kBitmapHeaderSize) bitmap.data.resize(kBitmapHeaderSize);
    WriteBitmapHeader(bitmap.data.data(), bitmap.width, bitmap.height, alternativeGreens);
}

std::array<std::uint8_t, kBitmapFileHeaderSize> bitmapFileHeader(int width, int height) {
    std::array<std::uint8_t, kBitmapFileHeaderSize> header{};
    std::uint32_t fileSize =
        std::uint32_t(kBitmapPixelOffset) + std::uint32_t(paddedRowLength(width)) * std::uint32_t(height);
    storeU16(&header[0], kBitmapSignature);
    storeU32(&header[2], fileSize);
    storeU16(&header[6], 0);
    storeU16(&header[8], 0);
    storeU32(&header[10], std::uint32_t(kBitmapPixelOffset));
    return header;
}

void setBitmapPalette(BitmapBuffer& bitmap, std::span<const std::uint32_t, 256> colours) {
    if (bitmap.data.size() < kBitmapHeaderSize) return;
    std::uint8_t* palette = bitmap.data.data() + kBitmapInfoHeaderSize;
    for (std::size_t i = 0; i < 256; ++i) {
        palette[4 * i + 0] = std::uint8_t(colours[i]);
        palette[4 * i + 1] = std::uint8_t(colours[i] >> 8);
        palette[4 * i + 2] = std::uint8_t(colours[i] >> 16);
        palette[4 * i + 3] = 0;
    }
}

Result<BitmapBuffer> decodeBitmap8(std::span<const std::uint8_t> file, int width, int height, bool repairColours) {
    if (!sizeAcceptable(width, height)) return pictureRefusal(sizeReason(width, height, width, height));
    const std::string inPalette = repairColours ? " in the game palette" : "";
    if (isPngFile(file)) return pictureRefusal("a PNG picture; Tarvel needs 8-bit BMP pictures" + inPalette);
    auto header = readBmpHeader(file);
    if (!header) return fail(header.error());
    if (header->bitsPerPixel != 8) return pictureRefusal(depthReason(header->bitsPerPixel, "8-bit pictures" + inPalette));
    if (header->compression != kBmpUncompressed) return pictureRefusal(compressionReason(header->compression));
    if (header->width == width && header->height == -height)
        return pictureRefusal("rows stored top row first; Tarvel needs 8-bit bitmaps stored bottom row first");
    if (header->width != width || header->height != height)
        return pictureRefusal(sizeReason(header->width, std::abs(static_cast<long long>(header->height)), width, height));
    if (header->coloursUsed > 256) return pictureRefusal(paletteSizeReason(header->coloursUsed));

    // The palette follows the information header (whatever its version); the
    // pixels start where the file header says.
    std::size_t paletteEntries = header->coloursUsed == 0 ? 256 : header->coloursUsed;
    std::size_t paletteStart = kBitmapFileHeaderSize + std::size_t(header->infoSize);
    BitmapBuffer bitmap(width, height);
    ByteReader paletteReader(file);
    paletteReader.seek(paletteStart);
    auto palette = paletteReader.view(paletteEntries * 4);
    if (!paletteReader.ok()) return pictureRefusal(endsInsideReason(file.size(), "the palette"));
    if (header->pixelOffset < paletteStart)
        return pictureRefusal(pixelOffsetReason(header->pixelOffset));
    ByteReader pixelReader(file);
    pixelReader.seek(header->pixelOffset);
    auto pixels = pixelReader.view(bitmap.pixelBytes());
    if (!pixelReader.ok()) return pictureRefusal(endsInsideReason(file.size(), "the pixel rows"));
    std::copy(pixels.begin(), pixels.end(), bitmap.pixels());

    // Transparent-range repair: a file whose upper palette entries are all
    // the transparent colour in some component had its texture's unused range
    // painted with it.
    bool transparentRange = repairColours;
    for (std::size_t i = kFirstTransparentRangeEntry; transparentRange && i < 256; ++i) {
        std::uint8_t blue = 0, green = 0, red = 0;
        if (i < paletteEntries) {
            blue = palette[4 * i];
            green = palette[4 * i + 1];
            red = palette[4 * i + 2];
        }
        if (blue != kTransparentBlue && green != kTransparentGreen && red != kTransparentRed) {
            transparentRange = false;
            break;
        }
    }
    std::uint8_t* p = bitmap.pixels();
    for (std::size_t i = 0, n = bitmap.pixelBytes(); i < n; ++i) {
        if (transparentRange && p[i] >= kFirstTransparentRangeEntry) p[i] = 0;
        if (repairColours && p[i] == kWhiteIndex) p[i] = kImportedWhite;
    }
    WriteBitmapHeader(bitmap, false);
    return bitmap;
}

Result<BitmapBuffer> LoadBitmap8(const fs::path& path, int width, int height, bool repairColours) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return fail(namedRefusal(path, refusalMessage(unreadableReason(path))));
    // Only as much as a bitmap of this size can need; a bigger file is read
    // up to that point.
    std::size_t limit = kBitmapPixelOffset + 1024 + std::size_t(paddedRowLength(width)) * std::size_t(std::max(height, 0));
    Bytes bytes(limit);
    in.read(reinterpret_cast<char*>(bytes.data()), std::streamsize(limit));
    bytes.resize(std::size_t(in.gcount()));
    // A larger header than usual (V4/V5) moves the pixels further; read the rest then.
    if (bytes.size() == limit) {
        std::error_code ec;
        auto size = fs::file_size(path, ec);
        if (!ec && size > limit && size < limit + (1u << 20)) {
            bytes.resize(std::size_t(size));
            in.read(reinterpret_cast<char*>(bytes.data() + limit), std::streamsize(size - limit));
            bytes.resize(limit + std::size_t(in.gcount()));
        }
    }
    auto bitmap = decodeBitmap8(bytes, width, height, repairColours);
    if (!bitmap) return fail(namedRefusal(path, bitmap.error()));
    return bitmap;
}

Bytes encodeBitmapKeepingPalette(const BitmapBuffer& bitmap) {
    Bytes out;
    if (!bitmap.valid()) return out;
    auto header = bitmapFileHeader(bitmap.width, bitmap.height);
    out.reserve(header.size() + bitmap.data.size());
    out.insert(out.end(), header.begin(), header.end());
    out.insert(out.end(), bitmap.data.begin(), bitmap.data.end());
    return out;
}

Bytes encodeBitmap8(const BitmapBuffer& bitmap, const GraphicsOptions& options) {
    Bytes out = encodeBitmapKeepingPalette(bitmap);
    if (!out.empty()) WriteBitmapHeader(out.data() + kBitmapFileHeaderSize, bitmap.width, bitmap.height, options.gp2Palette);
    return out;
}

Status writeBitmapFile(const fs::path& path, std::span<const std::uint8_t> fileBytes) {
    if (fileBytes.empty()) return fail(MessageId::CouldntSaveBitmap);
    std::error_code ec;
    // A file that stays read-only makes the open below fail, which is reported there.
    if (fs::exists(path, ec)) (void)clearReadOnly(path);
    bool ok = false;
    {
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        if (!out) return fail(MessageId::CouldntSaveBitmap);
        out.write(reinterpret_cast<const char*>(fileBytes.data()), std::streamsize(fileBytes.size()));
        out.flush();
        ok = bool(out);
    }
    if (!ok) {
        fs::remove(path, ec);
        return fail(MessageId::CouldntSaveBitmap);
    }
    return {};
}

Status SaveBitmap8(const fs::path& path, const BitmapBuffer& bitmap, const GraphicsOptions& options) {
    if (!bitmap.valid()) return fail(MessageId::CouldntSaveBitmap);
    return writeBitmapFile(path, encodeBitmap8(bitmap, options));
}

}  // namespace tarvel
