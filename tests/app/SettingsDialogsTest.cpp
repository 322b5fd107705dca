// The editors of the game-wide settings: their checks, OK as one step, Cancel
// changing nothing, and Import/Export through the game.

#include "AppTestSupport.h"

#include "carset/SettingsDefaults.h"
#include "game/GlobalCarSettings.h"
#include "settings/SettingsDialogs.h"
#include "shell/Command.h"
#include "shell/CommandIds.h"
#include "shell/FieldWidgets.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>

namespace tarvel::test {
namespace {

void type(ValueSpinBox* field, const QString& text) { field->findChild<QLineEdit*>()->setText(text); }

std::vector<std::uint16_t> wordsOf(const CarSet& set, SettingsRange range) {
    return {set.settings.range(range), set.settings.range(range) + range.count};
}

class SettingsDialogs : public AppTest {
protected:
    void SetUp() override {
        configureGame();
        window().startUp({});
    }
    Workbench& bench() { return window().bench(); }
    // Presses "OK"; true when the dialog closed.
    template <class Dialog>
    bool ok(Dialog& dialog) {
        dialog.button("OK")->click();
        return dialog.result() == QDialog::Accepted;
    }
};

// The five commands are enabled and open their dialogs by title.
TEST_F(SettingsDialogs, CommandsAreEnabled) {
    for (int id : {command::GameSettings, command::NumberOfLaps, command::ChampionshipPoints, command::CarSettings,
                   command::OnboardCameras})
        EXPECT_TRUE(bench().commands.isEnabled(id)) << id;
}

// A typed value outside its range is refused with the range message, the dialog
// stays open and nothing is stored; an empty field counts as 0 where 0 is allowed.
TEST_F(SettingsDialogs, TableEditorsCheckEachField) {
    struct Row {
        TableDialog::Kind kind;
        int field;
        QString typed;
        std::string message;
    };
    const Row rows[] = {
        {TableDialog::Laps, 4, "2", "Number of Laps : 3 to 124."},
        {TableDialog::Laps, 15, "125", "Number of Laps : 3 to 124."},
        {TableDialog::Laps, 0, "", "Number of Laps : 3 to 124."},
        {TableDialog::Points, 25, "100", "Points : 0 to 99."},
        {TableDialog::Points, 3, "x", "Points : 0 to 99."},
    };
    const CarSet before = set();
    for (const Row& row : rows) {
        TableDialog dialog(bench(), row.kind);
        type(dialog.field(row.field), row.typed);
        EXPECT_FALSE(ok(dialog)) << row.message;
        EXPECT_EQ(asker.lastText(), row.message);
        EXPECT_EQ(wordsOf(set(), settings::kLaps), wordsOf(before, settings::kLaps));
        EXPECT_EQ(wordsOf(set(), settings::kPoints), wordsOf(before, settings::kPoints));
    }
    TableDialog points(bench(), TableDialog::Points);
    type(points.field(0), "");
    ASSERT_TRUE(ok(points));
    EXPECT_EQ(set().settings.words[settings::kPoints.first], 0);
}

// A preset clears every position and fills the leading ones; OK is one undo step
// named after the dialog; Undo returns to the values at opening.
TEST_F(SettingsDialogs, PointsPresetsOkAndUndo) {
    TableDialog dialog(bench(), TableDialog::Points);
    dialog.button("ALL")->click();
    EXPECT_EQ(std::pair(dialog.field(0)->value(), dialog.field(25)->value()), std::pair(26, 1));
    dialog.button("F1")->click();
    EXPECT_EQ(std::pair(dialog.field(0)->value(), dialog.field(6)->value()), std::pair(10, 0));
    dialog.button("CART")->click();
    ASSERT_TRUE(ok(dialog));
    const auto cart = pointsPreset(PointsPreset::Cart);
    EXPECT_EQ(wordsOf(set(), settings::kPoints), std::vector<std::uint16_t>(cart.begin(), cart.end()));
    EXPECT_EQ(window().document().undoName().toStdString(), "Championship Points Editor");

    TableDialog again(bench(), TableDialog::Points);
    again.button("ALL")->click();
    again.button("Undo")->click();
    EXPECT_EQ(again.field(0)->value(), 20);
}

// Cancel drops everything, also after Defaults and Import.
TEST_F(SettingsDialogs, CancelChangesNothing) {
    change([](CarSet& s) { s.settings.words[settings::kLaps.first] = 99; });
    const CarSet before = set();
    const std::size_t steps = window().document().history().undoCount();
    TableDialog laps(bench(), TableDialog::Laps);
    laps.button("Defaults")->click();
    EXPECT_EQ(laps.field(0)->value(), kDefaultLaps[0]);
    laps.button("Import")->click();
    laps.button("Cancel")->click();
    GlobalCarDialog car(bench());
    car.bar(globalcar::kPlayerWeight)->setValue(3000);
    car.button("Cancel")->click();
    EXPECT_EQ(set().settings.words, before.settings.words);
    EXPECT_EQ(window().document().history().undoCount(), steps);
}

// Quick race length and multiplayer turns need a usable state file, and the
// dialog says why they are off; the fuel loads are checked.
TEST_F(SettingsDialogs, GameSettingsStateFileAndFuel) {
    for (bool withState : {true, false}) {
        if (!withState) std::filesystem::remove(std::filesystem::path(session.config.gameFolder) / "F1GSTATE.SAV");
        GameSettingsDialog dialog(bench());
        EXPECT_EQ(dialog.quickRace()->isEnabled(), withState);
        EXPECT_EQ(dialog.turns()->isEnabled(), withState);
        EXPECT_EQ(dialog.stateFileReason()->isVisibleTo(&dialog), !withState);
    }
    GameSettingsDialog dialog(bench());
    type(dialog.fuel(1), "51");
    EXPECT_FALSE(ok(dialog));
    EXPECT_EQ(asker.lastText(), "Fuel Load : 1 to 50.");
    type(dialog.fuel(1), "7");
    dialog.aid(4, 6)->setChecked(true);
    dialog.aid(0, 0)->setChecked(false);
    dialog.trackRecords()->setChecked(true);
    ASSERT_TRUE(ok(dialog));
    EXPECT_EQ(wordsOf(set(), settings::kGame), (std::vector<std::uint16_t>{126, 127, 127, 127, 64, 10, 1, 0, 5, 50, 7}));
}

// Bars write their words and labels; check boxes and radio buttons are read on OK;
// Export then Import brings the values back through the game.
TEST_F(SettingsDialogs, GlobalCarSettingsLabelsAndGameRoundTrip) {
    GlobalCarDialog dialog(bench());
    dialog.bar(globalcar::kPlayerWeight)->setValue(600);
    dialog.bar(globalcar::kPitSpeedLimit)->setValue(201);
    EXPECT_EQ(dialog.label(globalcar::kPlayerWeight)->text(), "600kg [1323lb]");
    EXPECT_EQ(dialog.label(globalcar::kPitSpeedLimit)->text(), "201kph [125mph]");
    dialog.check(globalcar::kNoSpeedLimit)->setChecked(true);
    dialog.mode(2)->setChecked(true);
    dialog.button("Export")->click();
    EXPECT_EQ(asker.lastText(), "File Patched Successfully!");
    dialog.button("Defaults")->click();
    EXPECT_FALSE(dialog.check(globalcar::kNoSpeedLimit)->isChecked());
    dialog.button("Import")->click();
    EXPECT_TRUE(dialog.check(globalcar::kNoSpeedLimit)->isChecked());
    EXPECT_TRUE(dialog.mode(2)->isChecked());
    ASSERT_TRUE(ok(dialog));
    const auto words = wordsOf(set(), settings::kGlobalCar);
    EXPECT_EQ(std::tuple(words[3], words[4], words[5], words[7]), std::tuple(201, 1, 600, 2));
}

// Fields are checked in order before a change of camera and on OK; each
// camera keeps what was typed; Cancel restores all nine.
TEST_F(SettingsDialogs, CamerasValidateSwitchAndCancel) {
    const CarSet before = set();
    {
        CameraDialog dialog(bench());
        EXPECT_EQ(dialog.list()->count(), 9);
        EXPECT_EQ(dialog.list()->item(8)->text(), " Camera 9");
        type(dialog.field(0), "-12");
        dialog.list()->setCurrentRow(3);
        EXPECT_EQ(dialog.currentCamera(), 3);
        EXPECT_EQ(dialog.field(6)->value(), 26866);
        type(dialog.field(4), "181");
        type(dialog.field(7), "70000");
        dialog.list()->setCurrentRow(5);
        EXPECT_EQ(asker.lastText(), "Angle: -180 to 180.") << "pitch comes before the tuning values";
        EXPECT_EQ(std::pair(dialog.currentCamera(), dialog.list()->currentRow()), std::pair(3, 3));
        type(dialog.field(4), "10");
        EXPECT_FALSE(ok(dialog));
        EXPECT_EQ(asker.lastText(), "Tuning : 0 to 65535.");
        type(dialog.field(7), "5");
        type(dialog.field(1), "-32768");
        EXPECT_FALSE(ok(dialog));
        EXPECT_EQ(asker.lastText(), "Coordinate: -32767 to 32767.");
        type(dialog.field(1), "1");
        dialog.list()->setCurrentRow(0);
        EXPECT_EQ(dialog.field(0)->value(), -12) << "camera 1 kept what was typed";
        dialog.button("Defaults")->click();
        dialog.button("Cancel")->click();
    }
    EXPECT_EQ(set().settings.words, before.settings.words);

    CameraDialog dialog(bench());
    type(dialog.field(5), "-45");
    ASSERT_TRUE(ok(dialog));
    EXPECT_EQ(std::int16_t(set().settings.words[std::size_t(settings::kCameras.first + 5)]), -45);
    EXPECT_EQ(window().document().undoName().toStdString(), "Onboard Camera Editor");
}

}  // namespace
}  // namespace tarvel::test
