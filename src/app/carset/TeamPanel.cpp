#include "carset/TeamPanel.h"

#include "carset/TeamList.h"
#include "graphics/CarBitmapPopup.h"
#include "graphics/PictureWidgets.h"
#include "shell/Asker.h"
#include "shell/Command.h"
#include "shell/CommandIds.h"
#include "shell/Document.h"
#include "shell/Session.h"
#include "shell/Workbench.h"

#include "carset/DriverSeats.h"
#include "carset/FieldSchema.h"
#include "carset/TeamSwap.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
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
    setFixedSize(kWidth, kHeight);
    // The window's controls use the small dialog font their positions were made for.
    QFont font("Arial");
    font.setPixelSize(11);
    setFont(font);
    buildControls();
    connect(&bench_.document, &Document::changed, this, &TeamPanel::documentChanged);
}

// ---------------------------------------------------------------- building

void TeamPanel::buildControls() {
    auto label = [this](const QString& text, int x, int y, int w = 132) {
        auto* label = new QLabel(text, this);
        label->setGeometry(x, y, w, 14);
        return label;
    };

    label("Teams", 16, 31);
    teamList_ = new TeamList(this);
    teamList_->setGeometry(16, 47, 132, 200);
    teamList_->setStyleSheet("QListWidget::item { padding: 0px; margin: 0px; height: 14px; }");
    connect(teamList_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (!updating_ && row >= 0) selectTeam(row);
    });
    connect(teamList_, &TeamList::moveRequested, this, &TeamPanel::requestTeamMove);

    label("Team Name", 16, 251);
    teamName_ = new QLineEdit(this);
    teamName_->setGeometry(16, 266, 132, 22);
    teamName_->setMaxLength(kTeamNameSize - 1);
    connect(teamName_, &QLineEdit::textEdited, this, [this](const QString& t) { teamTextEdited(false, t); });
    label("Engine", 16, 290);
    engine_ = new QLineEdit(this);
    engine_->setGeometry(16, 305, 132, 22);
    engine_->setMaxLength(kTeamNameSize - 1);
    connect(engine_, &QLineEdit::textEdited, this, [this](const QString& t) { teamTextEdited(true, t); });

    carSettings_ = new QPushButton(" Car Settings ", this);
    carSettings_->setGeometry(16, 344, 132, 23);
    connect(carSettings_, &QPushButton::clicked, this, [this] { bench_.commands.run(command::CarSettings); });
    gameSettings_ = new QPushButton(" Game Settings ", this);
    gameSettings_->setGeometry(16, 369, 132, 23);
    connect(gameSettings_, &QPushButton::clicked, this, [this] { bench_.commands.run(command::GameSettings); });

    livery_ = new LiveryView(this);
    livery_->move(163, 48);
    connect(livery_, &LiveryView::doubleClicked, this, &TeamPanel::showEnlargedLivery);

    carBitmap_ = new QPushButton(" Car Bitmap... ", this);
    carBitmap_->setGeometry(162, 218, 100, 21);
    connect(carBitmap_, &QPushButton::clicked, this, &TeamPanel::showCarPopup);
    undo_ = new QPushButton(" Undo ", this);
    undo_->setGeometry(263, 218, 69, 21);
    connect(undo_, &QPushButton::clicked, this, [this] { bench_.document.undoLivery(); });
    highNose_ = new QCheckBox(" High Nose ", this);
    highNose_->setGeometry(337, 218, 95, 20);
    connect(highNose_, &QCheckBox::toggled, this, [this](bool on) {
        if (updating_) return;
        ownEdit(teamStep(on ? "Set high nose" : "Clear high nose"), Document::Teams, [&](CarSet& set) {
            set.team(bench_.document.currentTeam()).highNose = on ? 1 : 0;
            return true;
        });
    });

    for (int i = 0; i < 3; ++i) {
        const int y = 314 + 26 * i;
        label(caption(performanceSpec(i)), 169, y, 130);
        perfValue_[std::size_t(i)] = new QLabel(this);
        perfValue_[std::size_t(i)]->setGeometry(300, y, 40, 14);
        perfValue_[std::size_t(i)]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        auto* bar = new QScrollBar(Qt::Horizontal, this);
        bar->setGeometry(169, 327 + 26 * i, 164, 12);
        const FieldRange range = displayRange(rule(performanceSpec(i)), false);
        bar->setRange(range.low, range.high);
        bar->setPageStep(i == 2 ? 1000 : 50);
        connect(bar, &QScrollBar::valueChanged, this, [this, i](int v) { performanceChanged(i, v); });
        perfBar_[std::size_t(i)] = bar;
    }

    buildDriverControls(0, 81);
    buildDriverControls(1, 255);
    helmets_[0] = new HelmetView(this);
    helmets_[0]->move(452, 48);
    helmets_[1] = new HelmetView(this);
    helmets_[1]->move(452, 222);
}

