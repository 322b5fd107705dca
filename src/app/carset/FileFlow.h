#pragma once
// The car set file as the user meets it: opening with the load's notices and
// message, saving with the replace question, and the save-changes question.

#include <QString>

namespace tarvel {

struct Workbench;

inline constexpr const char* kCarSetFilter = "Tarvel Car Sets (*.GP2 *.gp2)";

// Loads a car set and shows the notices and the failure; true when loaded.
bool loadCarSetFile(Workbench& bench, const QString& path);
// Save: over the open file, or as Save as when the set has none.
bool saveCarSetFile(Workbench& bench);
bool saveCarSetFileAs(Workbench& bench);
// The save-changes question when the set is dirty; false = stop.
bool maybeSave(Workbench& bench);
// Shows the set's information text when it has one and "ShowInfo" is on.
void showInformationIfWanted(Workbench& bench);

}  // namespace tarvel
