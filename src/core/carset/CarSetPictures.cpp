#include "carset/CarSetPictures.h"

namespace tarvel {

void fillDefaultPictures(CarSet& set) {
    for (auto& livery : set.liveries) livery.assign(kLiveryPixels, 0);
    set.helmetSheet.assign(kHelmetSheetPixels, 0);
}

}  // namespace tarvel
