#pragma once
// Helpers shared by the graphics tests.

#include "common/Progress.h"
#include "graphics/Bitmap.h"

#include <cstdlib>
#include <filesystem>
#include <random>
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

// A fresh empty folder below the system's temporary folder, removed on destruction.
class ScratchFolder {
public:
    ScratchFolder() {
        static int counter = 0;
        path_ = std::filesystem::temp_directory_path() /
                ("tarvel-gfx-test-" + std::to_string(std::random_device{}()) + "-" + std::to_string(++counter));
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~ScratchFolder() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

inline std::uint8_t& pixelAt(BitmapBuffer& b, int x, int topRow) { return b.topRow(topRow)[x]; }
inline std::uint8_t pixelAt(const BitmapBuffer& b, int x, int topRow) { return b.topRow(topRow)[x]; }

}  // namespace tarvel::test
