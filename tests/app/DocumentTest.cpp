// The document commands: title, save questions, Save / Save as, Open, Open in
// a new window, Autofile, New editor window and dropping files.

#include "AppTestSupport.h"

#include "carset/CarSetFile.h"
#include "shell/CommandIds.h"
#include "carset/TeamList.h"

#include <QAction>
#include <QCloseEvent>
#include <QLineEdit>
#include <QTest>
#include <QUrl>

#include <fstream>

namespace tarvel::test {
namespace {

void renameTeam(MainWindow& w, const QString& name) {
    w.panel().teamName()->selectAll();
    QTest::keyClicks(w.panel().teamName(), name);
}

std::string teamName(MainWindow& w, int team) { return fieldText(w.document().set().team(team).name); }

class DocumentTest : public AppTest {
protected:
    void SetUp() override {
        configureGame();
        window().startUp({});
        ASSERT_EQ(asker.configureCalls, 0);
    }
    // A saved set named NAME.GP2 whose first team is called "Saved".
    void saveNamed(const std::string& name) {
        renameTeam(window(), "Saved");
        asker.files.push_back(path(name));
        ASSERT_TRUE(saveCarSetFileAs(window().bench()));
        ASSERT_FALSE(window().document().isDirty());
    }
};

TEST_F(DocumentTest, TitleCarriesFileNameAndNonZeroAssetCountsInOrder) {
    saveNamed("NAME.GP2");
    MainWindow& w = window();
    EXPECT_EQ(w.windowTitle().toStdString(), "Tarvel-32 v1.86 - [ NAME.GP2 ]");
    change([](CarSet& s) {
        s.wheelCount = 4;
        s.jamCount = 12;
    });
    EXPECT_EQ(w.windowTitle().toStdString(), "Tarvel-32 v1.86 - [ NAME.GP2 ] - W(4) - J(12)");
    change([](CarSet& s) {
        s.soundCount = 3;
        s.cockpitCount = 1;
        s.menuHelmetCount = 28;
    });
    EXPECT_EQ(w.windowTitle().toStdString(),
              "Tarvel-32 v1.86 - [ NAME.GP2 ] - W(4) - C(1) - J(12) - H(28) - S(3)");
}

TEST_F(DocumentTest, EditsMarkTheSetDirty) {
    EXPECT_FALSE(window().document().isDirty());
    renameTeam(window(), "Edited");
    EXPECT_TRUE(window().document().isDirty());
    EXPECT_EQ(teamName(window(), 0), "Edited");
    EXPECT_EQ(panel().teamList()->item(0)->text(), "Edited");
}

TEST_F(DocumentTest, NamesCrossTheWindowAsWindows1252) {
    renameTeam(window(), QString::fromUtf8("Équipe"));
    EXPECT_EQ(teamName(window(), 0), std::string("\xC9quipe"));
}

TEST_F(DocumentTest, SaveOnANeverSavedSetActsAsSaveAs) {
    renameTeam(window(), "Fresh");
    asker.files.push_back(path("FRESH.GP2"));
    EXPECT_FALSE(window().action(command::Save)->isEnabled());
    EXPECT_TRUE(saveCarSetFile(window().bench()));
    ASSERT_EQ(asker.fileTitles.size(), 1u);
    EXPECT_EQ(asker.fileTitles[0], "Save Car Set As...");
    EXPECT_TRUE(std::filesystem::exists(folder() / "FRESH.GP2"));
    EXPECT_TRUE(window().document().hasFile());
    EXPECT_FALSE(window().document().isDirty());
    EXPECT_TRUE(window().action(command::Save)->isEnabled());
    // The second Save writes over the file without asking.
    renameTeam(window(), "Again");
    window().runCommand(command::Save);
    EXPECT_EQ(asker.fileTitles.size(), 1u);
    CarSet reread;
    ASSERT_TRUE(loadCarSet(reread, folder() / "FRESH.GP2", CarSetFileOptions{}));
    EXPECT_EQ(fieldText(reread.team(0).name), "Again");
}

TEST_F(DocumentTest, SaveAsOntoAnExistingFileAsksFirst) {
    std::ofstream(folder() / "TAKEN.GP2") << "old";
    asker.files.push_back(path("TAKEN.GP2"));
    asker.answers.push_back(Answer::No);
    EXPECT_FALSE(saveCarSetFileAs(window().bench()));
    EXPECT_TRUE(asker.shown(MessageId::ReplaceExistingFile));
    EXPECT_FALSE(window().document().hasFile());
    asker.files.push_back(path("TAKEN.GP2"));
    asker.answers.push_back(Answer::Yes);
    EXPECT_TRUE(saveCarSetFileAs(window().bench()));
    CarSet reread;
    EXPECT_TRUE(loadCarSet(reread, folder() / "TAKEN.GP2", CarSetFileOptions{}));
}

TEST_F(DocumentTest, NewAsksWithTheUpperCasedFileTitle) {
    saveNamed("mixed.gp2");
    renameTeam(window(), "Changed");
    asker.answers.push_back(Answer::Cancel);
    window().runCommand(command::NewCarSet);
    EXPECT_EQ(asker.lastText(), "Save Changes to MIXED.GP2?");
    EXPECT_EQ(teamName(window(), 0), "Changed");
    EXPECT_TRUE(window().document().isDirty());
}

TEST_F(DocumentTest, NewWithNoAnswerDropsTheChanges) {
    renameTeam(window(), "Changed");
    asker.answers.push_back(Answer::No);
    window().runCommand(command::NewCarSet);
    EXPECT_EQ(asker.lastText(), "Save Changes to Car Set?");
    EXPECT_EQ(teamName(window(), 0), "Team Name");
    EXPECT_FALSE(window().document().isDirty());
    EXPECT_FALSE(window().document().hasFile());
}

TEST_F(DocumentTest, NewWithYesSavesFirst) {
    saveNamed("KEEP.GP2");
    renameTeam(window(), "Kept");
    asker.answers.push_back(Answer::Yes);
    window().runCommand(command::NewCarSet);
    EXPECT_EQ(teamName(window(), 0), "Team Name");
    CarSet reread;
    ASSERT_TRUE(loadCarSet(reread, folder() / "KEEP.GP2", CarSetFileOptions{}));
    EXPECT_EQ(fieldText(reread.team(0).name), "Kept");
}

TEST_F(DocumentTest, NewWithYesOnAnUnnamedSetWhoseSaveIsCancelledStops) {
    renameTeam(window(), "Unnamed");
    asker.answers.push_back(Answer::Yes);   // save, but the file dialog is cancelled
    window().runCommand(command::NewCarSet);
    EXPECT_EQ(teamName(window(), 0), "Unnamed");
}

TEST_F(DocumentTest, OpenAsksAndHonoursEveryAnswer) {
    saveNamed("OTHER.GP2");
    // Cancel: no file dialog, nothing changes.
    renameTeam(window(), "Dirty");
    asker.answers.push_back(Answer::Cancel);
    window().runCommand(command::Open);
    EXPECT_TRUE(asker.fileTitles.size() == 1u);   // only the Save as of saveNamed
    EXPECT_EQ(teamName(window(), 0), "Dirty");
    // No: the file is opened and the change is gone.
    asker.answers.push_back(Answer::No);
    asker.files.push_back(path("OTHER.GP2"));
    window().runCommand(command::Open);
    EXPECT_EQ(asker.fileTitles.back(), "Open Car Set");
    EXPECT_EQ(teamName(window(), 0), "Saved");
    EXPECT_FALSE(window().document().isDirty());
    // Yes: saved into OTHER.GP2, then OTHER.GP2 opened again.
    renameTeam(window(), "Yes");
    asker.answers.push_back(Answer::Yes);
    asker.files.push_back(path("OTHER.GP2"));
    window().runCommand(command::Open);
    EXPECT_EQ(teamName(window(), 0), "Yes");
    EXPECT_FALSE(window().document().isDirty());
}

TEST_F(DocumentTest, CloseAsksAndCancelKeepsTheWindow) {
    renameTeam(window(), "Open");
    asker.answers.push_back(Answer::Cancel);
    QCloseEvent cancelled;
    QApplication::sendEvent(&window(), &cancelled);
    EXPECT_FALSE(cancelled.isAccepted());
    asker.answers.push_back(Answer::No);
    QCloseEvent dropped;
    QApplication::sendEvent(&window(), &dropped);
    EXPECT_TRUE(dropped.isAccepted());
    asker.answers.push_back(Answer::Yes);
    asker.files.push_back(path("CLOSE.GP2"));
    QCloseEvent saved;
    QApplication::sendEvent(&window(), &saved);
    EXPECT_TRUE(saved.isAccepted());
    EXPECT_TRUE(std::filesystem::exists(folder() / "CLOSE.GP2"));
}

TEST_F(DocumentTest, CleanSetClosesWithoutQuestion) {
    QCloseEvent event;
    QApplication::sendEvent(&window(), &event);
    EXPECT_TRUE(event.isAccepted());
    EXPECT_TRUE(asker.texts.empty());
}

TEST_F(DocumentTest, OpeningAFileThatIsNotACarSetLeavesTheSetAsItWas) {
    std::ofstream(folder() / "JUNK.GP2") << "this is not a car set at all, just some text that is long enough";
    renameTeam(window(), "Mine");
    asker.answers.push_back(Answer::No);
    asker.files.push_back(path("JUNK.GP2"));
    window().runCommand(command::Open);
    ASSERT_FALSE(asker.ids.empty());
    EXPECT_EQ(asker.ids.back(), MessageId::NotValidCarSet);
    EXPECT_EQ(teamName(window(), 0), "Mine");
    EXPECT_FALSE(window().document().hasFile());
}

TEST_F(DocumentTest, OpenInNewWindowChecksTheFileFirst) {
    std::ofstream(folder() / "JUNK.GP2") << "this is not a car set at all, just some text that is long enough";
    asker.files.push_back(path("JUNK.GP2"));
    window().runCommand(command::OpenInNewWindow);
    EXPECT_EQ(asker.lastText(), "File is not a valid Tarvel Car Set.");
    EXPECT_TRUE(started.empty());

    saveNamed("GOOD.GP2");
    asker.files.push_back(path("GOOD.GP2"));
    window().runCommand(command::OpenInNewWindow);
    ASSERT_EQ(started.size(), 1u);
    EXPECT_EQ(started[0].arguments, QStringList{path("GOOD.GP2")});

    startSucceeds = false;
    asker.files.push_back(path("GOOD.GP2"));
    window().runCommand(command::OpenInNewWindow);
    EXPECT_EQ(asker.lastText(), "Failed to launch new editor window.");
}

TEST_F(DocumentTest, NewEditorWindowStartsTheProgramWithoutArguments) {
    window().runCommand(command::NewEditorWindow);
    ASSERT_EQ(started.size(), 1u);
    EXPECT_TRUE(started[0].arguments.isEmpty());
    EXPECT_EQ(started[0].program, window().programPath());
    startSucceeds = false;
    window().runCommand(command::NewEditorWindow);
    EXPECT_EQ(asker.lastText(), "Failed to launch new editor window.");
}

TEST_F(DocumentTest, AutofileEntriesFollowTheDocument) {
    MainWindow& w = window();
    QAction* setAs = w.action(command::AutofileSetAs);
    QAction* remove = w.action(command::AutofileRemove);
    QAction* third = w.action(command::AutofileOpen);
    EXPECT_FALSE(setAs->isEnabled());
    EXPECT_FALSE(remove->isEnabled());
    EXPECT_EQ(third->text(), "None...");
    EXPECT_FALSE(third->isEnabled());

    saveNamed("AUTO.GP2");
    EXPECT_TRUE(setAs->isEnabled());
    w.runCommand(command::AutofileSetAs);
    EXPECT_TRUE(remove->isEnabled());
    EXPECT_EQ(third->text(), "AUTO.GP2");
    EXPECT_TRUE(third->isEnabled());
    Session reread;
    reread.configPath = session.configPath;
    reread.readConfiguration();
    EXPECT_EQ(reread.config.autoFile, (folder() / "AUTO.GP2").string());

    w.runCommand(command::AutofileRemove);
    EXPECT_FALSE(remove->isEnabled());
    EXPECT_TRUE(setAs->isEnabled());   // the set still has a file
    EXPECT_EQ(third->text(), "None...");
    EXPECT_FALSE(third->isEnabled());
    reread.readConfiguration();
    EXPECT_TRUE(reread.config.autoFile.empty());
}

TEST_F(DocumentTest, RemovingTheAutofileWithNoFileOpenLeavesSetAsDisabled) {
    saveNamed("AUTO.GP2");
    window().runCommand(command::AutofileSetAs);
    window().runCommand(command::NewCarSet);   // clean: no question
    window().runCommand(command::AutofileRemove);
    EXPECT_FALSE(window().action(command::AutofileSetAs)->isEnabled());
    EXPECT_FALSE(window().action(command::AutofileRemove)->isEnabled());
}

TEST_F(DocumentTest, AutofileOpenAsksAboutChangesAndReportsAMissingFile) {
    saveNamed("AUTO.GP2");
    window().runCommand(command::AutofileSetAs);
    renameTeam(window(), "Unsaved");
    asker.answers.push_back(Answer::Cancel);
    window().runCommand(command::AutofileOpen);
    EXPECT_EQ(teamName(window(), 0), "Unsaved");
    asker.answers.push_back(Answer::No);
    window().runCommand(command::AutofileOpen);
    EXPECT_EQ(teamName(window(), 0), "Saved");
    // Yes saves into the open file (the Autofile itself), which is then read again.
    renameTeam(window(), "Resaved");
    asker.answers.push_back(Answer::Yes);
    window().runCommand(command::AutofileOpen);
    EXPECT_EQ(teamName(window(), 0), "Resaved");
    EXPECT_FALSE(window().document().isDirty());
    EXPECT_TRUE(asker.answers.empty());

    std::filesystem::remove(folder() / "AUTO.GP2");
    window().runCommand(command::AutofileOpen);
    EXPECT_TRUE(asker.shown(MessageId::CouldntOpenCarSetFile));
    EXPECT_FALSE(window().action(command::AutofileRemove)->isEnabled());
    EXPECT_EQ(window().action(command::AutofileOpen)->text(), "None...");
    EXPECT_FALSE(window().action(command::AutofileOpen)->isEnabled());
}

TEST_F(AppTest, StartUpOpensTheAutofileUnlessACarSetWasNamedAndOpened) {
    const std::string game = configureGame();
    {
        MainWindow& w = window();
        renameTeam(w, "AutoTeam");
        asker.files.push_back(path("AUTO.GP2"));
        ASSERT_TRUE(saveCarSetFileAs(w.bench()));
        renameTeam(w, "Named");
        asker.files.push_back(path("NAMED.GP2"));
        ASSERT_TRUE(saveCarSetFileAs(w.bench()));
    }
    writeConfig("[Files]\nLocate GP2.EXE=" + game + "\nAutoFile=" + (folder() / "AUTO.GP2").string() + "\n");
    MainWindow automatic(session, asker);
    automatic.startUp({});
    EXPECT_EQ(fieldText(automatic.document().set().team(0).name), "AutoTeam");
    EXPECT_TRUE(automatic.action(command::AutofileRemove)->isEnabled());
    EXPECT_EQ(automatic.action(command::AutofileOpen)->text(), "AUTO.GP2");

    MainWindow named(session, asker);
    named.startUp(path("NAMED.GP2"));
    EXPECT_EQ(fieldText(named.document().set().team(0).name), "Named");
    EXPECT_TRUE(named.action(command::AutofileRemove)->isEnabled());
    EXPECT_EQ(named.action(command::AutofileOpen)->text(), "AUTO.GP2");
    EXPECT_FALSE(asker.shown(MessageId::CouldntOpenCarSetFile));

    // A named set that fails to open falls back to the Autofile.
    MainWindow fallback(session, asker);
    fallback.startUp(path("NOSUCH.GP2"));
    EXPECT_TRUE(asker.shown(MessageId::CouldntOpenCarSetFile));
    EXPECT_EQ(fieldText(fallback.document().set().team(0).name), "AutoTeam");
    EXPECT_EQ(fallback.windowTitle().toStdString(), "Tarvel-32 v1.86 - [ AUTO.GP2 ]");
}

TEST_F(AppTest, StartUpWithABrokenAutofileGreysItsEntries) {
    const std::string game = configureGame();
    writeConfig("[Files]\nLocate GP2.EXE=" + game + "\nAutoFile=" + (folder() / "GONE.GP2").string() + "\n");
    window().startUp({});
    EXPECT_TRUE(asker.shown(MessageId::CouldntOpenCarSetFile));
    EXPECT_FALSE(window().action(command::AutofileRemove)->isEnabled());
    EXPECT_EQ(window().action(command::AutofileOpen)->text(), "None...");
}

TEST_F(DocumentTest, DroppingACarSetOpensIt) {
    saveNamed("DROP.GP2");
    window().runCommand(command::NewCarSet);
    renameTeam(window(), "Unsaved");
    asker.answers.push_back(Answer::Cancel);
    EXPECT_FALSE(window().openDropped({QUrl::fromLocalFile(path("DROP.GP2"))}));
    EXPECT_EQ(teamName(window(), 0), "Unsaved");
    asker.answers.push_back(Answer::No);
    EXPECT_TRUE(window().openDropped({QUrl::fromLocalFile(path("DROP.GP2"))}));
    EXPECT_EQ(teamName(window(), 0), "Saved");
    EXPECT_TRUE(window().document().hasFile());
}

}  // namespace
}  // namespace tarvel::test
