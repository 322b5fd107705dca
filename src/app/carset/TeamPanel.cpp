#include "carset/TeamPanel.h"

#include "common/CodePage.h"

#include "carset/TeamList.h"
#include "graphics/CarBitmapPopup.h"
#include "graphics/PictureWidgets.h"
#include "shell/Asker.h"
#include "shell/Command.h"
#include "shell/CommandIds.h"
#include "shell/Document.h"
#include "shell/FieldWidgets.h"
#include "shell/Session.h"
#include "shell/Workbench.h"

#include "carset/DriverSeats.h"
#include "carset/FieldSchema.h"
#include "carset/TeamSwap.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGridLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

namespace tarvel {
namespace {

// The three car performance values and the three grips of a driver, as the
// field schema describes them (caption, range, how they are shown).
constexpr std::array<std::string_view, 3> kPerformanceFields{"powerRace", "powerQual", "failureProbability"};
constexpr std::array<std::string_view, 3> kGripFields{"gripRace", "gripQual", "gripRandom"};

const FieldSpec& performanceSpec(int which) { return *findFieldSpec(FieldPlace::Team, kPerformanceFields[std::size_t(which)]); }
const FieldSpec& gripSpec(int which) { return *findFieldSpec(FieldPlace::Driver, kGripFields[std::size_t(which)]); }
const ElementRule& rule(const FieldSpec& field) { return elementRule(field, 0); }
QString caption(const FieldSpec& field) {
    const std::string_view text = rule(field).caption;
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

const char* const kActiveHeader = " --- ACTIVE DRIVERS ---------";
const char* const kSpareHeader = " --- SPARE DRIVERS ----------";

}  // namespace

// The step of an edit of the team on show: "Rename team 3"; typing in one
// field (a merge key) makes one step.
StepName TeamPanel::teamStep(std::string_view what, std::string_view field) const {
    const std::string team = std::to_string(bench_.document.currentTeam() + 1);
    std::string name(what);
    name += what.starts_with("Rename") && !what.ends_with("engine") ? " team " + team : " of team " + team;
    return StepName{name, field.empty() ? std::string() : "team " + team + " " + std::string(field)};
}

StepName TeamPanel::driverStep(std::string_view what, int number, std::string_view field) const {
    const std::string driver = "driver " + std::to_string(number);
    return StepName{std::string(what) + " " + driver, field.empty() ? std::string() : driver + " " + std::string(field)};
}

StepName TeamPanel::gripStep(int which, int number) const {
    const std::string_view field = rule(gripSpec(which)).caption;
    const std::string driver = "driver " + std::to_string(number);
    return StepName{"Change " + std::string(field) + " of " + driver, driver + " " + std::string(field)};
}

template <class F>
auto TeamPanel::ownEdit(const StepName& step, unsigned what, F&& change) {
    editing_ = true;
    auto result = bench_.document.edit(step, what, std::forward<F>(change));
    editing_ = false;
    return result;
}

TeamPanel::TeamPanel(Workbench& bench, QWidget* parent) : QWidget(parent), bench_(bench) {
    // The window's controls use a small dialog font; the layouts size every control from it.
    QFont font("Arial");
    font.setPixelSize(11);
    setFont(font);
    buildControls();
    connect(&bench_.document, &Document::changed, this, &TeamPanel::documentChanged);
}

// ---------------------------------------------------------------- building

namespace {

// A caption with the value's spin box at its right, and the scroll bar under both.
QLayout* sliderRow(QLabel* caption, ValueSpinBox* value, QScrollBar* bar) {
    auto* row = new QGridLayout;
    row->setSpacing(0);
    row->addWidget(caption, 0, 0);
    row->addWidget(value, 0, 1);
    row->addWidget(bar, 1, 0, 1, 2);
    row->setColumnStretch(0, 1);
    return row;
}

// The figure beside a scroll bar: it looks like the text it replaces and takes typed values.
// The range message as the field's tool tip while its text lies outside.
QString rangeHint(const ElementRule& field, bool highGrip) {
    return QString::fromStdString(windows1252ToUtf8(messageText(rangeMessage(field, highGrip))));
}

ValueSpinBox* sliderValue(QWidget* parent) {
    auto* value = new ValueSpinBox(parent);
    value->setButtonSymbols(QAbstractSpinBox::NoButtons);
    value->setFrame(false);
    value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    value->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    return value;
}

QScrollBar* sliderBar(QWidget* parent, int pageStep) {
    auto* bar = new QScrollBar(Qt::Horizontal, parent);
    bar->setPageStep(pageStep);
    bar->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return bar;
}

// Room that only grows: it takes what the pictures leave.
QSpacerItem* gap(int height) { return new QSpacerItem(0, height, QSizePolicy::Minimum, QSizePolicy::Expanding); }

}  // namespace

void TeamPanel::buildControls() {
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(16, 3, 16, 13);
    grid->setHorizontalSpacing(14);
    grid->setVerticalSpacing(2);
    // The livery and the first helmet line up with the top of the team list.
    grid->addWidget(new QLabel("Teams", this), 0, 0);
    grid->addLayout(buildTeamColumn(), 1, 0);
    grid->addLayout(buildLiveryColumn(), 1, 1);
    grid->addLayout(buildDriverColumn(), 1, 2);
    // Width beyond the controls' own goes to the livery and the helmets, about
    // in the ratio of their widths, so that they grow by whole multiples together.
    grid->setColumnStretch(1, 7);
    grid->setColumnStretch(2, 2);
    grid->setRowStretch(1, 1);
}

QLayout* TeamPanel::buildTeamColumn() {
    auto* column = new QVBoxLayout;
    column->setSpacing(0);
    teamList_ = new TeamList(this);
    connect(teamList_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (!updating_ && row >= 0) selectTeam(row);
    });
    connect(teamList_, &TeamList::moveRequested, this, &TeamPanel::requestTeamMove);
    column->addWidget(teamList_);

