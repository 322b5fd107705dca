#pragma once
// Mapping the colours of a picture to a fixed palette (the game palette, or
// the menu palette of the driver menu helmets), and the one loader of
// pictures for the game that every import goes through.
//
// Each opaque pixel takes the nearest allowed palette colour by plain squared
// RGB distance, ties to the lower index; a pixel with alpha below 128 takes
// index 0. In the game palette the mapping chooses only 1-213 and 234-239
// (0 is the transparent colour; 214-233 change with the GP2Palette setting and
// receive FixGreen's moved greens; 240-255 are the palette's reserved top);
// index 0 goes to transparent pixels and to those of exactly the transparent
// colour, which is how pictures exported from the game mark transparency.
//
// Dithering is Floyd-Steinberg error diffusion (7/16 ahead, 3/16, 5/16, 1/16
// on the next row), serpentine: even rows run left to right, odd rows right
// to left. Error is not carried into or out of transparent pixels.

#include "common/Result.h"
#include "graphics/Bitmap.h"
#include "graphics/PictureFile.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace tarvel {

enum class PicturePalette { Game, Menu };

std::span<const std::uint32_t, 256> paletteColours(PicturePalette palette);
std::string_view paletteName(PicturePalette palette);   // "game", "menu"
// Whether the mapping may give an opaque pixel this index.
bool mappingMayChoose(PicturePalette palette, int index);
// The nearest allowed index for a colour.
std::uint8_t nearestColour(PicturePalette palette, std::uint8_t red, std::uint8_t green, std::uint8_t blue);

// The picture as an 8-bit bitmap of the same size whose palette is `palette`.
BitmapBuffer mapToPalette(const RgbaPicture& picture, PicturePalette palette, bool dither);

struct RemapOptions {
    bool remap = false;     // map the colours of every picture, 8-bit ones too
    bool dither = false;
    PicturePalette palette = PicturePalette::Game;
    // Said after the reason when a picture needs mapping and `remap` is off,
    // e.g. how to ask for it ("use --remap to ...").
    std::string hint{};
};

// A width x height picture for the game. Without `remap`, an 8-bit bitmap is
// taken by its indices as LoadBitmap8 takes it (the loader's repairs in the
// game palette, the pixels as they are in the menu palette) and a 24/32-bit
// BMP or a PNG is refused, saying why; with `remap` every BMP and PNG the
// picture reader takes is mapped. "Couldn't Load Bitmap." with the file and
// the reason as detail.
Result<BitmapBuffer> LoadPictureForGame(const std::filesystem::path& path, int width, int height,
                                        const RemapOptions& options);

}  // namespace tarvel
