#include "graphics/Helmets.h"

#include "graphics/BuiltinPictures.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace tarvel {
namespace fs = std::filesystem;

namespace {

bool isSheet(const BitmapBuffer& b) {
    return b.valid() && b.width == kHelmetSheetBitmapWidth && b.height == kHelmetSheetBitmapHeight;
}
bool isSingle(const BitmapBuffer& b) { return b.valid() && b.width == kHelmetWidth && b.height == kHelmetHeight; }
bool isHelmetNumber(int n) { return n >= 0 && n < kHelmetCount; }

std::uint8_t* sheetRow(BitmapBuffer& sheet, int n, int row) {
    return sheet.row(helmetBottomRow(n) + row) + helmetLeft(n);
}
const std::uint8_t* sheetRow(const BitmapBuffer& sheet, int n, int row) {
    return sheet.row(helmetBottomRow(n) + row) + helmetLeft(n);
}

// The three colourings of the default sheet and the helmets that wear them.
constexpr std::array<int, 9> kFirstColouring{0, 3, 6, 9, 13, 16, 19, 22, 26};
constexpr std::array<int, 9> kSecondColouring{2, 5, 8, 11, 12, 15, 18, 21, 25};
constexpr std::array<int, 10> kThirdColouring{1, 4, 7, 10, 14, 17, 20, 23, 24, 27};

struct Recolour {
    std::uint8_t from, to;
};
constexpr std::array<Recolour, 2> kSecondRecolour{{{61, 221}, {52, 217}}};
constexpr std::array<Recolour, 2> kThirdRecolour{{{221, 30}, {217, 25}}};

// Runs from the last pixel byte back to the second: the first pixel byte is
// never recoloured.
template <std::size_t N>
void recolour(BitmapBuffer& single, const std::array<Recolour, N>& changes) {
    std::uint8_t* p = single.pixels();
    for (std::size_t i = single.pixelBytes() - 1; i >= 1; --i)
        for (const Recolour& c : changes)
            if (p[i] == c.from) {
                p[i] = c.to;
                break;
            }
}

// The numbers are helmet numbers and both pictures have their sizes, so no
// store can fail.
template <std::size_t N>
void storeAll(BitmapBuffer& sheet, const std::array<int, N>& numbers, const BitmapBuffer& single) {
    for (int n : numbers) (void)StoreHelmet(sheet, n, single);
}

}  // namespace

BitmapBuffer blankHelmetSheet() { return BitmapBuffer(kHelmetSheetBitmapWidth, kHelmetSheetBitmapHeight); }
BitmapBuffer blankSingleHelmet() { return BitmapBuffer(kHelmetWidth, kHelmetHeight); }

Status ExtractHelmet(const BitmapBuffer& sheet, int n, BitmapBuffer& single) {
    if (!isSheet(sheet) || !isSingle(single) || !isHelmetNumber(n)) return fail(MessageId::ExportFailed);
    for (int row = 0; row < kHelmetHeight; ++row) std::memcpy(single.row(row), sheetRow(sheet, n, row), kHelmetWidth);
    return {};
}

Status StoreHelmet(BitmapBuffer& sheet, int n, const BitmapBuffer& single) {
    if (!isSheet(sheet) || !isSingle(single) || !isHelmetNumber(n)) return fail(MessageId::ImportFailed);
    for (int row = 0; row < kHelmetHeight; ++row) std::memcpy(sheetRow(sheet, n, row), single.row(row), kHelmetWidth);
    return {};
}

void SwapHelmets(BitmapBuffer& sheet, int a, int b) {
    if (a == b || !isSheet(sheet) || !isHelmetNumber(a) || !isHelmetNumber(b)) return;
    for (int row = 0; row < kHelmetHeight; ++row)
        std::swap_ranges(sheetRow(sheet, a, row), sheetRow(sheet, a, row) + kHelmetWidth, sheetRow(sheet, b, row));
}

Result<BitmapBuffer> LoadHelmetSheet(const fs::path& path) {
    return LoadBitmap8(path, kHelmetSheetBitmapWidth, kHelmetSheetBitmapHeight);
}
Status SaveHelmetSheet(const fs::path& path, const BitmapBuffer& sheet, const GraphicsOptions& options) {
    if (!isSheet(sheet)) return fail(MessageId::CouldntSaveBitmap);
    return SaveBitmap8(path, sheet, options);
}
Result<BitmapBuffer> LoadSingleHelmet(const fs::path& path) { return LoadBitmap8(path, kHelmetWidth, kHelmetHeight); }
Status SaveSingleHelmet(const fs::path& path, const BitmapBuffer& single, const GraphicsOptions& options) {
    if (!isSingle(single)) return fail(MessageId::CouldntSaveBitmap);
    return SaveBitmap8(path, single, options);
}

BitmapBuffer builtinSingleHelmet() {
    BitmapBuffer single = blankSingleHelmet();
    std::memcpy(single.pixels(), kBuiltinHelmetPixels, single.pixelBytes());
    return single;
}

BitmapBuffer BuildDefaultHelmetSheet() {
    BitmapBuffer single = builtinSingleHelmet();
    BitmapBuffer sheet = blankHelmetSheet();
    storeAll(sheet, kFirstColouring, single);
    recolour(single, kSecondRecolour);
    storeAll(sheet, kSecondColouring, single);
    recolour(single, kThirdRecolour);
    storeAll(sheet, kThirdColouring, single);
    return sheet;
}

}  // namespace tarvel
