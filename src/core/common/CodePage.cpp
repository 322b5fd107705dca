#include "common/CodePage.h"

#include <array>
#include <cstdint>

namespace tarvel {
namespace {

// Unicode of Windows-1252 bytes 0x80-0x9F; the five bytes that the code page
// leaves undefined map to the C1 control of the same value, as Windows does.
// Every other byte is its own code point (Latin-1).
constexpr std::array<char16_t, 32> kWindows1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 80-87
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  // 88-8F
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 90-97
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,  // 98-9F
};

char32_t windows1252CodePoint(unsigned char c) {
    return (c >= 0x80 && c < 0xA0) ? char32_t(kWindows1252High[c - 0x80]) : char32_t(c);
}

constexpr std::array<std::uint8_t, 256> identityBelow128(std::array<std::uint8_t, 128> high) {
    std::array<std::uint8_t, 256> table{};
    for (int i = 0; i < 128; ++i) table[std::size_t(i)] = std::uint8_t(i);
    for (int i = 0; i < 128; ++i) table[std::size_t(128 + i)] = high[std::size_t(i)];
    return table;
}

// Windows-1252 -> code page 437 for bytes 0x80-0xFF (0x00-0x7F are the same
// in both). A character that 437 holds maps to it exactly; the others take a
// best fit the way the Windows conversion does: the letter without its accent
// (À -> A, Š -> S, ý -> y), typographic quotes and dashes to their ASCII forms,
// © -> c, ® -> R, ™ -> T, superscripts to digits, € -> C. Where no sensible
// fit exists (the five undefined bytes, ¤ ¾ Þ þ) the result is '?'. Fits that
// would land on 437's glyphs in the control range (• § ¶) use a printable
// neighbour instead (• -> ∙, § -> S, ¶ -> P), since names must not carry
// control bytes into the game's files.
constexpr std::array<std::uint8_t, 256> kWindowsToOem = identityBelow128({
    'C',  '?',  ',',  0x9F, '"',  '.',  '+',  '+',  '^',  '%',  'S',  '<',  'O',  '?',  'Z',  '?',   // 80
    '?',  '`',  '\'', '"',  '"',  0xF9, '-',  '-',  '~',  'T',  's',  '>',  'o',  '?',  'z',  'Y',   // 90
    0xFF, 0xAD, 0x9B, 0x9C, '?',  0x9D, '|',  'S',  '"',  'c',  0xA6, 0xAE, 0xAA, '-',  'R',  '-',   // A0
    0xF8, 0xF1, 0xFD, '3',  '\'', 0xE6, 'P',  0xFA, ',',  '1',  0xA7, 0xAF, 0xAC, 0xAB, '?',  0xA8,  // B0
    'A',  'A',  'A',  'A',  0x8E, 0x8F, 0x92, 0x80, 'E',  0x90, 'E',  'E',  'I',  'I',  'I',  'I',   // C0
    'D',  0xA5, 'O',  'O',  'O',  'O',  0x99, 'x',  'O',  'U',  'U',  'U',  0x9A, 'Y',  '?',  0xE1,  // D0
    0x85, 0xA0, 0x83, 'a',  0x84, 0x86, 0x91, 0x87, 0x8A, 0x82, 0x88, 0x89, 0x8D, 0xA1, 0x8C, 0x8B,  // E0
    'd',  0xA4, 0x95, 0xA2, 0x93, 'o',  0x94, 0xF6, 'o',  0x97, 0xA3, 0x96, 0x81, 'y',  '?',  0x98,  // F0
});

// Code page 437 -> Windows-1252 for bytes 0x80-0xFF. Letters and signs that
// 1252 holds map exactly; Greek letters and mathematical signs take the Latin
// letter or ASCII sign they look like (α -> a, Σ -> S, ≥ -> >, √ -> v, ∞ -> 8);
// the box-drawing characters become ASCII line art: single and double
// horizontals '-' and '=', verticals '|', corners, tees and crosses '+', the
// shades and blocks '#'.
constexpr std::array<std::uint8_t, 256> kOemToWindows = identityBelow128({
    0xC7, 0xFC, 0xE9, 0xE2, 0xE4, 0xE0, 0xE5, 0xE7, 0xEA, 0xEB, 0xE8, 0xEF, 0xEE, 0xEC, 0xC4, 0xC5,  // 80
    0xC9, 0xE6, 0xC6, 0xF4, 0xF6, 0xF2, 0xFB, 0xF9, 0xFF, 0xD6, 0xDC, 0xA2, 0xA3, 0xA5, 'P',  0x83,  // 90
    0xE1, 0xED, 0xF3, 0xFA, 0xF1, 0xD1, 0xAA, 0xBA, 0xBF, 0xAC, 0xAC, 0xBD, 0xBC, 0xA1, 0xAB, 0xBB,  // A0
    '#',  '#',  '#',  '|',  '+',  '+',  '+',  '+',  '+',  '+',  '|',  '+',  '+',  '+',  '+',  '+',   // B0
    '+',  '+',  '+',  '+',  '-',  '+',  '+',  '+',  '+',  '+',  '+',  '+',  '+',  '=',  '+',  '+',   // C0
    '+',  '+',  '+',  '+',  '+',  '+',  '+',  '+',  '+',  '+',  '+',  '#',  '#',  '#',  '#',  '#',   // D0
    'a',  0xDF, 'G',  'p',  'S',  's',  0xB5, 't',  'F',  'T',  'O',  'd',  '8',  'f',  'e',  'n',   // E0
    '=',  0xB1, '>',  '<',  '(',  ')',  0xF7, '~',  0xB0, 0xB7, 0xB7, 'v',  'n',  0xB2, '#',  0xA0,  // F0
});

void appendUtf8(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out += char(cp);
    } else if (cp < 0x800) {
        out += char(0xC0 | (cp >> 6));
        out += char(0x80 | (cp & 0x3F));
    } else {
        out += char(0xE0 | (cp >> 12));
        out += char(0x80 | ((cp >> 6) & 0x3F));
        out += char(0x80 | (cp & 0x3F));
    }
}

