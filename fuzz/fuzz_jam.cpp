// JAM reading: arbitrary bytes as a scrambled game file of the catalogue
// number chosen by the first byte; unscrambled, converted to a bitmap and, when
// that works, rebuilt from it.
#include "graphics/Jam.h"
#include "graphics/JamCatalogue.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const int number = data[0] % tarvel::kJamCatalogueSize;
    tarvel::Bytes jam(data + 1, data + size);
    tarvel::JamScramble(jam);
    // Make the header match the catalogue often enough to get past it.
    if (jam.size() >= 4 && (data[0] & 0x80)) {
        tarvel::storeU16(&jam[0], std::uint16_t(tarvel::JamInfo(number).imageCount));
        tarvel::storeU16(&jam[2], std::uint16_t(tarvel::JamInfo(number).canvasHeight));
    }
    tarvel::GraphicsOptions options;
    options.clearJam = (size & 1) != 0;
    options.fixGreen = (size & 2) != 0;
    options.fixStrip = (size & 4) != 0;
    auto bitmap = tarvel::convertJamToBitmap(jam, number, options);
    if (bitmap) {
        tarvel::Bytes rebuilt = jam;
        auto newSize = tarvel::BuildJamFromBitmap(rebuilt, *bitmap, number, options);
        if (newSize && *newSize != rebuilt.size()) __builtin_trap();
    }
    return 0;
}
