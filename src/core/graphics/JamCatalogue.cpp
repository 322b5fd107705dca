#include "graphics/JamCatalogue.h"

namespace tarvel {

const JamCatalogueEntry* jamCatalogueEntry(int number) {
    if (number < 0 || number >= kJamCatalogueSize) return nullptr;
    return &kJamCatalogue[static_cast<std::size_t>(number)];
}

int JamInfo(int number, int what) {
    const JamCatalogueEntry* entry = jamCatalogueEntry(number);
    if (!entry) return 0;
    switch (what) {
    case 0: return entry->height;
    case 1: return entry->images;
    case 2: return entry->maxPalette;
    default: return 0;
    }
}

}  // namespace tarvel