// Decodes one UTF-8 sequence at `i`; a malformed one yields nullopt-like
// 0xFFFFFFFF and consumes one byte.
char32_t decodeUtf8(std::string_view s, std::size_t& i) {
    constexpr char32_t kBad = 0xFFFFFFFF;
    auto b0 = static_cast<unsigned char>(s[i++]);
    if (b0 < 0x80) return b0;
    int extra = 0;
    char32_t cp = 0;
    char32_t minimum = 0;
    if ((b0 & 0xE0) == 0xC0) extra = 1, cp = b0 & 0x1F, minimum = 0x80;
    else if ((b0 & 0xF0) == 0xE0) extra = 2, cp = b0 & 0x0F, minimum = 0x800;
    else if ((b0 & 0xF8) == 0xF0) extra = 3, cp = b0 & 0x07, minimum = 0x10000;
    else return kBad;
    if (s.size() - i < std::size_t(extra)) return kBad;
    for (int k = 0; k < extra; ++k) {
        auto b = static_cast<unsigned char>(s[i + std::size_t(k)]);
        if ((b & 0xC0) != 0x80) return kBad;
        cp = (cp << 6) | (b & 0x3F);
    }
    i += std::size_t(extra);
    if (cp < minimum || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return kBad;
    return cp;
}

// The Windows-1252 byte for a code point, or -1.
int windows1252Byte(char32_t cp) {
    if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) return int(cp);
    for (std::size_t k = 0; k < kWindows1252High.size(); ++k)
        if (char32_t(kWindows1252High[k]) == cp) return int(0x80 + k);
    return -1;
}

}  // namespace

std::string windows1252ToUtf8(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) appendUtf8(out, windows1252CodePoint(static_cast<unsigned char>(c)));
    return out;
}

std::string utf8ToWindows1252(std::string_view text, bool* lossy) {
    std::string out;
    out.reserve(text.size());
    bool lost = false;
    for (std::size_t i = 0; i < text.size();) {
        int b = windows1252Byte(decodeUtf8(text, i));
        if (b < 0) {
            lost = true;
            out += '?';
        } else {
            out += char(b);
        }
    }
    if (lossy) *lossy = lost;
    return out;
}

unsigned char windowsToOemChar(unsigned char c) { return kWindowsToOem[c]; }
unsigned char oemToWindowsChar(unsigned char c) { return kOemToWindows[c]; }

std::string windowsToOem(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = char(windowsToOemChar(static_cast<unsigned char>(c)));
    return out;
}

std::string oemToWindows(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = char(oemToWindowsChar(static_cast<unsigned char>(c)));
    return out;
}

}  // namespace tarvel
