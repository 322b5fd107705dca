#include "settings/SettingsDialogs.h"

#include "shell/Asker.h"
#include "shell/Document.h"
#include "shell/FieldWidgets.h"
#include "shell/Session.h"
#include "shell/Workbench.h"

#include "carset/SettingsDefaults.h"
#include "game/GameSettingsTransfer.h"
#include "game/GlobalCarSettings.h"
#include "game/LapsAndPoints.h"
#include "game/OnboardCameras.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace tarvel {
namespace {

template <std::size_t N>
WordsTransfer fixed(Status (*transfer)(std::span<std::uint16_t, N>, TransferDirection, const GameAccess&)) {
    return [transfer](std::span<std::uint16_t> words, TransferDirection direction, const GameAccess& access) {
        return transfer(words.first<N>(), direction, access);
    };
}

template <auto Fill>
std::function<void(std::uint16_t*)> fillFrom(SettingsRange range) {
    return [range](std::uint16_t* words) {
        CarSetSettings block;
        Fill(block);
        std::copy_n(block.range(range), range.count, words);
    };
}

// The text part of a number field.
QLineEdit* editOf(ValueSpinBox* field) { return field->findChild<QLineEdit*>(); }

const FieldSpec& settingsField(std::string_view name) { return *findFieldSpec(FieldPlace::Settings, name); }

QScrollBar* horizontalBar(int low, int high, int page, QWidget* parent) {
    auto* bar = new QScrollBar(Qt::Horizontal, parent);
    bar->setRange(low, high);
    bar->setSingleStep(1);
    bar->setPageStep(page);
    bar->setMinimumWidth(220);
    return bar;
}

}  // namespace

// --- shared ---------------------------------------------------------------

SettingsDialog::SettingsDialog(Workbench& bench, const QString& title, SettingsRange range, WordsTransfer transfer,
                               std::function<void(std::uint16_t*)> defaults, bool withUndo, QWidget* parent)
    : QDialog(parent), bench_(bench), range_(range), transfer_(std::move(transfer)), defaults_(std::move(defaults)),
      withUndo_(withUndo), title_(title) {
    setWindowTitle(title);
    const CarSet& set = bench.document.set();
    words_.assign(set.settings.range(range), set.settings.range(range) + range.count);
    opening_ = words_;
}

void SettingsDialog::finish(QLayout* content) {
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(content);
    auto* buttons = new QHBoxLayout;
    const bool gameKnown = knownRelease(bench_.session.gameVersion);
    const auto add = [&](const QString& text, auto slot) {
        auto* b = new QPushButton(text, this);
        b->setAutoDefault(false);
        connect(b, &QPushButton::clicked, this, slot);
        buttons->addWidget(b);
        return b;
    };
    add("Import", [this] { importWords(); })->setEnabled(gameKnown);
    add("Export", [this] { exportWords(); })->setEnabled(gameKnown);
    add("Defaults", [this] {
        defaults_(words_.data());
        showWords();
    });
    if (withUndo_)
        add("Undo", [this] {
            words_ = opening_;
            showWords();
        });
    buttons->addStretch(1);
    add("OK", [this] { accept(); })->setDefault(true);
    QPushButton* cancel = add("Cancel", [this] { reject(); });
    layout->addLayout(buttons);
    showWords();
    cancel->setFocus();
}

QPushButton* SettingsDialog::button(const QString& text) const {
    for (QPushButton* b : findChildren<QPushButton*>())
        if (b->text() == text) return b;
    return nullptr;
}

GameAccess SettingsDialog::gameAccess() const {
    bench_.session.detectStateFile();
    return {bench_.session.config.gameFolder, bench_.session.gameVersion, bench_.session.useStateFile, nullptr};
}

ValueSpinBox* SettingsDialog::numberField(const ElementRule& rule, int width) {
    auto* box = new ValueSpinBox(this);
    const FieldRange range = displayRange(rule, false);
    box->setRange(range.low, range.high);
    box->setRangeHint(QString::fromStdString(messageText(rangeMessage(rule, false))));
    box->setMinimumWidth(box->fontMetrics().horizontalAdvance(QString(width + 3, '0')));
    return box;
}

