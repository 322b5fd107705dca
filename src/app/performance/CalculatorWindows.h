#pragma once
// The Grid Calculator and the Race Performance Calculator: thin windows over
// the core calculators. The grid shows either as a two-column starting grid
// (NiceGrid = 1) or as a plain list; the race as a plain list, with a season
// odds view of many races.

#include "performance/Calculators.h"
#include "performance/SeasonOdds.h"

#include <QDialog>
#include <QWidget>

#include <array>
#include <cstdint>

class QCheckBox;
class QListWidget;
class QPushButton;
class QSpinBox;
class QTableWidget;

namespace tarvel {

struct Workbench;

// The plain list of a calculator: position label (grid only), driver, team
// text and gap of each car shown, a line each, in a sunken frame.
class CalculatorList : public QWidget {
    Q_OBJECT
public:
    CalculatorList(bool grid, QWidget* parent);
    void show(const WorkingTable& table);
    QSize sizeHint() const override;
    // The lines as shown, fields separated by tabs (the label empty in a race).
    QStringList lines() const { return lines_; }

protected:
    void paintEvent(QPaintEvent*) override;

private:
    struct Columns {
        QRect frame;
        int lineHeight, labelRight, driverLeft, teamLeft, gapRight;
    };
    Columns columns() const;

    bool grid_;
    QStringList lines_;
};

class CalculatorDialog : public QDialog {
    Q_OBJECT
public:
    enum class Kind { Grid, Race };
    // Works on the tables it is given (the car set's, or an editor's scratch
    // copy) and on the session's random numbers; the points table serves the
    // season odds.
    CalculatorDialog(Workbench& bench, const TeamTable& teams, const DriverTable& drivers, Kind kind,
                     QWidget* parent);

    const WorkingTable& table() const { return table_; }
    bool graphical() const { return gridList_ != nullptr; }
    QCheckBox* randomGripBox() const { return randomGrip_; }
    QCheckBox* carFailureBox() const { return carFailure_; }
    QPushButton* randomizeButton() const { return randomize_; }
    QPushButton* seasonButton() const { return season_; }
    QListWidget* gridList() const { return gridList_; }
    CalculatorList* textList() const { return textList_; }
    // Computes again with fresh draws and shows the result.
    void recompute();
    // Opens the season odds view of the race on the window's options.
    void showSeasonOdds();

private:
    void optionsChanged();
    void fillGridList();

    Workbench& bench_;
    const TeamTable& teams_;
    const DriverTable& drivers_;
    Kind kind_;
    WorkingTable table_;
    QCheckBox* randomGrip_ = nullptr;
    QCheckBox* carFailure_ = nullptr;
    QPushButton* randomize_ = nullptr;
    QPushButton* season_ = nullptr;
    QListWidget* gridList_ = nullptr;
    CalculatorList* textList_ = nullptr;
};

// Per driver, bars of the shares of wins, podiums, points finishes and DNFs.
class OddsChart : public QWidget {
    Q_OBJECT
public:
    explicit OddsChart(QWidget* parent);
    void show(const SeasonOdds& odds);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent*) override;

private:
    std::vector<CarOdds> cars_;
    std::uint64_t runs_ = 0;
};

// "Season odds": N races in a row on the session's random numbers, as a table
// (best first) and a chart.
class SeasonOddsDialog : public QDialog {
    Q_OBJECT
public:
    SeasonOddsDialog(Workbench& bench, const TeamTable& teams, const DriverTable& drivers,
                     const CalculatorOptions& options, QWidget* parent);
    QSpinBox* runsField() const { return runs_; }
    QTableWidget* tableWidget() const { return table_; }
    const SeasonOdds& odds() const { return odds_; }
    void run();

private:
    Workbench& bench_;
    const TeamTable& teams_;
    const DriverTable& drivers_;
    CalculatorOptions options_;
    SeasonOdds odds_;
    QSpinBox* runs_;
    QTableWidget* table_;
    OddsChart* chart_;
};

}  // namespace tarvel
