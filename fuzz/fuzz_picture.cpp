// Picture reading for mapping: arbitrary bytes as a BMP or PNG of the size its
// header names (kept small), mapped to the game palette with and without
// dithering; and the 8-bit reader with its reasons at the same size.
#include "graphics/Bitmap.h"
#include "graphics/PaletteMapping.h"
#include "graphics/PictureFile.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr int kLargestSide = 300;
    std::span<const std::uint8_t> bytes(data, size);
    const tarvel::PictureProbe probe = tarvel::probePicture(bytes);
    const int width = std::clamp(probe.width, 1, kLargestSide);
    const int height = std::clamp(probe.height, 1, kLargestSide);
    auto picture = tarvel::decodeRgbaPicture(bytes, width, height);
    if (picture) {
        if (picture->rgba.size() != 4 * std::size_t(width) * std::size_t(height)) __builtin_trap();
        for (bool dither : {false, true}) {
            const tarvel::BitmapBuffer mapped = tarvel::mapToPalette(*picture, tarvel::PicturePalette::Game, dither);
            if (!mapped.valid()) __builtin_trap();
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) {
                    const int index = mapped.topRow(y)[x];
                    if (index != 0 && !tarvel::mappingMayChoose(tarvel::PicturePalette::Game, index)) __builtin_trap();
                }
        }
    } else if (picture.error().detail.empty()) {
        __builtin_trap();   // every refusal says why
    }
    auto eightBit = tarvel::decodeBitmap8(bytes, width, height);
    if (!eightBit && eightBit.error().detail.empty()) __builtin_trap();
    return 0;
}
