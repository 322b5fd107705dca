// The recent car sets: order, duplicates, the bound of ten, the configuration
// file, and the shortened paths the menu shows.

#include "common/IniFile.h"
#include "common/RecentFiles.h"
#include "fixtures/GameFixture.h"

#include <gtest/gtest.h>

namespace tarvel {
namespace {

TEST(RecentFiles, NewestFirstWithoutDuplicatesAndAtMostTen) {
    std::vector<std::string> files;
    for (int i = 1; i <= 12; ++i) files = withRecentFile(files, "/sets/" + std::to_string(i) + ".GP2");
    ASSERT_EQ(files.size(), kRecentFilesMax);
    EXPECT_EQ(files.front(), "/sets/12.GP2");
    EXPECT_EQ(files.back(), "/sets/3.GP2");
    // Opening one again moves it to the front; the rest keep their order.
    files = withRecentFile(files, "/sets/7.GP2");
    EXPECT_EQ(files.size(), kRecentFilesMax);
    EXPECT_EQ((std::vector<std::string>{files[0], files[1], files[5], files[6]}),
              (std::vector<std::string>{"/sets/7.GP2", "/sets/12.GP2", "/sets/8.GP2", "/sets/6.GP2"}));
    files = withoutRecentFile(files, "/sets/12.GP2");
    EXPECT_EQ(files.size(), kRecentFilesMax - 1);
    EXPECT_EQ(files[1], "/sets/11.GP2");

    // The list survives the configuration file; a shorter list removes the keys it no longer has.
    test::TempFolder folder("recent");
    IniFile ini(folder / "tarvel32.ini");
    ASSERT_TRUE(ini.setString("Recent Car Sets", "File5", "/sets/5.GP2"));   // a duplicate of a later write
    ASSERT_TRUE(writeRecentFiles(ini, files));
    EXPECT_EQ(readRecentFiles(IniFile(folder / "tarvel32.ini")), files);
    ASSERT_TRUE(writeRecentFiles(ini, {"/a.GP2", "/b.GP2"}));
    EXPECT_EQ(readRecentFiles(IniFile(folder / "tarvel32.ini")), (std::vector<std::string>{"/a.GP2", "/b.GP2"}));
    EXPECT_EQ(ini.getString("Recent Car Sets", "File3", "none"), "none");
}

TEST(RecentFiles, ShortenedPaths) {
    struct Case {
        const char* path;
        std::size_t max;
        const char* shown;
    };
    const Case cases[] = {
        {"/home/ann/sets/1997.GP2", 60, "~/sets/1997.GP2"},
        {"/home/anna/1997.GP2", 60, "/home/anna/1997.GP2"},   // not under the home folder
        {"/data/a/b/c/d/SEASON97.GP2", 24, "/data/.../d/SEASON97.GP2"},
        {"/home/ann/a/bb/ccc/dddd/SEASON97.GP2", 24, "~/.../dddd/SEASON97.GP2"},
        {"/x/AVERYLONGFILENAMEINDEED.GP2", 10, "/x/AVERYLONGFILENAMEINDEED.GP2"},   // the name stays whole
        {"C:\\Sets\\Old\\1996\\SEASON96.GP2", 20, "C:\\...\\SEASON96.GP2"},
    };
    for (const Case& c : cases) EXPECT_EQ(shortenedPath(c.path, "/home/ann", c.max), c.shown) << c.path;
}

}  // namespace
}  // namespace tarvel
