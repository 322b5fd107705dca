#include "performance/PerformanceEditors.h"

#include "performance/CalculatorWindows.h"
#include "shell/Document.h"
#include "shell/FieldWidgets.h"
#include "shell/Session.h"
#include "shell/Workbench.h"

#include "graphics/Helmets.h"
#include "graphics/Palette.h"

#include <QDialogButtonBox>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tarvel {
namespace {

QPushButton* addButton(QBoxLayout* layout, const QString& text, QWidget* parent) {
    auto* button = new QPushButton(text, parent);
    button->setAutoDefault(false);
    layout->addWidget(button);
    return button;
}

QLabel* heading(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setAlignment(Qt::AlignHCenter | Qt::AlignBottom);
    return label;
}

// The built-in helmet the game gives a spare driver, at twice its size.
QImage spareHelmetImage() {
    const BitmapBuffer helmet = builtinSingleHelmet();
    QImage image(helmet.width, helmet.height, QImage::Format_RGB32);
    for (int y = 0; y < helmet.height; ++y)
        for (int x = 0; x < helmet.width; ++x) image.setPixel(x, y, 0xFF000000u | GamePalette[helmet.topRow(y)[x]]);
    return image.scaled(image.size() * 2);
}
constexpr int kHelmetBoxWidth = 146;
constexpr int kHelmetBoxHeight = 30;

// A helmet in a sunken frame; a click shows it enlarged.
class HelmetButton : public QLabel {
public:
    HelmetButton(int number, QWidget* parent) : QLabel(parent), number_(number) {
        const QImage helmet = spareHelmetImage();
        const QImage box = helmet.copy((helmet.width() - kHelmetBoxWidth) / 2, 0, kHelmetBoxWidth, kHelmetBoxHeight);
        setPixmap(QPixmap::fromImage(box));
        setFrameStyle(QFrame::Panel | QFrame::Sunken);
        setFixedSize(kHelmetBoxWidth + 2 * frameWidth(), kHelmetBoxHeight + 2 * frameWidth());
        setToolTip(QString("Helmet %1").arg(number + 1));
        setCursor(Qt::PointingHandCursor);
    }

protected:
    void mousePressEvent(QMouseEvent*) override {
        QDialog view(this);
        view.setWindowTitle(QString("Helmet %1").arg(number_ + 1));
        auto* layout = new QVBoxLayout(&view);
        auto* picture = new QLabel(&view);
        picture->setPixmap(QPixmap::fromImage(spareHelmetImage().scaled(spareHelmetImage().size() * 3)));
        layout->addWidget(picture);
        view.exec();
    }

private:
    int number_;
};

}  // namespace

FigureEditor::FigureEditor(Workbench& bench, const QString& title, QWidget* parent)
    : QDialog(parent), bench_(bench), scratch_(performanceTables(bench.document.set())) {
    setWindowTitle(title);
}

bool FigureEditor::highGrip() const { return bench_.session.config.highGrip; }

int FigureEditor::columnOf(Figure figure) {
    switch (figure) {
        case Figure::PowerRace:
        case Figure::GripRace: return 0;
        case Figure::PowerQual:
        case Figure::GripQual: return 1;
        case Figure::Failure:
        case Figure::GripRandom: break;
    }
    return 2;
}

QLineEdit* FigureEditor::figureField(Figure figure) {
    auto* field = new QLineEdit(this);
    field->setMaxLength(typedLength(kindOf(figure)));
    field->setAlignment(Qt::AlignRight);
    field->setFixedWidth(field->fontMetrics().horizontalAdvance("000000") + 12);
    return field;
}

QLineEdit* FigureEditor::stepField(Figure figure) const { return steps_[std::size_t(figure)]; }

int FigureEditor::readStored(QLineEdit* field, Figure figure) const {
    const Result<int> shown = readFigure(kindOf(figure), field->text().toStdString(), highGrip());
    return storedFigure(kindOf(figure), shown.value_or(0), highGrip());
}

void FigureEditor::showStored(QLineEdit* field, Figure figure, int stored) const {
    field->setText(QString::number(shownFigure(kindOf(figure), stored, highGrip())));
}

bool FigureEditor::check(Figure figure) {
    const std::vector<QLineEdit*> list = fields(figure);
    std::vector<std::string> texts;
    for (QLineEdit* f : list) texts.push_back(f->text().toStdString());
    const auto failing = firstFailing(kindOf(figure), texts, highGrip());
    if (!failing) return true;
    showMessage(bench_, failing->message);
    QLineEdit* field = list[failing->index];
    field->setFocus();
    field->selectAll();
    return false;
}

