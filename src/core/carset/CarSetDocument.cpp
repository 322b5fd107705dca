#include "carset/CarSetDocument.h"

#include "carset/WorkingFolder.h"

namespace tarvel {

namespace {
void deleteWorkingFiles(const DocumentState& state) {
    if (!state.workingFolder.empty()) deleteTemporaryAssetFiles(state.workingFolder);
}
}  // namespace

Status openDocument(CarSetDocument& document, const std::filesystem::path& path, const CarSetFileOptions& options,
                    std::vector<Message>* notices) {
    Result<int> version = loadCarSet(document.set, path, options, notices);
    if (!version) return fail(version.error());
    DocumentState& state = document.state;
    state.path = path;
    state.hasFile = true;
    state.dirty = false;
    state.loadedVersion = *version;
    document.history.clear();
    deleteWorkingFiles(state);
    return {};
}

Status saveDocumentAs(CarSetDocument& document, const std::filesystem::path& path, const CarSetFileOptions& options) {
    if (Status saved = saveCarSet(document.set, path, options); !saved) return saved;
    DocumentState& state = document.state;
    state.path = path;
    state.hasFile = true;
    state.dirty = false;
    state.loadedVersion = carsetfile::kCurrentVersion;
    document.history.markSaved();
    return {};
}

Status saveDocument(CarSetDocument& document, const CarSetFileOptions& options) {
    if (!document.state.hasFile) return fail(MessageId::CouldntSaveCarSet);
    const std::filesystem::path path = document.state.path;
    return saveDocumentAs(document, path, options);
}

void resetDocument(CarSetDocument& document) {
    document.set.resetToDefaults();
    DocumentState& state = document.state;
    state.path.clear();
    state.hasFile = false;
    state.dirty = false;
    state.loadedVersion = carsetfile::kCurrentVersion;
    state.currentTeam = 0;
    document.history.clear();
    deleteWorkingFiles(state);
}

namespace {
bool stepThrough(CarSetDocument& document, int (EditHistory::*step)(CarSet&, int)) {
    const int team = (document.history.*step)(document.set, document.state.currentTeam);
    if (team < 0) return false;
    document.state.currentTeam = team;
    document.state.dirty = !document.history.atSavedPoint();
    return true;
}
}  // namespace

bool undoDocument(CarSetDocument& document) { return stepThrough(document, &EditHistory::undo); }
bool redoDocument(CarSetDocument& document) { return stepThrough(document, &EditHistory::redo); }

}  // namespace tarvel
