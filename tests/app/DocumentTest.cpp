// The document commands: title, save questions, Save / Save as, Open, Open in
// a new window, Autofile, New editor window and dropping files.

#include "AppTestSupport.h"

#include "carset/CarSetFile.h"
#include "carset/TeamList.h"
#include "shell/CommandIds.h"

#include <QAction>
#include <QCloseEvent>
#include <QLineEdit>
#include <QTest>
#include <QUrl>

#include <fstream>

namespace tarvel::test {
namespace {

class DocumentTest : public AppTest {
protected:
    void SetUp() override {
        configureGame();
        window().startUp({});
        ASSERT_EQ(asker.configureCalls, 0);
    }
    void renameTeam(const QString& name) {
        panel().teamName()->selectAll();
        QTest::keyClicks(panel().teamName(), name);
    }
    std::string teamName() { return fieldText(set().team(0).name); }
    // A saved set named NAME whose first team is called "Saved".
    void saveNamed(const std::string& name) {
        renameTeam("Saved");
        asker.files.push_back(path(name));
        ASSERT_TRUE(saveCarSetFileAs(window().bench()));
        ASSERT_FALSE(window().document().isDirty());
    }
    std::string savedTeamName(const std::string& name) {
        CarSet reread;
        EXPECT_TRUE(loadCarSet(reread, folder() / name, CarSetFileOptions{}));
        return fieldText(reread.team(0).name);
    }
    void writeJunk(const std::string& name) {
        std::ofstream(folder() / name) << "this is not a car set at all, just some text that is long enough";
    }
};

TEST_F(DocumentTest, EditsMarkTheSetDirtyAndTheTitleFollows) {
    saveNamed("NAME.GP2");
    EXPECT_EQ(window().windowTitle().toStdString(), "Tarvel-32 v1.86 - [ NAME.GP2 ]");
    renameTeam(QString::fromUtf8("Équipe"));
    EXPECT_TRUE(window().document().isDirty());
    EXPECT_EQ(teamName(), std::string("\xC9quipe"));   // Windows-1252 in the model
    EXPECT_EQ(panel().teamList()->item(0)->text(), QString::fromUtf8("Équipe"));
    change([](CarSet& s) {
        s.wheelCount = 4;
        s.jamCount = 12;
    });
    EXPECT_EQ(window().windowTitle().toStdString(), "Tarvel-32 v1.86 - [ NAME.GP2 ] - W(4) - J(12)");
}

TEST_F(DocumentTest, SaveWithoutAFileIsSaveAsAndSaveAsAsksBeforeReplacing) {
    renameTeam("Fresh");
    asker.files.push_back(path("FRESH.GP2"));
    EXPECT_FALSE(window().action(command::Save)->isEnabled());
    EXPECT_TRUE(saveCarSetFile(window().bench()));
    EXPECT_EQ(asker.fileTitles, std::vector<QString>{"Save Car Set As..."});
    EXPECT_TRUE(window().document().hasFile());
    EXPECT_FALSE(window().document().isDirty());
    EXPECT_TRUE(window().action(command::Save)->isEnabled());
    // The second Save writes over the file without asking.
    renameTeam("Again");
    window().runCommand(command::Save);
    EXPECT_EQ(asker.fileTitles.size(), 1u);
    EXPECT_EQ(savedTeamName("FRESH.GP2"), "Again");

    for (Answer answer : {Answer::No, Answer::Yes}) {
        asker.files.push_back(path("FRESH.GP2"));
        asker.answers.push_back(answer);
        renameTeam(answer == Answer::Yes ? "Replaced" : "Kept");
        EXPECT_EQ(saveCarSetFileAs(window().bench()), answer == Answer::Yes);
        EXPECT_EQ(asker.ids.back(), MessageId::ReplaceExistingFile);
    }
    EXPECT_EQ(savedTeamName("FRESH.GP2"), "Replaced");
}

TEST_F(DocumentTest, NewAsksAboutChangesAndHonoursEveryAnswer) {
    struct Case {
        const char* file;   // saved under this name first, or never saved
        Answer answer;
        const char* question;
        bool cleared;       // New went ahead
    };
    const Case cases[] = {
        {"cancel.gp2", Answer::Cancel, "Save Changes to CANCEL.GP2?", false},
        {nullptr, Answer::No, "Save Changes to Car Set?", true},
        {"yes.gp2", Answer::Yes, "Save Changes to YES.GP2?", true},
        // Yes on a set without a file: Save as, whose dialog is cancelled, stops New.
        {nullptr, Answer::Yes, "Save Changes to Car Set?", false},
    };
    for (const Case& c : cases) {
        asker.answers.push_back(Answer::No);   // leave a clean, unnamed set from the case before
        window().runCommand(command::NewCarSet);
        asker.answers.clear();
        if (c.file) saveNamed(c.file);
        renameTeam("Changed");
        asker.answers.push_back(c.answer);
        window().runCommand(command::NewCarSet);
        EXPECT_EQ(asker.lastText(), c.question);
        EXPECT_EQ(teamName(), c.cleared ? "Team Name" : "Changed") << c.question;
        EXPECT_EQ(window().document().isDirty(), !c.cleared);
        if (c.answer == Answer::Yes && c.file) {
            EXPECT_EQ(savedTeamName(c.file), "Changed");
        }
    }
}

TEST_F(DocumentTest, OpenAsksAndHonoursEveryAnswer) {
    saveNamed("OTHER.GP2");
    renameTeam("Dirty");
    asker.answers.push_back(Answer::Cancel);
    window().runCommand(command::Open);
    EXPECT_EQ(asker.fileTitles.size(), 1u);   // only the Save as of saveNamed
    EXPECT_EQ(teamName(), "Dirty");
    asker.answers.push_back(Answer::No);
    asker.files.push_back(path("OTHER.GP2"));
    window().runCommand(command::Open);
    EXPECT_EQ(asker.fileTitles.back(), "Open Car Set");
    EXPECT_EQ(teamName(), "Saved");
    // Yes: saved into OTHER.GP2, then OTHER.GP2 opened again.
    renameTeam("Yes");
    asker.answers.push_back(Answer::Yes);
    asker.files.push_back(path("OTHER.GP2"));
    window().runCommand(command::Open);
    EXPECT_EQ(teamName(), "Yes");
    EXPECT_FALSE(window().document().isDirty());
    // A file that is not a car set leaves the set as it was.
    writeJunk("JUNK.GP2");
    renameTeam("Mine");
    asker.answers.push_back(Answer::No);
    asker.files.push_back(path("JUNK.GP2"));
    window().runCommand(command::Open);
    EXPECT_EQ(asker.ids.back(), MessageId::NotValidCarSet);
    EXPECT_EQ(teamName(), "Mine");
}

TEST_F(DocumentTest, CloseAsksOnlyForADirtySet) {
    QCloseEvent clean;
    QApplication::sendEvent(&window(), &clean);
    EXPECT_TRUE(clean.isAccepted());
    EXPECT_TRUE(asker.texts.empty());
    renameTeam("Open");
    for (Answer answer : {Answer::Cancel, Answer::No, Answer::Yes}) {
        asker.answers.push_back(answer);
        if (answer == Answer::Yes) asker.files.push_back(path("CLOSE.GP2"));
        QCloseEvent event;
        QApplication::sendEvent(&window(), &event);
        EXPECT_EQ(event.isAccepted(), answer != Answer::Cancel);
    }
    EXPECT_EQ(savedTeamName("CLOSE.GP2"), "Open");
}

TEST_F(DocumentTest, NewWindowsStartTheProgramAndOpenInNewWindowChecksTheFile) {
    window().runCommand(command::NewEditorWindow);
    ASSERT_EQ(started.size(), 1u);
    EXPECT_TRUE(started[0].arguments.isEmpty());
    EXPECT_EQ(started[0].program, window().programPath());

    writeJunk("JUNK.GP2");
    asker.files.push_back(path("JUNK.GP2"));
    window().runCommand(command::OpenInNewWindow);
    EXPECT_EQ(asker.lastText(), "File is not a valid Tarvel Car Set.");
    EXPECT_EQ(started.size(), 1u);

    saveNamed("GOOD.GP2");
    asker.files.push_back(path("GOOD.GP2"));
    window().runCommand(command::OpenInNewWindow);
    ASSERT_EQ(started.size(), 2u);
    EXPECT_EQ(started[1].arguments, QStringList{path("GOOD.GP2")});

    startSucceeds = false;
    for (int id : {command::NewEditorWindow, command::OpenInNewWindow}) {
        asker.files.push_back(path("GOOD.GP2"));
        window().runCommand(id);
        EXPECT_EQ(asker.lastText(), "Failed to launch new editor window.");
    }
}

TEST_F(DocumentTest, AutofileEntriesFollowTheDocumentAndTheConfiguration) {
    MainWindow& w = window();
    QAction* setAs = w.action(command::AutofileSetAs);
    QAction* remove = w.action(command::AutofileRemove);
    QAction* third = w.action(command::AutofileOpen);
    auto expectEntries = [&](bool setAsOn, bool removeOn, const QString& thirdText) {
        EXPECT_EQ(setAs->isEnabled(), setAsOn);
        EXPECT_EQ(remove->isEnabled(), removeOn);
        EXPECT_EQ(third->text(), thirdText);
        EXPECT_EQ(third->isEnabled(), removeOn);
    };
    expectEntries(false, false, "None...");
    saveNamed("AUTO.GP2");
    w.runCommand(command::AutofileSetAs);
    expectEntries(true, true, "AUTO.GP2");
    Session reread;
    reread.configPath = session.configPath;
    reread.readConfiguration();
    EXPECT_EQ(reread.config.autoFile, (folder() / "AUTO.GP2").string());

    // Opening it asks about changes first.
    renameTeam("Unsaved");
    asker.answers.push_back(Answer::Cancel);
    w.runCommand(command::AutofileOpen);
    EXPECT_EQ(teamName(), "Unsaved");
    asker.answers.push_back(Answer::No);
    w.runCommand(command::AutofileOpen);
    EXPECT_EQ(teamName(), "Saved");

    w.runCommand(command::AutofileRemove);
    expectEntries(true, false, "None...");
    reread.readConfiguration();
    EXPECT_TRUE(reread.config.autoFile.empty());
    // Without a file open, Set as stays off.
    w.runCommand(command::NewCarSet);
    expectEntries(false, false, "None...");

    // An Autofile that has gone greys the entries when it is opened.
    w.runCommand(command::Open);   // no file chosen
    asker.files.push_back(path("AUTO.GP2"));
    w.runCommand(command::Open);
    w.runCommand(command::AutofileSetAs);
    std::filesystem::remove(folder() / "AUTO.GP2");
    w.runCommand(command::AutofileOpen);
    EXPECT_TRUE(asker.shown(MessageId::CouldntOpenCarSetFile));
    expectEntries(true, false, "None...");
}

TEST_F(AppTest, StartUpOpensTheAutofileUnlessACarSetWasNamedAndOpened) {
    const std::string game = configureGame();
    for (const char* name : {"AUTO.GP2", "NAMED.GP2"}) {
        change([&](CarSet& s) { setFieldText(s.team(0).name, name); });
        asker.files.push_back(path(name));
        ASSERT_TRUE(saveCarSetFileAs(window().bench()));
    }
    writeConfig("[Files]\nLocate GP2.EXE=" + game + "\nAutoFile=" + (folder() / "AUTO.GP2").string() + "\n");
    struct Case {
        const char* commandLine;
        const char* opened;
    };
    // A named set that fails to open falls back to the Autofile.
    for (const Case& c : {Case{"", "AUTO.GP2"}, Case{"NAMED.GP2", "NAMED.GP2"}, Case{"NOSUCH.GP2", "AUTO.GP2"}}) {
        asker.ids.clear();
        MainWindow w(session, asker);
        w.startUp(*c.commandLine ? path(c.commandLine) : QString());
        EXPECT_EQ(fieldText(w.document().set().team(0).name), c.opened);
        EXPECT_TRUE(w.action(command::AutofileRemove)->isEnabled());
        EXPECT_EQ(w.action(command::AutofileOpen)->text(), "AUTO.GP2");
        EXPECT_EQ(asker.shown(MessageId::CouldntOpenCarSetFile), std::string(c.commandLine) == "NOSUCH.GP2");
    }
    writeConfig("[Files]\nLocate GP2.EXE=" + game + "\nAutoFile=" + (folder() / "GONE.GP2").string() + "\n");
    MainWindow broken(session, asker);
    broken.startUp({});
    EXPECT_FALSE(broken.action(command::AutofileRemove)->isEnabled());
    EXPECT_EQ(broken.action(command::AutofileOpen)->text(), "None...");
}

TEST_F(DocumentTest, DroppingACarSetOpensIt) {
    saveNamed("DROP.GP2");
    window().runCommand(command::NewCarSet);
    renameTeam("Unsaved");
    asker.answers.push_back(Answer::Cancel);
    EXPECT_FALSE(window().openDropped({QUrl::fromLocalFile(path("DROP.GP2"))}));
    EXPECT_EQ(teamName(), "Unsaved");
    asker.answers.push_back(Answer::No);
    EXPECT_TRUE(window().openDropped({QUrl::fromLocalFile(path("DROP.GP2"))}));
    EXPECT_EQ(teamName(), "Saved");
    EXPECT_TRUE(window().document().hasFile());
}

}  // namespace
}  // namespace tarvel::test
