#pragma once
// The helmet sheet (the 28 helmets of HELMETS1.JAM on one 256 x 180 bitmap)
// and single helmets of 74 x 15.

#include "common/Result.h"
#include "graphics/Bitmap.h"

#include <filesystem>

namespace tarvel {

constexpr int kHelmetCount = 28;
constexpr int kHelmetWidth = 74;
constexpr int kHelmetHeight = 15;
constexpr int kHelmetsPerColumn = 12;
constexpr int kHelmetSheetBitmapWidth = 256;
constexpr int kHelmetSheetBitmapHeight = 180;

// Left column and bottom bitmap row (counted from the bottom) of helmet n.
constexpr int helmetLeft(int n) { return kHelmetWidth * (n / kHelmetsPerColumn); }
constexpr int helmetBottomRow(int n) { return kHelmetHeight * (kHelmetsPerColumn - 1 - n % kHelmetsPerColumn); }

// A blank sheet / single helmet with the game palette.
BitmapBuffer blankHelmetSheet();
BitmapBuffer blankSingleHelmet();

// Copy helmet n (0..27) between the sheet and a single helmet. A number
// outside 0..27 or a buffer of the wrong size changes nothing and fails:
// ExtractHelmet with "Export Failed.", StoreHelmet with "Import Failed.".
Status ExtractHelmet(const BitmapBuffer& sheet, int n, BitmapBuffer& single);
Status StoreHelmet(BitmapBuffer& sheet, int n, const BitmapBuffer& single);
// Exchanges two helmets' rectangles; nothing happens when a == b.
void SwapHelmets(BitmapBuffer& sheet, int a, int b);

Result<BitmapBuffer> LoadHelmetSheet(const std::filesystem::path& path);
Status SaveHelmetSheet(const std::filesystem::path& path, const BitmapBuffer& sheet, const GraphicsOptions& options);
Result<BitmapBuffer> LoadSingleHelmet(const std::filesystem::path& path);
Status SaveSingleHelmet(const std::filesystem::path& path, const BitmapBuffer& single, const GraphicsOptions& options);

// The built-in single helmet (74 x 15).
BitmapBuffer builtinSingleHelmet();
// The default sheet: three colourings of the built-in helmet.
BitmapBuffer BuildDefaultHelmetSheet();

}  // namespace tarvel
