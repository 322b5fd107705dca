#include "CliTestSupport.h"

#include "carset/CarSet.h"
#include "carset/CarSetFile.h"
#include "fixtures/GameFixture.h"
#include "game/GameBackup.h"

#include <gtest/gtest.h>

#include <fstream>

#include <algorithm>
#include <filesystem>
#include <map>

#if !defined(_WIN32)
#include <chrono>
#include <csignal>
#include <thread>
#include <sys/wait.h>
#include <unistd.h>
#endif

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
    const std::string dir = game(options);
    const fs::path state = folder.path() / "game" / "F1GSTATE.SAV";
    EXPECT_EQ(cli({"game", "detect", dir}).out, "5 US\n");
    EXPECT_EQ(cli({"game", "statefile", dir}).out, "valid\n");
    test::pokeFile(state, 100, std::array<std::uint8_t, 1>{0xEE});
    EXPECT_EQ(cli({"game", "statefile", dir}).out, "invalid\n");
    fs::remove(state);
    EXPECT_EQ(cli({"game", "statefile", dir}).out, "absent\n");
    fs::remove(folder.path() / "game" / "GP2.EXE");
    auto refused = cli({"game", "detect", dir});
    EXPECT_EQ(refused.status, kExitFailed);
    EXPECT_EQ(refused.err, "Unsupported Version.\nNo GP2.EXE in " + dir + "\n");
    std::ofstream(folder.path() / "game" / "GP2.EXE") << "short";
    EXPECT_EQ(cli({"game", "detect", dir}).err,
              "Unsupported Version.\nGP2.EXE: 5 bytes, shorter than any release (5,702,937 bytes)\n");
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
    auto refused = cli({"game", "import", dir, in, "-o", out, "--items", "0,45"});
    EXPECT_EQ(refused.status, kExitFailed);
    EXPECT_NE(refused.err.find("45"), std::string::npos) << refused.err;
    EXPECT_FALSE(fs::exists(out)) << "nothing written on failure";
    EXPECT_EQ(cli({"game", "export", dir, in, "--items", "zero"}).status, kExitFailed);
    EXPECT_EQ(cli({"game", "import", dir, in}).status, kExitUsage) << "-o is required";
    EXPECT_EQ(cli({"game", "export", dir, in, "-o", out}).status, kExitUsage);
    // A folder without the game says so, whatever the items, before the release is looked at.
    fs::remove(folder.path() / "game" / "GP2.EXE");
    for (const std::vector<std::string>& args : {std::vector<std::string>{"game", "export", dir, in},
                                                 {"game", "export", dir, in, "--dry-run", "--items", "15"},
                                                 {"game", "import", dir, in, "-o", out}})
        EXPECT_EQ(cli(args).err, "File Not Found - GP2.EXE.\nNo GP2.EXE in " + dir + "\n");
}

// Every file below a folder with its bytes.
std::map<std::string, Bytes> snapshot(const fs::path& root) {
    std::map<std::string, Bytes> files;
    for (const auto& entry : fs::recursive_directory_iterator(root))
        if (entry.is_regular_file()) files[entry.path().lexically_relative(root).generic_string()] = test::readFileBytes(entry.path());
    return files;
}

TEST_F(GameCli, DryRunWritesNothingAndAnExportCanBeUndone) {
    const std::string dir = game();
    const std::string in = newSet();
    const auto original = snapshot(dir);
    auto rehearsal = cli({"game", "export", dir, in, "--dry-run"});
    ASSERT_EQ(rehearsal.status, kExitOk) << rehearsal.err;
    EXPECT_EQ(snapshot(dir), original);
    EXPECT_NE(rehearsal.out.find("GP2.EXE\t"), std::string::npos) << rehearsal.out;
    EXPECT_NE(rehearsal.out.find("GAMEJAMS\\HELMETS1.JAM\t"), std::string::npos) << rehearsal.out;
    EXPECT_EQ(cli({"game", "backups", dir}).out, "");

    ASSERT_EQ(cli({"game", "export", dir, in}).status, kExitOk);
    EXPECT_NE(snapshot(dir), original);
    // The export changed exactly the bytes the rehearsal announced.
    EXPECT_EQ(cli({"game", "export", dir, in, "--dry-run"}).out, "");
    const std::string listed = cli({"game", "backups", dir}).out;
    EXPECT_EQ(std::count(listed.begin(), listed.end(), '\n'), 1) << listed;
    EXPECT_NE(listed.find(" files\t"), std::string::npos) << listed;
    auto restored = cli({"game", "restore", dir});
    ASSERT_EQ(restored.status, kExitOk) << restored.err;
    EXPECT_EQ(snapshot(dir), original);
    auto unknown = cli({"game", "restore", dir, "19990101-000000"});
    EXPECT_EQ(unknown.status, kExitFailed);
    EXPECT_EQ(unknown.err, "No Backup 19990101-000000 of This Game Folder.\n");
    EXPECT_EQ(cli({"game", "restore", dir, "a", "b"}).status, kExitUsage);
}

#if !defined(_WIN32)
// An export killed at any moment is undone by a restore, exactly: the kill
// falls before the backup is complete (the game is untouched, and the restore
// refuses the incomplete backup) or after it (the restore puts every file back).
TEST_F(GameCli, AnExportKilledAtAnyMomentIsUndoneByARestore) {
    const std::string dir = game();
    const std::string in = newSet();
    const auto original = snapshot(dir);
    // Runs an export in a child process and kills it after `delay` (never when negative).
    auto exportKilledAfter = [&](std::chrono::microseconds delay) {
        const pid_t child = ::fork();
        if (child == 0) {
            std::ostringstream out, err;
            std::istringstream none;
            ::_exit(run({"--config", at("tarvel32.ini"), "game", "export", dir, in}, none, out, err));
        }
        if (delay.count() >= 0) {
            std::this_thread::sleep_for(delay);
            ::kill(child, SIGKILL);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
    };
    const auto start = std::chrono::steady_clock::now();
    exportKilledAfter(std::chrono::microseconds(-1));
    const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);
    ASSERT_EQ(cli({"game", "restore", dir}).status, kExitOk);
    ASSERT_EQ(snapshot(dir), original);

    int putBack = 0;
    constexpr int kPoints = 30;
    for (int point = 0; point <= kPoints; ++point) {
        exportKilledAfter(whole * point / kPoints);
        auto restored = cli({"game", "restore", dir});
        if (restored.status == kExitOk) {
            ++putBack;
        } else {
            // Killed before its backup was complete: the game was not touched yet.
            EXPECT_TRUE(restored.err.find("Incomplete") != std::string::npos) << restored.err;
        }
        EXPECT_EQ(snapshot(dir), original) << "killed at point " << point << " of " << kPoints;
        EXPECT_EQ(removeInterruptedWrites(dir), 0);
    }
    EXPECT_GT(putBack, 0) << "no kill fell after a backup was complete";
}

#endif

}  // namespace
}  // namespace tarvel::cli
