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
    RgbaPicture p{width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int k = 0; k < 4; ++k) p.rgba.push_back(std::uint8_t(colour(x, y) >> (24 - 8 * k)));
    return p;
}

// The picture as a 24- or 32-bit BMP, rows bottom-up or top-down; with bit
// fields a 108-byte header whose masks put red lowest and alpha highest.
inline Bytes trueColourBmp(const RgbaPicture& p, int bits, bool topDown = false, bool bitFields = false) {
    const std::uint32_t infoSize = bitFields ? 108 : 40, bytes = std::uint32_t(bits / 8);
    const std::uint32_t stride = (std::uint32_t(p.width) * bytes + 3) & ~3u;
    ByteWriter w;
    w.u16(kBitmapSignature);
    for (std::uint32_t v : {14 + infoSize + stride * std::uint32_t(p.height), 0u, 14 + infoSize, infoSize, std::uint32_t(p.width),
                            std::uint32_t(topDown ? -p.height : p.height)})
        w.u32(v);
    w.u16(1);
    w.u16(std::uint16_t(bits));
    w.u32(bitFields ? 3 : 0);
    w.zeros(20);
    if (bitFields) for (std::uint32_t mask : {0xFFu, 0xFF00u, 0xFF0000u, 0xFF000000u}) w.u32(mask);
    w.zeros(14 + infoSize - w.size());
    for (int r = 0; r < p.height; ++r) {
        for (int x = 0; x < p.width; ++x) {
            const std::uint8_t* c = p.at(x, topDown ? r : p.height - 1 - r);
            const std::uint8_t bgrx[] = {c[2], c[1], c[0], 0};
            w.bytes(bitFields ? c : bgrx, bytes);
        }
        w.zeros(stride - std::uint32_t(p.width) * bytes);
    }
    return std::move(w.data());
}

// The picture as an 8-bit RGBA PNG, written by libpng.
inline Bytes pngFile(const RgbaPicture& p) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = std::uint32_t(p.width);
    image.height = std::uint32_t(p.height);
    image.format = PNG_FORMAT_RGBA;
    png_alloc_size_t size = 0;
    png_image_write_get_memory_size(image, size, 0, p.rgba.data(), 0, nullptr);
    Bytes out(size);
    png_image_write_to_memory(&image, out.data(), &size, 0, p.rgba.data(), 0, nullptr);
    return out;
}

}  // namespace tarvel::test
