#include "graphics/JamCatalogue.h"

namespace tarvel {

const JamCatalogueEntry* jamCatalogueEntry(int number) {
    if (number < 0 || number >= kJamCatalogueSize) return nullptr;
    return &kJamCatalogue[static_cast<std::size_t>(number)];
}

JamFileInfo JamInfo(int number) {
    const JamCatalogueEntry* entry = jamCatalogueEntry(number);
    if (!entry) return {};
    return JamFileInfo{entry->path, entry->height, entry->images, entry->maxPalette};
}

}  // namespace tarvel