void TeamPanel::buildDriverControls(int car, int top) {
    DriverControls& d = drivers_[std::size_t(car)];
    const int dy = top - 81;
    d.list = new QComboBox(this);
    d.list->setGeometry(433, top, 165, 22);
    connect(d.list, &QComboBox::activated, this, [this, car](int index) { driverChosen(car, index); });
    d.number = new QLineEdit(this);
    d.number->setGeometry(433, 105 + dy, 46, 22);
    d.number->setValidator(new QIntValidator(0, kDriverNumbers, d.number));
    connect(d.number, &QLineEdit::editingFinished, this, [this, car] { driverNumberTyped(car); });
    d.name = new QLineEdit(this);
    d.name->setGeometry(481, 105 + dy, 117, 22);
    d.name->setMaxLength(kDriverNameSize - 1);
    connect(d.name, &QLineEdit::textEdited, this, [this, car](const QString& t) { driverNameEdited(car, t); });
    for (int w = 0; w < 3; ++w) {
        const int y = 128 + 25 * w + dy;
        auto* label = new QLabel(caption(gripSpec(w)), this);
        label->setGeometry(433, y, 128, 12);
        auto* value = new QLineEdit(this);
        value->setGeometry(563, y - 2, 35, 14);
        value->setFrame(false);
        value->setAlignment(Qt::AlignRight);
        connect(value, &QLineEdit::editingFinished, this, [this, car, w] { gripTyped(car, w); });
        d.gripValue[std::size_t(w)] = value;
        auto* bar = new QScrollBar(Qt::Horizontal, this);
        bar->setGeometry(433, 140 + 25 * w + dy, 165, 12);
        bar->setPageStep(500);
        connect(bar, &QScrollBar::valueChanged, this, [this, car, w](int v) { gripBarMoved(car, w, v); });
        d.gripBar[std::size_t(w)] = bar;
    }
    d.flag = new QCheckBox(" Marked (S) ", this);
    d.flag->setGeometry(433, 203 + dy, 83, 18);
    connect(d.flag, &QCheckBox::toggled, this, [this, car](bool on) { flagToggled(car, on); });
    d.disabled = new QCheckBox(" Disabled ", this);
    d.disabled->setGeometry(520, 203 + dy, 83, 18);
    connect(d.disabled, &QCheckBox::clicked, this, [this, car] { toggleDisabled(car); });
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
        perfValue_[std::size_t(i)]->setText(QString::number(value));
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
        d.gripValue[std::size_t(w)]->setText(QString::number(shown));
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
    perfValue_[std::size_t(which)]->setText(QString::number(value));
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
    drivers_[std::size_t(car)].gripValue[std::size_t(which)]->setText(QString::number(value));
    if (updating_) return;
    const int number = currentDriverNumber(car);
    if (number < 1 || number > kDriverNumbers) return;
    const auto stored = fromDisplay(rule(gripSpec(which)), value, bench_.session.config.highGrip);
    if (!stored) return;
    ownEdit(gripStep(which, number), Document::Drivers,
            [&](CarSet& set) { return setFieldValue(set, gripSpec(which), number, 0, *stored); });
}

void TeamPanel::gripTyped(int car, int which) {
    if (updating_) return;
    const int number = currentDriverNumber(car);
    if (number < 1 || number > kDriverNumbers) return;
    QLineEdit* field = drivers_[std::size_t(car)].gripValue[std::size_t(which)];
    const QString text = field->text().trimmed();
    // An empty field counts as 0; text that is no number as a value outside every range.
    bool ok = true;
    long long typed = text.isEmpty() ? 0 : text.toLongLong(&ok);
    if (!ok) typed = -1;
    const auto stored = fromDisplay(rule(gripSpec(which)), typed, bench_.session.config.highGrip);
    if (!stored) {
        showMessage(bench_, stored.error());
        refreshDriver(car);
        field->setFocus();
        field->selectAll();
        return;
    }
    if (*stored == fieldValue(bench_.document.set(), gripSpec(which), number, 0)) return;
    ownEdit(gripStep(which, number), Document::Drivers,
            [&](CarSet& set) { return setFieldValue(set, gripSpec(which), number, 0, *stored); });
    refreshDriver(car);
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
    popup.move(mapToGlobal(QPoint(165, 204)));
    const int chosen = popup.exec() == QDialog::Accepted ? popup.chosen() : 0;
    if (chosen != 0) bench_.commands.run(chosen);
}

}  // namespace tarvel
