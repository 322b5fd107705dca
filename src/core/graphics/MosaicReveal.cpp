#include "graphics/MosaicReveal.h"

#include <algorithm>
#include <utility>

namespace tarvel {

int mosaicBlockSize(int setting) { return std::clamp(setting, 0, kMosaicMaxBlock); }

std::array<MosaicOffset, kMosaicSteps> mosaicOrder(int block, Rand& rand) {
    std::array<MosaicOffset, kMosaicSteps> order{};
    for (int i = 0; i < 10; ++i)
        for (int j = 0; j < 10; ++j) order[std::size_t(i * 10 + j)] = MosaicOffset{i * block, j * block};
    for (std::size_t k = 0; k < order.size(); ++k) std::swap(order[k], order[std::size_t(rand() % kMosaicSteps)]);
    return order;
}

void copyMosaicStep(std::span<const std::uint8_t> source, std::span<std::uint8_t> target, int width, int height,
                    int block, MosaicOffset offset) {
    if (block <= 0 || width <= 0 || height <= 0) return;
    const std::size_t needed = std::size_t(width) * std::size_t(height);
    if (source.size() < needed || target.size() < needed) return;
    const int stride = 10 * block;
    for (int by = offset.y; by < height; by += stride)
        for (int bx = offset.x; bx < width; bx += stride) {
            const int w = std::min(block, width - bx);
            const int h = std::min(block, height - by);
            for (int y = by; y < by + h; ++y) {
                const std::size_t at = std::size_t(y) * std::size_t(width) + std::size_t(bx);
                std::copy_n(source.begin() + std::ptrdiff_t(at), w, target.begin() + std::ptrdiff_t(at));
            }
        }
}

}  // namespace tarvel
