// Start-up and the configuration dialog.

#include "AppTestSupport.h"

#include "shell/CommandIds.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QCheckBox>
#include <QLabel>
#include <QRadioButton>
#include <QSlider>

#include <fstream>

namespace tarvel::test {
namespace {

bool gameCommandsEnabled(MainWindow& w) {
    return w.action(command::ImportFromGame)->isEnabled() && w.action(command::ExportToGame)->isEnabled() &&
           w.action(command::LaunchGame)->isEnabled();
}

// Start-up offers the configuration unless the configured game's release is known.
TEST_F(AppTest, StartUpOffersTheConfigurationUnlessTheGameIsKnown) {
    std::filesystem::create_directories(folder() / "old");
    std::ofstream(folder() / "old" / "GP2.EXE") << "not the game";
    struct Case {
        const char* what;
        std::function<void()> configure;
        int version;
    };
    const Case cases[] = {
        {"no configuration file", [&] { session.readConfiguration(); }, -1},
        {"a known game", [&] { configureGame(3); }, 3},
        {"an unknown release", [&] { writeConfig("[Files]\nLocate GP2.EXE=" + (folder() / "old").string() + "/\n"); },
         -1},
    };
    for (const Case& c : cases) {
        c.configure();
        asker.configureCalls = 0;
        MainWindow w(session, asker);
        w.startUp({});
        EXPECT_EQ(session.gameVersion, c.version) << c.what;
        EXPECT_EQ(asker.configureCalls, c.version < 0 ? 1 : 0) << c.what;
        EXPECT_EQ(gameCommandsEnabled(w), c.version >= 0) << c.what;
        EXPECT_EQ(w.windowTitle().toStdString(), "Tarvel-32 v1.86 - [ ..... ]");
    }
    EXPECT_FALSE(session.config.gameFolder.empty());   // an unknown release keeps its folder
}

// The dialog takes GP2.EXE in any case and detects its release; it refuses other
// names and missing files, and says so when the release is unknown.
TEST_F(AppTest, ConfigurationDialogChecksTheExecutable) {
    const std::string game = makeTestGame(folder() / "lower", GameFixtureOptions{2, true});
    std::filesystem::create_directories(folder() / "bad");
    std::ofstream(folder() / "bad" / "GP2.EXE") << "garbage";
    std::ofstream(folder() / "GAME.EXE") << "x";
    struct Case {
        std::string typed;
        bool accepted;
        MessageId shown;   // None: no message
        int version;
        std::string problem;   // what the dialog says of the typed game as it is typed ("" none)
    };
    const Case cases[] = {
        {game + "gp2.exe", true, MessageId::None, 2, ""},
        {(folder() / "GAME.EXE").string(), false, MessageId::LocateGp2Exe, 2, "Name the game's GP2.EXE, or use Browse..."},
        {(folder() / "nothere" / "GP2.EXE").string(), false, MessageId::LocateGp2Exe, 2,
         "Name the game's GP2.EXE, or use Browse..."},
        {(folder() / "bad" / "GP2.EXE").string(), true, MessageId::UnsupportedVersion, -1,
         "GP2.EXE: 7 bytes, shorter than any release (5,702,937 bytes)"},
    };
    session.readConfiguration();
    for (const Case& c : cases) {
        asker.ids.clear();
        ConfigDialog dialog(session, asker);
        dialog.exeField()->setText(QString::fromStdString(c.typed));
        EXPECT_EQ(dialog.gameProblem()->isVisibleTo(&dialog), !c.problem.empty()) << c.typed;
        EXPECT_EQ(dialog.gameProblem()->text().toStdString(), c.problem.empty() ? dialog.gameProblem()->text().toStdString() : c.problem);
        dialog.accept();
        if (c.shown == MessageId::UnsupportedVersion) {
            EXPECT_EQ(asker.details.back(), c.problem);
        }
        EXPECT_EQ(dialog.result() == QDialog::Accepted, c.accepted) << c.typed;
        EXPECT_EQ(asker.ids, c.shown == MessageId::None ? std::vector<MessageId>{} : std::vector<MessageId>{c.shown});
        EXPECT_EQ(session.gameVersion, c.version) << c.typed;
        if (!c.accepted) {
            EXPECT_EQ(dialog.exeField()->selectedText(), dialog.exeField()->text());
        }
        if (c.version == 2) {
            EXPECT_EQ(session.config.gameFolder, game);   // and written to the configuration file
            EXPECT_NE(readText(session.configPath).find("Locate GP2.EXE=" + game), std::string::npos);
        }
    }
}

TEST_F(AppTest, ConfigurationDialogShowsAndStoresEveryOption) {
    const std::string game = configureGame();
    writeConfig("[Files]\nLocate GP2.EXE=" + game +
                "\n[Config]\nNiceGrid=0\nGP2Palette=1\nHighGrip=1\nMosaic=9\nTeamSwap=1\nCheckSum=0\nConfirmExport=0\n");
    ConfigDialog dialog(session, asker);
    // Inverted keys: NiceGrid 0 ticks the alternate calculator, GP2Palette 1 clears the Tarvel palette.
    EXPECT_TRUE(dialog.box(" Use Alternate Grid Calculator ")->isChecked());
    EXPECT_FALSE(dialog.box(" Save Bitmap: Use Tarvel Palette ")->isChecked());
    EXPECT_TRUE(dialog.box(" Allow Team Swapping ")->isChecked());
    EXPECT_FALSE(dialog.box(" Verify Car Set Checksums ")->isChecked());
    EXPECT_FALSE(dialog.box(" Ask Before Exporting to the Game ")->isChecked());
    EXPECT_TRUE(dialog.highGrip()->isChecked());
    EXPECT_EQ(dialog.mosaic()->value(), 4);
    dialog.mosaic()->setValue(0);
    EXPECT_EQ(dialog.mosaicValue()->text(), "OFF");
    dialog.box(" Use Alternate Grid Calculator ")->setChecked(false);
    dialog.box(" Ask Before Exporting to the Game ")->setChecked(true);
    dialog.lowGrip()->setChecked(true);
    dialog.launchField()->setText("dosbox \"%s\"");
    dialog.accept();
    ASSERT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_TRUE(session.config.niceGrid);
    EXPECT_FALSE(session.config.highGrip);
    EXPECT_EQ(session.config.mosaic, 0);
    // What was written is read back the same way.
    Session reread;
    reread.configPath = session.configPath;
    reread.readConfiguration();
    EXPECT_TRUE(reread.config.niceGrid);
    EXPECT_FALSE(reread.config.highGrip);
    EXPECT_EQ(reread.config.mosaic, 0);
    EXPECT_TRUE(reread.config.gp2Palette);
    EXPECT_TRUE(reread.config.confirmExport);
    EXPECT_EQ(reread.config.launchCommand, "dosbox \"%s\"");
}

TEST_F(AppTest, ConfigurationDialogCancelRestoresTheGameFolder) {
    const std::string game = configureGame();
    ConfigDialog dialog(session, asker);
    dialog.exeField()->setText("/somewhere/else/GP2.EXE");
    dialog.reject();
    EXPECT_EQ(session.config.gameFolder, game);
    EXPECT_NE(readText(session.configPath).find("Locate GP2.EXE=" + game), std::string::npos);
}

TEST_F(AppTest, BrowseFillsTheFieldFromTheFileDialog) {
    session.readConfiguration();
    ConfigDialog dialog(session, asker);
    asker.files.push_back("/games/gp2/GP2.EXE");
    dialog.browse();
    EXPECT_EQ(dialog.exeField()->text(), "/games/gp2/GP2.EXE");
    ASSERT_EQ(asker.fileTitles.size(), 1u);
    EXPECT_EQ(asker.fileTitles[0], "Locate GP2.EXE");
}

QStringList entries(const QList<QAction*>& actions) {
    QStringList out;
    for (QAction* act : actions) out << (act->isSeparator() ? QString("-") : act->text());
    return out;
}

TEST_F(AppTest, MenuComesFromTheRegistryInItsOrderAndUnbuiltCommandsAreDisabled) {
    session.readConfiguration();
    for (bool help : {false, true}) {
        session.helpExists = help;
        MainWindow w(session, asker);
        EXPECT_EQ(w.action(command::Help) != nullptr, help);
        const QList<QAction*> bar = w.menuBar()->actions();
        EXPECT_EQ(entries(bar), (QStringList{"&File", "&Edit", "&Performance", "&Options", "&Window", "&Help"}));
        EXPECT_EQ(entries(bar[0]->menu()->actions()),
                  (QStringList{"&New", "&Open", "&Save", "Save &as...", "&Recent Car Sets", "-", "A&utofile", "-", "&Car", "&Helmets",
                               "C&ockpit", "&Team", "&Performance", "-", "E&xit"}));
        const QStringList helpMenu = help ? QStringList{"&Help", "-", "About &car set...", "&About..."}
                                          : QStringList{"About &car set...", "&About..."};
        EXPECT_EQ(entries(bar[5]->menu()->actions()), helpMenu);
        for (const Command* entry : w.commands().inMenuOrder()) {
            if (entry->run || entry->entries || entry->menu.empty()) continue;
            QAction* act = w.action(entry->id);
            ASSERT_NE(act, nullptr) << entry->id;
            EXPECT_FALSE(act->isEnabled()) << entry->id;
            w.runCommand(entry->id);   // an unbuilt command does nothing, even when dispatched
        }
        EXPECT_FALSE(w.document().isDirty());
    }
}

TEST_F(AppTest, InformationTextIsShownAtStartWhenAsked) {
    configureGame();
    // A set with information, saved and opened from the command line.
    {
        MainWindow& w = window();
        change([](CarSet& set) {
            set.hasInformation = true;
            set.information = "Made for testing.";
        });
        asker.files.push_back(path("INFO.GP2"));
        ASSERT_TRUE(saveCarSetFileAs(w.bench()));
    }
    MainWindow second(session, asker);
    second.startUp(path("INFO.GP2"));
    ASSERT_EQ(asker.information.size(), 1u);
    EXPECT_EQ(asker.information[0], "Made for testing.");
    EXPECT_TRUE(second.action(command::AboutCarSet)->isEnabled());
}

}  // namespace
}  // namespace tarvel::test
