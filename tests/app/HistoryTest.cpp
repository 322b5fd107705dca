// Undo and redo from the Edit menu and the keyboard, and the recent car sets.

#include "AppTestSupport.h"

#include "carset/TeamList.h"
#include "shell/CommandIds.h"

#include <QAction>
#include <QMenu>
#include <QTest>

namespace tarvel::test {
namespace {

class HistoryTest : public AppTest {
protected:
    void SetUp() override {
        configureGame();
        window().startUp({});
    }
    QAction* undo() { return window().action(command::Undo); }
    QAction* redo() { return window().action(command::Redo); }
    std::string team(int slot) { return fieldText(set().team(slot).name); }
    // The entries of File > Recent Car Sets as the menu shows them.
    QStringList recentEntries() {
        QMenu* menu = window().action(command::RecentCarSets)->menu();
        emit menu->aboutToShow();
        QStringList texts;
        for (QAction* entry : menu->actions()) texts << entry->text();
        return texts;
    }
};

TEST_F(HistoryTest, EditMenuNamesTheStepsAndTheKeysWalkThem) {
    EXPECT_FALSE(undo()->isEnabled());
    EXPECT_FALSE(redo()->isEnabled());
    EXPECT_TRUE(undo()->shortcuts().contains(QKeySequence(Qt::CTRL | Qt::Key_Z)));
    EXPECT_TRUE(redo()->shortcuts().contains(QKeySequence(Qt::CTRL | Qt::Key_Y)));

    const std::string first = team(0);
    panel().teamName()->selectAll();
    QTest::keyClicks(panel().teamName(), "Abc");   // typing in one field is one step
    change([](CarSet& s) { std::swap(s.teams[2], s.teams[6]); }, "Swap teams 3 and 7");
    change([](CarSet& s) { s.team(4).powerRace = 1234; }, "Car Performance Editor");
    EXPECT_EQ(undo()->text(), "&Undo Car Performance Editor");

    undo()->trigger();
    undo()->trigger();
    EXPECT_EQ(undo()->text(), "&Undo Rename team 1");
    EXPECT_EQ(redo()->text(), "&Redo Swap teams 3 and 7");
    EXPECT_EQ(team(0), "Abc");
    redo()->trigger();
    EXPECT_NE(set().team(4).powerRace, 1234);
    EXPECT_EQ(redo()->text(), "&Redo Car Performance Editor");
    undo()->trigger();
    undo()->trigger();
    EXPECT_EQ(team(0), first);
    EXPECT_EQ(panel().teamName()->text().toStdString(), first);   // the window follows
    EXPECT_FALSE(window().document().isDirty());                   // back where the set was opened
    EXPECT_FALSE(undo()->isEnabled());
    EXPECT_EQ(undo()->text(), "&Undo");

    // The keys reach the commands from anywhere in the window.
    window().show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    panel().teamList()->setFocus();
    QTest::keyClick(&window(), Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(team(0), "Abc");
    QTest::keyClick(&window(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(team(0), first);
    QTest::keyClick(&window(), Qt::Key_O, Qt::ControlModifier);   // the open dialog, cancelled
    EXPECT_EQ(asker.fileTitles, std::vector<QString>{"Open Car Set"});
}

TEST_F(HistoryTest, RecentCarSetsKeepTheNewestAndOfferToForgetMissingOnes) {
    for (const char* name : {"A.GP2", "B.GP2", "C.GP2"}) {
        asker.files.push_back(path(name));
        ASSERT_TRUE(saveCarSetFileAs(window().bench()));
    }
    ASSERT_TRUE(loadCarSetFile(window().bench(), path("A.GP2")));
    const std::vector<std::string> expected = {path("A.GP2").toStdString(), path("C.GP2").toStdString(),
                                               path("B.GP2").toStdString()};
    EXPECT_EQ(session.recentFiles, expected);
    const QStringList entries = recentEntries();
    ASSERT_EQ(entries.size(), 3);
    EXPECT_TRUE(entries[0].startsWith("&1 ") && entries[0].endsWith("A.GP2"));
    EXPECT_TRUE(entries[2].startsWith("&3 ") && entries[2].endsWith("B.GP2"));

    // The list is in the configuration file for the next start.
    Session next;
    next.configPath = session.configPath;
    next.readConfiguration();
    EXPECT_EQ(next.recentFiles, expected);

    // A set that is gone is not opened; "No" keeps it listed, "Yes" takes it out.
    std::filesystem::remove(folder() / "C.GP2");
    QMenu* menu = window().action(command::RecentCarSets)->menu();
    for (Answer answer : {Answer::No, Answer::Yes}) {
        asker.answers.push_back(answer);
        recentEntries();
        menu->actions()[1]->trigger();
        EXPECT_EQ(asker.ids.back(), MessageId::RecentFileMissing);
        EXPECT_EQ(session.recentFiles.size(), answer == Answer::Yes ? 2u : 3u);
    }
    EXPECT_EQ(window().document().path(), path("A.GP2"));
}

}  // namespace
}  // namespace tarvel::test