    auto nameField = [this, column](const QString& caption, bool engine) {
        column->addSpacing(3);
        column->addWidget(new QLabel(caption, this));
        column->addSpacing(1);
        auto* field = new QLineEdit(this);
        field->setValidator(new ModelTextValidator(kTeamNameSize - 1, field));
        connect(field, &QLineEdit::textEdited, this, [this, engine](const QString& t) { teamTextEdited(engine, t); });
        column->addWidget(field);
        return field;
    };
    teamName_ = nameField("Team Name", false);
    engine_ = nameField("Engine", true);

    column->addItem(gap(17));
    carSettings_ = new QPushButton(" Car Settings ", this);
    connect(carSettings_, &QPushButton::clicked, this, [this] { bench_.commands.run(command::CarSettings); });
    column->addWidget(carSettings_);
    column->addSpacing(2);
    gameSettings_ = new QPushButton(" Game Settings ", this);
    connect(gameSettings_, &QPushButton::clicked, this, [this] { bench_.commands.run(command::GameSettings); });
    column->addWidget(gameSettings_);
    return column;
}

QLayout* TeamPanel::buildLiveryColumn() {
    auto* column = new QVBoxLayout;
    column->setSpacing(0);
    livery_ = new LiveryView(this);
    connect(livery_, &LiveryView::doubleClicked, this, &TeamPanel::showEnlargedLivery);
    column->addWidget(livery_, 1);
    column->addSpacing(6);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(1);
    carBitmap_ = new QPushButton(" Car Bitmap... ", this);
    connect(carBitmap_, &QPushButton::clicked, this, &TeamPanel::showCarPopup);
    buttons->addWidget(carBitmap_);
    undo_ = new QPushButton(" Undo ", this);
    connect(undo_, &QPushButton::clicked, this, [this] { bench_.document.undoLivery(); });
    buttons->addWidget(undo_);
    buttons->addSpacing(5);
    highNose_ = new QCheckBox(" High Nose ", this);
    connect(highNose_, &QCheckBox::toggled, this, [this](bool on) {
        if (updating_) return;
        ownEdit(teamStep(on ? "Set high nose" : "Clear high nose"), Document::Teams, [&](CarSet& set) {
            set.team(bench_.document.currentTeam()).highNose = on ? 1 : 0;
            return true;
        });
    });
    buttons->addWidget(highNose_);
    buttons->addStretch();
    column->addLayout(buttons);

    column->addItem(gap(12));
    for (int i = 0; i < 3; ++i) {
        if (i > 0) column->addSpacing(1);
        auto* value = sliderValue(this);
        auto* bar = sliderBar(this, i == 2 ? 1000 : 50);
        const ElementRule* field = &rule(performanceSpec(i));
        const FieldRange range = displayRange(*field, false);
        bar->setRange(range.low, range.high);
        value->setRange(range.low, range.high);
        value->setRangeHint(rangeHint(*field, false));
        connect(bar, &QScrollBar::valueChanged, this, [this, i](int v) { performanceChanged(i, v); });
        connect(value, &QSpinBox::valueChanged, bar, &QScrollBar::setValue);
        connect(value, &ValueSpinBox::typedOutside, this,
                [this, value, field](bool refocus) { valueTypedOutside(value, *field, refocus); });
        column->addLayout(sliderRow(new QLabel(caption(performanceSpec(i)), this), value, bar));
        perfValue_[std::size_t(i)] = value;
        perfBar_[std::size_t(i)] = bar;
    }
    return column;
}

QLayout* TeamPanel::buildDriverColumn() {
    auto* column = new QVBoxLayout;
    column->setSpacing(0);
    for (int car = 0; car < 2; ++car) {
        if (car > 0) column->addItem(gap(1));
        helmets_[std::size_t(car)] = new HelmetView(this);
        column->addWidget(helmets_[std::size_t(car)], 1);
        column->addSpacing(3);
        column->addLayout(buildDriverControls(car));
    }
    return column;
}

QLayout* TeamPanel::buildDriverControls(int car) {
    DriverControls& d = drivers_[std::size_t(car)];
    auto* block = new QVBoxLayout;
    block->setSpacing(0);
    d.list = new QComboBox(this);
    // Wide enough for a number and most of a name; longer entries are elided.
    d.list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    d.list->setMinimumContentsLength(16);
    connect(d.list, &QComboBox::activated, this, [this, car](int index) { driverChosen(car, index); });
    block->addWidget(d.list);
    block->addSpacing(2);

    auto* identity = new QHBoxLayout;
    identity->setSpacing(2);
    d.number = new SizedLineEdit("0000", this);
    d.number->setValidator(new QIntValidator(0, kDriverNumbers, d.number));
    connect(d.number, &QLineEdit::editingFinished, this, [this, car] { driverNumberTyped(car); });
    identity->addWidget(d.number);
    d.name = new QLineEdit(this);
    d.name->setValidator(new ModelTextValidator(kDriverNameSize - 1, d.name));
    connect(d.name, &QLineEdit::textEdited, this, [this, car](const QString& t) { driverNameEdited(car, t); });
    identity->addWidget(d.name);
    block->addLayout(identity);
    block->addSpacing(1);

    for (int w = 0; w < 3; ++w) {
        if (w > 0) block->addSpacing(1);
        auto* value = sliderValue(this);
        auto* bar = sliderBar(this, 500);
        const ElementRule* field = &rule(gripSpec(w));
        connect(bar, &QScrollBar::valueChanged, this, [this, car, w](int v) { gripBarMoved(car, w, v); });
        connect(value, &QSpinBox::valueChanged, bar, &QScrollBar::setValue);
        connect(value, &ValueSpinBox::typedOutside, this,
                [this, value, field](bool refocus) { valueTypedOutside(value, *field, refocus); });
        block->addLayout(sliderRow(new QLabel(caption(gripSpec(w)), this), value, bar));
        d.gripValue[std::size_t(w)] = value;
        d.gripBar[std::size_t(w)] = bar;
    }

    auto* boxes = new QHBoxLayout;
    boxes->setSpacing(4);
    d.flag = new QCheckBox(" Marked (S) ", this);
    connect(d.flag, &QCheckBox::toggled, this, [this, car](bool on) { flagToggled(car, on); });
    boxes->addWidget(d.flag);
    d.disabled = new QCheckBox(" Disabled ", this);
    connect(d.disabled, &QCheckBox::clicked, this, [this, car] { toggleDisabled(car); });
    boxes->addWidget(d.disabled);
    boxes->addStretch();
    block->addLayout(boxes);
    return block;
}

void TeamPanel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fitPictures();
}

