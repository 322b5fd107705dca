#include "shell/ConfigDialog.h"

#include "shell/Asker.h"
#include "shell/Session.h"

#include "carset/GripForm.h"

#include "game/GameLocation.h"
#include "game/GameVersion.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QVBoxLayout>

#include <array>
#include <optional>

namespace tarvel {
namespace {

// The option boxes: caption, the configuration field, and whether the box
// shows the inverse of the stored key.
struct BoxSpec {
    const char* caption;
    bool Config::*field;
    bool inverted;
};

constexpr std::array<BoxSpec, 9> kBoxes{{
    {" Verify Car Set Checksums ", &Config::checkSum, false},
    {" Use Alternate Grid Calculator ", &Config::niceGrid, true},
    {" Import JAM: Clear Up Background ", &Config::clearJam, false},
    {" Export JAM: Fix Green Palette Entries ", &Config::fixGreen, false},
    {" Export JAM: Fix Palette Strip ", &Config::fixStrip, false},
    {" Save Bitmap: Use Tarvel Palette ", &Config::gp2Palette, true},
    {" Soften Menu Helmets ", &Config::softenMenu, false},
    {" Allow Team Swapping ", &Config::teamSwap, false},
    {" Ask Before Exporting to the Game ", &Config::confirmExport, false},
}};

}  // namespace

ConfigDialog::ConfigDialog(Session& session, Asker& asker, QWidget* parent)
    : QDialog(parent), session_(session), asker_(asker), rememberedFolder_(session.config.gameFolder) {
    setWindowTitle("Program Configuration");
    const Config& config = session.config;
    auto* layout = new QVBoxLayout(this);

    auto* exeGroup = new QGroupBox("GP2.EXE", this);
    auto* exeRow = new QHBoxLayout(exeGroup);
    exe_ = new QLineEdit(QString::fromStdString(gameExecutableText(config.gameFolder)), exeGroup);
    exe_->setMinimumWidth(280);
    auto* browseButton = new QPushButton("Browse...", exeGroup);
    connect(browseButton, &QPushButton::clicked, this, &ConfigDialog::browse);
    exeRow->addWidget(exe_);
    exeRow->addWidget(browseButton);
    auto* exeRows = new QVBoxLayout;
    exeRows->addLayout(exeRow);
    // Why the named game cannot be used, while it cannot.
    problem_ = new QLabel(exeGroup);
    problem_->setWordWrap(true);
    problem_->setStyleSheet("color: #b00000;");
    exeRows->addWidget(problem_);
    delete exeGroup->layout();
    exeGroup->setLayout(exeRows);
    connect(exe_, &QLineEdit::textChanged, this, &ConfigDialog::showGameProblem);
    showGameProblem(exe_->text());
    layout->addWidget(exeGroup);

    auto* options = new QGroupBox("Options", this);
    auto* optionRows = new QVBoxLayout(options);
    for (const BoxSpec& entry : kBoxes) {
        auto* check = new QCheckBox(entry.caption, options);
        check->setChecked(config.*entry.field != entry.inverted);
        optionRows->addWidget(check);
        boxes_.push_back(check);
    }
    auto gripCaption = [](bool high) {
        const GripRange range = gripDisplayRange(high);
        return QString(" Grip Edit Range: %1 to %2 ").arg(range.low).arg(range.high);
    };
    lowGrip_ = new QRadioButton(gripCaption(false), options);
    highGrip_ = new QRadioButton(gripCaption(true), options);
    (config.highGrip ? highGrip_ : lowGrip_)->setChecked(true);
    optionRows->addWidget(lowGrip_);
    optionRows->addWidget(highGrip_);
    layout->addWidget(options);

    auto* mosaicRow = new QHBoxLayout;
    mosaicRow->addWidget(new QLabel("Mosaic Speed", this));
    mosaic_ = new QSlider(Qt::Horizontal, this);
    mosaic_->setRange(0, 4);
    mosaic_->setSingleStep(1);
    mosaic_->setPageStep(1);
    mosaic_->setTickPosition(QSlider::TicksBelow);
    mosaic_->setValue(config.mosaic);
    mosaicValue_ = new QLabel(this);
    mosaicValue_->setMinimumWidth(30);
    connect(mosaic_, &QSlider::valueChanged, this, &ConfigDialog::showMosaic);
    showMosaic(mosaic_->value());
    mosaicRow->addWidget(mosaic_);
    mosaicRow->addWidget(mosaicValue_);
    layout->addLayout(mosaicRow);

    auto* launchRow = new QHBoxLayout;
    launchRow->addWidget(new QLabel("Launch Command (%s = GP2.EXE):", this));
    launch_ = new QLineEdit(QString::fromStdString(config.launchCommand), this);
    launch_->setPlaceholderText("dosbox \"%s\"");
    launchRow->addWidget(launch_);
    layout->addLayout(launchRow);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &ConfigDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ConfigDialog::reject);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

QCheckBox* ConfigDialog::box(const QString& caption) const {
    for (QCheckBox* check : boxes_)
        if (check->text() == caption) return check;
    return nullptr;
}

void ConfigDialog::showGameProblem(const QString& executable) {
    const auto folder = gameFolderFromExecutable(executable.toStdString());
    std::optional<Message> problem;
    if (!folder)
        problem = Message{MessageId::LocateGp2Exe, {}, "Name the game's GP2.EXE, or use Browse..."};
    else
        problem = gameFolderProblem(*folder);
    problem_->setVisible(problem.has_value());
    if (problem) problem_->setText(QString::fromStdString(problem->detail));
}

void ConfigDialog::showMosaic(int value) { mosaicValue_->setText(value == 0 ? QString("OFF") : QString::number(value)); }

void ConfigDialog::browse() {
    const QString chosen = asker_.openFile(this, "Locate GP2.EXE", "Executable Files (*.EXE *.exe)");
    if (!chosen.isEmpty()) exe_->setText(chosen);
}

// The settings stay in force for this process even when the file cannot take them.
void ConfigDialog::reportWrite(bool written) {
    if (!written) asker_.message(this, Message{MessageId::CouldntWriteFile, session_.configPath.string()});
}

void ConfigDialog::accept() {
    const auto folder = gameFolderFromExecutable(exe_->text().toStdString());
    if (!folder) {
        asker_.message(this, Message{MessageId::LocateGp2Exe, {}});
        exe_->selectAll();
        exe_->setFocus();
        return;
    }
    Config& config = session_.config;
    config.gameFolder = *folder;
    for (std::size_t i = 0; i < kBoxes.size(); ++i)
        config.*kBoxes[i].field = boxes_[qsizetype(i)]->isChecked() != kBoxes[i].inverted;
    config.highGrip = highGrip_->isChecked();
    config.mosaic = mosaic_->value();
    config.launchCommand = launch_->text().toStdString();
    session_.detectGame();
    if (!session_.gameKnown()) {
        const auto problem = gameFolderProblem(session_.config.gameFolder);
        asker_.message(this, Message{MessageId::UnsupportedVersion, {}, problem ? problem->detail : std::string()});
    }
    reportWrite(session_.writeConfiguration());
    QDialog::accept();
}

void ConfigDialog::reject() {
    session_.config.gameFolder = rememberedFolder_;
    reportWrite(session_.writeGameFolder(rememberedFolder_));
    QDialog::reject();
}

}  // namespace tarvel
