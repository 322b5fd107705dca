#pragma once
// The document an editor process works on: the car set (its content) and the
// state of its file (which file, unsaved changes, the team shown, the working
// folder, the import/export selection). Opening, saving and resetting go
// through these functions so that the two stay consistent.

#include "carset/CarSet.h"
#include "carset/CarSetFile.h"
#include "common/Messages.h"
#include "common/Result.h"

#include <array>
#include <cstdint>
#include <filesystem>
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

// Marks unsaved changes when `changed` is true; gives `changed` back.
inline bool markChanged(DocumentState& state, bool changed) {
    if (changed) state.dirty = true;
    return changed;
}

}  // namespace tarvel