void TeamPanel::fitPictures() {
    // The layout first gives the pictures all the room it can; each then keeps
    // only the height of the whole multiple it can show, and the height left
    // goes to the gaps between the groups of controls.
    const std::array<PixelView*, 3> pictures{livery_, helmets_[0], helmets_[1]};
    for (PixelView* picture : pictures) picture->setMaximumHeight(QWIDGETSIZE_MAX);
    layout()->activate();
    for (PixelView* picture : pictures) picture->setMaximumHeight(picture->scaledSize(picture->scale()).height());
    layout()->activate();
}

void TeamPanel::updateButtons() {
    carSettings_->setEnabled(bench_.commands.isEnabled(command::CarSettings));
    gameSettings_->setEnabled(bench_.commands.isEnabled(command::GameSettings));
    undo_->setEnabled(bench_.document.canUndoLivery());
}

// ---------------------------------------------------------------- refresh

void TeamPanel::documentChanged(unsigned what) {
    if (editing_) return;
    const bool team = what & (Document::Teams | Document::CurrentTeam);
    if (team) {
        if (what & Document::Teams) refreshTeamList();
        refreshTeam();
    } else {
        if (what & Document::Drivers) refreshDrivers();
        if (what & Document::Helmets) refreshHelmets();
    }
    if (what & (Document::Livery | Document::CurrentTeam)) showCurrentLivery(bench_.session.config.mosaic);
    updateButtons();
}