bool FigureEditor::checkAll(std::initializer_list<Figure> figures) {
    for (Figure f : figures)
        if (!check(f)) return false;
    return true;
}

void FigureEditor::step(Figure figure, StepDirection direction) {
    QLineEdit* amountField = stepField(figure);
    const Result<int> amount = readFigure(FigureKind::StepAmount, amountField->text().toStdString(), highGrip());
    if (!amount) {
        showMessage(bench_, amount.error());
        amountField->setFocus();
        amountField->selectAll();
        return;
    }
    if (!check(figure)) return;
    store(figure);
    stepColumn(scratch_, figure, *amount, direction, highGrip());
    show(figure);
}

void FigureEditor::copyColumn(Figure from, Figure to) {
    if (!check(from)) return;
    const std::vector<QLineEdit*> source = fields(from), target = fields(to);
    for (std::size_t i = 0; i < source.size(); ++i) target[i]->setText(source[i]->text());
}

void FigureEditor::openCalculator(bool race) {
    const std::vector<Figure> figures = calculatorFigures(race);
    for (Figure f : figures)
        if (!check(f)) return;
    for (Figure f : figures) store(f);
    CalculatorDialog dialog(bench_, scratch_.teams, scratch_.drivers,
                            race ? CalculatorDialog::Kind::Race : CalculatorDialog::Kind::Grid, this);
    calculator_ = &dialog;
    dialog.exec();
    calculator_ = nullptr;
}

void FigureEditor::commit() {
    const std::vector<Figure> order = checkOrder();
    for (Figure f : order)
        if (!check(f)) return;
    for (Figure f : order) store(f);
    bench_.document.edit(StepName{windowTitle().toStdString()}, Document::Teams | Document::Drivers,
                         [&](CarSet& set) { return commitTo(set); });
    accept();
}

QWidget* FigureEditor::stepGroup(const QString& title, Figure figure) {
    auto* group = new QGroupBox(title, this);
    auto* row = new QHBoxLayout(group);
    QPushButton* minus = addButton(row, "-", group);
    auto* amount = new QLineEdit(QString::number(defaultStep(figure)), group);
    amount->setMaxLength(typedLength(FigureKind::StepAmount));
    amount->setAlignment(Qt::AlignRight);
    amount->setFixedWidth(amount->fontMetrics().horizontalAdvance("000000") + 12);
    row->addWidget(amount);
    QPushButton* plus = addButton(row, "+", group);
    for (QPushButton* b : {minus, plus}) b->setFixedWidth(b->fontMetrics().horizontalAdvance("+") + 24);
    steps_[std::size_t(figure)] = amount;
    connect(minus, &QPushButton::clicked, this, [this, figure] { step(figure, StepDirection::Down); });
    connect(plus, &QPushButton::clicked, this, [this, figure] { step(figure, StepDirection::Up); });
    return group;
}

QWidget* FigureEditor::buttonRow(bool calculators, Figure race, Figure qual) {
    auto* box = new QWidget(this);
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    if (calculators) {
        connect(addButton(row, "Race = Qual", box), &QPushButton::clicked, this, [=, this] { copyColumn(qual, race); });
        connect(addButton(row, "Qual = Race", box), &QPushButton::clicked, this, [=, this] { copyColumn(race, qual); });
        connect(addButton(row, "Grid", box), &QPushButton::clicked, this, [this] { openCalculator(false); });
        connect(addButton(row, "Race", box), &QPushButton::clicked, this, [this] { openCalculator(true); });
    }
    row->addStretch();
    connect(addButton(row, "Cancel", box), &QPushButton::clicked, this, &QDialog::reject);
    QPushButton* ok = addButton(row, "OK", box);
    connect(ok, &QPushButton::clicked, this, &FigureEditor::commit);
    return box;
}

// --- Car Performance Editor ---------------------------------------------------

constexpr Figure kCarFigures[] = {Figure::PowerRace, Figure::PowerQual, Figure::Failure};

