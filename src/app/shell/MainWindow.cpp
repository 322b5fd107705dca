#include "shell/MainWindow.h"

#include "shell/CarBitmapPopup.h"
#include "shell/CommandTable.h"
#include "shell/PictureWidgets.h"
#include "shell/ProgressWindow.h"
#include "shell/TeamList.h"

#include "carset/CarSetFile.h"
#include "carset/CarSetPictures.h"
#include "carset/DocumentTitle.h"
#include "carset/DriverSeats.h"
#include "carset/GripForm.h"
#include "carset/TeamSwap.h"
#include "common/CodePage.h"
#include "common/FileIO.h"
#include "game/GameLocation.h"
#include "game/GameTransfer.h"
#include "graphics/Bitmap.h"
#include "graphics/Helmets.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QDialog>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QProcess>
#include <QPushButton>
#include <QScrollBar>
#include <QStyle>
#include <QToolBar>
#include <QUrl>
#include <QVBoxLayout>

#include <filesystem>
#include <system_error>

namespace tarvel {
namespace {

constexpr int kCanvasWidth = 614;
constexpr int kCanvasHeight = 405;

// The three car performance values: caption, maximum, field.
struct PerformanceSpec {
    const char* caption;
    int maximum;
    std::uint16_t TeamRecord::*field;
};
constexpr std::array<PerformanceSpec, 3> kPerformance{{
    {"Power (Race/Practice)", 1579, &TeamRecord::powerRace},
    {"Power (Qualification)", 1579, &TeamRecord::powerQual},
    {"Car Failure Probability", 32767, &TeamRecord::failureProbability},
}};
constexpr std::array<const char*, 3> kGripCaptions{"Grip (Race/Practice)", "Grip (Qualification)", "Random Grip Range"};
constexpr std::array<std::uint16_t DriverRecord::*, 3> kGripFields{&DriverRecord::gripRace, &DriverRecord::gripQual,
                                                                    &DriverRecord::gripRandom};

const char* const kActiveHeader = " --- ACTIVE DRIVERS ---------";
const char* const kSpareHeader = " --- SPARE DRIVERS ----------";
const char* const kCarSetFilter = "Tarvel Car Sets (*.GP2 *.gp2)";
const char* const kBitmapFilter = "Bitmap Files (*.BMP *.bmp)";

QString fromModel(const std::string& text) { return QString::fromStdString(windows1252ToUtf8(text)); }
std::string toModel(const QString& text) { return utf8ToWindows1252(text.toStdString()); }
std::filesystem::path toPath(const QString& path) { return std::filesystem::path(path.toStdString()); }

QIcon toolbarIcon(QStyle* style, int id) {
    switch (id) {
        case command::NewCarSet: return style->standardIcon(QStyle::SP_FileIcon);
        case command::Open: return style->standardIcon(QStyle::SP_DialogOpenButton);
        case command::Save: return style->standardIcon(QStyle::SP_DialogSaveButton);
        case command::ImportFromGame: return style->standardIcon(QStyle::SP_ArrowDown);
        case command::ExportToGame: return style->standardIcon(QStyle::SP_ArrowUp);
        case command::LaunchGame: return style->standardIcon(QStyle::SP_MediaPlay);
        case command::ProgramConfiguration: return style->standardIcon(QStyle::SP_FileDialogDetailedView);
        case command::About: return style->standardIcon(QStyle::SP_MessageBoxInformation);
        default: return {};
    }
}

bool defaultStarter(const QString& program, const QStringList& arguments, const QString& folder) {
    return QProcess::startDetached(program, arguments, folder);
}

}  // namespace

MainWindow::MainWindow(Session& session, Asker& asker, QWidget* parent)
    : QMainWindow(parent), session_(session), asker_(asker), set_(std::make_unique<CarSet>()),
      startProcess_(defaultStarter) {
    set_->document.workingFolder = session_.workingFolder;
    setAcceptDrops(true);
    buildControls();
    buildMenus();
    setWindowFlags(windowFlags() & ~Qt::WindowMaximizeButtonHint);
    refreshAll();
    layout()->setSizeConstraint(QLayout::SetFixedSize);
}

MainWindow::~MainWindow() = default;

QString MainWindow::programPath() const { return QCoreApplication::applicationFilePath(); }

// ---------------------------------------------------------------- building

void MainWindow::buildControls() {
    canvas_ = new QWidget(this);
    canvas_->setFixedSize(kCanvasWidth, kCanvasHeight);
    // The window's controls use the small dialog font their positions were made for.
    QFont font("Arial");
    font.setPixelSize(11);
    canvas_->setFont(font);
    setCentralWidget(canvas_);

    auto caption = [this](const char* text, int x, int y, int w = 132) {
        auto* label = new QLabel(text, canvas_);
        label->setGeometry(x, y, w, 14);
        return label;
    };

    caption("Teams", 16, 31);
    teamList_ = new TeamList(canvas_);
    teamList_->setGeometry(16, 47, 132, 200);
    teamList_->setStyleSheet("QListWidget::item { padding: 0px; margin: 0px; height: 14px; }");
    connect(teamList_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (!updating_ && row >= 0) selectTeam(row);
    });
    connect(teamList_, &TeamList::moveRequested, this, &MainWindow::requestTeamMove);

