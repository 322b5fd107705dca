#include "performance/CalculatorWindows.h"

#include "performance/GridBoxPicture.h"
#include "shell/Document.h"
#include "shell/Session.h"
#include "shell/Workbench.h"

#include "carset/CarSet.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QStyledItemDelegate>
#include <QTableWidget>
#include <QVBoxLayout>

namespace tarvel {
namespace {

QString text(std::string_view windows1252) { return fromModel(std::string(windows1252)); }

// The graphical grid: after a spacer, nine items a row of two cars: the row
// label, then gap, grid box, driver and team of the left (pole side) car, then
// the same of the right car.
enum GridItem { RowLabel = 0, LeftGap, LeftBox, LeftDriver, LeftTeam, RightGap, RightBox, RightDriver, RightTeam };
constexpr int kGridWidth = 320;
constexpr int kGridHeight = 355;
constexpr int kHalfWidth = kGridWidth / 2;
constexpr int kItemHeight = 14;
constexpr int kBoxShift = 10;
constexpr int kLabelIndent = 10;

int itemKind(int row) { return (row - 1) % 9; }
bool isBox(int row) { return row > 0 && (itemKind(row) == LeftBox || itemKind(row) == RightBox); }

class GridDelegate : public QStyledItemDelegate {
public:
    GridDelegate(const QImage& box, QObject* parent) : QStyledItemDelegate(parent), box_(box) {}

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const override {
        return {kGridWidth, isBox(index.row()) ? kGridBoxHeight : kItemHeight};
    }
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const int row = index.row();
        if (row == 0) return;
        const int kind = itemKind(row);
        const QRect r = option.rect;
        if (kind == RowLabel) {
            painter->setPen(option.palette.color(QPalette::Highlight));
            painter->drawText(r.adjusted(kLabelIndent, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                              index.data().toString());
            return;
        }
        const QRect half(r.left() + (kind >= RightGap ? kHalfWidth : 0), r.top(), kHalfWidth, r.height());
        if (kind == LeftBox || kind == RightBox) {
            painter->drawImage(half.left() + (kHalfWidth - kGridBoxWidth) / 2 + kBoxShift, half.top(), box_);
            return;
        }
        painter->setPen(option.palette.color(QPalette::ButtonText));
        painter->drawText(half, Qt::AlignHCenter | Qt::AlignVCenter,
                          option.fontMetrics.elidedText(index.data().toString(), Qt::ElideRight, kHalfWidth - 4));
    }

private:
    QImage box_;
};

// The plain lists: a line per car in a sunken frame, the label right-aligned,
// then driver and team, the gap right-aligned. Columns take the room their
// longest text needs in the window's font, lines at least 13 pixels.
constexpr int kFrameMargin = 10;
constexpr int kFramePadding = 6;
constexpr int kColumnGap = 14;
constexpr int kMinimumLine = 13;

QString percent(std::uint64_t count, std::uint64_t runs) {
    return QString::number(runs ? 100.0 * double(count) / double(runs) : 0.0, 'f', 1) + "%";
}

}  // namespace

QImage gridBoxImage(const QPalette& palette) {
    QImage image(kGridBoxWidth, kGridBoxHeight, QImage::Format_RGB32);
    for (int y = 0; y < kGridBoxHeight; ++y)
        for (int x = 0; x < kGridBoxWidth; ++x) {
            const char role = kGridBoxRows[y][x];
            const QColor c = role == 'H'   ? palette.color(QPalette::Light)
                             : role == 'S' ? palette.color(QPalette::Dark)
                                           : palette.color(QPalette::Button);
            image.setPixel(x, y, c.rgb());
        }
    return image;
}

CalculatorList::CalculatorList(bool grid, QWidget* parent) : QWidget(parent), grid_(grid) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

CalculatorList::Columns CalculatorList::columns() const {
    const QFontMetrics fm = fontMetrics();
    int driver = fm.horizontalAdvance("Drivers Name"), team = 0, gap = fm.horizontalAdvance("+00.00%");
    for (const QString& line : lines_) {
        const QStringList f = line.split('\t');
        driver = std::max(driver, fm.horizontalAdvance(f[1]));
        team = std::max(team, fm.horizontalAdvance(f[2]));
        gap = std::max(gap, fm.horizontalAdvance(f[3]));
    }
    Columns c;
    c.lineHeight = std::max(kMinimumLine, fm.height() + 1);
    c.labelRight = kFrameMargin + kFramePadding + (grid_ ? fm.horizontalAdvance("DNQ") : 0);
    c.driverLeft = c.labelRight + (grid_ ? kColumnGap : 0);
    c.teamLeft = c.driverLeft + driver + kColumnGap;
    c.gapRight = c.teamLeft + team + kColumnGap + gap;
    c.frame = QRect(kFrameMargin, kFrameMargin, c.gapRight + kFramePadding - kFrameMargin,
                    2 * kFramePadding + c.lineHeight * int(std::max<qsizetype>(lines_.size(), 1)));
    return c;
}

QSize CalculatorList::sizeHint() const {
    const QRect frame = columns().frame;
    return {frame.right() + 1 + kFrameMargin, frame.bottom() + 1 + kFrameMargin};
}

void CalculatorList::show(const WorkingTable& table) {
    lines_.clear();
    const auto shown = table.shownEntries();
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const CarEntry& e = shown[i];
        std::array<char, 8> buffer{};
        const QString label = grid_ ? QString::fromLatin1(textGridLabel(int(i), buffer)) : QString();
        lines_ << label + "\t" + text(e.driverText()) + "\t" + text(e.teamText()) + "\t" + text(e.gapText());
    }
    updateGeometry();
    update();
}

