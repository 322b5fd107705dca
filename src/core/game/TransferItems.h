#pragma once
// The rows of the import/export item table and what each item's transfer
// functions are given.

#include "carset/CarSet.h"
#include "common/Progress.h"
#include "common/Result.h"
#include "game/GameTransfer.h"

#include <string>
#include <string_view>

namespace tarvel {

struct ItemCall {
    int item;
    const GameContext& context;
    bool useStateFile;
    Progress& progress;
};

using ImportItemFn = Status (*)(CarSet&, const ItemCall&);
using ExportItemFn = Status (*)(const CarSet&, const ItemCall&);

enum class GameFileKind { Executable, Jam, MenuFile, Cockpit, SoundCatalogue };

struct TransferItemRange {
    int first;
    int last;
    std::string_view label;
    GameFileKind file;
    ImportItemFn importItem;   // nullptr: not transferable by this build
    ExportItemFn exportItem;
};

struct GameFileName {
    std::string relative;   // below the game folder, backslash-separated
    std::string display;    // as "File Not Found - %s." names it
};

// The game file an item touches.
GameFileName transferItemGameFile(int item, GameFileKind kind);

// The JAM catalogue number of a JAM item (1-15, 48-51, 158-356), or -1.
int transferItemJamNumber(int item);

}  // namespace tarvel