std::optional<int> SettingsDialog::readField(ValueSpinBox* field, const ElementRule& rule) {
    const QString text = editOf(field)->text().trimmed();
    bool ok = text.isEmpty();
    const long long typed = ok ? 0 : text.toLongLong(&ok);
    if (ok && displayRange(rule, false).contains(typed)) {
        field->setValue(int(typed));
        return int(typed);
    }
    showMessage(bench_, rangeMessage(rule, false));
    field->setFocus();
    field->selectAll();
    return std::nullopt;
}

void SettingsDialog::importWords() {
    std::vector<std::uint16_t> read = words_;
    if (Status status = transfer_(read, TransferDirection::Import, gameAccess()); !status) {
        showMessage(bench_, Message{MessageId::ImportFailed, {}, status.error().detail});
        return;
    }
    words_ = read;
    showWords();
}

void SettingsDialog::exportWords() {
    if (!takeWords()) return;
    if (Status status = transfer_(words_, TransferDirection::Export, gameAccess()); !status) {
        showMessage(bench_, Message{MessageId::ExportFailed, {}, status.error().detail});
        return;
    }
    showMessage(bench_, Message{MessageId::FilePatchedSuccessfully});
}

void SettingsDialog::accept() {
    if (!takeWords()) return;
    bench_.document.edit(StepName{title_.toStdString()}, Document::Teams, [this](CarSet& set) {
        std::uint16_t* target = set.settings.range(range_);
        if (std::equal(words_.begin(), words_.end(), target)) return false;
        std::copy(words_.begin(), words_.end(), target);
        return true;
    });
    QDialog::accept();
}

// --- Game Settings ----------------------------------------------------------

namespace {
constexpr const char* kLevelNames[] = {"Rookie", "Amateur", "Semi-Pro", "Pro", "Ace"};
constexpr const char* kAidNames[] = {"Brakes", "Gears", "Spin", "Steering", "Line", "Gear Hint", "Damage Off"};
}  // namespace

