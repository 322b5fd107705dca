// Bitmap file reading: arbitrary bytes as a bitmap file of a few expected sizes.
#include "graphics/Bitmap.h"

#include <cstddef>
#include <cstdint>
#include <span>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static constexpr int kSizes[][2] = {{256, 164}, {256, 180}, {74, 15}, {104, 104}, {3, 5}};
    std::span<const std::uint8_t> bytes(data, size);
    for (const auto& s : kSizes) {
        auto bitmap = tarvel::decodeBitmap8(bytes, s[0], s[1]);
        if (bitmap) {
            // A loaded bitmap must save again whole.
            auto encoded = tarvel::encodeBitmap8(*bitmap, {});
            if (encoded.size() != tarvel::kBitmapPixelOffset + bitmap->pixelBytes()) __builtin_trap();
        }
    }
    return 0;
}
