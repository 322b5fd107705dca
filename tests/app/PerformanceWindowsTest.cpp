// The performance editors and the calculators: checks in order, Cancel, OK as
// one step of the history, and the calculators on the figures being edited.

#include "AppTestSupport.h"

#include "fixtures/CarSetSamples.h"
#include "fixtures/PerformanceSamples.h"
#include "performance/CalculatorWindows.h"
#include "performance/PerformanceEditors.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QTimer>

#include <memory>

namespace tarvel::test {
namespace {

QPushButton* button(QWidget& parent, const QString& text) {
    for (QPushButton* b : parent.findChildren<QPushButton*>())
        if (b->text() == text) return b;
    ADD_FAILURE() << "no button " << text.toStdString();
    return nullptr;
}

// "-" or "+" of the step group titled `group`.
QPushButton* stepButton(QWidget& parent, const QString& group, const QString& sign) {
    for (QGroupBox* box : parent.findChildren<QGroupBox*>())
        if (box->title() == group) return button(*box, sign);
    ADD_FAILURE() << "no step group " << group.toStdString();
    return nullptr;
}

class PerformanceWindowsTest : public AppTest {
protected:
    void SetUp() override {
        configureGame();
        window().startUp({});
        const CarSet sample = calculatorSample();
        change([&](CarSet& s) {
            s.teams = sample.teams;
            s.drivers = sample.drivers;
        });
        ASSERT_TRUE(window().document().saveTo(path("perf.gp2")));   // a clean start
    }
    Workbench& bench() { return window().bench(); }
    std::size_t steps() { return window().document().history().undoCount(); }

