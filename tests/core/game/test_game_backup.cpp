// Game backups: taken, listed, rotated and put back; a damaged backup is refused
// before anything is written.

#include "common/FileIO.h"
#include "fixtures/GameFixture.h"
#include "game/GameBackup.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tarvel::test {
namespace {

namespace fs = std::filesystem;

class GameBackupTest : public ::testing::Test {
protected:
    GameBackupTest() : temp_("backup") { game = makeTestGame(temp_.path() / "game", GameFixtureOptions{0, true}); }
    fs::path root() const { return temp_.path() / "backups"; }
    fs::path gameFile(const std::string& name) const { return *findGameFile(game, name); }
    void scribble(const std::string& name) {
        Bytes data = readFileBytes(gameFile(name));
        for (std::size_t i = 0; i < data.size(); i += 97) data[i] ^= 0x5A;
        ASSERT_TRUE(writeFileAtomically(gameFile(name), data));
    }
    GameBackup backUp(std::time_t when) {
        auto backup = BackUpGameFiles(root(), game, files, when);
        EXPECT_TRUE(backup) << (backup ? "" : messageText(backup.error()));
        return backup ? *backup : GameBackup{};
    }

    TempFolder temp_;
    std::string game;
    // Game names in the game's own case; the test game has lower-case names.
    std::vector<std::string> files{"GP2.EXE", "F1GSTATE.SAV", "GAMEJAMS\\HELMETS1.JAM", "GAMEJAMS\\NOSUCH.JAM"};
};

TEST_F(GameBackupTest, RestorePutsBackEveryFileExactlyAndClearsInterruptedWrites) {
    const Bytes exe = readFileBytes(gameFile("GP2.EXE"));
    const Bytes jam = readFileBytes(gameFile("GAMEJAMS\\HELMETS1.JAM"));
    const GameBackup taken = backUp(1000);
    ASSERT_TRUE(taken.complete);
    ASSERT_EQ(taken.files.size(), 3u);   // the missing file has nothing to keep
    EXPECT_EQ(taken.files[2].relative, "gamejams/helmets1.jam");
    EXPECT_EQ(taken.totalSize(), exe.size() + jam.size() + readFileBytes(gameFile("F1GSTATE.SAV")).size());

    scribble("GP2.EXE");
    scribble("GAMEJAMS\\HELMETS1.JAM");
    std::ofstream(gameFile("GP2.EXE").string() + ".tarvel-tmp") << "half written";
    auto restored = RestoreGameFiles(root(), game, "");
    ASSERT_TRUE(restored) << messageText(restored.error());
    EXPECT_EQ(restored->id, taken.id);
    EXPECT_EQ(readFileBytes(gameFile("GP2.EXE")), exe);
    EXPECT_EQ(readFileBytes(gameFile("GAMEJAMS\\HELMETS1.JAM")), jam);
    EXPECT_FALSE(fs::exists(gameFile("GP2.EXE").string() + ".tarvel-tmp"));
    EXPECT_EQ(removeInterruptedWrites(game), 0);
}

TEST_F(GameBackupTest, TheNewestTenAreKeptNewestFirst) {
    for (int i = 0; i < 12; ++i) backUp(std::time_t(1000 + (i / 2)));   // two within each second
    const std::vector<GameBackup> backups = listGameBackups(root(), game);
    ASSERT_EQ(backups.size(), std::size_t(kBackupsKept));
    for (std::size_t i = 1; i < backups.size(); ++i) EXPECT_GT(backups[i - 1].id, backups[i].id);
    // The first second's pair went; the second second's pair is the oldest left.
    EXPECT_EQ(backups[8].id, backups[9].id + "-02");
    // The same folder named another way shares its backups.
    EXPECT_EQ(listGameBackups(root(), game + "./").size(), std::size_t(kBackupsKept));
}

TEST_F(GameBackupTest, DamagedOrUnknownBackupsAreRefusedAndNothingIsWritten) {
    const GameBackup older = backUp(1000);
    const GameBackup newer = backUp(2000);
    scribble("GP2.EXE");
    const Bytes scribbled = readFileBytes(gameFile("GP2.EXE"));

    struct Case {
        const char* what;
        std::function<void()> damage;
        std::string id;
        MessageId refusal;
    };
    const Case cases[] = {
        {"altered copy", [&] { std::ofstream(newer.folder / "gp2.exe", std::ios::app) << "x"; }, newer.id,
         MessageId::BackupAltered},
        {"no manifest", [&] { fs::remove(older.folder / "MANIFEST"); }, older.id, MessageId::BackupIncomplete},
        {"damaged manifest", [&] { std::ofstream(newer.folder / "MANIFEST") << "tarvel-backup 1\n12 ab ../x\n"; },
         "", MessageId::BackupIncomplete},
        {"unknown id", [] {}, "19990101-000000", MessageId::BackupNotFound},
    };
    for (const Case& c : cases) {
        c.damage();
        auto restored = RestoreGameFiles(root(), game, c.id);
        ASSERT_FALSE(restored) << c.what;
        EXPECT_EQ(restored.error().id, c.refusal) << c.what;
        EXPECT_EQ(readFileBytes(gameFile("GP2.EXE")), scribbled) << c.what;
    }
    EXPECT_EQ(RestoreGameFiles(root(), temp_.path() / "elsewhere", "").error().id, MessageId::NoBackups);
}

TEST(BackupManifest, TakesWellFormedEntriesOnly) {
    const std::string hash(64, 'a');
    std::vector<BackupEntry> files;
    ASSERT_TRUE(parseBackupManifest("tarvel-backup 1\n12 " + hash + " gamejams/a b.jam\n", files));
    ASSERT_EQ(files.size(), 1u);
    EXPECT_EQ(files[0].size, 12u);
    EXPECT_EQ(files[0].relative, "gamejams/a b.jam");   // a name may hold blanks
    for (const std::string& damaged : std::vector<std::string>{
             std::string(), "tarvel-backup 2\n", "tarvel-backup 1", "tarvel-backup 1\n12 " + hash + " x",
          "tarvel-backup 1\nx " + hash + " a\n", "tarvel-backup 1\n12 " + std::string(63, 'a') + " a\n",
          "tarvel-backup 1\n12 " + std::string(64, 'G') + " a\n", "tarvel-backup 1\n12 " + hash + " ../a\n",
          "tarvel-backup 1\n12 " + hash + " /etc/a\n", "tarvel-backup 1\n12 " + hash + "\n"})
        EXPECT_FALSE(parseBackupManifest(damaged, files)) << damaged;
}

}  // namespace
}  // namespace tarvel::test
