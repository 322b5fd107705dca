#pragma once
// The mosaic reveal of a car livery: the picture is copied to the screen in
// 100 shuffled steps of b x b blocks (b = the "Mosaic" setting, 1-4).

#include "common/Rand.h"

#include <array>
#include <cstdint>
#include <span>

namespace tarvel {

struct MosaicOffset {
    int x = 0;
    int y = 0;
    bool operator==(const MosaicOffset&) const = default;
};

constexpr int kMosaicSteps = 100;
constexpr int kMosaicMaxBlock = 4;

// The block size used for a "Mosaic" value read from the configuration:
// negative as 0 (off), 5 or more as 4.
int mosaicBlockSize(int setting);

// The offsets (i*b, j*b) for i = 0-9 and, within each i, j = 0-9, shuffled:
// for k = 0-99 entry k is swapped with entry (rand() % 100).
std::array<MosaicOffset, kMosaicSteps> mosaicOrder(int block, Rand& rand);

// Copies every block x block block of `source` whose position is `offset`
// plus a multiple of 10*block in x (below the width) and in y (below the
// height) into `target`. Both pictures are width x height bytes, rows in the
// same order; blocks at the edges are clipped.
void copyMosaicStep(std::span<const std::uint8_t> source, std::span<std::uint8_t> target, int width, int height,
                    int block, MosaicOffset offset);

}  // namespace tarvel
