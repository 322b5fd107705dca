#include "common/FileIO.h"
#include "common/IniFile.h"
#include "common/WindowPlacement.h"
#include "fixtures/GameFixture.h"

#include <gtest/gtest.h>

namespace tarvel {
namespace {

TEST(WindowPlacement, FitsASavedRectangleOntoTheScreen) {
    const WindowRect screen{0, 0, 1600, 1000};
    const WindowRect right{1920, 0, 1280, 1024};     // a second monitor beside the first
    const WindowRect above{-300, -1080, 1920, 1080};  // one above and to the left of the first
    struct Case {
        const char* what;
        WindowRect saved;
        WindowRect screen;
        WindowRect fitted;
    };
    const Case cases[] = {
        {"inside", {100, 50, 640, 480}, screen, {100, 50, 640, 480}},
        {"the same size", {0, 0, 1600, 1000}, screen, {0, 0, 1600, 1000}},
        {"larger than the screen", {-20, -20, 2560, 1440}, screen, {0, 0, 1600, 1000}},
        {"wider only, at the right", {900, 100, 1800, 500}, screen, {0, 100, 1600, 500}},
        {"off screen to the left", {-3000, 200, 640, 480}, screen, {0, 200, 640, 480}},
        {"off screen to the right", {5000, 200, 640, 480}, screen, {960, 200, 640, 480}},
        {"off screen above", {300, -900, 640, 480}, screen, {300, 0, 640, 480}},
        {"off screen below", {300, 4000, 640, 480}, screen, {300, 520, 640, 480}},
        {"partly off to the right and below", {1400, 900, 640, 480}, screen, {960, 520, 640, 480}},
        {"partly off to the left", {-100, 10, 640, 480}, screen, {0, 10, 640, 480}},
        {"on a monitor that is gone", {100, 100, 800, 600}, right, {1920, 100, 800, 600}},
        {"inside a monitor at an offset", {2000, 50, 800, 600}, right, {2000, 50, 800, 600}},
        {"larger than a monitor at an offset", {2000, 50, 1600, 1200}, right, {1920, 0, 1280, 1024}},
        {"on a monitor with a negative origin", {100, 100, 800, 600}, above, {100, -600, 800, 600}},
        {"no screen", {10, 20, 30, 40}, {}, {10, 20, 30, 40}},
    };
    for (const Case& c : cases) EXPECT_EQ(fitOnScreen(c.saved, c.screen), c.fitted) << c.what;
}

class WindowPlacementIni : public ::testing::Test {
protected:
    void write(const std::string& text) { test::writeFileBytes(path_, Bytes(text.begin(), text.end())); }
    test::TempFolder temp_{"placement"};
    std::filesystem::path path_ = temp_.path() / "tarvel32.ini";
};

// Written and read back beside the other sections, negative positions included.
TEST_F(WindowPlacementIni, RoundTripKeepsTheOtherSections) {
    write("[Config]\r\nMosaic=2\r\n");
    const WindowPlacement placements[] = {
        {-1280, -40, 900, 640, true, 13},
        {30, 20, 614, 424, false, 0},
    };
    for (const WindowPlacement& placement : placements) {
        IniFile ini(path_);
        ASSERT_TRUE(writeWindowPlacement(ini, placement));
        EXPECT_EQ(readWindowPlacement(IniFile(path_)), placement);
    }
    EXPECT_EQ(IniFile(path_).getInt("Config", "Mosaic", 0), 2);
}

TEST_F(WindowPlacementIni, IncompleteOrEmptyRectanglesAreNoPlacement) {
    struct Case {
        const char* text;
        std::optional<WindowPlacement> read;
    };
    const Case cases[] = {
        {"", std::nullopt},
        {"[Window]\nLeft=1\nTop=2\nWidth=300\n", std::nullopt},
        {"[Window]\nLeft=1\nTop=2\nWidth=300\nHeight=0\n", std::nullopt},
        {"[Window]\nLeft=1\nTop=2\nWidth=-5\nHeight=200\n", std::nullopt},
        {"[window]\nleft=1\ntop=2\nwidth=300\nheight=200\n", WindowPlacement{1, 2, 300, 200, false, 0}},
        {"[Window]\nLeft=1\nTop=2\nWidth=300\nHeight=200\nMaximized=1\nTeam=40\n",
         WindowPlacement{1, 2, 300, 200, true, 40}},
    };
    for (const Case& c : cases) {
        write(c.text);
        EXPECT_EQ(readWindowPlacement(IniFile(path_)), c.read) << c.text;
    }
}

TEST_F(WindowPlacementIni, AnUnwritableFileIsNamed) {
    IniFile ini(temp_.path() / "missing" / "tarvel32.ini");
    const Status written = writeWindowPlacement(ini, WindowPlacement{0, 0, 100, 100, false, 0});
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().id, MessageId::CouldntWriteFile);
    EXPECT_EQ(written.error().arg, (temp_.path() / "missing" / "tarvel32.ini").string());
}

}  // namespace
}  // namespace tarvel
