#include "common/CodePage.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>

namespace tarvel {
namespace {

// Code page 437's upper half as Unicode code points, written out independently
// of the conversion tables under test.
constexpr char32_t kCp437[128] = {
    0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x00E0, 0x00E5, 0x00E7, 0x00EA, 0x00EB, 0x00E8, 0x00EF, 0x00EE, 0x00EC,
    0x00C4, 0x00C5, 0x00C9, 0x00E6, 0x00C6, 0x00F4, 0x00F6, 0x00F2, 0x00FB, 0x00F9, 0x00FF, 0x00D6, 0x00DC, 0x00A2,
    0x00A3, 0x00A5, 0x20A7, 0x0192, 0x00E1, 0x00ED, 0x00F3, 0x00FA, 0x00F1, 0x00D1, 0x00AA, 0x00BA, 0x00BF, 0x2310,
    0x00AC, 0x00BD, 0x00BC, 0x00A1, 0x00AB, 0x00BB, 0x2591, 0x2592, 0x2593, 0x2502, 0x2524, 0x2561, 0x2562, 0x2556,
    0x2555, 0x2563, 0x2551, 0x2557, 0x255D, 0x255C, 0x255B, 0x2510, 0x2514, 0x2534, 0x252C, 0x251C, 0x2500, 0x253C,
    0x255E, 0x255F, 0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550, 0x256C, 0x2567, 0x2568, 0x2564, 0x2565, 0x2559,
    0x2558, 0x2552, 0x2553, 0x256B, 0x256A, 0x2518, 0x250C, 0x2588, 0x2584, 0x258C, 0x2590, 0x2580, 0x03B1, 0x00DF,
    0x0393, 0x03C0, 0x03A3, 0x03C3, 0x00B5, 0x03C4, 0x03A6, 0x0398, 0x03A9, 0x03B4, 0x221E, 0x03C6, 0x03B5, 0x2229,
    0x2261, 0x00B1, 0x2265, 0x2264, 0x2320, 0x2321, 0x00F7, 0x2248, 0x00B0, 0x2219, 0x00B7, 0x221A, 0x207F, 0x00B2,
    0x25A0, 0x00A0,
};

// Decodes a UTF-8 string that holds exactly one character.
char32_t singleCodePoint(const std::string& s) {
    auto b = [&](std::size_t i) { return char32_t(static_cast<unsigned char>(s.at(i))); };
    if (s.size() == 1) return b(0);
    if (s.size() == 2) return ((b(0) & 0x1F) << 6) | (b(1) & 0x3F);
    if (s.size() == 3) return ((b(0) & 0x0F) << 12) | ((b(1) & 0x3F) << 6) | (b(2) & 0x3F);
    return 0xFFFFFFFF;
}

std::string w(std::initializer_list<unsigned char> bytes) { return std::string(bytes.begin(), bytes.end()); }

// Named conversions, undefined bytes as C1 controls, and every byte back again.
TEST(CodePage, Windows1252ToUtf8AndBack) {
    EXPECT_EQ(windows1252ToUtf8(w({'T', 0xE9, 0xFC, 0xF1, 0x80, 0x8A, 0x9F, 0})), std::string("T\xC3\xA9\xC3\xBC\xC3\xB1\xE2\x82\xAC\xC5\xA0\xC5\xB8") + '\0');
    for (unsigned char c : {0x81, 0x8D, 0x8F, 0x90, 0x9D}) EXPECT_EQ(singleCodePoint(windows1252ToUtf8(w({c}))), c);
    for (int c = 0; c < 256; ++c) {
        std::string one(1, char(c));
        bool lossy = true;
        EXPECT_EQ(utf8ToWindows1252(windows1252ToUtf8(one), &lossy), one) << c;
        EXPECT_FALSE(lossy) << c;
    }
}

// Characters outside Windows-1252 (including the C1 control 0x85, which is not
// byte 0x85) and malformed input: stray continuation, truncated sequence,
// overlong form, surrogate, four-byte form.
TEST(CodePage, Utf8OutsideWindows1252IsReplaced) {
    for (const char* bad : {"\xC4\x80", "\xE6\x97\xA5", "\xC2\x85", "\x80", "\xC3", "\xE2\x82", "\xC0\xAF", "\xED\xA0\x80", "\xF0\x9F\x98\x80"}) {
        bool lossy = false;
        std::string out = utf8ToWindows1252(std::string("A") + bad + "Z", &lossy);
        EXPECT_TRUE(lossy) << bad;
        EXPECT_TRUE(out.size() > 2 && out.front() == 'A' && out.back() == 'Z' && out.find_first_not_of('?', 1) == out.size() - 1) << bad;
    }
    EXPECT_EQ(utf8ToWindows1252("A\xC4\x80Z"), "A?Z");
}

// Every character both code pages hold converts exactly both ways (checked
// against the independent 437 table); the rest best-fit, never onto a 437
// letter that reads differently nor onto a control byte.
TEST(CodePage, WindowsAndOemCharacters) {
    std::map<char32_t, unsigned char> oemOf;
    for (int i = 0; i < 128; ++i) oemOf[kCp437[i]] = static_cast<unsigned char>(128 + i);
    int shared = 0;
    for (int c = 0; c < 256; ++c) {
        const unsigned char o = windowsToOemChar(static_cast<unsigned char>(c));
        if (c < 128) {
            EXPECT_EQ(o, c);
            EXPECT_EQ(oemToWindowsChar(static_cast<unsigned char>(c)), c);
            continue;
        }
        auto found = oemOf.find(singleCodePoint(windows1252ToUtf8(std::string(1, char(c)))));
        EXPECT_GE(o, 0x20) << c;
        if (found == oemOf.end()) {
            EXPECT_TRUE(o < 0x80 || o == 0xF9) << c;
            continue;
        }
        ++shared;
        EXPECT_EQ(o, found->second) << c;
        EXPECT_EQ(oemToWindowsChar(found->second), c) << c;
    }
    EXPECT_EQ(shared, 54);   // ƒ, 18 signs in 0xA0-0xBF, 8 capitals and ß, 25 small letters and ÷
    // é ü ñ ã, then best fits À © Š € “ –.
    EXPECT_EQ(windowsToOem(w({0xE9, 0xFC, 0xF1, 0xE3, 0xC0, 0xA9, 0x8A, 0x80, 0x93, 0x96})), w({0x82, 0x81, 0xA4, 'a', 'A', 'c', 'S', 'C', '"', '-'}));
    EXPECT_EQ(oemToWindows(w({0x82, 0x81, 0xA4})), w({0xE9, 0xFC, 0xF1}));
}

// Towards Windows: box drawing becomes ASCII line art, Greek letters their
// look-alike, and ß stays ß rather than the Greek beta.
TEST(CodePage, BestFitsTowardsWindows) {
    const std::pair<unsigned char, unsigned char> fits[] = {{0xC4, '-'}, {0xB3, '|'}, {0xDA, '+'}, {0xCD, '='}, {0xE0, 'a'}, {0xE1, 0xDF}};
    for (auto [oem, windows] : fits) EXPECT_EQ(oemToWindowsChar(oem), windows) << int(oem);
    for (int c = 0xB3; c <= 0xDA; ++c) {
        unsigned char o = oemToWindowsChar(static_cast<unsigned char>(c));
        EXPECT_TRUE(o == '-' || o == '=' || o == '|' || o == '+') << c;
    }
}

}  // namespace
}  // namespace tarvel
