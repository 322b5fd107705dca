#include "graphics/PictureFile.h"

#include "common/FileIO.h"
#include "graphics/Bitmap.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <bit>
#include <fstream>
#include <system_error>

namespace tarvel {
namespace fs = std::filesystem;

namespace {

constexpr std::array<std::uint8_t, 8> kPngSignature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::size_t kColourMasksOffset = kBitmapFileHeaderSize + kBitmapInfoHeaderSize;   // 54
constexpr std::uint32_t kInfoSizeWithAlphaMask = 56;
// No picture Tarvel takes comes near this; a bigger file is not read at all.
constexpr std::uintmax_t kPictureFileMaxBytes = 64u << 20;
constexpr std::size_t kProbeBytes = 32;

struct SizeName {
    int width;
    int height;
    std::string_view name;
};
constexpr SizeName kPictureSizeNames[] = {
    {256, 164, "a livery"}, {256, 180, "the helmet sheet"}, {74, 15, "a helmet"}, {104, 104, "a menu helmet"}};

struct CompressionName {
    std::uint32_t id;
    std::string_view name;
};
constexpr CompressionName kCompressionNames[] = {
    {1, "RLE8"}, {2, "RLE4"}, {3, "bit fields"}, {4, "JPEG"}, {5, "PNG"}, {6, "alpha bit fields"}};

bool sizeAcceptable(int width, int height) {
    return width > 0 && height > 0 && width <= kBitmapMaxSide && height <= kBitmapMaxSide;
}

long long rowCount(std::int32_t height) { return height < 0 ? -static_cast<long long>(height) : height; }

// One colour channel of a pixel packed into a 32-bit word, scaled to 0-255.
struct Channel {
    std::uint32_t mask = 0;
    int shift = 0;
    std::uint32_t max = 0;

    explicit Channel(std::uint32_t m) : mask(m), shift(m ? std::countr_zero(m) : 0), max(m >> shift) {}
    std::uint8_t operator()(std::uint32_t pixel, std::uint8_t absent) const {
        if (!mask) return absent;
        return std::uint8_t(std::uint64_t((pixel & mask) >> shift) * 255u / max);
    }
};

struct PixelLayout {
    std::array<std::uint8_t, 4 * 256> palette{};   // 8-bit: RGBA of each index
    Channel red{0x00FF0000}, green{0x0000FF00}, blue{0x000000FF}, alpha{0};
};

Result<PixelLayout> readPixelLayout(std::span<const std::uint8_t> file, const BmpHeader& header) {
    PixelLayout layout;
    if (header.bitsPerPixel == 8) {
        if (header.coloursUsed > 256) return pictureRefusal(paletteSizeReason(header.coloursUsed));
        const std::size_t entries = header.coloursUsed == 0 ? 256 : header.coloursUsed;
        ByteReader in(file);
        in.seek(kBitmapFileHeaderSize + std::size_t(header.infoSize));
        auto palette = in.view(4 * entries);
        if (!in.ok()) return pictureRefusal(endsInsideReason(file.size(), "the palette"));
        // Indices past the file's palette show black.
        for (std::size_t i = 0; i < 256; ++i) {
            for (std::size_t k = 0; k < 3 && i < entries; ++k) layout.palette[4 * i + k] = palette[4 * i + 2 - k];
            layout.palette[4 * i + 3] = 255;
        }
    } else if (header.compression == kBmpBitFields) {
        ByteReader in(file, kColourMasksOffset);
        layout.red = Channel(in.u32());
        layout.green = Channel(in.u32());
        layout.blue = Channel(in.u32());
        if (header.infoSize >= kInfoSizeWithAlphaMask) layout.alpha = Channel(in.u32());
        if (!in.ok()) return pictureRefusal(endsInsideReason(file.size(), "the colour masks"));
    }
    return layout;
}

// Picture row `row` (from the top) of the stored rows.
std::size_t storedRow(const BmpHeader& header, int row, int height) {
    return header.height < 0 ? std::size_t(row) : std::size_t(height - 1 - row);
}

Result<RgbaPicture> decodeBmp(std::span<const std::uint8_t> file, const BmpHeader& header, int width, int height) {
    const int bits = header.bitsPerPixel;
    if (bits != 8 && bits != 24 && bits != 32) return pictureRefusal(depthReason(bits, "8-, 24- or 32-bit pictures"));
    const bool bitFields = bits == 32 && header.compression == kBmpBitFields;
    if (header.compression != kBmpUncompressed && !bitFields)
        return pictureRefusal(compressionReason(header.compression));
    if (header.width != width || rowCount(header.height) != height)
        return pictureRefusal(sizeReason(header.width, rowCount(header.height), width, height));
    auto layout = readPixelLayout(file, header);
    if (!layout) return fail(layout.error());
    if (header.pixelOffset < kBitmapFileHeaderSize + std::uint64_t(header.infoSize))
        return pictureRefusal(pixelOffsetReason(header.pixelOffset));

    const std::size_t stride = (std::size_t(width) * std::size_t(bits) + 31) / 32 * 4;
    ByteReader in(file);
    in.seek(header.pixelOffset);
    auto pixels = in.view(stride * std::size_t(height));
    if (!in.ok()) return pictureRefusal(endsInsideReason(file.size(), "the pixel rows"));

    RgbaPicture picture{width, height, Bytes(4 * std::size_t(width) * std::size_t(height))};
    bool anyAlpha = false;
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* source = pixels.data() + storedRow(header, y, height) * stride;
        std::uint8_t* out = picture.rgba.data() + 4 * std::size_t(y) * std::size_t(width);
        for (int x = 0; x < width; ++x, out += 4) {
            if (bits == 8) {
                std::copy_n(&layout->palette[4 * std::size_t(source[x])], 4, out);
                continue;
            }
            const std::uint8_t* p = source + std::size_t(x) * std::size_t(bits / 8);
            const std::uint32_t word = bits == 24 ? std::uint32_t(p[0]) | std::uint32_t(p[1]) << 8 | std::uint32_t(p[2]) << 16
                                                  : loadU32(p);
            out[0] = layout->red(word, 0);
            out[1] = layout->green(word, 0);
            out[2] = layout->blue(word, 0);
            out[3] = layout->alpha(word, 255);
            anyAlpha = anyAlpha || out[3] != 0;
        }
    }
    // Writers that fill the alpha bits with zeros mean an opaque picture.
    if (layout->alpha.mask && !anyAlpha)
        for (std::size_t i = 3; i < picture.rgba.size(); i += 4) picture.rgba[i] = 255;
    return picture;
}

std::string damagedPngReason(const png_image& image) {
    return std::string("a damaged PNG file (") + image.message + ")";
}

Result<RgbaPicture> decodePng(std::span<const std::uint8_t> file, int width, int height) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    // The simplified API catches libpng's errors itself and reports them as a failed call.
    if (!png_image_begin_read_from_memory(&image, file.data(), file.size()))
        return pictureRefusal(damagedPngReason(image));
    if (image.width != std::uint32_t(width) || image.height != std::uint32_t(height)) {
        std::string reason = sizeReason(image.width, image.height, width, height);
        png_image_free(&image);
        return pictureRefusal(std::move(reason));
    }
    image.format = PNG_FORMAT_RGBA;
    RgbaPicture picture{width, height, Bytes(PNG_IMAGE_SIZE(image))};
    if (!png_image_finish_read(&image, nullptr, picture.rgba.data(), 0, nullptr))
        return pictureRefusal(damagedPngReason(image));
    return picture;
}

}  // namespace

