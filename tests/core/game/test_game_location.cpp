#include "game/GameLocation.h"

#include "fixtures/GameFixture.h"

#include <gtest/gtest.h>

namespace tarvel::test {
namespace {

TEST(GameLocation, AcceptsOnlyAnExistingGp2ExeInAnyCase) {
    TempFolder temp("location");
    writeFileBytes(temp / "gp2.Exe", Bytes{1});
    writeFileBytes(temp / "GP3.EXE", Bytes{1});
    std::filesystem::create_directories(temp / "GP2.EXE.d" / "GP2.EXE");
    EXPECT_EQ(gameFolderFromExecutable((temp / "gp2.Exe").string()), temp.path().string() + "/");
    for (const auto& refused : {temp / "GP3.EXE", temp / "missing" / "GP2.EXE", temp / "GP2.EXE.d" / "GP2.EXE"})
        EXPECT_FALSE(gameFolderFromExecutable(refused.string())) << refused;
    EXPECT_FALSE(gameFolderFromExecutable(""));
}

TEST(GameLocation, ExecutableTextAndLaunchLine) {
    EXPECT_EQ(gameExecutableText("/g/"), "/g/GP2.EXE");
    EXPECT_EQ(gameExecutableText(""), "");
    const std::pair<std::string, std::string> lines[] = {
        {"", "\"/g/GP2.EXE\""},
        {"dosbox \"%s\" -c \"%s\"", "dosbox \"/g/GP2.EXE\" -c \"/g/GP2.EXE\""},
        {"run 100%", "run 100%"},
        {"%d %", "%d %"},
    };
    for (const auto& [command, line] : lines) EXPECT_EQ(gameLaunchCommandLine(command, "/g/GP2.EXE"), line) << command;
}

}  // namespace
}  // namespace tarvel::test
