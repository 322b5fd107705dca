#include "common/Config.h"
#include "common/FileIO.h"
#include "common/IniFile.h"
#include "fixtures/GameFixture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

namespace tarvel {
namespace {
namespace fs = std::filesystem;

class IniTest : public ::testing::Test {
protected:
    void write(const std::string& text) { test::writeFileBytes(path_, Bytes(text.begin(), text.end())); }
    std::string contents() const {
        Bytes b = test::readFileBytes(path_);
        return std::string(b.begin(), b.end());
    }
    test::TempFolder temp_{"ini"};
    fs::path path_ = temp_.path() / "tarvel32.ini";
};

// Sections and keys ignore case and blanks; integers and strings read like the
// profile reader: leading digits, sign, no hexadecimal, 32-bit wrap, quotes.
TEST_F(IniTest, ReadsLikeTheProfileReader) {
    write("[files]\nlocate gp2.exe = C:\\GP2\\ \n[C]\nA=12abc\nB=abc\nC=  -7\nD=+5\nE=\nF=0x10\nG=4294967297\n"
          "[S]\nA=\"  quoted \"\nB='single'\nC=\"unbalanced\nD=  in side  \n");
    IniFile ini(path_);
    EXPECT_EQ(ini.getString("Files", "Locate GP2.EXE", "X"), "C:\\GP2\\");
    EXPECT_TRUE(ini.hasKey("c", "a"));
    EXPECT_FALSE(ini.hasKey("Files", "A"));   // keys belong to their section
    const std::pair<const char*, int> integers[] = {{"A", 12}, {"B", 0}, {"C", -7}, {"D", 5}, {"E", 99}, {"F", 0}, {"G", 1}, {"Missing", 99}};
    for (auto [key, value] : integers) EXPECT_EQ(ini.getInt("C", key, 99), value) << key;
    EXPECT_EQ(ini.getInt("NoSection", "A", -3), -3);
    const std::pair<const char*, const char*> strings[] = {{"A", "  quoted "}, {"B", "single"}, {"C", "\"unbalanced"}, {"D", "in side"}, {"E", "dflt"}};
    for (auto [key, value] : strings) EXPECT_EQ(ini.getString("s", key, "dflt"), value) << key;
}

// Writes change one line and keep every other; a new key follows its section's
// last non-blank line with the file's line ending; a missing file and section
// are created; an unterminated last line is ended; deleting is idempotent;
// overrides are read but never written; another writer's keys are kept.
TEST_F(IniTest, WritesKeepEveryOtherLine) {
    const std::string original = "; Tarvel\r\n[Files]\r\nAutoFile=x\r\n\r\n[Config]\r\nmosaic=1\r\nUnknown = kept  \r\n; c\r\n\r\n[V]\r\nZ=5\r\n";
    write(original);
    IniFile ini(path_);
    ini.setOverride("clearjam", "0");
    ASSERT_TRUE(ini.setInt("CONFIG", "Mosaic", 4));
    ASSERT_TRUE(ini.setString("Config", "TeamSwap", "1"));
    ASSERT_TRUE(ini.deleteKey("files", "AUTOFILE"));
    EXPECT_TRUE(ini.deleteKey("Files", "AutoFile"));
    EXPECT_TRUE(ini.deleteKey("Nowhere", "AutoFile"));
    IniFile other(path_);
    ASSERT_TRUE(other.setString("New", "k", "2"));
    EXPECT_EQ(contents(), "; Tarvel\r\n[Files]\r\n\r\n[Config]\r\nmosaic=4\r\nUnknown = kept  \r\n; c\r\nTeamSwap=1\r\n\r\n[V]\r\nZ=5\r\n[New]\r\nk=2\r\n");
    EXPECT_EQ(ini.getInt("Config", "ClearJam", 1), 0);
    EXPECT_FALSE(ini.hasKey("Files", "ClearJam"));
    ASSERT_TRUE(ini.setInt("V", "Y", 1));
    EXPECT_EQ(IniFile(path_).getInt("New", "k", 0), 2) << "the second writer's key survives the first's write";

    fs::remove(path_);
    IniFile fresh(path_);
    EXPECT_EQ(fresh.getInt("Config", "Mosaic", 3), 3);
    EXPECT_FALSE(fs::exists(path_));
    ASSERT_TRUE(fresh.setInt("Config", "Mosaic", 2));
    EXPECT_EQ(contents(), "[Config]\nMosaic=2\n");
    write("[A]\nk=1");
    ASSERT_TRUE(IniFile(path_).setString("B", "k", "2"));
    EXPECT_EQ(contents(), "[A]\nk=1\n[B]\nk=2\n");
}

// Defaults for a missing file, the placeholder "X" for an unset path, the
// folder's closing separator, the mosaic clamped to 0-4; flags in the order
// CheckSum, NiceGrid, HighGrip, ClearJam, FixGreen, FixStrip, GP2Palette,
// ShowInfo, SoftenMenu, TeamSwap.
TEST_F(IniTest, ConfigReadsStoredValuesOrDefaults) {
    const std::array<bool, 10> defaults{true, true, false, true, false, true, false, true, false, false};
    const std::tuple<const char*, std::string, std::string, std::string, int, std::array<bool, 10>> rows[] = {
        {nullptr, "", "", "", 3, defaults},
        {"[Files]\nLocate GP2.EXE=X\nAutoFile=x\n[Config]\nMosaic=9\nCheckSum=0\nHighGrip=1\nShowInfo=0\nGP2Palette=1\n"
         "LaunchCommand=dosbox \"%s\"\n",
         "", "", "dosbox \"%s\"", 4, {false, true, true, true, false, true, true, false, false, false}},
        {"[Files]\nLocate GP2.EXE=/games/gp2\nAutoFile=/a.GP2\n[Config]\nMosaic=-2\n", "/games/gp2/", "/a.GP2", "", 0, defaults},
        {"[Files]\nLocate GP2.EXE=C:\\GP2\\\n", "C:\\GP2\\", "", "", 3, defaults},
    };
    for (const auto& [text, folder, autoFile, launch, mosaic, flags] : rows) {
        if (text) write(text);
        const Config c = readConfig(IniFile(path_));
        EXPECT_EQ((std::array<bool, 10>{c.checkSum, c.niceGrid, c.highGrip, c.clearJam, c.fixGreen, c.fixStrip, c.gp2Palette, c.showInfo,
                                        c.softenMenu, c.teamSwap}),
                  flags) << folder;
        EXPECT_EQ(std::tie(c.gameFolder, c.autoFile, c.launchCommand, c.mosaic), std::tie(folder, autoFile, launch, mosaic));
    }
}

// Every setting is written except ShowInfo and AutoFile; an empty folder is
// written as "X"; an unwritable file is reported by its name.
TEST_F(IniTest, WriteConfig) {
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
    EXPECT_EQ(contents(), "[Files]\nAutoFile=/keep.GP2\nLocate GP2.EXE=/games/gp2/\n[Config]\nShowInfo=0\nCheckSum=1\nNiceGrid=0\n"
                          "HighGrip=0\nClearJam=1\nFixGreen=0\nFixStrip=1\nGP2Palette=0\nSoftenMenu=0\nTeamSwap=0\nMosaic=1\n"
                          "LaunchCommand=run %s\nConfirmExport=1\n");
    c.gameFolder.clear();
    ASSERT_TRUE(writeConfig(ini, c));
    EXPECT_EQ(IniFile(path_).getString("Files", "Locate GP2.EXE", ""), "X");
    const fs::path unwritable = temp_.path() / "missing" / "tarvel32.ini";
    IniFile blocked(unwritable);
    auto failed = writeConfig(blocked, c);
    ASSERT_FALSE(failed);
    EXPECT_EQ(failed.error().id, MessageId::CouldntWriteFile);
    EXPECT_EQ(failed.error().arg, unwritable.string());
}

// TARVEL_CONFIG, then XDG_CONFIG_HOME, then HOME decide where the file lives.
TEST(ConfigPath, EnvironmentDecidesTheLocation) {
    const char* names[] = {"TARVEL_CONFIG", "XDG_CONFIG_HOME", "HOME"};
    std::optional<std::string> kept[3];
    for (int i = 0; i < 3; ++i)
        if (const char* v = std::getenv(names[i])) kept[i] = v;
    setenv("HOME", "/home/u", 1);
    setenv("XDG_CONFIG_HOME", "/cfg", 1);
    setenv("TARVEL_CONFIG", "/tmp/x/my.ini", 1);
    const char* expected[] = {"/tmp/x/my.ini", "/cfg/tarvel32.ini", "/home/u/.config/tarvel32.ini"};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(defaultConfigPath(), fs::path(expected[i]));
        unsetenv(names[i]);
    }
    for (int i = 0; i < 3; ++i)
        if (kept[i]) setenv(names[i], kept[i]->c_str(), 1);
}

}  // namespace
}  // namespace tarvel