GameSettingsDialog::GameSettingsDialog(Workbench& bench, QWidget* parent)
    : SettingsDialog(bench, "Game Settings", settings::kGame, fixed(TransferGameSettings),
                     fillFrom<setGameSettingsDefaults>(settings::kGame), true, parent) {
    bench.session.detectStateFile();
    stateFile_ = bench.session.useStateFile;
    auto* content = new QHBoxLayout;

    auto* aidsBox = new QGroupBox("Driver Aids", this);
    auto* grid = new QGridLayout(aidsBox);
    for (int aid = 0; aid < gamesettings::kAidCount; ++aid) {
        auto* header = new QLabel(kAidNames[aid], aidsBox);
        header->setAlignment(Qt::AlignCenter);
        grid->addWidget(header, 0, aid + 1);
    }
    for (int level = 0; level < gamesettings::kLevels; ++level) {
        grid->addWidget(new QLabel(kLevelNames[level], aidsBox), level + 1, 0);
        for (int aid = 0; aid < gamesettings::kAidCount; ++aid) {
            auto* cell = new QCheckBox(aidsBox);
            grid->addWidget(cell, level + 1, aid + 1, Qt::AlignCenter);
            aids_.push_back(cell);
        }
    }
    content->addWidget(aidsBox);

    auto* right = new QVBoxLayout;
    auto* stateBox = new QGroupBox("Saved Game", this);
    auto* stateGrid = new QGridLayout(stateBox);
    quickRace_ = horizontalBar(1, 100, 10, stateBox);
    quickRaceValue_ = new QLabel(stateBox);
    turns_ = horizontalBar(1, 50, 5, stateBox);
    turnsValue_ = new QLabel(stateBox);
    stateGrid->addWidget(new QLabel("Quick Race Length", stateBox), 0, 0);
    stateGrid->addWidget(quickRace_, 0, 1);
    stateGrid->addWidget(quickRaceValue_, 0, 2);
    stateGrid->addWidget(new QLabel("Multiplayer Turns", stateBox), 1, 0);
    stateGrid->addWidget(turns_, 1, 1);
    stateGrid->addWidget(turnsValue_, 1, 2);
    quickRaceValue_->setMinimumWidth(quickRaceValue_->fontMetrics().horizontalAdvance("100%"));
    reason_ = new QLabel("These live in F1GSTATE.SAV: the game folder holds no usable one.", stateBox);
    reason_->setWordWrap(true);
    reason_->setVisible(!stateFile_);
    stateGrid->addWidget(reason_, 2, 0, 1, 3);
    for (QScrollBar* bar : {quickRace_, turns_}) bar->setEnabled(stateFile_);
    connect(quickRace_, &QScrollBar::valueChanged, this, [this](int v) { quickRaceValue_->setText(QString("%1%").arg(v)); });
    connect(turns_, &QScrollBar::valueChanged, this, [this](int v) { turnsValue_->setText(QString::number(v)); });
    right->addWidget(stateBox);

    auto* fuelBox = new QGroupBox("Initial Fuel Load", this);
    auto* fuelRow = new QHBoxLayout(fuelBox);
    const FieldSpec& schemaField = settingsField("gameSettings");
    for (int which = 0; which < 2; ++which) {
        fuel_[std::size_t(which)] = numberField(elementRule(schemaField, gamesettings::kFuelPractice + which), 2);
        editOf(fuel_[std::size_t(which)])->setMaxLength(2);
        fuelRow->addWidget(new QLabel(which == 0 ? "Prac." : "Qual.", fuelBox));
        fuelRow->addWidget(fuel_[std::size_t(which)]);
    }
    right->addWidget(fuelBox);
    records_ = new QCheckBox(" Always Save Track Records ", this);
    computerFuel_ = new QCheckBox(" Show CCs Fuel Load ", this);
    right->addWidget(records_);
    right->addWidget(computerFuel_);
    right->addStretch(1);
    content->addLayout(right);
    finish(content);
}

void GameSettingsDialog::showWords() {
    for (int level = 0; level < gamesettings::kLevels; ++level) {
        const int bits = std::abs(std::int16_t(words_[std::size_t(level)])) & 0x7F;
        for (int k = 0; k < gamesettings::kAidCount; ++k) aid(level, k)->setChecked((bits >> k) & 1);
    }
    quickRace_->setValue(words_[gamesettings::kQuickRaceLength]);
    turns_->setValue(words_[gamesettings::kMultiplayerTurns]);
    quickRaceValue_->setText(stateFile_ ? QString("%1%").arg(quickRace_->value()) : QString());
    turnsValue_->setText(stateFile_ ? QString::number(turns_->value()) : QString());
    fuel_[0]->setValue(words_[gamesettings::kFuelPractice]);
    fuel_[1]->setValue(words_[gamesettings::kFuelQualifying]);
    records_->setChecked(words_[gamesettings::kTrackRecords] != 0);
    computerFuel_->setChecked(words_[gamesettings::kComputerFuel] != 0);
}

bool GameSettingsDialog::takeWords() {
    const FieldSpec& schemaField = settingsField("gameSettings");
    std::array<int, 2> fuel{};
    for (int which = 0; which < 2; ++which) {
        auto value = readField(fuel_[std::size_t(which)], elementRule(schemaField, gamesettings::kFuelPractice + which));
        if (!value) return false;
        fuel[std::size_t(which)] = *value;
    }
    for (int level = 0; level < gamesettings::kLevels; ++level) {
        int bits = 0;
        for (int k = 0; k < gamesettings::kAidCount; ++k) bits |= aid(level, k)->isChecked() ? 1 << k : 0;
        words_[std::size_t(level)] = std::uint16_t(bits);
    }
    if (stateFile_) {
        words_[gamesettings::kQuickRaceLength] = std::uint16_t(quickRace_->value());
        words_[gamesettings::kMultiplayerTurns] = std::uint16_t(turns_->value());
    }
    words_[gamesettings::kFuelPractice] = std::uint16_t(fuel[0]);
    words_[gamesettings::kFuelQualifying] = std::uint16_t(fuel[1]);
    words_[gamesettings::kTrackRecords] = records_->isChecked() ? 1 : 0;
    words_[gamesettings::kComputerFuel] = computerFuel_->isChecked() ? 1 : 0;
    return true;
}

