#pragma once
// The ASCII folding table: Windows-1252 letters with accents and a few symbols
// mapped to plain ASCII so that the game's character set can show a name. The
// car set file stores every name folded and, beside it, unfolded.

#include <array>
#include <cstddef>
#include <cstdint>

namespace tarvel {

const std::array<std::uint8_t, 256>& asciiFoldTable();

inline std::uint8_t asciiFold(std::uint8_t c) { return asciiFoldTable()[c]; }

// Folds a fixed name field up to its terminator into `out` (same size); the
// bytes from the terminator on are written as 0.
void foldNameField(const char* field, std::uint8_t* out, std::size_t size);

}  // namespace tarvel