void CalculatorList::paintEvent(QPaintEvent*) {
    QPainter p(this);
    const Columns c = columns();
    p.setPen(palette().color(QPalette::Dark));
    p.drawLine(c.frame.topLeft(), c.frame.topRight());
    p.drawLine(c.frame.topLeft(), c.frame.bottomLeft());
    p.setPen(palette().color(QPalette::Light));
    p.drawLine(c.frame.bottomLeft(), c.frame.bottomRight());
    p.drawLine(c.frame.topRight(), c.frame.bottomRight());
    p.setPen(palette().color(QPalette::WindowText));
    for (int i = 0; i < lines_.size(); ++i) {
        const QStringList f = lines_[i].split('\t');
        const int y = c.frame.top() + kFramePadding + c.lineHeight * i;
        auto at = [&](int left, int right, Qt::Alignment align, const QString& s) {
            p.drawText(QRect(left, y, right - left, c.lineHeight), align | Qt::AlignVCenter, s);
        };
        if (grid_) at(c.frame.left(), c.labelRight, Qt::AlignRight, f[0]);
        at(c.driverLeft, c.teamLeft, Qt::AlignLeft, f[1]);
        at(c.teamLeft, c.gapRight, Qt::AlignLeft, f[2]);
        at(c.teamLeft, c.gapRight, Qt::AlignRight, f[3]);
    }
}

