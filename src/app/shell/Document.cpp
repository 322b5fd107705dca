#include "shell/Document.h"

#include "shell/Session.h"

#include "carset/DocumentTitle.h"
#include "game/GameTransfer.h"
#include "common/CodePage.h"

#include <QFileInfo>

#include <algorithm>

namespace tarvel {
namespace {

std::filesystem::path toPath(const QString& path) { return std::filesystem::path(path.toStdString()); }

}  // namespace

Document::Document(Session& session, QObject* parent)
    : QObject(parent), session_(session), doc_(std::make_unique<CarSetDocument>()) {
    doc_->state.workingFolder = session_.workingFolder;
}

Document::~Document() = default;

QString Document::undoName() const { return QString::fromStdString(doc_->history.undoName()); }
QString Document::redoName() const { return QString::fromStdString(doc_->history.redoName()); }

bool Document::undo() {
    if (!undoDocument(*doc_)) return false;
    liveryUndo_.reset();
    emit changed(Everything);
    return true;
}

bool Document::redo() {
    if (!redoDocument(*doc_)) return false;
    liveryUndo_.reset();
    emit changed(Everything);
    return true;
}

bool Document::hasFile() const { return doc_->state.hasFile; }
bool Document::isDirty() const { return doc_->state.dirty; }
QString Document::path() const { return QString::fromStdString(doc_->state.path.string()); }
QString Document::title() const { return QString::fromStdString(windows1252ToUtf8(documentTitle(*doc_))); }
Message Document::saveChangesQuestion() const { return tarvel::saveChangesQuestion(*doc_); }

const TransferSelection& Document::transferItems() {
    selectAvailableTransferItems(doc_->state.transferItems);
    return doc_->state.transferItems;
}
CarSetFileOptions Document::fileOptions() const { return CarSetFileOptions{session_.config.checkSum, true}; }

int Document::currentTeam() const { return doc_->state.currentTeam; }

void Document::setCurrentTeam(int team) {
    team = std::clamp(team, 0, kRacingTeams - 1);
    if (team == doc_->state.currentTeam) return;
    doc_->state.currentTeam = team;
    emit changed(CurrentTeam);
}

Status Document::load(const QString& path, std::vector<Message>* notices) {
    if (auto status = openDocument(*doc_, toPath(path), fileOptions(), notices); !status) return status;
    doc_->state.path = toPath(QFileInfo(path).absoluteFilePath());
    afterFileChange();
    return {};
}

Status Document::saveTo(const QString& path) {
    if (auto status = saveDocumentAs(*doc_, toPath(path), fileOptions()); !status) return status;
    doc_->state.path = toPath(QFileInfo(path).absoluteFilePath());
    emit changed(File);
    return {};
}

void Document::reset() {
    resetDocument(*doc_);
    afterFileChange();
}

void Document::afterFileChange() {
    doc_->state.currentTeam = 0;
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
    session_.config.autoFile = doc_->state.path.string();
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
    liveryUndo_ = LiveryUndo{team, set().liveries[std::size_t(team)], set().team(team).carBitmap};
}

void Document::forgetLivery() { liveryUndo_.reset(); }

bool Document::canUndoLivery() const { return liveryUndo_ && liveryUndo_->team == currentTeam(); }

void Document::undoLivery() {
    if (!canUndoLivery()) return;
    const LiveryUndo previous = std::move(*liveryUndo_);
    liveryUndo_.reset();
    edit(StepName{"Undo livery of team " + std::to_string(previous.team + 1)}, Livery, [&](CarSet& set) {
        set.liveries[std::size_t(previous.team)] = previous.pixels;
        set.team(previous.team).carBitmap = previous.slot;
        return true;
    });
}

}  // namespace tarvel
