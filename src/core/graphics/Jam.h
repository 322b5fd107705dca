#pragma once
// JAM texture files: scrambling, layout, conversion to and from 256-wide
// bitmaps, and in-place patching of the game's files.

#include "common/ByteIO.h"
#include "common/Progress.h"
#include "common/Result.h"
#include "graphics/Bitmap.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace tarvel {

constexpr std::uint32_t kJamScrambleKey = 0xB082F165u;
constexpr std::size_t kJamHeaderSize = 4;
constexpr std::size_t kJamEntrySize = 32;
constexpr int kJamCanvasWidth = 256;
constexpr int kJamStripRows = 32;

// Scrambles or unscrambles a whole file in place (its own inverse).
void JamScramble(std::span<std::uint8_t> data);

struct JamImageEntry {
    int x = 0, y = 0;               // left column, top row
    int width = 0, height = 0;
    std::size_t colourOffset = 0;   // from the end of the entry array
    int colourCount = 0;            // 0: no colour table
};

// The parsed, bounds-checked layout of an unscrambled JAM file.
struct JamLayout {
    int imageCount = 0;
    int canvasHeight = 0;
    std::vector<JamImageEntry> entries;
    std::size_t tablesStart = 0;    // 4 + 32N
    std::size_t canvasStart = 0;    // file size - 256H
};

// Parses the header and entries and checks them against catalogue entry
// `number`; fails on a mismatch or anything lying outside the file.
Result<JamLayout> parseJam(std::span<const std::uint8_t> jam, int number);

// Rebuilds canvas and colour tables of an unscrambled JAM (the template: its
// header, entries and colour-table offsets are kept) from a 256-wide bitmap of
// the canvas height. Resizes `jam` and returns its new size.
Result<std::size_t> BuildJamFromBitmap(Bytes& jam, const BitmapBuffer& bitmap, int number,
                                       const GraphicsOptions& options, Progress* progress = nullptr);

// Converts an unscrambled JAM file to a 256-wide bitmap of its canvas.
Result<BitmapBuffer> convertJamToBitmap(std::span<const std::uint8_t> jam, int number,
                                        const GraphicsOptions& options, Progress* progress = nullptr);

// The game's file for catalogue `number`, found case-insensitively below the
// game folder's GAMEJAMS.
std::filesystem::path gameJamPath(const std::filesystem::path& gameFolder, int number);

// Reads the game's file, rebuilds it from the bitmap and writes it back in
// place. "Failed to Patch JAM File." on any failure.
Status PatchGameJam(const std::filesystem::path& gameFolder, const BitmapBuffer& bitmap, int number,
                    const GraphicsOptions& options, Progress* progress = nullptr);
// As PatchGameJam without the write-back: the rebuilt file, scrambled.
Result<Bytes> BuildGameJam(const std::filesystem::path& gameFolder, const BitmapBuffer& bitmap, int number,
                          const GraphicsOptions& options, Progress* progress = nullptr);
// Reads the game's file and converts it to the bitmap in memory.
Result<BitmapBuffer> readGameJamBitmap(const std::filesystem::path& gameFolder, int number,
                                       const GraphicsOptions& options, Progress* progress = nullptr);
// Reads the game's file and writes it as a bitmap file. "Failed to Convert JAM File.".
Status ExportJamToBitmap(const std::filesystem::path& gameFolder, int number, const std::filesystem::path& bitmapPath,
                         const GraphicsOptions& options, Progress* progress = nullptr);

}  // namespace tarvel