CarPerformanceEditor::CarPerformanceEditor(Workbench& bench, QWidget* parent)
    : FigureEditor(bench, "Car Performance Editor", parent) {
    auto* layout = new QVBoxLayout(this);
    auto* body = new QHBoxLayout;
    auto* grid = new QGridLayout;
    grid->addWidget(heading("Engine BHP\n(Race)", this), 0, 1);
    grid->addWidget(heading("Engine BHP\n(Qual)", this), 0, 2);
    grid->addWidget(heading("Failure\nProb", this), 0, 3);
    for (int t = 0; t < kRacingTeams; ++t) {
        auto* name = new QLabel(fromModel(fieldText(scratch_.teams[std::size_t(t)].name)), this);
        name->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        grid->addWidget(name, t + 1, 0);
        for (int c = 0; c < 3; ++c) {
            fields_[std::size_t(c)][std::size_t(t)] = figureField(kCarFigures[c]);
            grid->addWidget(fields_[std::size_t(c)][std::size_t(t)], t + 1, c + 1);
        }
    }
    body->addLayout(grid);
    auto* side = new QVBoxLayout;
    side->addWidget(stepGroup("Race Power", Figure::PowerRace));
    side->addWidget(stepGroup("Qual Power", Figure::PowerQual));
    side->addWidget(stepGroup("Failure Probability", Figure::Failure));
    side->addStretch();
    body->addLayout(side);
    layout->addLayout(body);
    layout->addWidget(buttonRow(true, Figure::PowerRace, Figure::PowerQual));
    for (Figure f : kCarFigures) show(f);
    QLineEdit* first = fields_[0][std::size_t(bench.document.currentTeam())];
    first->setFocus();
    first->selectAll();
}

std::vector<QLineEdit*> CarPerformanceEditor::fields(Figure figure) const {
    const auto& c = fields_[std::size_t(columnOf(figure))];
    return {c.begin(), c.end()};
}

void CarPerformanceEditor::store(Figure figure) {
    for (int t = 0; t < kRacingTeams; ++t)
        setFigureValue(scratch_, figure, t, 0,
                       readStored(fields_[std::size_t(columnOf(figure))][std::size_t(t)], figure));
}

void CarPerformanceEditor::show(Figure figure) {
    for (int t = 0; t < kRacingTeams; ++t)
        showStored(fields_[std::size_t(columnOf(figure))][std::size_t(t)], figure, figureValue(scratch_, figure, t, 0));
}

bool CarPerformanceEditor::commitTo(CarSet& set) { return commitTeamFigures(set, scratch_); }

std::vector<Figure> CarPerformanceEditor::checkOrder() const {
    return {std::begin(kCarFigures), std::end(kCarFigures)};
}

std::vector<Figure> CarPerformanceEditor::calculatorFigures(bool race) const {
    return {race ? Figure::PowerRace : Figure::PowerQual};
}

// --- Driver Performance Editor ------------------------------------------------

constexpr Figure kDriverFigures[] = {Figure::GripRace, Figure::GripQual, Figure::GripRandom};

DriverPerformanceEditor::DriverPerformanceEditor(Workbench& bench, QWidget* parent)
    : FigureEditor(bench, "Driver Performance Editor", parent) {
    auto* layout = new QVBoxLayout(this);
    auto* body = new QHBoxLayout;
    for (int car = 0; car < 2; ++car) {
        auto* group = new QGroupBox(car == 0 ? "First Drivers" : "Second Drivers", this);
        auto* grid = new QGridLayout(group);
        grid->addWidget(heading("R-Grip", group), 0, 1);
        grid->addWidget(heading("Q-Grip", group), 0, 2);
        grid->addWidget(heading("Range", group), 0, 3);
        for (int t = 0; t < kRacingTeams; ++t) {
            const int number = scratch_.teams[std::size_t(t)].driver[std::size_t(car)];
            const std::string name = number > 0 && number <= kDriverNumbers
                                         ? fieldText(scratch_.drivers[std::size_t(number)].name)
                                         : std::string();
            auto* label = new QLabel(fromModel(name), group);
            label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
            grid->addWidget(label, t + 1, 0);
            for (int c = 0; c < 3; ++c) {
                auto*& field = fields_[std::size_t(c)][std::size_t(car)][std::size_t(t)];
                field = figureField(kDriverFigures[c]);
                grid->addWidget(field, t + 1, c + 1);
            }
        }
        body->addWidget(group);
    }
    auto* side = new QVBoxLayout;
    side->addWidget(stepGroup("Race Grip", Figure::GripRace));
    side->addWidget(stepGroup(" Qual Grip ", Figure::GripQual));
    side->addWidget(stepGroup("Grip Range", Figure::GripRandom));
    side->addStretch();
    body->addLayout(side);
    layout->addLayout(body);
    layout->addWidget(buttonRow(true, Figure::GripRace, Figure::GripQual));
    for (Figure f : kDriverFigures) show(f);
}

std::vector<QLineEdit*> DriverPerformanceEditor::fields(Figure figure) const {
    std::vector<QLineEdit*> out;
    const auto& c = fields_[std::size_t(columnOf(figure))];
    for (int t = 0; t < kRacingTeams; ++t)
        for (int car = 0; car < 2; ++car) out.push_back(c[std::size_t(car)][std::size_t(t)]);
    return out;
}

