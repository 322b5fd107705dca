#pragma once
// Shared helpers of the game access tests.

#include "carset/CarSet.h"
#include "common/Progress.h"
#include "fixtures/GameFixture.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tarvel::test {

inline std::uint16_t u16At(const Bytes& data, std::size_t offset) {
    return std::uint16_t(data.at(offset) | (data.at(offset + 1) << 8));
}

// Records what the transfer shows and aborts once a chosen category began.
class RecordingProgress : public Progress {
public:
    std::vector<std::string> categories;
    std::vector<std::string> files;
    std::string abortAfter;   // abort as soon as this category has started
    bool abortNow = false;

    void setCategory(std::string_view label) override {
        categories.emplace_back(label);
        if (!abortAfter.empty() && label == abortAfter) abortNow = true;
    }
    void setFile(std::string_view name) override { files.emplace_back(name); }
    bool aborted() override { return abortNow; }
};

}  // namespace tarvel::test
