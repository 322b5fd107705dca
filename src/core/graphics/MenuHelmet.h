#pragma once
// Driver menu helmets: the run-length coded pictures of the game's menu
// graphics file BITMAPS\F1PCSVGA.BIN.

#include "common/ByteIO.h"
#include "common/Progress.h"
#include "common/Result.h"
#include "graphics/Bitmap.h"

#include <filesystem>
#include <span>

namespace tarvel {

constexpr std::size_t kMenuIndexOffset = 4576;
constexpr int kMenuIndexEntries = 42;
constexpr std::size_t kMenuIndexEntrySize = 14;
constexpr int kMenuHelmetCount = 28;        // slots 0-27
constexpr int kMenuHelmetSide = 104;        // 104 x 104 pixels
constexpr int kMenuHelmetFirstNumber = 326; // the game's number of slot 0
constexpr std::size_t kMenuHelmetMaxCoded = 2u * kMenuHelmetSide * kMenuHelmetSide;
// The menus are a 640 x 480 screen: no picture of the file is larger.
constexpr int kMenuPictureMaxWidth = 640;
constexpr int kMenuPictureMaxHeight = 480;

struct MenuPictureEntry {
    std::uint32_t offset = 0;
    std::uint32_t length = 0;
    std::uint16_t width = 0;
    std::uint16_t height = 0;
};

std::filesystem::path menuFilePath(const std::filesystem::path& gameFolder);

// Index entry `index` (0..41) of the file's bytes.
Result<MenuPictureEntry> readMenuIndexEntry(std::span<const std::uint8_t> file, int index);

// Decodes packets into `height` rows of the padded width, top row first.
// Fails when the packets run past the coded data or past the picture.
Result<Bytes> decodeMenuPackets(std::span<const std::uint8_t> coded, int width, int height);
// Picture `index` of the file's bytes as a bitmap in the menu palette.
Result<BitmapBuffer> decodeMenuPicture(std::span<const std::uint8_t> file, int index);

// Codes a 104 x 104 bitmap, top picture row first, each row in runs of at most
// 128 equal pixels emitted as (257 - run) mod 256 and the pixel.
Bytes codeMenuHelmet(const BitmapBuffer& picture);
Bytes codeMenuRow(std::span<const std::uint8_t> row);

// Replaces the coded data of slot 0..27 in the file's bytes, moving the data
// after it and shifting the later index offsets.
Status replaceMenuPicture(Bytes& file, int slot, std::span<const std::uint8_t> coded);

// Reads slot's picture from the game's file and writes it as a bitmap file.
// "Failed to Import Menu Helmet." on any failure.
Status ImportMenuHelmetFromGame(const std::filesystem::path& gameFolder, int slot,
                                const std::filesystem::path& bitmapPath, Progress* progress = nullptr);
Result<BitmapBuffer> readMenuHelmet(const std::filesystem::path& gameFolder, int slot, Progress* progress = nullptr);
// Codes the picture and replaces slot's picture in the game's file in place,
// as replaceMenuPicture does in memory. "Failed to Export Menu Helmet." on any
// failure.
Status ExportMenuHelmetToGame(const std::filesystem::path& gameFolder, int slot, const BitmapBuffer& picture,
                              Progress* progress = nullptr);

}  // namespace tarvel