void TeamPanel::refreshAll(bool mosaic) {
    refreshTeamList();
    refreshTeam();
    updateButtons();
    showCurrentLivery(mosaic ? bench_.session.config.mosaic : 0);
}

void TeamPanel::applySettings() {
    refreshTeamList();
    refreshDrivers();
}

void TeamPanel::refreshTeamList() {
    updating_ = true;
    teamList_->setSwapping(bench_.session.config.teamSwap);
    teamList_->clear();
    const CarSet& set = bench_.document.set();
    for (int t = 0; t < kRacingTeams; ++t) teamList_->addItem(fromModel(fieldText(set.team(t).name)));
    teamList_->setCurrentRow(bench_.document.currentTeam());
    updating_ = false;
}

void TeamPanel::refreshTeam() {
    updating_ = true;
    if (teamList_->currentRow() != bench_.document.currentTeam()) teamList_->setCurrentRow(bench_.document.currentTeam());
    const TeamRecord& team = bench_.document.set().team(bench_.document.currentTeam());
    teamName_->setText(fromModel(fieldText(team.name)));
    engine_->setText(fromModel(fieldText(team.engine)));
    highNose_->setChecked(team.highNose != 0);
    for (int i = 0; i < 3; ++i) {
        const int value = int(fieldValue(bench_.document.set(), performanceSpec(i), bench_.document.currentTeam(), 0));
        perfBar_[std::size_t(i)]->setValue(value);
        perfValue_[std::size_t(i)]->setValue(value);
    }
    updating_ = false;
    refreshDrivers();
}

void TeamPanel::refreshDrivers() {
    for (int car = 0; car < 2; ++car) refreshDriver(car);
    refreshHelmets();
}

int TeamPanel::currentDriverNumber(int car) const {
    return bench_.document.set().team(bench_.document.currentTeam()).driver[std::size_t(car)];
}

void TeamPanel::refreshDriver(int car) {
    updating_ = true;
    const CarSet& set = bench_.document.set();
    DriverControls& d = drivers_[std::size_t(car)];
    const int teamIndex = bench_.document.currentTeam();
    const TeamRecord& team = set.team(teamIndex);
    d.list->clear();
    d.list->addItem(kActiveHeader, -1);
    for (int seat = 0; seat < kSeats; ++seat) {
        if (seat == 2 * kRacingTeams) d.list->addItem(kSpareHeader, -1);
        const Seat s = seatAt(seat);
        d.list->addItem(fromModel(driverListEntry(set, s.slot, s.car)), seat);
    }
    d.list->setCurrentIndex(d.list->findData(seatIndex(Seat{teamIndex, car})));
    const int number = team.driver[std::size_t(car)];
    const bool valid = number >= 1 && number <= kDriverNumbers;
    d.number->setText(valid ? QString::number(shownDriverNumber(set, number)) : QString());
    d.name->setText(valid ? fromModel(fieldText(set.driver(number).name)) : QString());
    const bool high = bench_.session.config.highGrip;
    for (int w = 0; w < 3; ++w) {
        const ElementRule& grip = rule(gripSpec(w));
        const FieldRange range = displayRange(grip, high);
        const int shown = int(toDisplay(grip, valid ? fieldValue(set, gripSpec(w), number, 0) : 0, high));
        d.gripBar[std::size_t(w)]->setRange(range.low, range.high);
        d.gripBar[std::size_t(w)]->setValue(shown);
        d.gripValue[std::size_t(w)]->setRange(range.low, range.high);
        d.gripValue[std::size_t(w)]->setRangeHint(rangeHint(grip, high));
        d.gripValue[std::size_t(w)]->setValue(shown);
        d.gripBar[std::size_t(w)]->setEnabled(valid);
        d.gripValue[std::size_t(w)]->setEnabled(valid);
    }
    d.flag->setChecked(team.flagS[std::size_t(car)] != 0);
    d.disabled->setChecked(team.disabled[std::size_t(car)] != 0);
    d.flag->setEnabled(team.disabled[std::size_t(car)] == 0);
    updating_ = false;
}

