#pragma once
// 8-bit bitmaps in memory and their exchange with BMP files.
//
// A BitmapBuffer is the bitmap file without its 14-byte file header: the
// 40-byte information header, the 1024-byte palette (blue, green, red, 0) and
// the pixel rows, bottom row first, each padded to a multiple of 4 bytes.

#include "common/ByteIO.h"
#include "common/Result.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

namespace tarvel {

struct Config;

constexpr std::uint16_t kBitmapSignature = 0x4D42;   // "BM"
constexpr std::size_t kBitmapFileHeaderSize = 14;
constexpr std::size_t kBitmapInfoHeaderSize = 40;
constexpr std::size_t kBitmapPaletteSize = 1024;
constexpr std::size_t kBitmapHeaderSize = kBitmapInfoHeaderSize + kBitmapPaletteSize;  // 1064
constexpr std::size_t kBitmapPixelOffset = kBitmapFileHeaderSize + kBitmapHeaderSize;  // 1078
// Largest side accepted for a bitmap in memory; the system's pictures are far smaller.
constexpr int kBitmapMaxSide = 4096;

constexpr int paddedRowLength(int width) { return (width + 3) & ~3; }

struct BitmapBuffer {
    int width = 0;
    int height = 0;
    Bytes data;   // information header + palette + rows

    BitmapBuffer() = default;
    // A blank bitmap: the system's header with the game palette, pixels 0.
    BitmapBuffer(int width, int height, bool alternativeGreens = false);

    int stride() const { return paddedRowLength(width); }
    std::size_t pixelBytes() const { return std::size_t(stride()) * std::size_t(height); }
    std::uint8_t* pixels() { return data.data() + kBitmapHeaderSize; }
    const std::uint8_t* pixels() const { return data.data() + kBitmapHeaderSize; }
    // Pixel row r counted from the bottom (r = 0 is the bottom row).
    std::uint8_t* row(int r) { return pixels() + std::size_t(r) * std::size_t(stride()); }
    const std::uint8_t* row(int r) const { return pixels() + std::size_t(r) * std::size_t(stride()); }
    // Pixel row counted from the top of the picture.
    std::uint8_t* topRow(int r) { return row(height - 1 - r); }
    const std::uint8_t* topRow(int r) const { return row(height - 1 - r); }
    bool valid() const { return width > 0 && height > 0 && data.size() == kBitmapHeaderSize + pixelBytes(); }
};

struct GraphicsOptions {
    bool clearJam = true;     // "ClearJam": canvas outside every sub-image exported as 0
    bool fixStrip = true;     // "FixStrip": colour strip in the first column of car images
    bool fixGreen = false;    // "FixGreen": greens moved into 214-233 for car files
    bool gp2Palette = false;  // "GP2Palette": alternative greens in written bitmaps
};

GraphicsOptions graphicsOptions(const Config& config);

// The 40-byte information header and the 1024-byte game palette, written at
// `out` (which must hold kBitmapHeaderSize bytes).
void WriteBitmapHeader(std::uint8_t* out, int width, int height, bool alternativeGreens);
// The same into a buffer's own header, for its width and height.
void WriteBitmapHeader(BitmapBuffer& bitmap, bool alternativeGreens);
// The 14-byte file header ("BM", file size, pixel offset 1078).
std::array<std::uint8_t, kBitmapFileHeaderSize> bitmapFileHeader(int width, int height);
// Replaces the palette of a buffer with 256 colours 0xRRGGBB.
void setBitmapPalette(BitmapBuffer& bitmap, std::span<const std::uint32_t, 256> colours);

// Reads an 8-bit uncompressed bitmap of exactly width x height from the bytes
// of a whole file, with the colour repairs and the game palette put in place
// of the file's. Fails with "Couldn't Load Bitmap." and the reason as detail
// (LoadBitmap8: behind the file's name). Pictures in another palette (menu
// pictures) are read with `repairColours` false: pixels as they are.
Result<BitmapBuffer> decodeBitmap8(std::span<const std::uint8_t> file, int width, int height,
                                   bool repairColours = true);
Result<BitmapBuffer> LoadBitmap8(const std::filesystem::path& path, int width, int height, bool repairColours = true);

// The whole bitmap file: file header, fresh information header and game
// palette (alternative greens as the options say), pixels.
Bytes encodeBitmap8(const BitmapBuffer& bitmap, const GraphicsOptions& options);
// The same as encodeBitmap8 but keeping the buffer's own palette.
Bytes encodeBitmapKeepingPalette(const BitmapBuffer& bitmap);
// Writes the file; a failed write leaves no file. "Couldn't Save Bitmap.".
Status SaveBitmap8(const std::filesystem::path& path, const BitmapBuffer& bitmap, const GraphicsOptions& options);
// Writes raw file bytes, deleting a partly written file. "Couldn't Save Bitmap.".
Status writeBitmapFile(const std::filesystem::path& path, std::span<const std::uint8_t> fileBytes);

}  // namespace tarvel