std::string unreadableReason(const fs::path& path) {
    std::error_code ec;
    return fs::exists(path, ec) ? "the file cannot be read" : "there is no such file";
}

bool isPngFile(std::span<const std::uint8_t> file) {
    return file.size() >= kPngSignature.size() && std::equal(kPngSignature.begin(), kPngSignature.end(), file.begin());
}

std::string withThousands(std::uint64_t value) {
    std::string digits = std::to_string(value);
    for (std::size_t i = digits.size(); i > 3; i -= 3) digits.insert(i - 3, ",");
    return digits;
}

std::string depthReason(int bitsPerPixel, std::string_view needed) {
    return std::to_string(bitsPerPixel) + "-bit colour; Tarvel needs " + std::string(needed);
}

std::string compressionReason(std::uint32_t compression) {
    auto named = std::find_if(std::begin(kCompressionNames), std::end(kCompressionNames),
                              [&](const CompressionName& c) { return c.id == compression; });
    const std::string what = named != std::end(kCompressionNames) ? "compressed (" + std::string(named->name) + ")"
                                                                  : "compression type " + withThousands(compression);
    return what + "; Tarvel reads uncompressed bitmaps";
}

std::string sizeReason(long long width, long long height, int expectedWidth, int expectedHeight) {
    std::string reason = std::to_string(width) + " x " + std::to_string(height) + " pixels; ";
    const std::string expected = std::to_string(expectedWidth) + " x " + std::to_string(expectedHeight);
    for (const SizeName& s : kPictureSizeNames)
        if (s.width == expectedWidth && s.height == expectedHeight) return reason + std::string(s.name) + " is " + expected;
    return reason + "Tarvel needs " + expected + " here";
}

std::string paletteSizeReason(std::uint32_t coloursUsed) {
    return "the header names " + withThousands(coloursUsed) + " palette colours; an 8-bit bitmap has at most 256";
}

