// The whole round trip a user makes in the window on a synthetic game:
// configure, import, edit a team name and a livery, save, reopen, export, and
// find the change in the game's files.

#include "AppTestSupport.h"

#include "common/FileIO.h"
#include "game/GameBackup.h"
#include "game/GameTransfer.h"
#include "graphics/Bitmap.h"
#include "shell/CommandIds.h"

#include <QLineEdit>
#include <QTest>

#include <fstream>

namespace tarvel::test {
namespace {

std::filesystem::path carJamOfTeam(const std::string& game, int team) {
    const TransferItemInfo info = transferItemInfo(1 + team);
    const auto found = findGameFile(game, info.gameFile);
    return found ? *found : std::filesystem::path();
}

TEST_F(AppTest, RoundTripThroughTheGame) {
    const std::string game = makeTestGame(folder() / "game", GameFixtureOptions{0});
    session.readConfiguration();
    asker.onConfigure = [&](MainWindow& w) {
        ConfigDialog dialog(w.session(), asker, &w);
        dialog.exeField()->setText(QString::fromStdString(game + "GP2.EXE"));
        dialog.accept();
        return dialog.result() == QDialog::Accepted;
    };
    MainWindow& w = window();
    w.startUp({});
    ASSERT_EQ(asker.configureCalls, 1);
    ASSERT_EQ(session.gameVersion, 0);

    // Import: the game's names replace the defaults.
    w.runCommand(command::ImportFromGame);
    ASSERT_TRUE(asker.ids.empty()) << asker.lastText();
    const std::string imported = fieldText(w.document().set().team(0).name);
    EXPECT_NE(imported, "Team Name");
    EXPECT_EQ(w.panel().teamName()->text().toStdString(), windows1252ToUtf8(imported));
    EXPECT_TRUE(w.document().isDirty());

    // Edit a name and a livery.
    w.panel().selectTeam(0);
    w.panel().teamName()->selectAll();
    QTest::keyClicks(w.panel().teamName(), "Rocket");
    BitmapBuffer bitmap(kLiveryWidth, kLiveryHeight);
    for (int r = 0; r < kLiveryHeight; ++r)
        for (int x = 0; x < kLiveryWidth; ++x) bitmap.row(r)[x] = std::uint8_t(32 + (x / 16) % 8);
    ASSERT_TRUE(SaveBitmap8(folder() / "NEW.BMP", bitmap, GraphicsOptions{}));
    asker.files.push_back(path("NEW.BMP"));
    w.runCommand(command::CarLoad);
    const std::vector<std::uint8_t> livery = w.document().set().liveries[0];

    // Save, start again and reopen.
    asker.files.push_back(path("ROUND.GP2"));
    w.runCommand(command::SaveAs);
    ASSERT_FALSE(w.document().isDirty());
    w.runCommand(command::NewCarSet);
    EXPECT_EQ(fieldText(w.document().set().team(0).name), "Team Name");
    asker.files.push_back(path("ROUND.GP2"));
    w.runCommand(command::Open);
    ASSERT_EQ(fieldText(w.document().set().team(0).name), "Rocket");
    EXPECT_EQ(w.document().set().liveries[0], livery);

    // Export, then read the game back into a fresh set.
    const std::filesystem::path jam = carJamOfTeam(game, 0);
    ASSERT_FALSE(jam.empty());
    const Bytes jamBefore = readFileBytes(jam);
    asker.answers.push_back(Answer::Yes);
    w.runCommand(command::ExportToGame);
    ASSERT_EQ(asker.ids, std::vector<MessageId>{MessageId::ExportQuestion}) << asker.lastText();
    asker.ids.clear();
    EXPECT_NE(readFileBytes(jam), jamBefore);
    // The export kept what it replaced.
    const std::vector<GameBackup> backups = listGameBackups(session.backupsRoot, game);
    ASSERT_EQ(backups.size(), 1u);
    EXPECT_TRUE(backups[0].complete);

    w.runCommand(command::NewCarSet);
    w.runCommand(command::ImportFromGame);
    ASSERT_TRUE(asker.ids.empty()) << asker.lastText();
    EXPECT_EQ(fieldText(w.document().set().team(0).name), "Rocket");
    // The livery came back from the game's texture in the colours it was given.
    EXPECT_EQ(w.document().set().liveries[0][64 * kLiveryWidth + 40], livery[64 * kLiveryWidth + 40]);
}

TEST_F(AppTest, AFailedImportNamesWhatFailed) {
    const std::string game = configureGame();
    window().startUp({});
    // No game at all: nothing is read and the set stays clean.
    const std::filesystem::path exe = *findGameFile(game, "GP2.EXE");
    const Bytes exeBytes = readFileBytes(exe);
    std::filesystem::remove(exe);
    window().runCommand(command::ImportFromGame);
    EXPECT_EQ(asker.lastText(), "File Not Found - GP2.EXE.");
    EXPECT_FALSE(window().document().isDirty());
    EXPECT_EQ(fieldText(set().team(0).name), "Team Name");
    writeFileBytes(exe, exeBytes);
    // A damaged JAM file: the exact message, and under it the item and the file.
    const std::filesystem::path jam = *findGameFile(game, transferItemInfo(158).gameFile);
    writeFileBytes(jam, Bytes(40, 0xAB));
    window().runCommand(command::ImportFromGame);
    ASSERT_FALSE(asker.ids.empty());
    EXPECT_EQ(asker.ids.back(), MessageId::FailedToConvertJam);
    EXPECT_EQ(asker.details.back(), "Item 158 (JAM Files), game file " +
                                        jam.lexically_relative(game).generic_string() + ".");
}

}  // namespace
}  // namespace tarvel::test