// --- Laps and points --------------------------------------------------------

namespace {
constexpr const char* kCircuits[] = {"Brazilian", "Pacific",   "San Marino", "Monaco",    "Spanish",    "Canadian",
                                     "French",    "British",   "German",     "Hungarian", "Belgian",    "Italian",
                                     "Portuguese", "European", "Japanese",   "Australian"};
}  // namespace

TableDialog::TableDialog(Workbench& bench, Kind kind, QWidget* parent)
    : SettingsDialog(bench, kind == Laps ? "Number of Laps Editor" : "Championship Points Editor",
                     kind == Laps ? settings::kLaps : settings::kPoints,
                     kind == Laps ? fixed(TransferLaps) : fixed(TransferPoints),
                     kind == Laps ? fillFrom<setLapsDefaults>(settings::kLaps) : fillFrom<setPointsDefaults>(settings::kPoints),
                     true, parent),
      spec_(&settingsField(kind == Laps ? "laps" : "points")) {
    auto* content = new QVBoxLayout;
    auto* box = new QGroupBox(kind == Laps ? "Circuit" : "Position", this);
    auto* grid = new QGridLayout(box);
    const int rows = kind == Laps ? 8 : 10;
    for (int i = 0; i < spec_->count; ++i) {
        ValueSpinBox* field = numberField(elementRule(*spec_, i), 3);
        fields_.push_back(field);
        const QString caption = kind == Laps ? QString(kCircuits[i]) : QString("%1.").arg(i + 1);
        grid->addWidget(new QLabel(caption, box), i % rows, 2 * (i / rows));
        grid->addWidget(field, i % rows, 2 * (i / rows) + 1);
    }
    content->addWidget(box);
    if (kind == Points) {
        auto* presets = new QHBoxLayout;
        for (const auto& [text, preset] : {std::pair{"F1", PointsPreset::F1}, {"CART", PointsPreset::Cart}, {"ALL", PointsPreset::All}}) {
            auto* b = new QPushButton(text, this);
            b->setAutoDefault(false);
            connect(b, &QPushButton::clicked, this, [this, preset] {
                const auto points = pointsPreset(preset);
                for (std::size_t i = 0; i < points.size(); ++i) fields_[i]->setValue(points[i]);
            });
            presets->addWidget(b);
        }
        presets->addStretch(1);
        content->addLayout(presets);
    }
    finish(content);
}

void TableDialog::showWords() {
    for (std::size_t i = 0; i < fields_.size(); ++i) fields_[i]->setValue(words_[i]);
}

bool TableDialog::takeWords() {
    std::vector<std::uint16_t> taken(fields_.size());
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        auto value = readField(fields_[i], elementRule(*spec_, int(i)));
        if (!value) return false;
        taken[i] = std::uint16_t(*value);
    }
    words_ = taken;
    return true;
}

// --- Global Car Settings ----------------------------------------------------