CalculatorDialog::CalculatorDialog(Workbench& bench, const TeamTable& teams, const DriverTable& drivers, Kind kind,
                                   QWidget* parent)
    : QDialog(parent), bench_(bench), teams_(teams), drivers_(drivers), kind_(kind) {
    const bool race = kind == Kind::Race;
    setWindowTitle(race ? "Race Performance Calculator" : "Grid Calculator");
    auto* layout = new QHBoxLayout(this);
    if (!race && bench.session.config.niceGrid) {
        gridList_ = new QListWidget(this);
        gridList_->setSelectionMode(QAbstractItemView::NoSelection);
        gridList_->setFocusPolicy(Qt::NoFocus);
        gridList_->setUniformItemSizes(false);
        gridList_->setItemDelegate(new GridDelegate(gridBoxImage(palette()), gridList_));
        QPalette face = gridList_->palette();
        face.setColor(QPalette::Base, face.color(QPalette::Button));
        gridList_->setPalette(face);
        gridList_->setFixedSize(kGridWidth + gridList_->verticalScrollBar()->sizeHint().width() +
                                    2 * gridList_->frameWidth(),
                                kGridHeight);
        layout->addWidget(gridList_);
    } else {
        textList_ = new CalculatorList(!race, this);
        layout->addWidget(textList_);
    }
    auto* side = new QVBoxLayout;
    randomGrip_ = new QCheckBox(" Random Grip Range ", this);
    carFailure_ = new QCheckBox(" Car Failure ", this);
    carFailure_->setVisible(race);
    randomize_ = new QPushButton("Randomize", this);
    randomize_->setEnabled(false);
    side->addWidget(randomGrip_);
    side->addWidget(carFailure_);
    side->addWidget(randomize_);
    if (race) {
        season_ = new QPushButton("&Season odds...", this);
        side->addWidget(season_);
        connect(season_, &QPushButton::clicked, this, &CalculatorDialog::showSeasonOdds);
    }
    side->addStretch();
    auto* close = new QPushButton("Close", this);
    side->addWidget(close);
    layout->addLayout(side);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    connect(randomGrip_, &QCheckBox::toggled, this, &CalculatorDialog::optionsChanged);
    connect(carFailure_, &QCheckBox::toggled, this, &CalculatorDialog::optionsChanged);
    connect(randomize_, &QPushButton::clicked, this, &CalculatorDialog::recompute);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    recompute();
}

void CalculatorDialog::optionsChanged() {
    randomize_->setEnabled(randomGrip_->isChecked() || (kind_ == Kind::Race && carFailure_->isChecked()));
    recompute();
}

void CalculatorDialog::recompute() {
    Rand& rand = bench_.session.rand;
    if (kind_ == Kind::Grid)
        table_ = computeGrid(teams_, drivers_, randomGrip_->isChecked(), rand);
    else
        table_ = computeRace(teams_, drivers_, {randomGrip_->isChecked(), carFailure_->isChecked()}, rand);
    if (gridList_)
        fillGridList();
    else
        textList_->show(table_);
}

void CalculatorDialog::fillGridList() {
    gridList_->clear();
    gridList_->addItem(" ");
    const auto shown = table_.shownEntries();
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const CarEntry& e = shown[i];
        if (i % 2 == 0) gridList_->addItem(text(e.labelText()));
        for (const QString& item : {text(e.gapText()), QString(), text(e.driverText()), text(e.teamText())})
            gridList_->addItem(item);
    }
}

void CalculatorDialog::showSeasonOdds() {
    SeasonOddsDialog dialog(bench_, teams_, drivers_, {randomGrip_->isChecked(), carFailure_->isChecked()}, this);
    dialog.exec();
}

OddsChart::OddsChart(QWidget* parent) : QWidget(parent) {}

QSize OddsChart::sizeHint() const { return {420, 24 + 16 * int(std::max<std::size_t>(cars_.size(), 8))}; }

void OddsChart::show(const SeasonOdds& odds) {
    cars_ = bestFirst(odds);
    runs_ = odds.runs;
    updateGeometry();
    update();
}

void OddsChart::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.fillRect(rect(), palette().color(QPalette::Base));
    const QColor points(150, 190, 230), podium(70, 130, 200), win(20, 60, 140), dnf(200, 60, 50);
    const int nameWidth = 120, top = 20, rowHeight = 16;
    const int barWidth = std::max(40, width() - nameWidth - 12);
    // Legend.
    int x = 4;
    for (auto [colour, label] : {std::pair{win, "wins"}, {podium, "podiums"}, {points, "points"}, {dnf, "DNF"}}) {
        p.fillRect(x, 5, 10, 10, colour);
        p.setPen(palette().color(QPalette::Text));
        p.drawText(x + 14, 14, label);
        x += 24 + p.fontMetrics().horizontalAdvance(label);
    }
    if (runs_ == 0) return;
    auto length = [&](std::uint64_t count) { return int(double(barWidth) * double(count) / double(runs_)); };
    for (std::size_t i = 0; i < cars_.size(); ++i) {
        const CarOdds& c = cars_[i];
        const int y = top + rowHeight * int(i);
        p.setPen(palette().color(QPalette::Text));
        p.drawText(QRect(4, y, nameWidth - 8, rowHeight), Qt::AlignLeft | Qt::AlignVCenter,
                   p.fontMetrics().elidedText(text(c.driver), Qt::ElideRight, nameWidth - 8));
        p.fillRect(nameWidth, y + 2, length(c.points), 9, points);
        p.fillRect(nameWidth, y + 2, length(c.podiums), 9, podium);
        p.fillRect(nameWidth, y + 2, length(c.wins), 9, win);
        p.fillRect(nameWidth, y + 12, length(c.dnf), 3, dnf);
    }
}

