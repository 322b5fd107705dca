#include "graphics/MosaicReveal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace tarvel::test {
namespace {

TEST(MosaicReveal, OrderIsTheColumnMajorListShuffledBySwaps) {
    for (int block = 1; block <= 4; ++block) {
        Rand rand(5), replay(5);
        const auto order = mosaicOrder(block, rand);
        std::array<int, 100> index{};
        for (int k = 0; k < 100; ++k) index[std::size_t(k)] = k;
        for (int k = 0; k < 100; ++k) std::swap(index[std::size_t(k)], index[std::size_t(replay() % 100)]);
        for (int k = 0; k < 100; ++k)
            EXPECT_EQ(order[std::size_t(k)], (MosaicOffset{block * (index[std::size_t(k)] / 10), block * (index[std::size_t(k)] % 10)}))
                << "block " << block << " step " << k;
    }
}

TEST(MosaicReveal, AllStepsTogetherCopyEveryPixelAndHalfOfThemDoNot) {
    constexpr int width = 256, height = 164;
    std::vector<std::uint8_t> source(width * height);
    for (std::size_t i = 0; i < source.size(); ++i) source[i] = std::uint8_t(1 + i % 250);
    for (int block = 1; block <= 4; ++block) {
        std::vector<std::uint8_t> target(source.size(), 0);
        Rand rand(9);
        const auto order = mosaicOrder(block, rand);
        for (int k = 0; k < 50; ++k) copyMosaicStep(source, target, width, height, block, order[std::size_t(k)]);
        EXPECT_NE(target, source) << block;
        for (int k = 50; k < 100; ++k) copyMosaicStep(source, target, width, height, block, order[std::size_t(k)]);
        EXPECT_EQ(target, source) << block;
    }
}

TEST(MosaicReveal, OneStepCopiesOnlyItsClippedBlocks) {
    struct Case {
        std::size_t targetSize;
        int block;
        MosaicOffset offset;
        std::vector<int> copied;   // y * 25 + x of every pixel copied
    };
    const Case cases[] = {
        // Blocks at x 18-19 (38 lies outside), y 0-1 and 20-21.
        {625, 2, {18, 0}, {18, 19, 43, 44, 518, 519, 543, 544}},
        // Clipped at the right and bottom edges: x 24, y 24.
        {625, 2, {4, 4}, {104, 105, 124, 129, 130, 149, 604, 605, 624}},
        {10, 2, {0, 0}, {}},    // target too small
        {625, 0, {0, 0}, {}},   // block 0
    };
    for (const Case& c : cases) {
        std::vector<std::uint8_t> source(625, 7), target(c.targetSize, 0);
        copyMosaicStep(source, target, 25, 25, c.block, c.offset);
        std::vector<int> copied;
        for (std::size_t i = 0; i < target.size(); ++i)
            if (target[i]) copied.push_back(int(i));
        EXPECT_EQ(copied, c.copied) << c.offset.x << "," << c.offset.y;
    }
}

TEST(MosaicReveal, BlockSizeIsTheSettingClampedToZeroToFour) {
    const std::pair<int, int> cases[] = {{-3, 0}, {0, 0}, {1, 1}, {4, 4}, {9, 4}};
    for (auto [setting, block] : cases) EXPECT_EQ(mosaicBlockSize(setting), block) << setting;
}

}  // namespace
}  // namespace tarvel::test
