// The commands that work on the installed game one picture at a time, and
// the progress window of the import and export.

#include "AppTestSupport.h"

#include "carset/CarSetPictures.h"
#include "common/FileIO.h"
#include "game/GameTransfer.h"
#include "graphics/CarBitmapPopup.h"
#include "shell/CommandIds.h"
#include "game/ProgressWindow.h"
#include "game/RestoreDialog.h"
#include "game/GameBackup.h"
#include "shell/Startup.h"

#include "carset/WorkingFolder.h"

#include <QLayout>
#include <QPushButton>
#include <QStatusBar>
#include <QTreeWidget>
#include <QTest>
#include <QTimer>

#include <fstream>

namespace tarvel::test {
namespace {

class GameCommandsTest : public AppTest {
protected:
    void SetUp() override {
        game = configureGame();
        window().startUp({});
        ASSERT_TRUE(session.gameKnown());
    }
    std::filesystem::path gameFileOfItem(int item) {
        const auto found = findGameFile(game, transferItemInfo(item).gameFile);
        return found ? *found : std::filesystem::path();
    }
    std::string game;
};

TEST_F(GameCommandsTest, CarExportPatchesTheTeamsJamAndImportReadsItBack) {
    panel().selectTeam(2);
    change([](CarSet& s) {
        for (int i = 0; i < kLiveryPixels; ++i) s.liveries[2][std::size_t(i)] = std::uint8_t(32 + (i / 8) % 8);
    });
    const CarSet& set = this->set();
    const std::vector<std::uint8_t> painted = set.liveries[2];
    const std::filesystem::path jam = gameFileOfItem(3);
    ASSERT_FALSE(jam.empty());
    const Bytes before = readFileBytes(jam);
    window().runCommand(command::CarExport);
    EXPECT_EQ(asker.lastText(), "File Patched Successfully!");
    EXPECT_NE(readFileBytes(jam), before);

    change([](CarSet& s) { s.liveries[2].assign(kLiveryPixels, 0); });
    window().runCommand(command::CarImport);
    EXPECT_EQ(set.team(2).carBitmap.status, kAssetExternal);
    EXPECT_EQ(set.liveries[2][std::size_t(80 * kLiveryWidth + 100)], painted[std::size_t(80 * kLiveryWidth + 100)]);
    // The import can be undone like a load.
    ASSERT_TRUE(panel().undoButton()->isEnabled());
    panel().undoButton()->click();
    EXPECT_EQ(set.liveries[2][0], 0);
}

TEST_F(GameCommandsTest, HelmetSheetGoesToTheGameAndComesBack) {
    const CarSet& set = this->set();
    const std::vector<std::uint8_t> original = set.helmetSheet;
    const Bytes before = readFileBytes(gameFileOfItem(15));
    window().runCommand(command::HelmetsExport);
    EXPECT_EQ(asker.lastText(), "File Patched Successfully!");
    EXPECT_NE(readFileBytes(gameFileOfItem(15)), before);
    change([](CarSet& s) { s.helmetSheet.assign(kHelmetSheetPixels, 0); });
    window().runCommand(command::HelmetsImport);
    EXPECT_EQ(asker.ids.size(), 1u) << asker.lastText();
    // Helmet 0's middle row is back.
    const std::size_t middle = std::size_t(165 + 7) * kHelmetSheetWidth + 30;
    EXPECT_EQ(set.helmetSheet[middle], original[middle]);
}

TEST_F(GameCommandsTest, HelmetSheetFileCommandsRoundTrip) {
    const CarSet& set = this->set();
    asker.files.push_back(path("SHEET.BMP"));
    window().runCommand(command::HelmetsSaveAs);
    ASSERT_TRUE(std::filesystem::exists(folder() / "SHEET.BMP"));
    const std::vector<std::uint8_t> saved = set.helmetSheet;
    change([](CarSet& s) { s.helmetSheet.assign(kHelmetSheetPixels, 0); });
    asker.files.push_back(path("SHEET.BMP"));
    window().runCommand(command::HelmetsLoad);
    EXPECT_EQ(set.helmetSheet, saved);
    EXPECT_TRUE(window().document().isDirty());
    asker.files.push_back(path("missing.bmp"));
    window().runCommand(command::HelmetsLoad);
    EXPECT_EQ(asker.lastText(), "Couldn't Load Bitmap.");
    EXPECT_EQ(set.helmetSheet, saved);
}

TEST_F(GameCommandsTest, ExportAbortedFromTheProgressWindow) {
    QTimer::singleShot(0, [] {
        if (auto* progress = qobject_cast<ProgressWindow*>(QApplication::activeModalWidget()))
            QTest::keyClick(progress, Qt::Key_Escape);
    });
    asker.answers.push_back(Answer::Yes);
    window().runCommand(command::ExportToGame);
    EXPECT_EQ(asker.ids, (std::vector<MessageId>{MessageId::ExportQuestion, MessageId::ExportAborted}));
}

TEST_F(GameCommandsTest, ExportAsksFirstNamingTheFolderAndTheFilesThatChange) {
    const std::filesystem::path exe = gameFileOfItem(0);
    const Bytes before = readFileBytes(exe);
    change([](CarSet& s) { setFieldText(s.team(0).name, "Changed"); });
    // "No" writes nothing.
    asker.answers.push_back(Answer::No);
    window().runCommand(command::ExportToGame);
    EXPECT_EQ(asker.ids, std::vector<MessageId>{MessageId::ExportQuestion});
    EXPECT_EQ(asker.lastText(), "Export the Car Set to the Game in " + game + "?");
    const std::string& detail = asker.details.back();
    EXPECT_TRUE(detail.contains(" of the game's files will change: ") && detail.contains("GP2.EXE")) << detail;
    // The count is the dry run's: the files whose bytes differ.
    auto dryRun = DryRunExport(set(), window().document().transferItems(), GameContext{game, 0, session.config, session.workingFolder, {}});
    ASSERT_TRUE(dryRun);
    const auto changed = std::count_if(dryRun->begin(), dryRun->end(), [](const FileChange& c) { return c.bytesChanged > 0; });
    EXPECT_TRUE(detail.starts_with(std::to_string(changed) + " of the game's files")) << detail;
    EXPECT_EQ(readFileBytes(exe), before);
    EXPECT_TRUE(listGameBackups(session.backupsRoot, game).empty());

    // "Yes" with "Don't ask again": written, reported, and never asked again.
    asker.answers.push_back(Answer::Yes);
    asker.checkDontAskAgain = true;
    window().runCommand(command::ExportToGame);
    EXPECT_NE(readFileBytes(exe), before);
    const std::vector<GameBackup> backups = listGameBackups(session.backupsRoot, game);
    ASSERT_EQ(backups.size(), 1u);
    const std::string report = window().statusBar()->currentMessage().toStdString();
    EXPECT_TRUE(report.starts_with("Exported ") && report.ends_with("; backup " + backups[0].id + " kept.")) << report;
    EXPECT_FALSE(session.config.confirmExport);
    EXPECT_NE(readText(session.configPath).find("ConfirmExport=0"), std::string::npos);
    asker.ids.clear();
    window().runCommand(command::ExportToGame);
    EXPECT_TRUE(asker.ids.empty());

    window().runCommand(command::ImportFromGame);
    EXPECT_TRUE(window().statusBar()->currentMessage().startsWith("Imported "));
}

TEST_F(GameCommandsTest, GameCommandsAreOffWhileTheReleaseIsUnknown) {
    session.gameVersion = -1;
    window().updateCommandStates();
    for (int id : {command::ImportFromGame, command::ExportToGame, command::LaunchGame, command::CarImport,
                   command::CarExport, command::HelmetsImport, command::HelmetsExport})
        EXPECT_FALSE(window().action(id)->isEnabled()) << id;
    window().runCommand(command::LaunchGame);
    window().runCommand(command::ExportToGame);
    EXPECT_TRUE(started.empty());
    EXPECT_TRUE(asker.texts.empty());
}

TEST_F(GameCommandsTest, RestoreDialogListsTheBackupsAndPutsTheChosenOneBack) {
    session.backupsRoot = folder() / "backups";
    const std::filesystem::path exe = gameFileOfItem(0);
    const Bytes original = readFileBytes(exe);
    ASSERT_TRUE(BackUpGameFiles(session.backupsRoot, game, {"GP2.EXE"}, 1'000'000'000));
    writeFileBytes(exe, Bytes(original.size(), 0));   // no longer a release the editor knows

    RestoreDialog dialog(window().bench());
    ASSERT_EQ(dialog.list()->topLevelItemCount(), 1);
    EXPECT_EQ(dialog.list()->topLevelItem(0)->text(0), backupTimeText(listGameBackups(session.backupsRoot, game)[0].id));
    EXPECT_EQ(dialog.list()->topLevelItem(0)->text(1), "1");
    asker.answers.push_back(Answer::No);
    EXPECT_FALSE(dialog.restoreSelected());
    EXPECT_NE(readFileBytes(exe), original);
    asker.answers.push_back(Answer::Yes);
    EXPECT_TRUE(dialog.restoreSelected());
    EXPECT_EQ(asker.ids.back(), MessageId::GameFilesRestored);
    EXPECT_EQ(readFileBytes(exe), original);
    EXPECT_TRUE(session.gameKnown());
    EXPECT_EQ(backupTimeText("20261123-214205-02"), "2026-11-23 21:42:05-02");
}

TEST(ProgressWindow, ShowsTheTransferAndAbortsOnEscape) {
    ProgressWindow progress("Importing...");
    progress.show();
    progress.setCategory("Car JAMs");
    progress.setFile("BRZ1.JAM");
    progress.setSubImage(3, 12);
    progress.setColours(7, 64);
    EXPECT_EQ(progress.categoryText(), "Car JAMs");
    EXPECT_EQ(progress.fileText(), "BRZ1.JAM");
    EXPECT_FALSE(progress.aborted());
    QTest::keyClick(&progress, Qt::Key_Escape);
    EXPECT_TRUE(progress.aborted());
    EXPECT_TRUE(progress.isVisible());   // Escape only asks the transfer to stop
}

TEST(Startup, WorkingFolderIsMadeAndRemovedWithItsFiles) {
    TempFolder temp("startup");
    Session session;
    session.workingFolder = temp.path() / "work-a";
    ASSERT_TRUE(createWorkingFolder(session));
    std::ofstream(teamBitmapFile(session.workingFolder, 3)) << "x";
    // A second process of the same second finds the folder and uses it.
    EXPECT_TRUE(createWorkingFolder(session));
    removeWorkingFolder(session);
    EXPECT_FALSE(std::filesystem::exists(session.workingFolder));
}

TEST(Startup, SessionReadsTheConfigurationNamedByTheEnvironment) {
    TempFolder temp("session");
    const std::filesystem::path ini = temp.path() / "mine.ini";
    std::ofstream(ini) << "[Files]\nLocate GP2.EXE=X\n[Config]\nMosaic=0\nTeamSwap=1\n";
    const QByteArray old = qgetenv("TARVEL_CONFIG");
    qputenv("TARVEL_CONFIG", QByteArray::fromStdString(ini.string()));
    Session session;
    prepareSession(session, temp.path(), 0x12345678);
    qputenv("TARVEL_CONFIG", old);
    EXPECT_EQ(session.configPath, ini);
    EXPECT_TRUE(session.config.gameFolder.empty());
    EXPECT_EQ(session.config.mosaic, 0);
    EXPECT_TRUE(session.config.teamSwap);
    EXPECT_FALSE(session.helpExists);
    EXPECT_EQ(session.workingFolder, workingFolderPath(0x12345678));
    Rand expected(0x12345678);
    EXPECT_EQ(session.rand(), expected());
}

TEST(Startup, CommandLineCarSetIsTheWholeRestOfTheLine) {
    EXPECT_EQ(commandLineCarSet({"tarvel"}), "");
    EXPECT_EQ(commandLineCarSet({"tarvel", "/sets/My", "Set.GP2"}), "/sets/My Set.GP2");
}

}  // namespace
}  // namespace tarvel::test

namespace tarvel::test {
namespace {

QPushButton* popupButton(CarBitmapPopup& popup, const QString& text) {
    for (QPushButton* b : popup.findChildren<QPushButton*>())
        if (b->text() == text) return b;
    return nullptr;
}

TEST(CarBitmapPopup, ButtonsPostTheirCommandsAndFollowTheCommandStates) {
    CarBitmapPopup popup([](int id) { return id != command::CarImport; });
    ASSERT_NE(popupButton(popup, "Import"), nullptr);
    EXPECT_FALSE(popupButton(popup, "Import")->isEnabled());
    EXPECT_TRUE(popupButton(popup, "Export")->isEnabled());
    popup.layout()->activate();
    for (QPushButton* button : popup.findChildren<QPushButton*>()) {   // whole texts, at least 100 wide
        EXPECT_GE(button->width(), std::max(100, button->sizeHint().width()));
        EXPECT_GE(button->height(), button->sizeHint().height());
    }
    popupButton(popup, "Save as")->click();
    EXPECT_EQ(popup.chosen(), command::CarSaveAs);
    EXPECT_EQ(popup.result(), QDialog::Accepted);
    CarBitmapPopup closing([](int) { return true; });
    popupButton(closing, "Close")->click();
    EXPECT_EQ(closing.chosen(), 0);
}

}  // namespace
}  // namespace tarvel::test