GlobalCarDialog::GlobalCarDialog(Workbench& bench, QWidget* parent)
    : SettingsDialog(bench, "Global Car Settings", settings::kGlobalCar, fixed(TransferGlobalCarSettings),
                     fillFrom<setGlobalCarSettingsDefaults>(settings::kGlobalCar), true, parent) {
    namespace gc = globalcar;
    auto* content = new QHBoxLayout;
    auto* barsBox = new QGroupBox("Player's Car", this);
    auto* grid = new QGridLayout(barsBox);
    struct BarRow {
        int word;
        const char* caption;
        FieldRange range;
        int page;
    };
    const BarRow rows[] = {
        {gc::kPowerRace, "Power (Race/Practice)", fieldrange::kEnginePower, 10},
        {gc::kPowerQual, "Power (Qualification)", fieldrange::kEnginePower, 10},
        {gc::kPlayerWeight, "Weight", gc::kWeightRange, 10},
        {gc::kPitSpeedLimit, "Pit Speed Limit", gc::kPitSpeedRange, 5},
        {gc::kGripFactor, "Grip Factor", gc::kGripFactorRange, 10},
        {gc::kComputerWeight, "Weight (Computer Cars)", gc::kWeightRange, 10},
    };
    int row = 0;
    for (const BarRow& r : rows) {
        bars_[std::size_t(r.word)] = horizontalBar(r.range.low, r.range.high, r.page, barsBox);
        labels_[std::size_t(r.word)] = new QLabel(barsBox);
        labels_[std::size_t(r.word)]->setMinimumWidth(labels_[std::size_t(r.word)]->fontMetrics().horizontalAdvance("4000kg [8818lb]"));
        grid->addWidget(new QLabel(r.caption, barsBox), row, 0);
        grid->addWidget(bars_[std::size_t(r.word)], row, 1);
        grid->addWidget(labels_[std::size_t(r.word)], row, 2);
        const int word = r.word;
        connect(bars_[std::size_t(word)], &QScrollBar::valueChanged, this, [this, word](int v) {
            words_[std::size_t(word)] = std::uint16_t(v);
            showLabel(word);
        });
        ++row;
    }
    content->addWidget(barsBox);

    auto* right = new QVBoxLayout;
    for (const auto& [word, text] : {std::pair{gc::kDriverZero, " Show Driver [1] as [0] "}, {gc::kNoSpeedLimit, " No Speed Limit "},
                                     {gc::kRandomPowerVariation, " Random Power Variation "},
                                     {gc::kSelectedTeamPower, " Use Selected Team Power "}}) {
        checks_[std::size_t(word)] = new QCheckBox(text, this);
        right->addWidget(checks_[std::size_t(word)]);
    }
    auto* modeBox = new QGroupBox("Computer Cars", this);
    auto* modeLayout = new QVBoxLayout(modeBox);
    const char* modeNames[] = {" All The Same ", " Use Tarvel Values ", " Random "};
    for (int m = 0; m < 3; ++m) {
        modes_[std::size_t(m)] = new QRadioButton(modeNames[m], modeBox);
        modeLayout->addWidget(modes_[std::size_t(m)]);
    }
    right->addWidget(modeBox);
    right->addStretch(1);
    content->addLayout(right);
    finish(content);
}

QScrollBar* GlobalCarDialog::bar(int word) const { return bars_[std::size_t(word)]; }
QLabel* GlobalCarDialog::label(int word) const { return labels_[std::size_t(word)]; }
QCheckBox* GlobalCarDialog::check(int word) const { return checks_[std::size_t(word)]; }

void GlobalCarDialog::showLabel(int word) {
    const int v = words_[std::size_t(word)];
    std::string text = word == globalcar::kPitSpeedLimit                                         ? speedLabel(v)
                       : word == globalcar::kPlayerWeight || word == globalcar::kComputerWeight ? weightLabel(v)
                                                                                                  : std::to_string(v);
    labels_[std::size_t(word)]->setText(QString::fromStdString(text));
}

void GlobalCarDialog::showWords() {
    const std::vector<std::uint16_t> shown = words_;   // moving a bar writes its word
    for (std::size_t w = 0; w < bars_.size(); ++w)
        if (bars_[w]) {
            bars_[w]->setValue(shown[w]);
            words_[w] = shown[w];
            showLabel(int(w));
        }
    for (std::size_t w = 0; w < checks_.size(); ++w)
        if (checks_[w]) checks_[w]->setChecked(shown[w] != 0);
    // Unchecking every button (a mode outside 0-2) needs them non-exclusive for a moment.
    for (QRadioButton* mode : modes_) mode->setAutoExclusive(false);
    for (std::size_t m = 0; m < modes_.size(); ++m) modes_[m]->setChecked(shown[globalcar::kComputerPerformance] == m);
    for (QRadioButton* mode : modes_) mode->setAutoExclusive(true);
}

