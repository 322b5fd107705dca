#include "common/IniFile.h"
#include "common/WindowPlacement.h"
#include "fixtures/GameFixture.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tarvel {
namespace {

TEST(WindowPlacement, FitsASavedRectangleOntoTheScreen) {
    const WindowRect screen{0, 0, 1600, 1000}, second{1920, -200, 1280, 1024};   // a monitor at an offset
    const struct {
        WindowRect saved, screen, fitted;
    } cases[] = {
        {{0, 0, 1600, 1000}, screen, {0, 0, 1600, 1000}},           // the same size
        {{-20, 30, 2560, 1440}, screen, {0, 0, 1600, 1000}},        // larger
        {{-3000, 200, 640, 480}, screen, {0, 200, 640, 480}},       // off to the left
        {{5000, 200, 640, 480}, screen, {960, 200, 640, 480}},      // off to the right
        {{300, -900, 640, 480}, screen, {300, 0, 640, 480}},        // off above
        {{300, 4000, 640, 480}, screen, {300, 520, 640, 480}},      // off below
        {{1400, 900, 640, 480}, screen, {960, 520, 640, 480}},      // partly off
        {{100, 100, 800, 600}, second, {1920, 100, 800, 600}},      // from a monitor that is gone
        {{2000, -900, 1600, 600}, second, {1920, -200, 1280, 600}},
    };
    for (const auto& c : cases) EXPECT_EQ(fitOnScreen(c.saved, c.screen), c.fitted) << c.saved.x << "," << c.saved.y;
}

// Written beside the other sections and read back; an incomplete or empty rectangle is none.
TEST(WindowPlacement, KeptInSectionWindow) {
    test::TempFolder temp("placement");
    const auto path = temp.path() / "tarvel32.ini";
    std::ofstream(path) << "[Config]\r\nMosaic=2\r\n";
    const WindowPlacement placements[] = {{-1280, -40, 900, 640, true, 13}, {0, 0, 9, 9, false, 0}};
    for (const WindowPlacement& placement : placements) {
        IniFile ini(path);
        ASSERT_TRUE(writeWindowPlacement(ini, placement));
        EXPECT_EQ(readWindowPlacement(IniFile(path)), placement);
    }
    EXPECT_EQ(IniFile(path).getInt("Config", "Mosaic", 0), 2);
    for (const char* text : {"", "[Window]\nLeft=1\nTop=2\nWidth=300\n", "[Window]\nLeft=1\nTop=2\nWidth=3\nHeight=0\n"}) {
        std::ofstream(path, std::ios::trunc) << text;
        EXPECT_EQ(readWindowPlacement(IniFile(path)), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace tarvel
