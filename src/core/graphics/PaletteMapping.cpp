#include "graphics/PaletteMapping.h"

#include "graphics/Palette.h"

#include <algorithm>
#include <array>
#include <vector>

namespace tarvel {
namespace fs = std::filesystem;

namespace {

constexpr std::uint8_t kOpaqueAlpha = 128;
constexpr std::uint8_t kTransparentIndex = 0;

struct IndexRange {
    int first;
    int last;
};
// Game palette entries the mapping leaves alone (see the header).
constexpr IndexRange kGameReserved[] = {{0, 0}, {kAlternativeGreensFirst, kAlternativeGreensFirst + kAlternativeGreensCount - 1},
                                        {240, 255}};

// The allowed indices in ascending order, so that the first of equally near
// colours is the lower index.
struct Choices {
    std::array<std::uint8_t, 256> index{};
    int count = 0;
};

Choices choicesFor(PicturePalette palette) {
    Choices choices;
    for (int i = 0; i < 256; ++i)
        if (mappingMayChoose(palette, i)) choices.index[std::size_t(choices.count++)] = std::uint8_t(i);
    return choices;
}

const Choices& choices(PicturePalette palette) {
    static const Choices game = choicesFor(PicturePalette::Game);
    static const Choices menu = choicesFor(PicturePalette::Menu);
    return palette == PicturePalette::Game ? game : menu;
}

int component(std::uint32_t rgb, int channel) { return int(rgb >> (16 - 8 * channel)) & 0xFF; }

// Transparent pixels, and in the game palette those of exactly its
// transparent colour (as pictures exported from the game mark them), take 0.
bool takesTransparentIndex(PicturePalette palette, const std::uint8_t* p) {
    return p[3] < kOpaqueAlpha || (palette == PicturePalette::Game && p[0] == kTransparentRed &&
                                   p[1] == kTransparentGreen && p[2] == kTransparentBlue);
}

// Accumulated error in sixteenths, rounded to whole steps.
int sixteenths(int error) { return (error >= 0 ? error + 8 : error - 8) / 16; }

}  // namespace

std::span<const std::uint32_t, 256> paletteColours(PicturePalette palette) {
    return palette == PicturePalette::Game ? std::span<const std::uint32_t, 256>(GamePalette)
                                           : std::span<const std::uint32_t, 256>(MenuPalette);
}

std::string_view paletteName(PicturePalette palette) { return palette == PicturePalette::Game ? "game" : "menu"; }

bool mappingMayChoose(PicturePalette palette, int index) {
    if (index < 0 || index > 255) return false;
    if (palette == PicturePalette::Menu) return true;
    return std::none_of(std::begin(kGameReserved), std::end(kGameReserved),
                        [&](const IndexRange& r) { return index >= r.first && index <= r.last; });
}

std::uint8_t nearestColour(PicturePalette palette, std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    const auto colours = paletteColours(palette);
    const Choices& allowed = choices(palette);
    std::uint8_t best = allowed.index[0];
    int bestDistance = 1 << 30;
    for (int k = 0; k < allowed.count; ++k) {
        const std::uint32_t c = colours[allowed.index[std::size_t(k)]];
        const int dr = red - component(c, 0), dg = green - component(c, 1), db = blue - component(c, 2);
        const int distance = dr * dr + dg * dg + db * db;
        if (distance < bestDistance) {
            bestDistance = distance;
            best = allowed.index[std::size_t(k)];
        }
    }
    return best;
}

BitmapBuffer mapToPalette(const RgbaPicture& picture, PicturePalette palette, bool dither) {
    BitmapBuffer out(picture.width, picture.height);
    if (!out.valid() || picture.rgba.size() != 4 * std::size_t(picture.width) * std::size_t(picture.height)) return {};
    const auto colours = paletteColours(palette);
    setBitmapPalette(out, colours);
    const int width = picture.width;
    // Error owed to the pixels of this row and the next, per channel, with
    // one pixel of margin at each end.
    std::vector<int> ahead(3 * std::size_t(width + 2)), below(ahead.size());
    auto at = [](std::vector<int>& row, int x, int channel) -> int& { return row[3 * std::size_t(x + 1) + std::size_t(channel)]; };
    for (int y = 0; y < picture.height; ++y) {
        const int step = dither && y % 2 == 1 ? -1 : 1;
        std::uint8_t* row = out.topRow(y);
        for (int i = 0; i < width; ++i) {
            const int x = step > 0 ? i : width - 1 - i;
            const std::uint8_t* p = picture.at(x, y);
            if (takesTransparentIndex(palette, p)) {
                row[x] = kTransparentIndex;
                continue;
            }
            if (!dither) {
                row[x] = nearestColour(palette, p[0], p[1], p[2]);
                continue;
            }
            int wanted[3];
            for (int c = 0; c < 3; ++c) wanted[c] = std::clamp(p[c] + sixteenths(at(ahead, x, c)), 0, 255);
            row[x] = nearestColour(palette, std::uint8_t(wanted[0]), std::uint8_t(wanted[1]), std::uint8_t(wanted[2]));
            for (int c = 0; c < 3; ++c) {
                const int error = wanted[c] - component(colours[row[x]], c);
                at(ahead, x + step, c) += 7 * error;
                at(below, x - step, c) += 3 * error;
                at(below, x, c) += 5 * error;
                at(below, x + step, c) += error;
            }
        }
        std::swap(ahead, below);
        std::fill(below.begin(), below.end(), 0);
    }
    return out;
}

Result<BitmapBuffer> LoadPictureForGame(const fs::path& path, int width, int height, const RemapOptions& options) {
    const std::string inPalette = " in the " + std::string(paletteName(options.palette)) + " palette";
    if (!options.remap) {
        const PictureProbe probe = probePictureFile(path);
        if (!isTrueColour(probe)) return LoadBitmap8(path, width, height, options.palette == PicturePalette::Game);
        std::string reason = probe.format == PictureFormat::Png
                                 ? "a PNG picture; Tarvel needs 8-bit BMP pictures" + inPalette
                                 : depthReason(probe.bitsPerPixel, "8-bit pictures" + inPalette);
        if (!options.hint.empty()) reason += "; " + options.hint;
        return fail(namedRefusal(path, refusalMessage(std::move(reason))));
    }
    auto picture = LoadRgbaPicture(path, width, height);
    if (!picture) return fail(picture.error());
    return mapToPalette(*picture, options.palette, options.dither);
}

}  // namespace tarvel
