// Editing in the main window: disabled cars, team moves, grips, drivers and
// the livery with its undo.

#include "AppTestSupport.h"

#include "carset/CarSetPictures.h"
#include "graphics/Bitmap.h"
#include "graphics/Helmets.h"
#include "shell/CommandIds.h"
#include "graphics/PictureWidgets.h"
#include "carset/FieldSchema.h"
#include "carset/TeamList.h"
#include "shell/FieldWidgets.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

namespace tarvel::test {
namespace {

class EditingTest : public AppTest {
protected:
    void SetUp() override {
        configureGame();
        window().startUp({});
    }
    void clickDisabled(int team, int car) {
        panel().selectTeam(team);
        panel().disabledBox(car)->click();
    }
};

// The rule itself is the core's (checkDisableCar); here: how the box carries
// out each of its answers.
TEST_F(EditingTest, DisabledBoxCarriesOutTheRule) {
    clickDisabled(3, 0);   // allowed silently
    EXPECT_EQ(set().team(3).disabled[0], 1);
    EXPECT_TRUE(asker.texts.empty());
    EXPECT_FALSE(panel().flagBox(0)->isEnabled());   // greyed while disabled
    EXPECT_TRUE(panel().driverList(0)->currentText().endsWith(" (D)"));
    EXPECT_TRUE(window().document().isDirty());

    asker.answers.push_back(Answer::Cancel);   // the second car of a team needs confirmation
    clickDisabled(3, 1);
    EXPECT_EQ(asker.lastText(), "This will cause corruption on the\r\nin game 'Choose Driver/Team' menu.");
    EXPECT_EQ(set().team(3).disabled[1], 0);
    EXPECT_FALSE(panel().disabledBox(1)->isChecked());
    asker.answers.push_back(Answer::Ok);
    clickDisabled(3, 1);
    EXPECT_EQ(set().team(3).disabled[1], 1);

    clickDisabled(7, 0);   // a third car is refused with the list
    EXPECT_TRUE(asker.lastText().starts_with("Only 2 Cars can be Disabled."));
    EXPECT_EQ(set().team(7).disabled[0], 0);
    EXPECT_FALSE(panel().disabledBox(0)->isChecked());

    clickDisabled(3, 0);   // clearing asks nothing and enables the other box again
    EXPECT_EQ(set().team(3).disabled[0], 0);
    EXPECT_TRUE(panel().flagBox(0)->isEnabled());
}

int helmetMark(const CarSet& set, int n) {
    BitmapBuffer single = blankSingleHelmet();
    EXPECT_TRUE(ExtractHelmet(helmetSheetBitmap(set), n, single));
    return single.row(7)[30];
}

// Distinct names for each team.
void markTeams(CarSet& set) {
    for (int t = 0; t < kRacingTeams; ++t) setFieldText(set.team(t).name, "T" + std::to_string(t));
}

// What moves with a team is the core's (moveTeam); here: the question, the list and the document.
TEST_F(EditingTest, MovingATeamAsksAndShowsTheNewOrder) {
    change(markTeams);
    asker.answers.push_back(Answer::No);
    panel().requestTeamMove(0, 2);
    EXPECT_EQ(asker.lastText(), "Move team here?");
    EXPECT_EQ(fieldText(set().team(0).name), "T0");
    asker.answers.push_back(Answer::Yes);
    panel().requestTeamMove(0, 2);
    EXPECT_EQ(fieldText(set().team(2).name), "T0");
    EXPECT_EQ(panel().teamList()->item(0)->text(), "T1");
    EXPECT_EQ(panel().teamList()->item(2)->text(), "T0");
    EXPECT_EQ(window().document().currentTeam(), 2);
    EXPECT_EQ(panel().teamName()->text(), "T0");
}

TEST_F(EditingTest, DraggingInTheTeamListAsksOnlyWhileSwappingIsAllowed) {
    change(markTeams);
    TeamList* list = panel().teamList();
    auto drag = [&](int fromRow, int toRow) {
        const QPoint from = list->visualItemRect(list->item(fromRow)).center();
        const QPoint to = list->visualItemRect(list->item(toRow)).bottomLeft() + QPoint(5, 1);
        QTest::mousePress(list->viewport(), Qt::LeftButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, QPointF(to), list->viewport()->mapToGlobal(QPointF(to)), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(list->viewport(), &move);
        QTest::mouseRelease(list->viewport(), Qt::LeftButton, {}, to);
    };
    drag(0, 3);
    EXPECT_TRUE(asker.texts.empty());
    EXPECT_EQ(fieldText(set().team(0).name), "T0");

    session.config.teamSwap = true;
    panel().refreshAll(false);
    asker.answers.push_back(Answer::Yes);
    drag(0, 3);
    EXPECT_EQ(asker.lastText(), "Move team here?");
    EXPECT_EQ(fieldText(set().team(3).name), "T0");
    EXPECT_EQ(fieldText(set().team(0).name), "T1");
}

// Types into a figure beside a scroll bar and leaves it by Return or by moving the focus away.
void typeInto(ValueSpinBox* field, const QString& text, bool byFocus) {
    field->selectAll();
    QTest::keyClicks(field, text);
    QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
    byFocus ? void(QApplication::sendEvent(field, &out)) : QTest::keyClick(field, Qt::Key_Return);
}

// The conversions and range texts are the core's (FieldSchema); here: what the
// figures show, how typing reaches the model and how a value outside is refused.
TEST_F(EditingTest, FiguresBesideTheScrollBarsAreTypedWithinTheirRange) {
    const int number = set().team(0).driver[0];
    change([&](CarSet& s) { s.driver(number).gripRace = s.driver(number).gripQual = 30751; });
    const struct {
        const char* field;   // a team field, else the first driver's
        bool highGrip;
        const char* shown;
        int low, high;
        const char* typed;
        long long stored;
        const char* outside;
        const char* message;
        bool byFocus;
    } cases[] = {
        {"powerRace", false, "760", 0, 1579, "1500", 1500, "1580", "Engine Power : 0 to 1579.", false},
        {"powerQual", false, "770", 0, 1579, "0", 0, "-1", "Engine Power : 0 to 1579.", true},
        {"failureProbability", false, "5000", 0, 32767, "32767", 32767, "32768",
         "Car Failure Probability : 0 to 32767.", false},
        {"gripRace", false, "15000", 0, 17016, "1000", 16751, "17017", "Driver Grip : 0 to 17016.", false},
        {"gripQual", true, "30751", 15751, 32767, "32767", 32767, "15750", "Driver Grip : 15751 to 32767.", true},
        {"gripRandom", true, "500", 0, 32767, "700", 700, "99999", "Driver Grip Range : 0 to 32767.", false},
    };
    const QStringList perf{"powerRace", "powerQual", "failureProbability"}, grips{"gripRace", "gripQual", "gripRandom"};
    for (const auto& c : cases) {
        session.config.highGrip = c.highGrip;
        panel().refreshAll(false);
        const bool team = perf.contains(c.field);
        ValueSpinBox* field = team ? panel().performanceValue(int(perf.indexOf(c.field)))
                                   : panel().gripField(0, int(grips.indexOf(c.field)));
        QScrollBar* bar = team ? panel().performanceBar(int(perf.indexOf(c.field)))
                               : panel().gripBar(0, int(grips.indexOf(c.field)));
        const FieldSpec& schemaField = *findFieldSpec(team ? FieldPlace::Team : FieldPlace::Driver, c.field);
        auto stored = [&] { return fieldValue(set(), schemaField, team ? 0 : number, 0); };
        EXPECT_EQ(field->text(), c.shown) << c.field;
        EXPECT_EQ(std::pair(field->minimum(), field->maximum()), std::pair(c.low, c.high)) << c.field;
        EXPECT_EQ(std::pair(bar->minimum(), bar->maximum()), std::pair(c.low, c.high)) << c.field;

        typeInto(field, c.typed, c.byFocus);
        EXPECT_EQ(stored(), c.stored) << c.field;
        EXPECT_EQ(bar->value(), QString(c.typed).toInt()) << c.field;
        asker.texts.clear();
        typeInto(field, c.outside, c.byFocus);
        EXPECT_EQ(asker.texts, std::vector<std::string>{c.message}) << c.field;
        EXPECT_EQ(stored(), c.stored) << c.field;
        EXPECT_EQ(field->text(), c.typed) << c.field;
        bar->setValue(c.low);   // and the scroll bar moves the figure
        EXPECT_EQ(field->value(), c.low) << c.field;
    }
    // An empty figure counts as 0; a letter cannot be typed.
    ValueSpinBox* random = panel().gripField(0, 2);
    typeInto(random, "5", false);
    QTest::keyClick(random, Qt::Key_Backspace);
    QTest::keyClick(random, Qt::Key_Return);
    EXPECT_EQ(set().driver(number).gripRandom, 0);
    typeInto(random, "x", false);
    EXPECT_EQ(random->text(), "0");
}

// Text outside the range is marked while it is typed; a click that takes the
// focus elsewhere still does its work, and the range message follows it.
TEST_F(EditingTest, OutsideTextIsMarkedAtOnceAndAClickElsewhereIsNotLost) {
    window().show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    ValueSpinBox* power = panel().performanceValue(0);
    power->setFocus();
    power->selectAll();
    QTest::keyClicks(power, "1580");
    EXPECT_TRUE(power->markedOutside());
    EXPECT_EQ(power->toolTip(), "Engine Power : 0 to 1579.");
    QTest::keyClick(power, Qt::Key_Backspace);
    EXPECT_FALSE(power->markedOutside());
    QTest::keyClicks(power, "9");
    const auto nose = set().team(0).highNose;
    QTest::mouseClick(panel().highNose(), Qt::LeftButton);
    EXPECT_NE(set().team(0).highNose, nose);   // the click did its work
    EXPECT_TRUE(asker.texts.empty());
    for (int wait = 0; wait < 100 && asker.texts.empty(); ++wait) QTest::qWait(10);
    EXPECT_EQ(asker.texts, std::vector<std::string>{"Engine Power : 0 to 1579."});
    EXPECT_FALSE(power->markedOutside());
    EXPECT_EQ(set().team(0).powerRace, 760);
}

TEST_F(EditingTest, PerformanceBarsAndHighNoseWriteTheCurrentTeam) {
    panel().selectTeam(4);
    panel().performanceBar(0)->setValue(1500);
    panel().performanceBar(2)->setValue(32767);
    EXPECT_EQ(set().team(4).powerRace, 1500);
    EXPECT_EQ(set().team(4).failureProbability, 32767);
    EXPECT_EQ(panel().performanceValue(0)->text(), "1500");
    panel().highNose()->click();
    EXPECT_EQ(set().team(4).highNose, 0);
    EXPECT_EQ(set().team(3).powerRace, 760);
}

// Names are counted as the model stores them (Windows-1252: one byte a
// character, '?' for what it cannot hold), so none is cut short later.
TEST_F(EditingTest, NameFieldsTakeNoMoreThanTheModelKeeps) {
    const int number = set().team(0).driver[1];
    const std::pair<QLineEdit*, std::function<std::string()>> fields[] = {
        {panel().teamName(), [&] { return fieldText(set().team(0).name); }},
        {panel().engine(), [&] { return fieldText(set().team(0).engine); }},
        {panel().driverName(1), [&] { return fieldText(set().driver(number).name); }},
    };
    for (const auto& [field, stored] : fields) {
        const int limit = field == panel().driverName(1) ? 23 : 12;
        for (const char* piece : {"A", "\xC3\xA9", "\xF0\x9F\x98\x80"}) {   // A, e acute, an emoji
            field->clear();
            for (int i = 0; i < limit + 3; ++i) field->insert(QString::fromUtf8(piece));
            EXPECT_EQ(field->text(), QString::fromUtf8(piece).repeated(limit)) << piece;
            EXPECT_EQ(stored().size(), std::size_t(limit)) << piece;
        }
    }
}

TEST_F(EditingTest, ChoosingADriverExchangesSeatsAndNumbersRenumber) {
    const int first = set().team(0).driver[0];
    const int spare = set().team(14).driver[0];
    QComboBox* list = panel().driverList(0);
    const int index = list->findData(28);   // the first spare seat
    ASSERT_GE(index, 0);
    EXPECT_GT(index, list->findText(" --- SPARE DRIVERS ----------"));
    emit list->activated(index);
    EXPECT_EQ(set().team(0).driver[0], spare);
    EXPECT_EQ(set().team(14).driver[0], first);

    panel().driverName(0)->selectAll();
    QTest::keyClicks(panel().driverName(0), "Zed");
    EXPECT_EQ(fieldText(set().driver(spare).name), "Zed");
    EXPECT_TRUE(list->currentText().endsWith("Zed"));

    panel().driverNumber(0)->setText("40");
    emit panel().driverNumber(0)->editingFinished();
    EXPECT_EQ(set().team(0).driver[0], 40);
    EXPECT_EQ(panel().driverNumber(0)->text(), "40");
}

// A 256 x 164 bitmap file whose pixels are value + column % 7.
QString writeLivery(const std::filesystem::path& file, int value) {
    BitmapBuffer bitmap(kLiveryWidth, kLiveryHeight);
    for (int r = 0; r < kLiveryHeight; ++r)
        for (int x = 0; x < kLiveryWidth; ++x) bitmap.row(r)[x] = std::uint8_t(value + x % 7);
    EXPECT_TRUE(SaveBitmap8(file, bitmap, GraphicsOptions{}));
    return QString::fromStdString(file.string());
}

TEST_F(EditingTest, LiveryLoadedFromABitmapAndUndone) {
    panel().selectTeam(5);
    const std::vector<std::uint8_t> before = set().liveries[5];
    const AssetSlot slotBefore = set().team(5).carBitmap;
    EXPECT_FALSE(panel().undoButton()->isEnabled());

    asker.files.push_back(writeLivery(folder() / "CAR.BMP", 40));
    window().runCommand(command::CarLoad);
    EXPECT_EQ(asker.fileTitles.back(), "Select New Car");
    ASSERT_EQ(set().liveries[5].size(), std::size_t(kLiveryPixels));
    EXPECT_EQ(set().liveries[5][3], 43);
    EXPECT_EQ(set().team(5).carBitmap.status, kAssetExternal);
    EXPECT_TRUE(panel().undoButton()->isEnabled());
    panel().liveryView()->finishReveal();
    EXPECT_EQ(panel().liveryView()->shown().pixelIndex(3, 0), 43);

    panel().undoButton()->click();
    EXPECT_EQ(set().liveries[5], before);
    EXPECT_EQ(set().team(5).carBitmap.status, slotBefore.status);
    EXPECT_FALSE(panel().undoButton()->isEnabled());

    // A bitmap of the wrong size is refused and leaves the livery and the undo alone.
    ASSERT_TRUE(SaveBitmap8(folder() / "SMALL.BMP", BitmapBuffer(100, 50), GraphicsOptions{}));
    asker.files.push_back(path("SMALL.BMP"));
    window().runCommand(command::CarLoad);
    EXPECT_EQ(asker.lastText(), "Couldn't Load Bitmap.");
    EXPECT_EQ(set().liveries[5], before);
    EXPECT_FALSE(panel().undoButton()->isEnabled());
}

TEST_F(EditingTest, LiverySavedAndSingleHelmetsExchanged) {
    panel().selectTeam(1);
    asker.files.push_back(path("OUT.BMP"));
    window().runCommand(command::CarSaveAs);
    auto saved = LoadBitmap8(folder() / "OUT.BMP", kLiveryWidth, kLiveryHeight);
    ASSERT_TRUE(saved);
    EXPECT_EQ(saved->row(0)[10], set().liveries[1][10]);

    BitmapBuffer single = blankSingleHelmet();
    for (int r = 0; r < kHelmetHeight; ++r) std::fill_n(single.row(r), kHelmetWidth, std::uint8_t(77));
    ASSERT_TRUE(SaveSingleHelmet(folder() / "HELMET.BMP", single, GraphicsOptions{}));
    asker.files.push_back(path("HELMET.BMP"));
    window().runCommand(command::SecondHelmetLoad);
    EXPECT_EQ(helmetMark(set(), 3), 77);   // team 1, second car
    EXPECT_NE(helmetMark(set(), 2), 77);
    EXPECT_EQ(panel().helmetView(1)->helmet().pixelIndex(10, 5), 77);

    asker.files.push_back(path("BACK.BMP"));
    window().runCommand(command::SecondHelmetSaveAs);
    auto back = LoadSingleHelmet(folder() / "BACK.BMP");
    ASSERT_TRUE(back);
    EXPECT_EQ(back->row(4)[20], 77);
}

TEST_F(EditingTest, MosaicRevealEndsWithTheWholePicture) {
    session.config.mosaic = 3;
    change([](CarSet& s) { s.liveries[6].assign(kLiveryPixels, 9); });
    panel().selectTeam(6);
    EXPECT_TRUE(panel().liveryView()->revealing());
    QTRY_VERIFY_WITH_TIMEOUT(!panel().liveryView()->revealing(), 5000);
    EXPECT_EQ(panel().liveryView()->shown(), panel().liveryView()->picture());
    EXPECT_EQ(panel().liveryView()->shown().pixelIndex(255, 163), 9);
}

TEST_F(EditingTest, LaunchRunsTheGameOrTheConfiguredCommandInTheGameFolder) {
    window().runCommand(command::LaunchGame);
    ASSERT_EQ(started.size(), 1u);
    EXPECT_TRUE(started[0].program.endsWith("GP2.EXE"));
    EXPECT_EQ(started[0].folder.toStdString(), session.config.gameFolder);
    session.config.launchCommand = "dosbox \"%s\" -exit";
    window().runCommand(command::LaunchGame);
    ASSERT_EQ(started.size(), 2u);
    EXPECT_EQ(started[1].program, "dosbox");
    ASSERT_EQ(started[1].arguments.size(), 2);
    EXPECT_TRUE(started[1].arguments[0].endsWith("GP2.EXE"));
    EXPECT_EQ(started[1].arguments[1], "-exit");
    // A failed start says which program; without a launch command, how to set one.
    startSucceeds = false;
    for (const std::string command : {"dosbox \"%s\"", ""}) {
        session.config.launchCommand = command;
        window().runCommand(command::LaunchGame);
        EXPECT_EQ(asker.lastText(), "Failed to Start GP2.");
        EXPECT_TRUE(asker.details.back().starts_with("Couldn't start ")) << asker.details.back();
#ifndef _WIN32
        EXPECT_EQ(asker.details.back().contains("Launch Command in Window > Program configuration"), command.empty());
#endif
    }
}

}  // namespace
}  // namespace tarvel::test
