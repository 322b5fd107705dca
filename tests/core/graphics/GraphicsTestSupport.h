#pragma once
// Helpers shared by the graphics tests.

#include "common/Progress.h"
#include "fixtures/GameFixture.h"
#include "graphics/Bitmap.h"
#include "graphics/PictureFile.h"

#include <png.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace tarvel::test {

struct RecordingProgress : Progress {
    int beeps = 0;
    std::vector<std::string> files;
    std::vector<std::pair<int, int>> subImages, colours;
    void setFile(std::string_view name) override { files.emplace_back(name); }
    void setSubImage(int i, int n) override { subImages.emplace_back(i, n); }
    void setColours(int found, int max) override { colours.emplace_back(found, max); }
    void beep() override { ++beeps; }
};

struct ScratchFolder : TempFolder {
    ScratchFolder() : TempFolder("gfx") {}
};

inline std::uint8_t& pixelAt(BitmapBuffer& b, int x, int topRow) { return b.topRow(topRow)[x]; }
inline std::uint8_t pixelAt(const BitmapBuffer& b, int x, int topRow) { return b.topRow(topRow)[x]; }

// A picture whose pixel (x, y) is colour(x, y) as 0xRRGGBBAA.
template <class F>
RgbaPicture rgbaPicture(int width, int height, F colour) {
    RgbaPicture p{width, height, Bytes(4 * std::size_t(width) * std::size_t(height))};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const std::uint32_t c = colour(x, y);
            std::uint8_t* out = p.rgba.data() + 4 * (std::size_t(y) * std::size_t(width) + std::size_t(x));
            for (int k = 0; k < 4; ++k) out[k] = std::uint8_t(c >> (24 - 8 * k));
        }
    return p;
}

// The picture as a 24- or 32-bit BMP, rows bottom-up or top-down; with bit
// fields a 108-byte header whose masks put red lowest and alpha highest.
inline Bytes trueColourBmp(const RgbaPicture& p, int bits, bool topDown = false, bool bitFields = false) {
    const std::uint32_t infoSize = bitFields ? 108 : 40;
    const std::size_t stride = (std::size_t(p.width) * std::size_t(bits / 8) + 3) & ~std::size_t(3);
    ByteWriter w;
    w.u16(kBitmapSignature);
    w.u32(std::uint32_t(14 + infoSize + stride * std::size_t(p.height)));
    w.u32(0);
    w.u32(14 + infoSize);
    w.u32(infoSize);
    w.u32(std::uint32_t(p.width));
    w.u32(std::uint32_t(topDown ? -p.height : p.height));
    w.u16(1);
    w.u16(std::uint16_t(bits));
    w.u32(bitFields ? 3 : 0);
    w.zeros(20);
    if (bitFields) {
        for (std::uint32_t mask : {0x000000FFu, 0x0000FF00u, 0x00FF0000u, 0xFF000000u}) w.u32(mask);
        w.zeros(infoSize - 56);
    }
    for (int r = 0; r < p.height; ++r) {
        const int y = topDown ? r : p.height - 1 - r;
        for (int x = 0; x < p.width; ++x) {
            const std::uint8_t* c = p.at(x, y);
            if (bitFields) w.bytes(c, 4);
            else for (int k : {2, 1, 0}) w.u8(c[k]);
            if (bits == 32 && !bitFields) w.u8(0);
        }
        w.zeros(stride - std::size_t(p.width) * std::size_t(bits / 8));
    }
    return std::move(w.data());
}

// The picture as a PNG through libpng, in `format` (PNG_FORMAT_*: grey or
// colour, with or without alpha, 8 or 16 bits, colour-mapped), converted from
// its RGBA by libpng.
inline Bytes pngFile(const RgbaPicture& p, std::uint32_t format = PNG_FORMAT_RGBA) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = std::uint32_t(p.width);
    image.height = std::uint32_t(p.height);
    image.format = PNG_FORMAT_RGBA;
    // Convert through libpng's own reader: write RGBA, read back in the format, write that.
    png_alloc_size_t size = 0;
    png_image_write_get_memory_size(image, size, 0, p.rgba.data(), 0, nullptr);
    Bytes rgbaPng(size);
    png_image_write_to_memory(&image, rgbaPng.data(), &size, 0, p.rgba.data(), 0, nullptr);
    if (format == PNG_FORMAT_RGBA) return rgbaPng;
    png_image again{};
    again.version = PNG_IMAGE_VERSION;
    png_image_begin_read_from_memory(&again, rgbaPng.data(), size);
    again.format = format;
    Bytes samples(PNG_IMAGE_SIZE(again)), colourMap(PNG_IMAGE_COLORMAP_SIZE(again));
    png_image_finish_read(&again, nullptr, samples.data(), 0, colourMap.data());
    png_image_write_get_memory_size(again, size, 0, samples.data(), 0, colourMap.data());
    Bytes out(size);
    png_image_write_to_memory(&again, out.data(), &size, 0, samples.data(), 0, colourMap.data());
    out.resize(size);
    return out;
}

}  // namespace tarvel::test
