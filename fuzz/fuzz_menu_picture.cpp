// Menu picture file: arbitrary bytes as F1PCSVGA.BIN; every picture of the
// index decoded, and a helmet replaced in memory.
#include "graphics/MenuHelmet.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::span<const std::uint8_t> file(data, size);
    // Short inputs are treated as the packets of one 104 x 104 picture.
    if (size < tarvel::kMenuIndexOffset) {
        auto pixels = tarvel::decodeMenuPackets(file, 104, 104);
        if (pixels && pixels->size() != 104u * 104u) __builtin_trap();
        auto odd = tarvel::decodeMenuPackets(file, 37, 9);
        if (odd && odd->size() != 40u * 9u) __builtin_trap();
        return 0;
    }
    // Failures are expected here: only crashes and sanitizer reports count.
    for (int i = 0; i < tarvel::kMenuIndexEntries; ++i) (void)tarvel::decodeMenuPicture(file, i);
    tarvel::BitmapBuffer picture(104, 104);
    for (int r = 0; r < 104; ++r)
        for (int c = 0; c < 104; ++c) picture.row(r)[c] = data[std::size_t(r * 104 + c) % size];
    tarvel::Bytes copy(data, data + size);
    const tarvel::Bytes coded = tarvel::codeMenuHelmet(picture);
    const int slot = int(size % 28);
    if (tarvel::replaceMenuPicture(copy, slot, coded)) {
        // A replacement that succeeded left an index entry that names the new data.
        auto entry = tarvel::readMenuIndexEntry(copy, slot);
        if (!entry || entry->length != coded.size() || std::uint64_t(entry->offset) + entry->length > copy.size())
            __builtin_trap();
    } else if (copy != tarvel::Bytes(data, data + size)) {
        __builtin_trap();   // a refused replacement changes nothing
    }
    return 0;
}
