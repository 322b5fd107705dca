#pragma once
// The program's own built-in pictures (drawn by resources/make_pictures.py),
// in the game palette, as bottom-up rows.

#include <cstdint>

namespace tarvel {

// 256 x 164, rows of 256.
extern const std::uint8_t kBuiltinLiveryPixels[256 * 164];
// 74 x 15, rows padded to 76.
extern const std::uint8_t kBuiltinHelmetPixels[76 * 15];

}  // namespace tarvel
