#pragma once
// Helpers shared by the graphics tests.

#include "common/Progress.h"
#include "fixtures/GameFixture.h"
#include "graphics/Bitmap.h"

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

}  // namespace tarvel::test
