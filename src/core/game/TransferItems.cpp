#include "game/TransferItems.h"

#include "graphics/JamCatalogue.h"

namespace tarvel {

int transferItemJamNumber(int item) {
    if (item >= 1 && item <= 15) return item - 1;        // 14 liveries, then HELMETS1.JAM
    if (item >= 48 && item <= 51) return item - 48 + kFirstWheelJam;
    if (item >= 158 && item <= 356) return item - 139;
    return -1;
}

GameFileName transferItemGameFile(int item, GameFileKind kind) {
    switch (kind) {
    case GameFileKind::Executable:
        return {"GP2.EXE", "GP2.EXE"};
    case GameFileKind::MenuFile:
        return {"BITMAPS\\F1PCSVGA.BIN", "F1PCSVGA.BIN"};
    case GameFileKind::Cockpit:
        return item == 45 ? GameFileName{"BITMAPS\\CPITHI.PCX", "CPITHI.PCX"}
                          : GameFileName{"BITMAPS\\CPITLOW.PCX", "CPITLOW.PCX"};
    case GameFileKind::SoundCatalogue:
        return {"SOUND\\SAMPLE.CAT", "SAMPLE.CAT"};
    case GameFileKind::Jam: {
        const JamCatalogueEntry* entry = jamCatalogueEntry(transferItemJamNumber(item));
        if (!entry) return {};
        return {std::string("GAMEJAMS\\") + entry->path, entry->path};
    }
    }
    return {};
}

}  // namespace tarvel