    caption("Team Name", 16, 251);
    teamName_ = new QLineEdit(canvas_);
    teamName_->setGeometry(16, 266, 132, 22);
    teamName_->setMaxLength(kTeamNameSize - 1);
    connect(teamName_, &QLineEdit::textEdited, this, [this](const QString& t) { teamTextEdited(false, t); });
    caption("Engine", 16, 290);
    engine_ = new QLineEdit(canvas_);
    engine_->setGeometry(16, 305, 132, 22);
    engine_->setMaxLength(kTeamNameSize - 1);
    connect(engine_, &QLineEdit::textEdited, this, [this](const QString& t) { teamTextEdited(true, t); });

    carSettings_ = new QPushButton(" Car Settings ", canvas_);
    carSettings_->setGeometry(16, 344, 132, 23);
    connect(carSettings_, &QPushButton::clicked, this, [this] { runCommand(command::CarSettings); });
    gameSettings_ = new QPushButton(" Game Settings ", canvas_);
    gameSettings_->setGeometry(16, 369, 132, 23);
    connect(gameSettings_, &QPushButton::clicked, this, [this] { runCommand(command::GameSettings); });

    livery_ = new LiveryView(canvas_);
    livery_->move(163, 48);
    connect(livery_, &LiveryView::doubleClicked, this, &MainWindow::showEnlargedLivery);

    carBitmap_ = new QPushButton(" Car Bitmap... ", canvas_);
    carBitmap_->setGeometry(162, 218, 100, 21);
    connect(carBitmap_, &QPushButton::clicked, this, &MainWindow::showCarPopup);
    undo_ = new QPushButton(" Undo ", canvas_);
    undo_->setGeometry(263, 218, 69, 21);
    connect(undo_, &QPushButton::clicked, this, &MainWindow::undoLivery);
    highNose_ = new QCheckBox(" High Nose ", canvas_);
    highNose_->setGeometry(337, 218, 95, 20);
    connect(highNose_, &QCheckBox::toggled, this, [this](bool on) {
        if (updating_) return;
        set_->team(set_->document.currentTeam).highNose = on ? 1 : 0;
        set_->markDirty();
    });

    for (int i = 0; i < 3; ++i) {
        const int y = 314 + 26 * i;
        caption(kPerformance[std::size_t(i)].caption, 169, y, 130);
        perfValue_[std::size_t(i)] = new QLabel(canvas_);
        perfValue_[std::size_t(i)]->setGeometry(300, y, 40, 14);
        perfValue_[std::size_t(i)]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        auto* bar = new QScrollBar(Qt::Horizontal, canvas_);
        bar->setGeometry(169, 327 + 26 * i, 164, 12);
        bar->setRange(0, kPerformance[std::size_t(i)].maximum);
        bar->setPageStep(i == 2 ? 1000 : 50);
        connect(bar, &QScrollBar::valueChanged, this, [this, i](int v) { performanceChanged(i, v); });
        perfBar_[std::size_t(i)] = bar;
    }

    buildDriverControls(0, 81);
    buildDriverControls(1, 255);
    helmets_[0] = new HelmetView(canvas_);
    helmets_[0]->move(452, 48);
    helmets_[1] = new HelmetView(canvas_);
    helmets_[1]->move(452, 222);
}

void MainWindow::buildDriverControls(int car, int top) {
    DriverControls& d = drivers_[std::size_t(car)];
    const int dy = top - 81;
    d.list = new QComboBox(canvas_);
    d.list->setGeometry(433, top, 165, 22);
    connect(d.list, &QComboBox::activated, this, [this, car](int index) { driverChosen(car, index); });
    d.number = new QLineEdit(canvas_);
    d.number->setGeometry(433, 105 + dy, 46, 22);
    d.number->setValidator(new QIntValidator(0, kDriverNumbers, d.number));
    connect(d.number, &QLineEdit::editingFinished, this, [this, car] { driverNumberTyped(car); });
    d.name = new QLineEdit(canvas_);
    d.name->setGeometry(481, 105 + dy, 117, 22);
    d.name->setMaxLength(kDriverNameSize - 1);
    connect(d.name, &QLineEdit::textEdited, this, [this, car](const QString& t) { driverNameEdited(car, t); });
    for (int w = 0; w < 3; ++w) {
        const int y = 128 + 25 * w + dy;
        auto* label = new QLabel(kGripCaptions[std::size_t(w)], canvas_);
        label->setGeometry(433, y, 128, 12);
        d.gripCaption[std::size_t(w)] = label;
        auto* value = new QLineEdit(canvas_);
        value->setGeometry(563, y - 2, 35, 14);
        value->setFrame(false);
        value->setAlignment(Qt::AlignRight);
        connect(value, &QLineEdit::editingFinished, this, [this, car, w] { gripTyped(car, w); });
        d.gripValue[std::size_t(w)] = value;
        auto* bar = new QScrollBar(Qt::Horizontal, canvas_);
        bar->setGeometry(433, 140 + 25 * w + dy, 165, 12);
        bar->setPageStep(500);
        connect(bar, &QScrollBar::valueChanged, this, [this, car, w](int v) { gripBarMoved(car, w, v); });
        d.gripBar[std::size_t(w)] = bar;
    }
    d.flag = new QCheckBox(" Marked (S) ", canvas_);
    d.flag->setGeometry(433, 203 + dy, 83, 18);
    connect(d.flag, &QCheckBox::toggled, this, [this, car](bool on) { flagToggled(car, on); });
    d.disabled = new QCheckBox(" Disabled ", canvas_);
    d.disabled->setGeometry(520, 203 + dy, 83, 18);
    connect(d.disabled, &QCheckBox::clicked, this, [this, car] { toggleDisabled(car); });
}