std::string pixelOffsetReason(std::uint32_t pixelOffset) {
    return "the pixel rows start at byte " + withThousands(pixelOffset) + ", inside the header";
}

std::string endsInsideReason(std::size_t fileSize, std::string_view where) {
    return "the file ends at byte " + withThousands(fileSize) + " inside " + std::string(where);
}

Message refusalMessage(std::string reason) { return Message{MessageId::CouldntLoadBitmap, {}, std::move(reason)}; }
Failure pictureRefusal(std::string reason) { return fail(refusalMessage(std::move(reason))); }

Message namedRefusal(const fs::path& path, Message refusal) {
    refusal.detail = path.filename().string() + ": " + refusal.detail;
    return refusal;
}

Result<BmpHeader> readBmpHeader(std::span<const std::uint8_t> file) {
    ByteReader in(file);
    if (in.u16() != kBitmapSignature) return pictureRefusal("not a BMP file");
    BmpHeader header;
    in.skip(8);   // file size, reserved words
    header.pixelOffset = in.u32();
    header.infoSize = in.u32();
    header.width = std::int32_t(in.u32());
    header.height = std::int32_t(in.u32());
    in.u16();     // planes
    header.bitsPerPixel = in.u16();
    header.compression = in.u32();
    in.skip(12);  // image size, resolutions
    header.coloursUsed = in.u32();
    if (!in.ok()) return pictureRefusal(endsInsideReason(file.size(), "its header"));
    if (header.infoSize < kBitmapInfoHeaderSize)
        return pictureRefusal("an information header of " + withThousands(header.infoSize) +
                              " bytes; Tarvel reads Windows bitmaps, whose header has 40 bytes or more");
    return header;
}

PictureProbe probePicture(std::span<const std::uint8_t> head) {
    auto clampSide = [](long long side) { return int(std::clamp<long long>(side, 0, 1 << 30)); };
    ByteReader in(head);
    if (isPngFile(head)) {
        // The first chunk is IHDR: width and height, big-endian.
        in.seek(16);
        auto size = in.view(8);
        if (!in.ok()) return {PictureFormat::Png};
        auto bigEndian = [&](std::size_t at) {
            return clampSide(std::uint32_t(size[at]) << 24 | std::uint32_t(size[at + 1]) << 16 |
                             std::uint32_t(size[at + 2]) << 8 | size[at + 3]);
        };
        return {PictureFormat::Png, 0, bigEndian(0), bigEndian(4)};
    }
    if (in.u16() != kBitmapSignature) return {};
    in.seek(18);
    const std::int32_t width = std::int32_t(in.u32());
    const std::int32_t height = std::int32_t(in.u32());
    in.u16();   // planes
    const int bits = in.u16();
    if (!in.ok()) return {PictureFormat::Bmp};
    return {PictureFormat::Bmp, bits, clampSide(width), clampSide(rowCount(height))};
}

bool isTrueColour(const PictureProbe& probe) {
    return probe.format == PictureFormat::Png ||
           (probe.format == PictureFormat::Bmp && (probe.bitsPerPixel == 24 || probe.bitsPerPixel == 32));
}

PictureProbe probePictureFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::array<std::uint8_t, kProbeBytes> head{};
    in.read(reinterpret_cast<char*>(head.data()), std::streamsize(head.size()));
    return probePicture(std::span(head).first(std::size_t(std::max<std::streamsize>(in.gcount(), 0))));
}

Result<RgbaPicture> decodeRgbaPicture(std::span<const std::uint8_t> file, int width, int height) {
    if (!sizeAcceptable(width, height)) return pictureRefusal(sizeReason(width, height, width, height));
    if (isPngFile(file)) return decodePng(file, width, height);
    auto header = readBmpHeader(file);
    if (!header) return fail(header.error());
    return decodeBmp(file, *header, width, height);
}

Result<RgbaPicture> LoadRgbaPicture(const fs::path& path, int width, int height) {
    auto refuse = [&](std::string reason) { return fail(namedRefusal(path, refusalMessage(std::move(reason)))); };
    std::error_code ec;
    const std::uintmax_t size = fs::file_size(path, ec);
    if (ec) return refuse(unreadableReason(path));
    if (size > kPictureFileMaxBytes)
        return refuse("the file has " + withThousands(size) + " bytes, far more than a picture Tarvel takes");
    auto bytes = readWholeFile(path);
    if (!bytes) return refuse(unreadableReason(path));
    auto picture = decodeRgbaPicture(*bytes, width, height);
    if (!picture) return fail(namedRefusal(path, picture.error()));
    return picture;
}

}  // namespace tarvel
