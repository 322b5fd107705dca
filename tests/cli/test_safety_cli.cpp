// What keeps a user's files safe: a car set save killed at any moment leaves
// the old file or the new one (and no temporary file once the next save has
// run), and a transfer that fails names the item and the game file.

#include "CliTestSupport.h"

#include "carset/CarSetFile.h"
#include "common/FileIO.h"
#include "game/GameTransfer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

namespace tarvel::cli {
namespace {
namespace fs = std::filesystem;

TEST_F(CliFixture, AFailingItemKeepsItsMessageAndNamesTheItemAndTheGameFile) {
    const std::string game = test::makeTestGame(folder.path() / "game");
    const std::string in = newSet();
    const fs::path damaged = *findGameFile(game, transferItemInfo(158).gameFile);
    test::writeFileBytes(damaged, Bytes(40, 0xAB));
    const std::string relative = damaged.lexically_relative(game).generic_string();
    auto imported = cli({"game", "import", game, in, "-o", at("out.gp2")});
    EXPECT_EQ(imported.status, kExitFailed);
    EXPECT_EQ(imported.err, "Failed to Convert JAM File.\nItem 158 (JAM Files), game file " + relative + ".\n");
    EXPECT_FALSE(fs::exists(at("out.gp2")));
}

}  // namespace
}  // namespace tarvel::cli

#if !defined(_WIN32)
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace tarvel::cli {
namespace {
namespace fs = std::filesystem;

std::vector<fs::path> temporaryFiles(const fs::path& folder) {
    std::vector<fs::path> found;
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.path().filename().string().find(".tarvel-tmp") != std::string::npos) found.push_back(entry.path());
    return found;
}

TEST_F(CliFixture, ASaveKilledAtAnyMomentLeavesTheOldFileOrTheNewOne) {
    // The old file: a default set; the new one: the same set with a team renamed.
    const std::string old = newSet();
    const std::string target = at("target.gp2");
    ASSERT_EQ(cli({"convert", old, target}).status, kExitOk);
    const std::string patched = at("patched.gp2");
    ASSERT_EQ(cli({"apply", old, "-", "-o", patched}, R"({"teams": [{"name": "Renamed"}]})").status, kExitOk);
    const Bytes oldBytes = test::readFileBytes(target);
    ASSERT_EQ(cli({"convert", patched, at("expected.gp2")}).status, kExitOk);
    const Bytes newBytes = test::readFileBytes(at("expected.gp2"));
    ASSERT_NE(oldBytes, newBytes);

    auto saveKilledAfter = [&](std::chrono::microseconds delay) {
        const pid_t child = ::fork();
        if (child == 0) {
            std::ostringstream out, err;
            std::istringstream none;
            ::_exit(run({"--config", at("tarvel32.ini"), "convert", patched, target}, none, out, err));
        }
        if (delay.count() >= 0) {
            std::this_thread::sleep_for(delay);
            ::kill(child, SIGKILL);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return child;
    };
    const auto start = std::chrono::steady_clock::now();
    saveKilledAfter(std::chrono::microseconds(-1));
    const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);
    ASSERT_EQ(test::readFileBytes(target), newBytes);

    int sawOld = 0;
    constexpr int kPoints = 30;
    for (int point = 0; point <= kPoints; ++point) {
        test::writeFileBytes(target, oldBytes);
        const pid_t child = saveKilledAfter(whole * point / kPoints);
        const Bytes now = test::readFileBytes(target);
        EXPECT_TRUE(now == oldBytes || now == newBytes) << "killed at point " << point << " of " << kPoints;
        sawOld += now == oldBytes ? 1 : 0;
        // What a killed save can leave is its own temporary file, which the next save of the target removes.
        for (const fs::path& left : temporaryFiles(folder.path()))
            EXPECT_NE(left.filename().string().find(".tarvel-tmp-" + std::to_string(child) + "-"), std::string::npos)
                << left;
        ASSERT_EQ(cli({"convert", old, target}).status, kExitOk);
        EXPECT_TRUE(temporaryFiles(folder.path()).empty()) << "after point " << point;
    }
    EXPECT_GT(sawOld, 0) << "no kill fell before the rename";
}

}  // namespace
}  // namespace tarvel::cli
#endif