void MainWindow::buildMenus() {
    std::map<QString, QMenu*> menus;
    auto menuFor = [&](std::string_view path) {
        const QString full = QString::fromUtf8(path.data(), qsizetype(path.size()));
        QString sofar;
        QMenu* parent = nullptr;
        for (const QString& part : full.split('|')) {
            sofar += "|" + part;
            auto found = menus.find(sofar);
            if (found == menus.end()) {
                QMenu* menu = parent ? parent->addMenu(part) : menuBar()->addMenu(part);
                found = menus.emplace(sofar, menu).first;
            }
            parent = found->second;
        }
        return parent;
    };
    // The toolbar sits in the top band of the window's client area, above the controls.
    auto* toolbar = new QToolBar("Commands", canvas_);
    toolbar->setGeometry(0, 0, kCanvasWidth, 28);
    toolbar->setMovable(false);
    toolbar->setIconSize(QSize(16, 16));
    for (const CommandSpec& entry : commandTable()) {
        QMenu* menu = menuFor(entry.menu);
        if (entry.id == 0) {
            menu->addSeparator();
            continue;
        }
        QAction* act = menu->addAction(QString::fromUtf8(entry.text.data(), qsizetype(entry.text.size())));
        const int id = entry.id;
        connect(act, &QAction::triggered, this, [this, id] { runCommand(id); });
        actions_[id] = act;
        if (entry.toolbar) {
            act->setIcon(toolbarIcon(style(), id));
            toolbar->addAction(act);
        }
    }
    helpMenu_ = menus["|&Help"];
    if (!session_.helpExists && helpMenu_) {
        // Without the help file the Help entry and the separator beside it go.
        QAction* help = actions_[command::Help];
        const QList<QAction*> entries = helpMenu_->actions();
        const qsizetype at = entries.indexOf(help);
        if (at + 1 < entries.size() && entries[at + 1]->isSeparator()) helpMenu_->removeAction(entries[at + 1]);
        helpMenu_->removeAction(help);
        actions_.erase(command::Help);
        delete help;
    }
    carSettings_->setEnabled(findCommand(command::CarSettings)->built);
    gameSettings_->setEnabled(findCommand(command::GameSettings)->built);
}

QAction* MainWindow::action(int id) const {
    auto found = actions_.find(id);
    return found == actions_.end() ? nullptr : found->second;
}

void MainWindow::updateCommandStates() {
    for (const CommandSpec& entry : commandTable()) {
        QAction* act = action(entry.id);
        if (!act) continue;
        bool enabled = entry.built;
        switch (entry.group) {
            case CommandGroup::Always: break;
            case CommandGroup::NeedsFile: enabled = enabled && set_->document.hasFile; break;
            case CommandGroup::NeedsGame: enabled = enabled && session_.gameKnown(); break;
            case CommandGroup::AboutCarSet:
                enabled = enabled && set_->document.hasFile && set_->hasInformation;
                break;
            case CommandGroup::Autofile: continue;
        }
        act->setEnabled(enabled);
    }
    refreshAutofileMenu();
    undo_->setEnabled(liveryUndo_.has_value() && liveryUndo_->team == set_->document.currentTeam);
}

void MainWindow::refreshAutofileMenu() {
    const bool haveAuto = autofileLoaded_ && !session_.config.autoFile.empty();
    action(command::AutofileSetAs)->setEnabled(set_->document.hasFile);
    action(command::AutofileRemove)->setEnabled(haveAuto);
    QAction* third = action(command::AutofileOpen);
    third->setText(haveAuto ? QString::fromStdString(fileTitle(toPath(QString::fromStdString(session_.config.autoFile))))
                            : QString("None..."));
    third->setEnabled(haveAuto);
}

// ---------------------------------------------------------------- start-up

void MainWindow::startUp(const QString& commandLine) {
    if (!session_.config.gameFolder.empty()) session_.detectGame();
    updateCommandStates();
    bool openedFromCommandLine = false;
    if (!commandLine.isEmpty()) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        openedFromCommandLine = loadFile(commandLine);
        QApplication::restoreOverrideCursor();
    }
    if (!session_.config.autoFile.empty()) {
        if (openedFromCommandLine) {
            autofileLoaded_ = true;
        } else {
            QApplication::setOverrideCursor(Qt::WaitCursor);
            autofileLoaded_ = loadFile(QString::fromStdString(session_.config.autoFile));
            QApplication::restoreOverrideCursor();
        }
    }
    updateCommandStates();
    show();
    teamList_->setFocus();
    if (session_.config.gameFolder.empty() || !session_.gameKnown()) programConfiguration();
    if (set_->hasInformation && session_.config.showInfo)
        asker_.showInformation(this, fromModel(set_->information));
}