void TeamPanel::refreshDriverLists() {
    updating_ = true;
    for (DriverControls& d : drivers_) {
        for (int i = 0; i < d.list->count(); ++i) {
            const int seat = d.list->itemData(i).toInt();
            if (seat < 0) continue;
            const Seat s = seatAt(seat);
            d.list->setItemText(i, fromModel(driverListEntry(bench_.document.set(), s.slot, s.car)));
        }
    }
    updating_ = false;
}

void TeamPanel::refreshHelmets() {
    const int team = bench_.document.currentTeam();
    for (int car = 0; car < 2; ++car)
        helmets_[std::size_t(car)]->showHelmet(bench_.document.set().helmetSheet, 2 * team + car);
}

void TeamPanel::showCurrentLivery(int block) {
    livery_->showLivery(bench_.document.set().liveries[std::size_t(bench_.document.currentTeam())], block,
                        bench_.session.rand);
}

void TeamPanel::selectTeam(int team) {
    if (team < 0 || team >= kRacingTeams) return;
    bench_.document.setCurrentTeam(team);
}

// ---------------------------------------------------------------- edits

void TeamPanel::teamTextEdited(bool engine, const QString& text) {
    if (updating_) return;
    const int current = bench_.document.currentTeam();
    ownEdit(teamStep(engine ? "Rename engine" : "Rename", engine ? "engine" : "name"), Document::Teams, [&](CarSet& set) {
        TeamRecord& team = set.team(current);
        setFieldText(engine ? team.engine : team.name, toModel(text));
        return true;
    });
    if (!engine) {
        if (QListWidgetItem* item = teamList_->item(current))
            item->setText(fromModel(fieldText(bench_.document.set().team(current).name)));
    }
}

void TeamPanel::performanceChanged(int which, int value) {
    perfValue_[std::size_t(which)]->setValue(value);
    if (updating_) return;
    const std::string_view field = rule(performanceSpec(which)).caption;
    ownEdit(teamStep("Change " + std::string(field), field), Document::Teams, [&](CarSet& set) {
        return setFieldValue(set, performanceSpec(which), bench_.document.currentTeam(), 0, value);
    });
}

void TeamPanel::driverChosen(int car, int listIndex) {
    if (updating_) return;
    const int seat = drivers_[std::size_t(car)].list->itemData(listIndex).toInt();
    if (seat >= 0) {
        ownEdit(teamStep("Change driver"), Document::Drivers, [&](CarSet& set) {
            return exchangeSeats(set, Seat{bench_.document.currentTeam(), car}, seatAt(seat));
        });
    }
    refreshDrivers();
}

void TeamPanel::driverNumberTyped(int car) {
    if (updating_) return;
    bool ok = false;
    const int typed = drivers_[std::size_t(car)].number->text().toInt(&ok);
    const int number = ok ? typedDriverNumber(bench_.document.set(), typed) : -1;
    if (number == currentDriverNumber(car)) return;
    const Seat seat{bench_.document.currentTeam(), car};
    const auto renumbered = ownEdit(driverStep("Renumber", currentDriverNumber(car)), Document::Drivers,
                                      [&](CarSet& set) { return renumberDriver(set, seat, number); });
    if (!renumbered) showMessage(bench_, renumbered.error());
    refreshDrivers();
}