void DriverPerformanceEditor::store(Figure figure) {
    const std::vector<QLineEdit*> list = fields(figure);
    for (int t = 0; t < kRacingTeams; ++t)
        for (int car = 0; car < 2; ++car)
            setFigureValue(scratch_, figure, t, car, readStored(list[std::size_t(2 * t + car)], figure));
}

void DriverPerformanceEditor::show(Figure figure) {
    const std::vector<QLineEdit*> list = fields(figure);
    for (int t = 0; t < kRacingTeams; ++t)
        for (int car = 0; car < 2; ++car)
            showStored(list[std::size_t(2 * t + car)], figure, figureValue(scratch_, figure, t, car));
}

bool DriverPerformanceEditor::commitTo(CarSet& set) { return commitDriverFigures(set, scratch_); }

std::vector<Figure> DriverPerformanceEditor::checkOrder() const {
    return {std::begin(kDriverFigures), std::end(kDriverFigures)};
}

std::vector<Figure> DriverPerformanceEditor::calculatorFigures(bool race) const {
    return {race ? Figure::GripRace : Figure::GripQual, Figure::GripRandom};
}

// --- Spare Driver Editor --------------------------------------------------------

SpareDriverEditor::SpareDriverEditor(Workbench& bench, QWidget* parent)
    : FigureEditor(bench, "Spare Driver Editor", parent) {
    auto* layout = new QVBoxLayout(this);
    auto* grid = new QGridLayout;
    grid->addWidget(heading("Name", this), 0, 0);
    grid->addWidget(heading("R-Grip", this), 0, 1);
    grid->addWidget(heading("Q-Grip", this), 0, 2);
    grid->addWidget(heading("Range", this), 0, 3);
    for (int row = 0; row < kSpareDrivers; ++row) {
        const int number = scratch_.teams[std::size_t(kRacingTeams + row / 2)].driver[std::size_t(row % 2)];
        auto* name = new SizedLineEdit(QString(kDriverNameSize - 1, 'M'), this);
        name->setValidator(new ModelTextValidator(kDriverNameSize - 1, name));
        name->setMaxLength(kDriverNameSize - 1);
        if (number > 0 && number <= kDriverNumbers)
            name->setText(fromModel(fieldText(scratch_.drivers[std::size_t(number)].name)));
        name->setEnabled(number > 0 && number <= kDriverNumbers);
        names_[std::size_t(row)] = name;
        grid->addWidget(name, row + 1, 0);
        for (int c = 0; c < 3; ++c) {
            fields_[std::size_t(c)][std::size_t(row)] = figureField(kDriverFigures[c]);
            grid->addWidget(fields_[std::size_t(c)][std::size_t(row)], row + 1, c + 1);
        }
        grid->addWidget(new HelmetButton(kHelmetCount + row, this), row + 1, 4);
    }
    layout->addLayout(grid);
    layout->addWidget(buttonRow(false, Figure::GripRace, Figure::GripQual));
    for (Figure f : kDriverFigures) show(f);
}

std::vector<QLineEdit*> SpareDriverEditor::fields(Figure figure) const {
    const auto& c = fields_[std::size_t(columnOf(figure))];
    return {c.begin(), c.end()};
}

void SpareDriverEditor::store(Figure figure) {
    for (int row = 0; row < kSpareDrivers; ++row)
        setFigureValue(scratch_, figure, kRacingTeams + row / 2, row % 2,
                       readStored(fields_[std::size_t(columnOf(figure))][std::size_t(row)], figure));
}

void SpareDriverEditor::show(Figure figure) {
    for (int row = 0; row < kSpareDrivers; ++row)
        showStored(fields_[std::size_t(columnOf(figure))][std::size_t(row)], figure,
                   figureValue(scratch_, figure, kRacingTeams + row / 2, row % 2));
}

bool SpareDriverEditor::commitTo(CarSet& set) {
    for (int row = 0; row < kSpareDrivers; ++row) {
        const int number = scratch_.teams[std::size_t(kRacingTeams + row / 2)].driver[std::size_t(row % 2)];
        if (number > 0 && number <= kDriverNumbers)
            setFieldText(scratch_.drivers[std::size_t(number)].name, toModel(names_[std::size_t(row)]->text()));
    }
    return commitDriverFigures(set, scratch_);
}

std::vector<Figure> SpareDriverEditor::checkOrder() const {
    return {std::begin(kDriverFigures), std::end(kDriverFigures)};
}

}  // namespace tarvel