// ---------------------------------------------------------------- refresh

void MainWindow::refreshAll() {
    refreshTeamList();
    refreshTeam();
    refreshTitle();
    updateCommandStates();
    showCurrentLivery(0);
}

void MainWindow::refreshTeamList() {
    updating_ = true;
    teamList_->setSwapping(session_.config.teamSwap);
    teamList_->clear();
    for (int t = 0; t < kRacingTeams; ++t) teamList_->addItem(fromModel(fieldText(set_->team(t).name)));
    teamList_->setCurrentRow(set_->document.currentTeam);
    updating_ = false;
}

void MainWindow::refreshTeam() {
    updating_ = true;
    const TeamRecord& team = set_->team(set_->document.currentTeam);
    teamName_->setText(fromModel(fieldText(team.name)));
    engine_->setText(fromModel(fieldText(team.engine)));
    highNose_->setChecked(team.highNose != 0);
    for (int i = 0; i < 3; ++i) {
        const int value = team.*kPerformance[std::size_t(i)].field;
        perfBar_[std::size_t(i)]->setValue(value);
        perfValue_[std::size_t(i)]->setText(QString::number(value));
    }
    updating_ = false;
    refreshDrivers();
}

void MainWindow::refreshDrivers() {
    for (int car = 0; car < 2; ++car) refreshDriver(car);
    refreshHelmets();
}

