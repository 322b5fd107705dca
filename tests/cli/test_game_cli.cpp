#include "CliTestSupport.h"

#include "carset/CarSet.h"
#include "carset/CarSetFile.h"
#include "fixtures/GameFixture.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tarvel::cli {
namespace {
namespace fs = std::filesystem;

class GameCli : public CliFixture {
protected:
    std::string game(test::GameFixtureOptions options = {}) {
        return test::makeTestGame(folder.path() / "game", options);
    }
};

TEST_F(GameCli, DetectAndStateFile) {
    test::GameFixtureOptions options;
    options.release = 5;
    std::string dir = game(options);
    auto detected = cli({"game", "detect", dir});
    EXPECT_EQ(detected.status, kExitOk);
    EXPECT_EQ(detected.out, "5 US\n");
    EXPECT_EQ(cli({"game", "statefile", dir}).out, "valid\n");
    test::pokeFile(folder.path() / "game" / "F1GSTATE.SAV", 100, std::array<std::uint8_t, 1>{0xEE});
    EXPECT_EQ(cli({"game", "statefile", dir}).out, "invalid\n");
    fs::remove(folder.path() / "game" / "F1GSTATE.SAV");
    EXPECT_EQ(cli({"game", "statefile", dir}).out, "absent\n");

    fs::remove(folder.path() / "game" / "GP2.EXE");
    auto refused = cli({"game", "detect", dir});
    EXPECT_EQ(refused.status, kExitFailed);
    EXPECT_EQ(refused.err, "Unsupported Version.\n");
    EXPECT_EQ(cli({"game", "detect"}).status, kExitUsage);
}

TEST_F(GameCli, ImportThenExport) {
    std::string dir = game();
    std::string in = newSet();
    std::string out = (folder.path() / "out.gp2").string();
    auto imported = cli({"game", "import", dir, in, "-o", out});
    ASSERT_EQ(imported.status, kExitOk) << imported.err;
    CarSet set;
    ASSERT_TRUE(loadCarSet(set, out, {}));
    EXPECT_EQ(fieldText(set.teams[7].name), "Save Team 07");
    EXPECT_EQ(set.teams[7].powerRace, test::fixtureRacePowerRaw(7) - 32817);
    EXPECT_TRUE(imported.err.empty()) << "no progress when standard error is no terminal";

    setFieldText(set.teams[7].name, "Exported");
    ASSERT_TRUE(saveCarSet(set, out, {}));
    auto exported = cli({"game", "export", dir, out, "--items", "0"});
    ASSERT_EQ(exported.status, kExitOk) << exported.err;
    EXPECT_EQ(cli({"game", "statefile", dir}).out, "valid\n");
    auto back = cli({"game", "import", dir, in, "-o", out, "--items", "0,44,47"});
    ASSERT_EQ(back.status, kExitOk) << back.err;
    CarSet again;
    ASSERT_TRUE(loadCarSet(again, out, {}));
    EXPECT_EQ(fieldText(again.teams[7].name), "Exported");
}

TEST_F(GameCli, RefusesItemsAndUsage) {
    std::string dir = game();
    std::string in = newSet();
    std::string out = (folder.path() / "out.gp2").string();
    auto refused = cli({"game", "import", dir, in, "-o", out, "--items", "0,52"});
    EXPECT_EQ(refused.status, kExitFailed);
    EXPECT_NE(refused.err.find("52"), std::string::npos) << refused.err;
    EXPECT_FALSE(fs::exists(out)) << "nothing written on failure";
    EXPECT_EQ(cli({"game", "export", dir, in, "--items", "zero"}).status, kExitFailed);
    EXPECT_EQ(cli({"game", "import", dir, in}).status, kExitUsage) << "-o is required";
    EXPECT_EQ(cli({"game", "export", dir, in, "-o", out}).status, kExitUsage);
    fs::remove(folder.path() / "game" / "GP2.EXE");
    EXPECT_EQ(cli({"game", "export", dir, in}).err, "Unsupported Version.\n");
}

}  // namespace
}  // namespace tarvel::cli
