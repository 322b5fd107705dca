#include "carset/AsciiFold.h"

namespace tarvel {

namespace {

struct FoldRange {
    std::uint8_t first;
    std::uint8_t last;
    char to;
};

// Every byte not listed maps to itself.
constexpr FoldRange kFoldRanges[] = {
    {131, 131, 'f'}, {138, 138, 'S'}, {140, 140, 'O'}, {154, 154, 's'}, {156, 156, 'o'}, {159, 159, 'Y'},
    {162, 162, 'c'}, {165, 165, 'Y'}, {169, 169, 'c'}, {170, 170, 'a'}, {174, 174, 'R'}, {181, 181, 'u'},
    {192, 198, 'A'}, {199, 199, 'C'}, {200, 203, 'E'}, {204, 207, 'I'}, {208, 208, 'D'}, {209, 209, 'N'},
    {210, 214, 'O'}, {215, 215, 'x'}, {216, 216, 'O'}, {217, 220, 'U'}, {221, 221, 'Y'}, {222, 222, 'P'},
    {223, 223, 'B'}, {224, 230, 'a'}, {231, 231, 'c'}, {232, 235, 'e'}, {236, 239, 'i'}, {240, 240, 'o'},
    {241, 241, 'n'}, {242, 246, 'o'}, {248, 248, 'o'}, {249, 252, 'u'}, {253, 253, 'y'}, {254, 254, 'p'},
    {255, 255, 'y'},
};

constexpr std::array<std::uint8_t, 256> buildFoldTable() {
    std::array<std::uint8_t, 256> table{};
    for (int i = 0; i < 256; ++i) table[i] = std::uint8_t(i);
    for (const FoldRange& r : kFoldRanges)
        for (int c = r.first; c <= r.last; ++c) table[c] = std::uint8_t(r.to);
    return table;
}

constexpr std::array<std::uint8_t, 256> kFoldTable = buildFoldTable();

}  // namespace

const std::array<std::uint8_t, 256>& asciiFoldTable() { return kFoldTable; }

void foldNameField(const char* field, std::uint8_t* out, std::size_t size) {
    std::size_t i = 0;
    for (; i < size && field[i] != '\0'; ++i) out[i] = kFoldTable[static_cast<std::uint8_t>(field[i])];
    for (; i < size; ++i) out[i] = 0;
}

}  // namespace tarvel