void MainWindow::refreshDriver(int car) {
    updating_ = true;
    DriverControls& d = drivers_[std::size_t(car)];
    const int teamIndex = set_->document.currentTeam;
    const TeamRecord& team = set_->team(teamIndex);
    d.list->clear();
    d.list->addItem(kActiveHeader, -1);
    for (int seat = 0; seat < kSeats; ++seat) {
        if (seat == 2 * kRacingTeams) d.list->addItem(kSpareHeader, -1);
        const Seat s = seatAt(seat);
        d.list->addItem(fromModel(driverListEntry(*set_, s.slot, s.car)), seat);
    }
    d.list->setCurrentIndex(d.list->findData(seatIndex(Seat{teamIndex, car})));
    const int number = team.driver[std::size_t(car)];
    const bool valid = number >= 1 && number <= kDriverNumbers;
    d.number->setText(valid ? QString::number(shownDriverNumber(*set_, number)) : QString());
    const DriverRecord blank;
    const DriverRecord& driver = valid ? set_->driver(number) : blank;
    d.name->setText(fromModel(fieldText(driver.name)));
    const bool high = session_.config.highGrip;
    for (int w = 0; w < 3; ++w) {
        const int stored = driver.*kGripFields[std::size_t(w)];
        int shown = stored;
        if (w < 2) {
            const GripRange range = gripDisplayRange(high);
            d.gripBar[std::size_t(w)]->setRange(range.low, range.high);
            shown = gripToDisplay(std::uint16_t(stored), high);
        } else {
            d.gripBar[std::size_t(w)]->setRange(0, kGripStoredMax);
        }
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

void MainWindow::refreshHelmets() {
    const int team = set_->document.currentTeam;
    for (int car = 0; car < 2; ++car) helmets_[std::size_t(car)]->showHelmet(set_->helmetSheet, 2 * team + car);
}

void MainWindow::refreshTitle() { setWindowTitle(QString::fromStdString(windows1252ToUtf8(documentTitle(*set_)))); }

void MainWindow::showCurrentLivery(int block) {
    livery_->showLivery(set_->liveries[std::size_t(set_->document.currentTeam)], block, session_.rand);
}

void MainWindow::selectTeam(int team) {
    if (team < 0 || team >= kRacingTeams) return;
    set_->document.currentTeam = team;
    if (teamList_->currentRow() != team) {
        updating_ = true;
        teamList_->setCurrentRow(team);
        updating_ = false;
    }
    refreshTeam();
    updateCommandStates();
    showCurrentLivery(session_.config.mosaic);
}

// ---------------------------------------------------------------- edits

void MainWindow::teamTextEdited(bool engine, const QString& text) {
    if (updating_) return;
    TeamRecord& team = set_->team(set_->document.currentTeam);
    setFieldText(engine ? team.engine : team.name, toModel(text));
    set_->markDirty();
    if (!engine) {
        if (QListWidgetItem* item = teamList_->item(set_->document.currentTeam))
            item->setText(fromModel(fieldText(team.name)));
    }
}

void MainWindow::performanceChanged(int which, int value) {
    perfValue_[std::size_t(which)]->setText(QString::number(value));
    if (updating_) return;
    set_->team(set_->document.currentTeam).*kPerformance[std::size_t(which)].field = std::uint16_t(value);
    set_->markDirty();
}

void MainWindow::driverChosen(int car, int listIndex) {
    if (updating_) return;
    const int seat = drivers_[std::size_t(car)].list->itemData(listIndex).toInt();
    if (seat >= 0) exchangeSeats(*set_, Seat{set_->document.currentTeam, car}, seatAt(seat));
    refreshDrivers();
}

void MainWindow::driverNumberTyped(int car) {
    if (updating_) return;
    QLineEdit* field = drivers_[std::size_t(car)].number;
    bool ok = false;
    const int typed = field->text().toInt(&ok);
    const int number = ok ? typedDriverNumber(*set_, typed) : -1;
    const Seat seat{set_->document.currentTeam, car};
    if (number == set_->team(seat.slot).driver[std::size_t(car)]) return;
    const Status status = renumberDriver(*set_, seat, number);
    if (!status) showMessage(status.error());
    refreshDrivers();
}

void MainWindow::driverNameEdited(int car, const QString& text) {
    if (updating_) return;
    const int number = set_->team(set_->document.currentTeam).driver[std::size_t(car)];
    if (number < 1 || number > kDriverNumbers) return;
    setFieldText(set_->driver(number).name, toModel(text));
    set_->markDirty();
    updating_ = true;
    for (int c = 0; c < 2; ++c) {
        QComboBox* list = drivers_[std::size_t(c)].list;
        for (int i = 0; i < list->count(); ++i) {
            const int seat = list->itemData(i).toInt();
            if (seat < 0) continue;
            const Seat s = seatAt(seat);
            list->setItemText(i, fromModel(driverListEntry(*set_, s.slot, s.car)));
        }
    }
    updating_ = false;
}

void MainWindow::gripBarMoved(int car, int which, int value) {
    drivers_[std::size_t(car)].gripValue[std::size_t(which)]->setText(QString::number(value));
    if (updating_) return;
    const int number = set_->team(set_->document.currentTeam).driver[std::size_t(car)];
    if (number < 1 || number > kDriverNumbers) return;
    std::uint16_t stored = std::uint16_t(value);
    if (which < 2) {
        const auto converted = gripFromDisplay(value, session_.config.highGrip);
        if (!converted) return;
        stored = *converted;
    }
    set_->driver(number).*kGripFields[std::size_t(which)] = stored;
    set_->markDirty();
}

void MainWindow::gripTyped(int car, int which) {
    if (updating_) return;
    const int number = set_->team(set_->document.currentTeam).driver[std::size_t(car)];
    if (number < 1 || number > kDriverNumbers) return;
    QLineEdit* field = drivers_[std::size_t(car)].gripValue[std::size_t(which)];
    const QString text = field->text().trimmed();
    // An empty field counts as 0; text that is no number as a value outside every range.
    bool ok = true;
    long long typed = text.isEmpty() ? 0 : text.toLongLong(&ok);
    if (!ok) typed = -1;
    std::uint16_t& target = set_->driver(number).*kGripFields[std::size_t(which)];
    const auto converted = which == 2 ? gripRandomFromDisplay(typed) : gripFromDisplay(typed, session_.config.highGrip);
    if (!converted) {
        showMessage(converted.error());
        refreshDriver(car);
        field->setFocus();
        field->selectAll();
        return;
    }
    if (*converted == target) return;
    target = *converted;
    set_->markDirty();
    refreshDriver(car);
}

void MainWindow::flagToggled(int car, bool on) {
    if (updating_) return;
    set_->team(set_->document.currentTeam).flagS[std::size_t(car)] = on ? 1 : 0;
    set_->markDirty();
    refreshDrivers();
}

void MainWindow::toggleDisabled(int car) {
    TeamRecord& team = set_->team(set_->document.currentTeam);
    std::uint16_t& flag = team.disabled[std::size_t(car)];
    if (flag == 0) {
        const DisableDecision decision = checkDisableCar(*set_, set_->document.currentTeam, car);
        const QString text = fromModel(decision.text);
        if (decision.kind == DisableDecision::Refused) {
            asker_.text(this, MessageKind::Information, text, Buttons::Ok);
            refreshDriver(car);
            return;
        }
        if (decision.kind == DisableDecision::NeedsConfirmation &&
            asker_.text(this, MessageKind::Question, text, Buttons::OkCancel) == Answer::Cancel) {
            refreshDriver(car);
            return;
        }
    }
    flag = flag ? 0 : 1;
    set_->markDirty();
    refreshDrivers();
}

void MainWindow::requestTeamMove(int from, int to) {
    if (from == to) return;
    if (asker_.message(this, Message{MessageId::MoveTeamHere, {}}, Buttons::YesNo) != Answer::Yes) return;
    if (!moveTeam(*set_, from, to)) return;
    liveryUndo_.reset();
    set_->document.currentTeam = to;
    refreshAll();
}

// ---------------------------------------------------------------- messages

void MainWindow::showMessage(const Message& message) { asker_.message(this, message); }

void MainWindow::showStatus(const Status& status) {
    if (!status) showMessage(status.error());
}

// ---------------------------------------------------------------- document

bool MainWindow::maybeSave() {
    if (!set_->document.dirty) return true;
    switch (asker_.message(this, saveChangesQuestion(*set_), Buttons::YesNoCancel)) {
        case Answer::Yes: return save();
        case Answer::No: return true;
        default: return false;
    }
}

void MainWindow::afterLoad() {
    set_->document.workingFolder = session_.workingFolder;
    set_->document.currentTeam = 0;
    liveryUndo_.reset();
    refreshTeamList();
    refreshTeam();
    refreshTitle();
    updateCommandStates();
    showCurrentLivery(session_.config.mosaic);
}

bool MainWindow::loadFile(const QString& path) {
    std::vector<Message> notices;
    const CarSetFileOptions options{session_.config.checkSum, true};
    const Status status = loadCarSet(*set_, toPath(path), options, &notices);
    for (const Message& notice : notices) showMessage(notice);
    if (!status) {
        set_->document.workingFolder = session_.workingFolder;
        showMessage(status.error());
        return false;
    }
    set_->document.path = toPath(QFileInfo(path).absoluteFilePath());
    set_->document.hasFile = true;
    set_->document.dirty = false;
    afterLoad();
    return true;
}

bool MainWindow::confirmReplace(const QString& path) {
    if (!QFileInfo::exists(path)) return true;
    return asker_.message(this, Message{MessageId::ReplaceExistingFile, {}}, Buttons::YesNo) == Answer::Yes;
}

bool MainWindow::saveTo(const QString& path) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const CarSetFileOptions options{session_.config.checkSum, true};
    const Status status = saveCarSet(*set_, toPath(path), options);
    QApplication::restoreOverrideCursor();
    if (!status) {
        showMessage(status.error());
        return false;
    }
    set_->document.path = toPath(QFileInfo(path).absoluteFilePath());
    set_->document.hasFile = true;
    set_->document.dirty = false;
    set_->document.workingFolder = session_.workingFolder;
    refreshTitle();
    updateCommandStates();
    return true;
}

bool MainWindow::save() {
    if (!set_->document.hasFile) return saveAs();
    return saveTo(QString::fromStdString(set_->document.path.string()));
}

bool MainWindow::saveAs() {
    const QString path = asker_.saveFile(this, "Save Car Set As...", kCarSetFilter, "GP2");
    if (path.isEmpty() || !confirmReplace(path)) return false;
    return saveTo(path);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (maybeSave())
        event->accept();
    else
        event->ignore();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty() || !urls.front().isLocalFile()) return;
    event->acceptProposedAction();
    openDropped(urls);
}