SeasonOddsDialog::SeasonOddsDialog(Workbench& bench, const TeamTable& teams, const DriverTable& drivers,
                                   const CalculatorOptions& options, QWidget* parent)
    : QDialog(parent), bench_(bench), teams_(teams), drivers_(drivers), options_(options) {
    setWindowTitle("Season Odds");
    auto* layout = new QVBoxLayout(this);
    auto* top = new QHBoxLayout;
    top->addWidget(new QLabel("Races:", this));
    runs_ = new QSpinBox(this);
    runs_->setRange(1, 1000000);
    runs_->setValue(1000);
    top->addWidget(runs_);
    auto* runButton = new QPushButton("Run", this);
    top->addWidget(runButton);
    QString optionsText = options.randomGrip ? "random grip" : "no random grip";
    optionsText += options.carFailure ? ", car failures" : ", no car failures";
    top->addWidget(new QLabel(optionsText, this));
    top->addStretch();
    layout->addLayout(top);

    auto* body = new QHBoxLayout;
    table_ = new QTableWidget(0, 8, this);
    table_->setHorizontalHeaderLabels({"Driver", "Team", "Wins", "Podiums", "Points", "DNF", "DNQ", "Mean place"});
    table_->verticalHeader()->setVisible(false);
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->verticalHeader()->setDefaultSectionSize(table_->fontMetrics().height() + 6);
    body->addWidget(table_, 3);
    chart_ = new OddsChart(this);
    body->addWidget(chart_, 2);
    layout->addLayout(body);
    auto* close = new QPushButton("Close", this);
    layout->addWidget(close, 0, Qt::AlignRight);
    connect(runButton, &QPushButton::clicked, this, &SeasonOddsDialog::run);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    resize(1080, 640);
    run();
}

void SeasonOddsDialog::run() {
    WaitCursor wait;
    const CarSet& set = bench_.document.set();
    const std::span points(set.settings.range(settings::kPoints), std::size_t(settings::kPoints.count));
    odds_ = runSeason(teams_, drivers_, points, options_, std::uint64_t(runs_->value()), bench_.session.rand);
    const std::vector<CarOdds> cars = bestFirst(odds_);
    table_->setRowCount(int(cars.size()));
    for (int row = 0; row < int(cars.size()); ++row) {
        const CarOdds& c = cars[std::size_t(row)];
        const QString cells[] = {text(c.driver),
                                 text(c.team),
                                 percent(c.wins, odds_.runs),
                                 percent(c.podiums, odds_.runs),
                                 percent(c.points, odds_.runs),
                                 percent(c.dnf, odds_.runs),
                                 percent(c.dnq, odds_.runs),
                                 QString::number(double(c.positionSum) / double(odds_.runs), 'f', 2)};
        for (int col = 0; col < 8; ++col) {
            auto* item = new QTableWidgetItem(cells[col]);
            if (col >= 2) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            table_->setItem(row, col, item);
        }
    }
    table_->resizeColumnsToContents();
    int width = 2 * table_->frameWidth() + table_->verticalScrollBar()->sizeHint().width();
    for (int col = 0; col < table_->columnCount(); ++col) width += table_->columnWidth(col);
    table_->setMinimumWidth(width);
    chart_->show(odds_);
}

}  // namespace tarvel
