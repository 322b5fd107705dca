#include "common/Config.h"
#include "common/FileIO.h"
#include "common/IniFile.h"
#include "fixtures/GameFixture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

namespace tarvel {
namespace {
namespace fs = std::filesystem;

class IniTest : public ::testing::Test {
protected:
    void write(const std::string& text) {
        std::ofstream out(path_, std::ios::binary);
        out << text;
    }
    std::string contents() const {
        std::ifstream in(path_, std::ios::binary);
        std::stringstream s;
        s << in.rdbuf();
        return s.str();
    }

    test::TempFolder temp_{"ini"};
    fs::path path_ = temp_.path() / "tarvel32.ini";
};

TEST_F(IniTest, SectionsAndKeysIgnoreCaseAndBlanks) {
    write("[files]\nlocate gp2.exe = C:\\GP2\\ \n[CONFIG]\n  Mosaic=2\n");
    IniFile ini(path_);
    EXPECT_EQ(ini.getString("Files", "Locate GP2.EXE", "X"), "C:\\GP2\\");
    EXPECT_EQ(ini.getInt("Config", "MOSAIC", 3), 2);
    EXPECT_TRUE(ini.hasKey("config", "mosaic"));
    EXPECT_FALSE(ini.hasKey("Files", "Mosaic"));   // keys belong to their section
    EXPECT_EQ(ini.getString("Files", "Mosaic", "none"), "none");
}

TEST_F(IniTest, IntegersAndStringsReadLikeTheProfileReader) {
    write("[C]\nA=12abc\nB=abc\nC=  -7\nD=+5\nE=\nF=0x10\nG=4294967297\n"
          "[S]\nA=\"  quoted \"\nB='single'\nC=\"unbalanced\nD=  in side  \n");
    IniFile ini(path_);
    const std::pair<const char*, int> integers[] = {
        {"A", 12}, {"B", 0}, {"C", -7}, {"D", 5},
        {"E", 99},        // empty value: the default
        {"F", 0},         // no hexadecimal
        {"G", 1},         // 32-bit wrap
        {"Missing", 99}};
    for (auto [key, value] : integers) EXPECT_EQ(ini.getInt("C", key, 99), value) << key;
    EXPECT_EQ(ini.getInt("NoSection", "A", -3), -3);
    const std::pair<const char*, const char*> strings[] = {
        {"A", "  quoted "}, {"B", "single"}, {"C", "\"unbalanced"}, {"D", "in side"}, {"E", "dflt"}};
    for (auto [key, value] : strings) EXPECT_EQ(ini.getString("S", key, "dflt"), value) << key;
}

TEST_F(IniTest, WritingAKeyKeepsEveryOtherLine) {
    const std::string original =
        "; Tarvel settings\r\n[Files]\r\nLocate GP2.EXE=X\r\n\r\n[Config]\r\nmosaic=1\r\nUnknown = kept  \r\n"
        "; trailing comment\r\n\r\n[CarViewer]\r\nZoom=5\r\n";
    write(original);
    IniFile ini(path_);
    ASSERT_TRUE(ini.setInt("CONFIG", "Mosaic", 4));
    std::string expected = original;
    expected.replace(expected.find("mosaic=1"), 8, "mosaic=4");
    EXPECT_EQ(contents(), expected);

    // A new key goes after the section's last non-blank line, with the file's line ending.
    ASSERT_TRUE(ini.setString("Config", "TeamSwap", "1"));
    expected.insert(expected.find("\r\n\r\n[CarViewer]") + 2, "TeamSwap=1\r\n");
    EXPECT_EQ(contents(), expected);
    IniFile reread(path_);
    EXPECT_EQ(reread.getInt("Config", "TeamSwap", 0), 1);
    EXPECT_EQ(reread.getInt("CarViewer", "Zoom", 0), 5);
}

TEST_F(IniTest, MissingFileAndSectionAreCreated) {
    IniFile ini(path_);
    EXPECT_FALSE(fs::exists(path_));
    EXPECT_EQ(ini.getInt("Config", "Mosaic", 3), 3);
    ASSERT_TRUE(ini.setInt("Config", "Mosaic", 2));
    ASSERT_TRUE(ini.setString("Files", "AutoFile", "a.GP2"));
    EXPECT_EQ(contents(), "[Config]\nMosaic=2\n[Files]\nAutoFile=a.GP2\n");

    // A last line without a terminator is ended before a new section follows.
    write("[A]\nk=1");
    IniFile other(path_);
    ASSERT_TRUE(other.setString("B", "k", "2"));
    EXPECT_EQ(contents(), "[A]\nk=1\n[B]\nk=2\n");
}

TEST_F(IniTest, KeysCanBeDeleted) {
    write("[Files]\nAutoFile=x.GP2\nLocate GP2.EXE=/g/\n");
    IniFile ini(path_);
    ASSERT_TRUE(ini.deleteKey("files", "AUTOFILE"));
    EXPECT_EQ(contents(), "[Files]\nLocate GP2.EXE=/g/\n");
    EXPECT_FALSE(ini.hasKey("Files", "AutoFile"));
    EXPECT_TRUE(ini.deleteKey("Files", "AutoFile"));   // already gone: nothing to do
    EXPECT_TRUE(ini.deleteKey("Nowhere", "AutoFile"));
    EXPECT_EQ(contents(), "[Files]\nLocate GP2.EXE=/g/\n");
}

TEST_F(IniTest, OverridesAreReadButNeverWritten) {
    write("[Config]\nClearJam=1\n[Files]\nLocate GP2.EXE=/a/\n");
    IniFile ini(path_);
    ini.setOverride("clearjam", "0");
    ini.setOverride("Locate GP2.EXE", "/b/");
    EXPECT_EQ(ini.getInt("Config", "ClearJam", 1), 0);
    EXPECT_EQ(ini.getString("Files", "Locate GP2.EXE", "X"), "/b/");
    EXPECT_FALSE(ini.hasKey("Files", "ClearJam"));
    ASSERT_TRUE(ini.setInt("Config", "Mosaic", 1));
    EXPECT_EQ(contents(), "[Config]\nClearJam=1\nMosaic=1\n[Files]\nLocate GP2.EXE=/a/\n");
}

TEST_F(IniTest, WritesSeeChangesMadeByAnotherProcess) {
    IniFile first(path_);
    IniFile second(path_);
    ASSERT_TRUE(first.setInt("Config", "A", 1));
    ASSERT_TRUE(second.setInt("Config", "B", 2));   // must not lose A
    IniFile check(path_);
    EXPECT_EQ(check.getInt("Config", "A", 0), 1);
    EXPECT_EQ(check.getInt("Config", "B", 0), 2);
}

// The 0/1 settings in the order CheckSum, NiceGrid, HighGrip, ClearJam, FixGreen,
// FixStrip, GP2Palette, ShowInfo, SoftenMenu, TeamSwap.
std::array<bool, 10> flags(const Config& c) {
    return {c.checkSum, c.niceGrid, c.highGrip, c.clearJam, c.fixGreen, c.fixStrip, c.gp2Palette, c.showInfo, c.softenMenu, c.teamSwap};
}

TEST_F(IniTest, ConfigDefaultsWhenTheFileIsMissing) {
    const Config c = readConfig(IniFile(path_));
    EXPECT_EQ(flags(c), (std::array<bool, 10>{true, true, false, true, false, true, false, true, false, false}));
    EXPECT_EQ(c.mosaic, 3);
    EXPECT_EQ(c.gameFolder + c.autoFile + c.launchCommand, "");
}

TEST_F(IniTest, ConfigReadsStoredValues) {
    write("[Files]\nLocate GP2.EXE=X\nAutoFile=x\n[Config]\nMosaic=9\nCheckSum=0\nHighGrip=1\nShowInfo=0\n"
          "GP2Palette=1\nLaunchCommand=dosbox \"%s\"\n");
    Config c = readConfig(IniFile(path_));
    EXPECT_EQ(c.gameFolder, "");      // "X" is not set
    EXPECT_EQ(c.autoFile, "");        // "x" is "X" without regard to case
    EXPECT_EQ(c.mosaic, 4);
    EXPECT_EQ(flags(c), (std::array<bool, 10>{false, true, true, true, false, true, true, false, false, false}));
    EXPECT_EQ(c.launchCommand, "dosbox \"%s\"");

    write("[Files]\nLocate GP2.EXE=/games/gp2\nAutoFile=/sets/a.GP2\n[Config]\nMosaic=-2\n");
    c = readConfig(IniFile(path_));
    EXPECT_EQ(c.gameFolder, "/games/gp2/");
    EXPECT_EQ(c.autoFile, "/sets/a.GP2");
    EXPECT_EQ(c.mosaic, 0);

    write("[Files]\nLocate GP2.EXE=C:\\GP2\\\n[Config]\nMosaic=0\n");
    c = readConfig(IniFile(path_));
    EXPECT_EQ(c.gameFolder, "C:\\GP2\\");
    EXPECT_EQ(c.mosaic, 0);
}

TEST_F(IniTest, WriteConfigWritesEveryKeyButShowInfoAndAutoFile) {
    write("[Files]\nAutoFile=/keep.GP2\n[Config]\nShowInfo=0\n");
    IniFile ini(path_);
    Config c = readConfig(ini);
    c.gameFolder = "/games/gp2/";
    c.mosaic = 1;
    c.niceGrid = false;
    c.showInfo = true;
    c.autoFile = "/other.GP2";
    c.launchCommand = "run %s";
    ASSERT_TRUE(writeConfig(ini, c));

    IniFile reread(path_);
    for (const char* key : {"CheckSum", "NiceGrid", "HighGrip", "ClearJam", "FixGreen", "FixStrip", "GP2Palette",
                            "Mosaic", "SoftenMenu", "TeamSwap", "LaunchCommand"})
        EXPECT_TRUE(reread.hasKey("Config", key)) << key;
    EXPECT_EQ(reread.getInt("Config", "ShowInfo", 1), 0);
    EXPECT_EQ(reread.getString("Files", "AutoFile", ""), "/keep.GP2");
    Config back = readConfig(reread);
    EXPECT_EQ(back.gameFolder, "/games/gp2/");
    EXPECT_EQ(back.mosaic, 1);
    EXPECT_FALSE(back.niceGrid);
    EXPECT_EQ(back.launchCommand, "run %s");

    c.gameFolder.clear();
    ASSERT_TRUE(writeConfig(ini, c));
    EXPECT_EQ(IniFile(path_).getString("Files", "Locate GP2.EXE", ""), "X");

    // A file that cannot be written is reported by its name.
    const fs::path unwritable = temp_.path() / "missing" / "tarvel32.ini";
    IniFile blocked(unwritable);
    auto failed = writeConfig(blocked, c);
    ASSERT_FALSE(failed);
    EXPECT_EQ(failed.error().id, MessageId::CouldntWriteFile);
    EXPECT_EQ(failed.error().arg, unwritable.string());
}

TEST(ConfigPath, EnvironmentDecidesTheLocation) {
    auto keep = [](const char* name) {
        const char* v = std::getenv(name);
        return v ? std::optional<std::string>(v) : std::nullopt;
    };
    auto restore = [](const char* name, const std::optional<std::string>& v) {
        if (v) setenv(name, v->c_str(), 1);
        else unsetenv(name);
    };
    auto config = keep("TARVEL_CONFIG"), xdg = keep("XDG_CONFIG_HOME"), home = keep("HOME");
    setenv("TARVEL_CONFIG", "/tmp/x/my.ini", 1);
    EXPECT_EQ(defaultConfigPath(), fs::path("/tmp/x/my.ini"));
    unsetenv("TARVEL_CONFIG");
    setenv("XDG_CONFIG_HOME", "/cfg", 1);
    EXPECT_EQ(defaultConfigPath(), fs::path("/cfg/tarvel32.ini"));
    unsetenv("XDG_CONFIG_HOME");
    setenv("HOME", "/home/u", 1);
    EXPECT_EQ(defaultConfigPath(), fs::path("/home/u/.config/tarvel32.ini"));
    restore("TARVEL_CONFIG", config);
    restore("XDG_CONFIG_HOME", xdg);
    restore("HOME", home);
}

}  // namespace
}  // namespace tarvel