void TeamPanel::driverNameEdited(int car, const QString& text) {
    if (updating_) return;
    const int number = currentDriverNumber(car);
    if (number < 1 || number > kDriverNumbers) return;
    ownEdit(driverStep("Rename", number, "name"), Document::Drivers, [&](CarSet& set) {
        setFieldText(set.driver(number).name, toModel(text));
        return true;
    });
    refreshDriverLists();
}

void TeamPanel::gripBarMoved(int car, int which, int value) {
    drivers_[std::size_t(car)].gripValue[std::size_t(which)]->setValue(value);
    if (updating_) return;
    const int number = currentDriverNumber(car);
    if (number < 1 || number > kDriverNumbers) return;
    const auto stored = fromDisplay(rule(gripSpec(which)), value, bench_.session.config.highGrip);
    if (!stored) return;
    ownEdit(gripStep(which, number), Document::Drivers,
            [&](CarSet& set) { return setFieldValue(set, gripSpec(which), number, 0, *stored); });
}

// The value stays as it was; the message names the field's range in the form it is shown.
void TeamPanel::valueTypedOutside(ValueSpinBox* field, const ElementRule& rule, bool refocus) {
    showMessage(bench_, rangeMessage(rule, bench_.session.config.highGrip));
    if (!refocus) return;   // a click took the focus elsewhere and did its work
    field->setFocus();
    field->selectAll();
}

void TeamPanel::flagToggled(int car, bool on) {
    if (updating_) return;
    ownEdit(teamStep("Change flag"), Document::Teams, [&](CarSet& set) {
        set.team(bench_.document.currentTeam()).flagS[std::size_t(car)] = on ? 1 : 0;
        return true;
    });
    refreshDrivers();
}

void TeamPanel::toggleDisabled(int car) {
    const int current = bench_.document.currentTeam();
    if (bench_.document.set().team(current).disabled[std::size_t(car)] == 0) {
        const DisableDecision decision = checkDisableCar(bench_.document.set(), current, car);
        const QString text = fromModel(decision.text);
        if (decision.kind == DisableDecision::Refused) {
            bench_.asker.text(window(), MessageKind::Information, text, Buttons::Ok);
            refreshDriver(car);
            return;
        }
        if (decision.kind == DisableDecision::NeedsConfirmation &&
            bench_.asker.text(window(), MessageKind::Question, text, Buttons::OkCancel) == Answer::Cancel) {
            refreshDriver(car);
            return;
        }
    }
    const bool disabling = bench_.document.set().team(current).disabled[std::size_t(car)] == 0;
    ownEdit(teamStep(std::string(disabling ? "Disable" : "Enable") + " car " + std::to_string(car + 1)), Document::Teams,
            [&](CarSet& set) {
        std::uint16_t& flag = set.team(current).disabled[std::size_t(car)];
        flag = flag ? 0 : 1;
        return true;
    });
    refreshDrivers();
}

void TeamPanel::requestTeamMove(int from, int to) {
    if (from == to) return;
    if (bench_.asker.message(window(), Message{MessageId::MoveTeamHere, {}}, Buttons::YesNo) != Answer::Yes) return;
    editing_ = true;
    const StepName step{"Move team " + std::to_string(from + 1) + " to " + std::to_string(to + 1)};
    const bool moved = bench_.document.edit(step, Document::Everything, [&](CarSet& set) { return moveTeam(set, from, to); });
    if (moved) {
        bench_.document.forgetLivery();
        bench_.document.setCurrentTeam(to);
    }
    editing_ = false;
    if (moved) refreshAll(false);
}

// ---------------------------------------------------------------- pictures

void TeamPanel::showEnlargedLivery() {
    livery_->finishReveal();
    QDialog dialog(window());
    dialog.setWindowTitle(teamName_->text());
    auto* layout = new QVBoxLayout(&dialog);
    auto* label = new QLabel(&dialog);
    label->setPixmap(QPixmap::fromImage(livery_->picture().scaled(kLiveryWidth * 2, kLiveryHeight * 2)));
    layout->addWidget(label);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    dialog.exec();
}

void TeamPanel::showCarPopup() {
    CarBitmapPopup popup([this](int id) { return bench_.commands.isEnabled(id); }, window());
    popup.move(carBitmap_->mapToGlobal(QPoint(3, -14)));
    const int chosen = popup.exec() == QDialog::Accepted ? popup.chosen() : 0;
    if (chosen != 0) bench_.commands.run(chosen);
}

}  // namespace tarvel