    // Presses `press` on the editor while the calculator it opens is up, and
    // hands that calculator to `look` before closing it.
    void withCalculator(FigureEditor& editor, QPushButton* press, const std::function<void(CalculatorDialog&)>& look) {
        bool seen = false;
        QTimer::singleShot(0, [&] {
            CalculatorDialog* calculator = editor.openCalculatorDialog();
            ASSERT_NE(calculator, nullptr);
            seen = true;
            look(*calculator);
            calculator->reject();
        });
        press->click();
        EXPECT_TRUE(seen);
    }
};

TEST_F(PerformanceWindowsTest, TheFirstFailingFieldIsReportedAndSelected) {
    using Editor = std::unique_ptr<FigureEditor>;
    using Open = Editor (*)(Workbench&);
    const Open cars = [](Workbench& b) -> Editor { return std::make_unique<CarPerformanceEditor>(b, nullptr); };
    const Open drivers = [](Workbench& b) -> Editor { return std::make_unique<DriverPerformanceEditor>(b, nullptr); };
    const Open spares = [](Workbench& b) -> Editor { return std::make_unique<SpareDriverEditor>(b, nullptr); };
    const struct {
        const char* what;
        Open open;
        std::vector<std::pair<Figure, int>> typed;   // figure and index in check order, given `text`
        std::string text;
        std::size_t failing;   // which of `typed` is reported
        std::string message;
    } cases[] = {
        {"car: race before qual",
         cars,
         {{Figure::PowerQual, 1}, {Figure::PowerRace, 9}},
         "1580",
         1,
         "Engine Power : 0 to 1579."},
        {"car: a sign", cars, {{Figure::Failure, 4}}, "-1", 0, "Car Failure Probability : 0 to 32767."},
        {"driver: row by row",
         drivers,
         {{Figure::GripQual, 8}, {Figure::GripQual, 5}},
         "17017",
         1,
         "Driver Grip : 0 to 17016."},
        {"spare: range", spares, {{Figure::GripRandom, 7}}, "40000", 0, "Driver Grip Range : 0 to 32767."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        auto editor = c.open(bench());
        for (auto [figure, index] : c.typed)
            editor->fields(figure)[std::size_t(index)]->setText(QString::fromStdString(c.text));
        asker.texts.clear();
        button(*editor, "OK")->click();
        EXPECT_EQ(asker.lastText(), c.message);
        const auto [figure, index] = c.typed[c.failing];
        QLineEdit* field = editor->fields(figure)[std::size_t(index)];
        EXPECT_EQ(editor->focusWidget(), field);
        EXPECT_EQ(field->selectedText(), field->text());
        EXPECT_NE(editor->result(), QDialog::Accepted);
        EXPECT_FALSE(window().document().isDirty());
        EXPECT_EQ(steps(), 1u);
    }
    // With HighGrip = 1 an emptied grip field is 0, and so out of range.
    session.config.highGrip = true;
    SpareDriverEditor spare(bench(), nullptr);
    EXPECT_EQ(spare.fields(Figure::GripRace)[0]->text(), QString::number(set().drivers[29].gripRace));
    spare.fields(Figure::GripRace)[2]->clear();
    button(spare, "OK")->click();
    EXPECT_EQ(asker.lastText(), "Driver Grip : 15751 to 32767.");
}

TEST_F(PerformanceWindowsTest, CancelAfterStepsLeavesTheSetAsItWas) {
    const CarSet before = set();
    CarPerformanceEditor cars(bench(), nullptr);
    for (int i = 0; i < 3; ++i) stepButton(cars, "Race Power", "+")->click();
    stepButton(cars, "Failure Probability", "-")->click();
    EXPECT_EQ(cars.fields(Figure::PowerRace)[0]->text(), QString::number(before.teams[0].powerRace + 30));
    EXPECT_EQ(cars.scratch().teams[1].failureProbability, before.teams[1].failureProbability - 100);
    button(cars, "Cancel")->click();

    DriverPerformanceEditor drivers(bench(), nullptr);
    stepButton(drivers, " Qual Grip ", "-")->click();
    stepButton(drivers, "Grip Range", "+")->click();
    drivers.stepField(Figure::GripRace)->setText("32768");   // a step amount out of range is reported
    stepButton(drivers, "Race Grip", "+")->click();
    EXPECT_EQ(asker.lastText(), "Enter positive integer 0 to 32767.");
    EXPECT_EQ(drivers.focusWidget(), drivers.stepField(Figure::GripRace));
    drivers.reject();

    expectSameTables(before, set());
    EXPECT_FALSE(window().document().isDirty());
    EXPECT_EQ(steps(), 1u);
}

TEST_F(PerformanceWindowsTest, OkIsOneStepOfTheHistory) {
    const CarSet before = set();
    CarPerformanceEditor cars(bench(), nullptr);
    stepButton(cars, "Qual Power", "+")->click();
    button(cars, "Race = Qual")->click();
    cars.fields(Figure::Failure)[3]->clear();   // empty is 0
    button(cars, "OK")->click();
    EXPECT_EQ(cars.result(), QDialog::Accepted);
    EXPECT_EQ(steps(), 2u);
    EXPECT_EQ(window().document().undoName().toStdString(), "Car Performance Editor");
    EXPECT_TRUE(window().document().isDirty());
    for (int t = 0; t < kRacingTeams; ++t) {
        EXPECT_EQ(set().teams[std::size_t(t)].powerQual, before.teams[std::size_t(t)].powerQual + 10);
        EXPECT_EQ(set().teams[std::size_t(t)].powerRace, set().teams[std::size_t(t)].powerQual);
    }
    EXPECT_EQ(set().teams[3].failureProbability, 0);
    ASSERT_TRUE(window().document().undo());
    expectSameTables(before, set());

    SpareDriverEditor spares(bench(), nullptr);
    spares.nameField(3)->setText("Nuñez");
    spares.fields(Figure::GripQual)[3]->setText("17016");
    button(spares, "OK")->click();
    EXPECT_EQ(window().document().undoName().toStdString(), "Spare Driver Editor");
    const int number = set().spareDriverNumber(3);
    EXPECT_EQ(fieldText(set().drivers[std::size_t(number)].name),
              "Nu\xF1"
              "ez");
    EXPECT_EQ(set().drivers[std::size_t(number)].gripQual, 32767);

    DriverPerformanceEditor unchanged(bench(), nullptr);
    const std::size_t count = steps();
    button(unchanged, "OK")->click();   // nothing changed: no step
    EXPECT_EQ(steps(), count);
}

// "Grid" and "Race" hand the figures being edited to the calculator, not the set's.
TEST_F(PerformanceWindowsTest, CalculatorsFromAnEditorSeeTheEditedFigures) {
    CarPerformanceEditor cars(bench(), nullptr);
    cars.fields(Figure::PowerQual)[6]->setText("1579");
    withCalculator(cars, button(cars, "Grid"), [](CalculatorDialog& grid) {
        EXPECT_EQ(grid.windowTitle(), "Grid Calculator");
        EXPECT_EQ(grid.table().entries[0].slot / 2, 6u);
        EXPECT_EQ(grid.table().entries[1].slot / 2, 6u);
    });
    EXPECT_EQ(set().teams[6].powerQual, calculatorSample().teams[6].powerQual);

    DriverPerformanceEditor drivers(bench(), nullptr);
    drivers.fields(Figure::GripRace)[17]->setText("17016");   // team 8, second driver
    withCalculator(drivers, button(drivers, "Race"), [](CalculatorDialog& race) {
        EXPECT_EQ(race.windowTitle(), "Race Performance Calculator");
        EXPECT_EQ(race.table().entries[0].driverText(), kSampleDrivers[17]);
    });
    drivers.fields(Figure::GripRandom)[0]->setText("x");   // the ranges are checked too: no calculator opens
    button(drivers, "Grid")->click();
    EXPECT_EQ(asker.lastText(), "Driver Grip Range : 0 to 32767.");
}

TEST_F(PerformanceWindowsTest, CalculatorPresentationsAndOptions) {
    for (const bool nice : {true, false}) {
        session.config.niceGrid = nice;
        CalculatorDialog grid(bench(), set().teams, set().drivers, CalculatorDialog::Kind::Grid, nullptr);
        EXPECT_EQ(grid.graphical(), nice);
        EXPECT_TRUE(grid.carFailureBox()->isHidden());
        EXPECT_FALSE(grid.randomizeButton()->isEnabled());
        grid.randomGripBox()->click();
        EXPECT_TRUE(grid.randomizeButton()->isEnabled());
        if (nice) {
            // A spacer, then nine items a row: label, and gap, box, driver, team of each car.
            QListWidget* list = grid.gridList();
            ASSERT_EQ(list->count(), 1 + 14 * 9);
            EXPECT_EQ(list->item(1)->text(), "POLE");
            EXPECT_EQ(list->item(2)->text(), "+0.00%");
            EXPECT_EQ(list->item(4)->text().toStdString(), grid.table().entries[0].driverText());
            EXPECT_EQ(list->item(10)->text(), "ROW 2");
            EXPECT_EQ(list->item(1 + 13 * 9)->text(), "DNQ");
        } else {
            const QStringList lines = grid.textList()->lines();
            ASSERT_EQ(lines.size(), 28);
            EXPECT_TRUE(lines[0].startsWith("1)\t"));
            EXPECT_TRUE(lines[25].startsWith("26)\t"));
            EXPECT_TRUE(lines[26].startsWith("DNQ\t"));
        }
    }
    CalculatorDialog race(bench(), set().teams, set().drivers, CalculatorDialog::Kind::Race, nullptr);
    EXPECT_FALSE(race.carFailureBox()->isHidden());
    race.carFailureBox()->click();
    EXPECT_TRUE(race.randomizeButton()->isEnabled());
    const QStringList lines = race.textList()->lines();
    EXPECT_TRUE(lines[27].startsWith("\t"));
    EXPECT_TRUE(lines[27].endsWith("\tDNQ"));

    SeasonOddsDialog odds(bench(), set().teams, set().drivers, {.randomGrip = true, .carFailure = true}, nullptr);
    odds.runsField()->setValue(60);
    odds.run();
    ASSERT_EQ(odds.tableWidget()->rowCount(), 28);
    EXPECT_EQ(odds.odds().runs, 60u);
    EXPECT_EQ(odds.tableWidget()->item(0, 0)->text().toStdString(), bestFirst(odds.odds())[0].driver);
}

}   // namespace
}   // namespace tarvel::test