bool MainWindow::openDropped(const QList<QUrl>& urls) {
    if (urls.isEmpty() || !urls.front().isLocalFile() || !maybeSave()) return false;
    return loadFile(urls.front().toLocalFile());
}

// ---------------------------------------------------------------- commands

void MainWindow::runCommand(int id) {
    const CommandSpec* entry = findCommand(id);
    if (entry && !entry->built) return;
    switch (id) {
        case command::NewCarSet: newCarSet(); break;
        case command::NewEditorWindow: newEditorWindow(); break;
        case command::Open: openFile(); break;
        case command::OpenInNewWindow: openInNewWindow(); break;
        case command::Save: save(); break;
        case command::SaveAs: saveAs(); break;
        case command::AutofileSetAs: autofileSetAs(); break;
        case command::AutofileRemove: autofileRemove(); break;
        case command::AutofileOpen: autofileOpen(); break;
        case command::CarLoad: carLoad(); break;
        case command::CarSaveAs: carSaveAs(); break;
        case command::CarImport: carImport(); break;
        case command::CarExport: carExport(); break;
        case command::CarPopupView: showEnlargedLivery(); break;
        case command::HelmetsLoad: helmetsLoad(); break;
        case command::HelmetsSaveAs: helmetsSaveAs(); break;
        case command::HelmetsImport: helmetsImport(); break;
        case command::HelmetsExport: helmetsExport(); break;
        case command::FirstHelmetLoad: singleHelmetLoad(0); break;
        case command::SecondHelmetLoad: singleHelmetLoad(1); break;
        case command::FirstHelmetSaveAs: singleHelmetSaveAs(0); break;
        case command::SecondHelmetSaveAs: singleHelmetSaveAs(1); break;
        case command::Exit: close(); break;
        case command::ImportFromGame: importFromGame(); break;
        case command::ExportToGame: exportToGame(); break;
        case command::LaunchGame: launchGame(); break;
        case command::ProgramConfiguration: programConfiguration(); break;
        case command::Help: openHelp(); break;
        case command::AboutCarSet: aboutCarSet(); break;
        case command::About: about(); break;
        default: break;
    }
}

void MainWindow::newCarSet() {
    if (!maybeSave()) return;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    set_->resetToDefaults();
    QApplication::restoreOverrideCursor();
    afterLoad();
}

void MainWindow::newEditorWindow() {
    if (!startProcess_(programPath(), {}, QString())) showMessage(Message{MessageId::FailedToLaunchEditor, {}});
}

