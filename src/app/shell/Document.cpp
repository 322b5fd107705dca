#include "shell/Document.h"

#include "shell/Session.h"

#include "carset/DocumentTitle.h"
#include "common/CodePage.h"

#include <QFileInfo>

#include <algorithm>

namespace tarvel {
namespace {

std::filesystem::path toPath(const QString& path) { return std::filesystem::path(path.toStdString()); }

}  // namespace

Document::Document(Session& session, QObject* parent)
    : QObject(parent), session_(session), set_(std::make_unique<CarSet>()) {
    set_->document.workingFolder = session_.workingFolder;
}

Document::~Document() = default;

void Document::markChanged(unsigned what) {
    set_->markDirty();
    emit changed(what | File);
}

bool Document::hasFile() const { return set_->document.hasFile; }
bool Document::isDirty() const { return set_->document.dirty; }
QString Document::path() const { return QString::fromStdString(set_->document.path.string()); }
QString Document::title() const { return QString::fromStdString(windows1252ToUtf8(documentTitle(*set_))); }
Message Document::saveChangesQuestion() const { return tarvel::saveChangesQuestion(*set_); }
CarSetFileOptions Document::fileOptions() const { return CarSetFileOptions{session_.config.checkSum, true}; }

int Document::currentTeam() const { return set_->document.currentTeam; }

void Document::setCurrentTeam(int team) {
    team = std::clamp(team, 0, kRacingTeams - 1);
    if (team == set_->document.currentTeam) return;
    set_->document.currentTeam = team;
    emit changed(CurrentTeam);
}

Status Document::load(const QString& path, std::vector<Message>* notices) {
    if (auto status = loadCarSet(*set_, toPath(path), fileOptions(), notices); !status) {
        set_->document.workingFolder = session_.workingFolder;
        return status;
    }
    set_->document.path = toPath(QFileInfo(path).absoluteFilePath());
    afterFileChange();
    return {};
}

Status Document::saveTo(const QString& path) {
    if (auto status = saveCarSet(*set_, toPath(path), fileOptions()); !status) return status;
    set_->document.path = toPath(QFileInfo(path).absoluteFilePath());
    set_->document.workingFolder = session_.workingFolder;
    emit changed(File);
    return {};
}

void Document::reset() {
    set_->resetToDefaults();
    afterFileChange();
}

void Document::afterFileChange() {
    set_->document.workingFolder = session_.workingFolder;
    set_->document.currentTeam = 0;
    liveryUndo_.reset();
    emit changed(Everything);
}

QString Document::autofile() const { return QString::fromStdString(session_.config.autoFile); }

void Document::setAutofileLive(bool live) {
    autofileLive_ = live;
    emit changed(Autofile);
}

bool Document::setOpenFileAsAutofile() {
    if (!hasFile()) return false;
    session_.config.autoFile = set_->document.path.string();
    const bool written = session_.writeAutoFile(session_.config.autoFile);
    setAutofileLive(true);
    return written;
}

bool Document::removeAutofile() {
    const bool removed = session_.removeAutoFile();
    session_.config.autoFile.clear();
    setAutofileLive(false);
    return removed;
}

void Document::rememberLivery() {
    const int team = currentTeam();
    liveryUndo_ = LiveryUndo{team, set_->liveries[std::size_t(team)], set_->team(team).carBitmap};
}

void Document::forgetLivery() { liveryUndo_.reset(); }

bool Document::canUndoLivery() const { return liveryUndo_ && liveryUndo_->team == currentTeam(); }

void Document::undoLivery() {
    if (!canUndoLivery()) return;
    set_->liveries[std::size_t(liveryUndo_->team)] = liveryUndo_->pixels;
    set_->team(liveryUndo_->team).carBitmap = liveryUndo_->slot;
    liveryUndo_.reset();
    markChanged(Livery);
}

}  // namespace tarvel
