#pragma once
// The Car Performance Editor, the Driver Performance Editor and the Spare
// Driver Editor: tables of figures over a scratch copy of the team and driver
// tables. Fields are checked in a fixed order; the first that fails is
// reported, focused and selected, and nothing is stored. "OK" is one step of
// the document's history; "Cancel" changes nothing.

#include "performance/PerformanceFigures.h"

#include <QDialog>

#include <array>
#include <vector>

class QLineEdit;
class QPushButton;
class QGridLayout;

namespace tarvel {

struct Workbench;

// What the three editors share: the scratch tables, the checks and the step groups.
class FigureEditor : public QDialog {
    Q_OBJECT
public:
    const PerformanceTables& scratch() const { return scratch_; }
    // The fields of a figure in the order they are checked.
    virtual std::vector<QLineEdit*> fields(Figure figure) const = 0;
    QLineEdit* stepField(Figure figure) const;
    // "-" / "+" of a step group.
    void step(Figure figure, StepDirection direction);
    // "Race = Qual" (to = race) and "Qual = Race" (to = qualifying).
    void copyColumn(Figure from, Figure to);
    // "Grid" and "Race": the calculator on the figures being edited.
    void openCalculator(bool race);
    // "OK": checks every field, stores them and commits the scratch copy.
    void commit();
    // The calculator the last "Grid" or "Race" opened, while it is open.
    class CalculatorDialog* openCalculatorDialog() const { return calculator_; }

protected:
    FigureEditor(Workbench& bench, const QString& title, QWidget* parent);
    bool highGrip() const;
    // The column of a figure in its table: race, qualifying, the third.
    static int columnOf(Figure figure);
    // Checks the figure's fields; the first failing one is reported and selected.
    bool check(Figure figure);
    bool checkAll(std::initializer_list<Figure> figures);
    // Fields to scratch (the shown form read back) and scratch to fields.
    virtual void store(Figure figure) = 0;
    virtual void show(Figure figure) = 0;
    virtual bool commitTo(CarSet& set) = 0;
    virtual std::vector<Figure> checkOrder() const = 0;
    virtual std::vector<Figure> calculatorFigures(bool race) const = 0;
    QLineEdit* figureField(Figure figure);
    // A step group ("-", amount, "+") for a figure.
    QWidget* stepGroup(const QString& title, Figure figure);
    // The buttons along the bottom; `calculators` adds "Grid" and "Race".
    QWidget* buttonRow(bool calculators, Figure race, Figure qual);
    int readStored(QLineEdit* field, Figure figure) const;
    void showStored(QLineEdit* field, Figure figure, int stored) const;

    Workbench& bench_;
    PerformanceTables scratch_;
    std::array<QLineEdit*, 6> steps_{};
    class CalculatorDialog* calculator_ = nullptr;
};

class CarPerformanceEditor : public FigureEditor {
    Q_OBJECT
public:
    CarPerformanceEditor(Workbench& bench, QWidget* parent);
    std::vector<QLineEdit*> fields(Figure figure) const override;

protected:
    void store(Figure figure) override;
    void show(Figure figure) override;
    bool commitTo(CarSet& set) override;
    std::vector<Figure> checkOrder() const override;
    std::vector<Figure> calculatorFigures(bool race) const override;

private:
    std::array<std::array<QLineEdit*, kRacingTeams>, 3> fields_{};
};

class DriverPerformanceEditor : public FigureEditor {
    Q_OBJECT
public:
    DriverPerformanceEditor(Workbench& bench, QWidget* parent);
    // Row by row, the first driver's field then the second's.
    std::vector<QLineEdit*> fields(Figure figure) const override;

protected:
    void store(Figure figure) override;
    void show(Figure figure) override;
    bool commitTo(CarSet& set) override;
    std::vector<Figure> checkOrder() const override;
    std::vector<Figure> calculatorFigures(bool race) const override;

private:
    // [column][car][row]
    std::array<std::array<std::array<QLineEdit*, kRacingTeams>, 2>, 3> fields_{};
};

class SpareDriverEditor : public FigureEditor {
    Q_OBJECT
public:
    SpareDriverEditor(Workbench& bench, QWidget* parent);
    std::vector<QLineEdit*> fields(Figure figure) const override;
    QLineEdit* nameField(int row) const { return names_[std::size_t(row)]; }

protected:
    void store(Figure figure) override;
    void show(Figure figure) override;
    bool commitTo(CarSet& set) override;
    std::vector<Figure> checkOrder() const override;
    std::vector<Figure> calculatorFigures(bool) const override { return {}; }

private:
    std::array<QLineEdit*, kSpareDrivers> names_{};
    std::array<std::array<QLineEdit*, kSpareDrivers>, 3> fields_{};
};

}  // namespace tarvel
