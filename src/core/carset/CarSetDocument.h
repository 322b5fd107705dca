#pragma once
// The document an editor process works on: the car set (its content) and the
// state of its file (which file, unsaved changes, the team shown, the working
// folder, the import/export selection). Opening, saving and resetting go
// through these functions so that the two stay consistent.

#include "carset/CarSet.h"
#include "carset/CarSetFile.h"
#include "carset/EditHistory.h"
#include "common/Messages.h"
#include "common/Result.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tarvel {

// Which import/export items take part (non-zero = selected), items 0-356.
using TransferSelection = std::array<std::uint16_t, kTransferItems>;

struct DocumentState {
    std::filesystem::path path;           // the open file, empty when none
    bool hasFile = false;
    bool dirty = false;
    int loadedVersion = carsetfile::kCurrentVersion;
    int currentTeam = 0;                  // the team shown, 0-13
    std::filesystem::path workingFolder;  // temporary asset files of this process
    TransferSelection transferItems{};
};

struct CarSetDocument {
    CarSet set;
    DocumentState state;
    EditHistory history;   // dropped on open and reset; a save marks its saved point
};

// The name of a step of the history, and what lets typing in one field make
// one step ("" = never merged).
struct StepName {
    std::string name;
    std::string mergeKey = {};
};

// Loads `path` into the document. A failed load leaves set and state as they
// were; success takes the new set, sets path, hasFile, loadedVersion and
// dirty = false, and deletes the working folder's temporary asset files.
Status openDocument(CarSetDocument& document, const std::filesystem::path& path, const CarSetFileOptions& options,
                    std::vector<Message>* notices = nullptr);

// Saves the set as `path` (through the atomic save); success sets path,
// hasFile, dirty = false and the current format version.
Status saveDocumentAs(CarSetDocument& document, const std::filesystem::path& path, const CarSetFileOptions& options);
// Saves to the document's own file; "Couldn't Save Car Set." when it has none.
Status saveDocument(CarSetDocument& document, const CarSetFileOptions& options);

// A new default set: no file, not dirty, team 0, and the working folder's
// temporary asset files deleted. The working folder and the transfer selection stay.
void resetDocument(CarSetDocument& document);

// Whether an edit's outcome says the set changed: true, a successful Status,
// or a successful Result<bool> holding true.
inline bool reportsChange(bool changed) { return changed; }
inline bool reportsChange(const Status& status) { return status.has_value(); }
inline bool reportsChange(const Result<bool>& changed) { return changed.has_value() && *changed; }

// Runs `change` on the set as one step of the history: when it reports a
// change the step is kept and the set is dirty. Gives back what `change` gave.
template <class F>
auto editDocument(CarSetDocument& document, const StepName& step, F&& change) {
    CarSetSnapshot before = document.history.capture(document.set, document.state.currentTeam);
    auto result = change(document.set);
    if (reportsChange(result)) {
        document.history.commit(std::move(before), step.name, step.mergeKey);
        document.state.dirty = true;
    }
    return result;
}

// Undo and redo of one step: the set, the team on show and the dirty flag
// (clear again at the saved point) follow. False when there was no step.
bool undoDocument(CarSetDocument& document);
bool redoDocument(CarSetDocument& document);

// Marks unsaved changes when `changed` is true; gives `changed` back.
inline bool markChanged(DocumentState& state, bool changed) {
    if (changed) state.dirty = true;
    return changed;
}

}  // namespace tarvel