void MainWindow::openFile() {
    if (!maybeSave()) return;
    const QString path = asker_.openFile(this, "Open Car Set", kCarSetFilter);
    if (path.isEmpty()) return;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool loaded = loadFile(path);
    QApplication::restoreOverrideCursor();
    if (loaded && set_->hasInformation && session_.config.showInfo)
        asker_.showInformation(this, fromModel(set_->information));
}

void MainWindow::openInNewWindow() {
    const QString path = asker_.openFile(this, "Open Car Set", kCarSetFilter);
    if (path.isEmpty()) return;
    std::vector<Message> notices;
    const auto version = checkCarSetFile(toPath(path), CarSetFileOptions{session_.config.checkSum, true}, &notices);
    for (const Message& notice : notices) showMessage(notice);
    if (!version) {
        showMessage(version.error());
        return;
    }
    if (!startProcess_(programPath(), {path}, QString())) showMessage(Message{MessageId::FailedToLaunchEditor, {}});
}

void MainWindow::autofileSetAs() {
    if (!set_->document.hasFile) return;
    session_.config.autoFile = set_->document.path.string();
    session_.writeAutoFile(session_.config.autoFile);
    autofileLoaded_ = true;
    refreshAutofileMenu();
}

void MainWindow::autofileRemove() {
    session_.removeAutoFile();
    session_.config.autoFile.clear();
    autofileLoaded_ = false;
    refreshAutofileMenu();
}

void MainWindow::autofileOpen() {
    if (session_.config.autoFile.empty() || !maybeSave()) return;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool loaded = loadFile(QString::fromStdString(session_.config.autoFile));
    QApplication::restoreOverrideCursor();
    if (!loaded) {
        autofileLoaded_ = false;
        refreshAutofileMenu();
        return;
    }
    if (set_->hasInformation && session_.config.showInfo)
        asker_.showInformation(this, fromModel(set_->information));
}

// ---------------------------------------------------------------- pictures

void MainWindow::rememberLivery() {
    const int team = set_->document.currentTeam;
    liveryUndo_ = LiveryUndo{team, set_->liveries[std::size_t(team)], set_->team(team).carBitmap};
}

void MainWindow::undoLivery() {
    if (!liveryUndo_ || liveryUndo_->team != set_->document.currentTeam) return;
    set_->liveries[std::size_t(liveryUndo_->team)] = liveryUndo_->pixels;
    set_->team(liveryUndo_->team).carBitmap = liveryUndo_->slot;
    liveryUndo_.reset();
    set_->markDirty();
    updateCommandStates();
    showCurrentLivery(session_.config.mosaic);
}

void MainWindow::carLoad() {
    const QString path = asker_.openFile(this, "Select New Car", kBitmapFilter);
    if (path.isEmpty()) return;
    rememberLivery();
    const Status status = loadTeamLivery(*set_, set_->document.currentTeam, toPath(path));
    if (!status) {
        liveryUndo_.reset();
        showMessage(status.error());
        updateCommandStates();
        return;
    }
    updateCommandStates();
    showCurrentLivery(session_.config.mosaic);
}

void MainWindow::carSaveAs() {
    const QString path = asker_.saveFile(this, "Save Car As...", kBitmapFilter, "BMP");
    if (path.isEmpty() || !confirmReplace(path)) return;
    showStatus(saveTeamLivery(*set_, set_->document.currentTeam, toPath(path), graphicsOptions(session_.config)));
}

void MainWindow::carImport() {
    if (!session_.gameKnown()) return;
    rememberLivery();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const Status status = importTeamCarFromGame(*set_, set_->document.currentTeam, session_.config.gameFolder,
                                                session_.workingFolder, graphicsOptions(session_.config));
    QApplication::restoreOverrideCursor();
    if (!status) {
        liveryUndo_.reset();
        showMessage(status.error());
    }
    updateCommandStates();
    if (status) showCurrentLivery(session_.config.mosaic);
}

void MainWindow::carExport() {
    if (!session_.gameKnown()) return;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const Status status = exportTeamCarToGame(*set_, set_->document.currentTeam, session_.config.gameFolder,
                                              graphicsOptions(session_.config));
    QApplication::restoreOverrideCursor();
    showMessage(status ? Message{MessageId::FilePatchedSuccessfully, {}} : status.error());
}

void MainWindow::helmetsLoad() {
    const QString path = asker_.openFile(this, "Load Helmets", kBitmapFilter);
    if (path.isEmpty()) return;
    showStatus(loadHelmetSheetFile(*set_, toPath(path)));
    refreshHelmets();
}

void MainWindow::helmetsSaveAs() {
    const QString path = asker_.saveFile(this, "Save Helmets As...", kBitmapFilter, "BMP");
    if (path.isEmpty() || !confirmReplace(path)) return;
    showStatus(saveHelmetSheetFile(*set_, toPath(path), graphicsOptions(session_.config)));
}

void MainWindow::helmetsImport() {
    if (!session_.gameKnown()) return;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const Status status = importHelmetsFromGame(*set_, session_.config.gameFolder, session_.workingFolder,
                                                graphicsOptions(session_.config));
    QApplication::restoreOverrideCursor();
    showStatus(status);
    refreshHelmets();
}

