#pragma once
// Picture files as users bring them: the BMP headers, 8-, 24- and 32-bit BMP
// and PNG (through libpng) read into 8-bit RGBA, and the plain-words reasons
// for refusing a file ("LIVERY.BMP: 24-bit colour; ...").

#include "common/ByteIO.h"
#include "common/Result.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace tarvel {

// A picture in 8-bit red, green, blue, alpha, top row first, no padding.
struct RgbaPicture {
    int width = 0;
    int height = 0;
    Bytes rgba;

    const std::uint8_t* at(int x, int y) const { return rgba.data() + 4 * (std::size_t(y) * std::size_t(width) + std::size_t(x)); }
};

// The fields of the 14-byte file header and of the information header that
// the readers use. `height` is negative for rows stored top row first.
struct BmpHeader {
    std::uint32_t pixelOffset = 0;
    std::uint32_t infoSize = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint16_t bitsPerPixel = 0;
    std::uint32_t compression = 0;
    std::uint32_t coloursUsed = 0;
};
constexpr std::uint32_t kBmpUncompressed = 0;
constexpr std::uint32_t kBmpBitFields = 3;

// Reads the headers; refuses (with the reason as the message's detail) a file
// that is not a BMP, is cut inside its headers or has an information header
// shorter than 40 bytes.
Result<BmpHeader> readBmpHeader(std::span<const std::uint8_t> file);

// Reasons shared by the readers, without the file name.
std::string depthReason(int bitsPerPixel, std::string_view needed);
std::string compressionReason(std::uint32_t compression);
std::string sizeReason(long long width, long long height, int expectedWidth, int expectedHeight);
std::string paletteSizeReason(std::uint32_t coloursUsed);
std::string pixelOffsetReason(std::uint32_t pixelOffset);
std::string endsInsideReason(std::size_t fileSize, std::string_view where);
// 1078 -> "1,078".
std::string withThousands(std::uint64_t value);
// "There is no such file" or "the file cannot be read".
std::string unreadableReason(const std::filesystem::path& path);
// "Couldn't Load Bitmap." with the reason as its detail, and the same detail
// put behind the file's name.
Message refusalMessage(std::string reason);
Failure pictureRefusal(std::string reason);
Message namedRefusal(const std::filesystem::path& path, Message refusal);

enum class PictureFormat { Other, Bmp, Png };
struct PictureProbe {
    PictureFormat format = PictureFormat::Other;
    int bitsPerPixel = 0;   // of a BMP
    int width = 0;
    int height = 0;         // rows, whichever order they are stored in
};
// Whether the bytes start with the PNG signature.
bool isPngFile(std::span<const std::uint8_t> file);
// What the first bytes of a file say it holds.
PictureProbe probePicture(std::span<const std::uint8_t> head);
// A picture whose colours must be mapped to a palette: 24- or 32-bit BMP, or PNG.
bool isTrueColour(const PictureProbe& probe);
PictureProbe probePictureFile(const std::filesystem::path& path);

// 8-, 24- and 32-bit uncompressed BMP (32-bit also with bit fields), rows in
// either order, and PNG of any colour type and depth, of exactly width x
// height. An 8-bit BMP gives its palette's colours. Alpha below 128 is
// transparent; only PNG and bit-field BMP with an alpha mask carry alpha.
Result<RgbaPicture> decodeRgbaPicture(std::span<const std::uint8_t> file, int width, int height);
Result<RgbaPicture> LoadRgbaPicture(const std::filesystem::path& path, int width, int height);

}  // namespace tarvel