bool GlobalCarDialog::takeWords() {
    for (std::size_t w = 0; w < checks_.size(); ++w)
        if (checks_[w]) words_[w] = checks_[w]->isChecked() ? 1 : 0;
    for (std::size_t m = 0; m < modes_.size(); ++m)
        if (modes_[m]->isChecked()) words_[globalcar::kComputerPerformance] = std::uint16_t(m);
    return true;
}

// --- Onboard cameras --------------------------------------------------------

namespace {
constexpr const char* kCameraCaptions[] = {"X coord.", "Z coord.", "Y coord.", "Direction",
                                           "Pitch",    "Roll",     "Detail 1", "Detail 2"};
constexpr int kTextLimits[] = {6, 6, 6, 4, 4, 4, 5, 5};
}  // namespace

CameraDialog::CameraDialog(Workbench& bench, QWidget* parent)
    : SettingsDialog(bench, "Onboard Camera Editor", settings::kCameras, fixed(ReadWriteCameras),
                     [](std::uint16_t* words) { setCameraDefaults(words); }, false, parent) {
    auto* content = new QHBoxLayout;
    list_ = new QListWidget(this);
    for (int c = 0; c < camera::kCount; ++c) {
        auto* item = new QListWidgetItem(QString(" Camera %1").arg(c + 1), list_);
        item->setData(Qt::UserRole, c);
    }
    list_->setCurrentRow(0);
    list_->setMaximumWidth(list_->fontMetrics().horizontalAdvance(" Camera 9 ") + 40);
    content->addWidget(list_);
    const FieldSpec& schemaField = settingsField("cameras");
    const char* groups[] = {"Position", "Angle (deg)", "Focus"};
    const int groupStart[] = {0, 3, 6, 8};
    for (int g = 0; g < 3; ++g) {
        auto* box = new QGroupBox(groups[g], this);
        auto* grid = new QGridLayout(box);
        for (int f = groupStart[g]; f < groupStart[g + 1]; ++f) {
            fields_[std::size_t(f)] = numberField(elementRule(schemaField, f), kTextLimits[f]);
            editOf(fields_[std::size_t(f)])->setMaxLength(kTextLimits[f]);
            grid->addWidget(new QLabel(kCameraCaptions[f], box), f - groupStart[g], 0);
            grid->addWidget(fields_[std::size_t(f)], f - groupStart[g], 1);
        }
        grid->setRowStretch(groupStart[g + 1] - groupStart[g], 1);
        content->addWidget(box, 0);
    }
    connect(list_, &QListWidget::currentRowChanged, this, [this](int row) { chooseCamera(row); });
    finish(content);
    settingUp_ = false;
}

void CameraDialog::showWords() {
    for (int f = 0; f < camera::kFields; ++f) {
        const std::uint16_t word = words_[std::size_t(current_ * camera::kFields + f)];
        fields_[std::size_t(f)]->setValue(f < camera::kFirstTuning ? int(std::int16_t(word)) : int(word));
    }
}

bool CameraDialog::takeWords() {
    const FieldSpec& schemaField = settingsField("cameras");
    std::array<int, camera::kFields> values{};
    for (int f = 0; f < camera::kFields; ++f) {
        auto value = readField(fields_[std::size_t(f)], elementRule(schemaField, f));
        if (!value) {
            const QSignalBlocker quiet(list_);
            list_->setCurrentRow(current_);
            fields_[std::size_t(f)]->setFocus();
            return false;
        }
        values[std::size_t(f)] = *value;
    }
    for (int f = 0; f < camera::kFields; ++f)
        words_[std::size_t(current_ * camera::kFields + f)] = std::uint16_t(values[std::size_t(f)]);
    return true;
}

void CameraDialog::chooseCamera(int camera) {
    if (settingUp_ || camera == current_ || camera < 0) return;
    if (!takeWords()) return;
    current_ = camera;
    showWords();
}

}  // namespace tarvel