void MainWindow::helmetsExport() {
    if (!session_.gameKnown()) return;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const Status status = exportHelmetsToGame(*set_, session_.config.gameFolder, graphicsOptions(session_.config));
    QApplication::restoreOverrideCursor();
    showMessage(status ? Message{MessageId::FilePatchedSuccessfully, {}} : status.error());
}

void MainWindow::singleHelmetLoad(int car) {
    const QString path = asker_.openFile(this, "Load Single Helmet", kBitmapFilter);
    if (path.isEmpty()) return;
    const auto single = LoadSingleHelmet(toPath(path));
    if (!single) {
        showMessage(single.error());
        return;
    }
    BitmapBuffer sheet = helmetSheetBitmap(*set_);
    StoreHelmet(sheet, 2 * set_->document.currentTeam + car, *single);
    if (setHelmetSheetPixels(*set_, sheet)) set_->markDirty();
    refreshHelmets();
}

void MainWindow::singleHelmetSaveAs(int car) {
    const QString path = asker_.saveFile(this, "Save Helmet As...", kBitmapFilter, "BMP");
    if (path.isEmpty() || !confirmReplace(path)) return;
    BitmapBuffer single = blankSingleHelmet();
    ExtractHelmet(helmetSheetBitmap(*set_), 2 * set_->document.currentTeam + car, single);
    showStatus(SaveSingleHelmet(toPath(path), single, graphicsOptions(session_.config)));
}

void MainWindow::showEnlargedLivery() {
    livery_->finishReveal();
    QDialog dialog(this);
    dialog.setWindowTitle(teamName_->text());
    auto* layout = new QVBoxLayout(&dialog);
    auto* label = new QLabel(&dialog);
    label->setPixmap(QPixmap::fromImage(livery_->picture().scaled(kLiveryWidth * 2, kLiveryHeight * 2)));
    layout->addWidget(label);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    dialog.exec();
}

void MainWindow::showCarPopup() {
    CarBitmapPopup popup(
        [this](int id) {
            QAction* act = action(id);
            return act ? act->isEnabled() : true;
        },
        this);
    popup.move(mapToGlobal(QPoint(165, 204 + canvas_->y())));
    const int chosen = popup.exec() == QDialog::Accepted ? popup.chosen() : 0;
    if (chosen != 0) runCommand(chosen);
}

// ---------------------------------------------------------------- game


void MainWindow::importFromGame() {
    if (!session_.gameKnown()) return;
    selectAvailableTransferItems(*set_);
    const GameContext context{session_.config.gameFolder, session_.gameVersion, session_.config, session_.workingFolder};
    session_.detectStateFile();
    Status status;
    {
        // The modal progress window keeps every other command away meanwhile.
        ProgressWindow progress("Importing...", this);
        progress.show();
        status = ImportFromGame(*set_, context, progress);
    }
    // The import marks the set dirty once it has read something; a refused
    // import (a missing game file) leaves it as it was.
    set_->recountAssets();
    set_->document.currentTeam = std::min(set_->document.currentTeam, kRacingTeams - 1);
    refreshTeamList();
    refreshTeam();
    refreshTitle();
    updateCommandStates();
    showCurrentLivery(session_.config.mosaic);
    showStatus(status);
}

void MainWindow::exportToGame() {
    if (!session_.gameKnown()) return;
    selectAvailableTransferItems(*set_);
    const GameContext context{session_.config.gameFolder, session_.gameVersion, session_.config, session_.workingFolder};
    session_.detectStateFile();
    std::vector<Message> notices;
    Status status;
    {
        ProgressWindow progress("Exporting...", this);
        progress.show();
        status = ExportToGame(*set_, context, progress, &notices);
    }
    showStatus(status);
    for (const Message& notice : notices) showMessage(notice);
}

void MainWindow::launchGame() {
    if (!session_.gameKnown()) return;
    const std::filesystem::path folder(session_.config.gameFolder);
    const std::filesystem::path exe = gameFilePath(folder, "GP2.EXE");
    const QString line = QString::fromStdString(gameLaunchCommandLine(session_.config.launchCommand, exe));
    QStringList parts = QProcess::splitCommand(line);
    std::error_code ec;
    if (parts.isEmpty() || !std::filesystem::is_directory(folder, ec)) {
        showMessage(Message{MessageId::FailedToStartGp2, {}});
        return;
    }
    const QString program = parts.takeFirst();
    if (!startProcess_(program, parts, QString::fromStdString(folder.string())))
        showMessage(Message{MessageId::FailedToStartGp2, {}});
}

void MainWindow::programConfiguration() {
    asker_.configure(*this);
    session_.detectStateFile();
    updateCommandStates();
    refreshTeamList();
    refreshDrivers();
}

void MainWindow::openHelp() {
    if (session_.helpExists)
        QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(session_.helpFile.string())));
}

void MainWindow::aboutCarSet() {
    if (set_->hasInformation) asker_.showInformation(this, fromModel(set_->information));
}

void MainWindow::about() {
    QMessageBox::about(this, "About Tarvel",
                       "<b>Tarvel-32 v1.86</b><p>Car set editor for the Grand Prix racing game GP2.EXE.</p>");
}

}  // namespace tarvel
