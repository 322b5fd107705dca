#pragma once
// The pictures a car set holds in memory (team liveries, helmet sheet) and
// their exchange with bitmap files and with the game's JAM files.

#include "carset/CarSet.h"
#include "common/Progress.h"
#include "common/Result.h"
#include "graphics/Bitmap.h"

#include <filesystem>

namespace tarvel {

// Fills the 14 liveries with the built-in default livery and the helmet sheet
// with the built-in default sheet.
void fillDefaultPictures(CarSet& set);

// The built-in default livery (256 x 164, game palette).
BitmapBuffer defaultLiveryBitmap();

// The team's livery / the helmet sheet as a bitmap with the game palette, and
// back (pixels only; a buffer of the wrong size is refused).
BitmapBuffer liveryBitmap(const CarSet& set, int team);
BitmapBuffer helmetSheetBitmap(const CarSet& set);
bool setLiveryPixels(CarSet& set, int team, const BitmapBuffer& bitmap);
bool setHelmetSheetPixels(CarSet& set, const BitmapBuffer& bitmap);

// Loads a 256 x 164 bitmap as team 0-13's livery: the team's carBitmap
// becomes status 1 with the file's path. Success means the set changed.
// "Couldn't Load Bitmap." leaves the set as it was.
Status loadTeamLivery(CarSet& set, int team, const std::filesystem::path& path);
// The same for a livery already loaded from `path` (mapped to the game palette, say).
Status takeTeamLivery(CarSet& set, int team, const BitmapBuffer& livery, const std::filesystem::path& path);
Status saveTeamLivery(const CarSet& set, int team, const std::filesystem::path& path, const GraphicsOptions& options);

// Converts team 0-13's JAM file of the game (catalogue number = team) to the
// working folder's JAM%.3d.BMP and loads that as the team's livery (status 1
// with the working file's path). "Failed to Convert JAM File.".
Status importTeamCarFromGame(CarSet& set, int team, const std::filesystem::path& gameFolder,
                             const std::filesystem::path& workingFolder, const GraphicsOptions& options,
                             Progress* progress = nullptr);
// Rebuilds the game's JAM file of team 0-13 from its livery. "Failed to Patch JAM File.".
Status exportTeamCarToGame(const CarSet& set, int team, const std::filesystem::path& gameFolder,
                           const GraphicsOptions& options, Progress* progress = nullptr);

// The helmet sheet from and into HELMETS1.JAM (through the working folder's
// JAM014.BMP on import). "Import Failed." / "Export Failed.".
Status importHelmetsFromGame(CarSet& set, const std::filesystem::path& gameFolder,
                             const std::filesystem::path& workingFolder, const GraphicsOptions& options,
                             Progress* progress = nullptr);
Status exportHelmetsToGame(const CarSet& set, const std::filesystem::path& gameFolder,
                           const GraphicsOptions& options, Progress* progress = nullptr);

// The helmet sheet from and to a 256 x 180 bitmap file; a successful load
// changed the set, a failed load leaves it as it was.
Status loadHelmetSheetFile(CarSet& set, const std::filesystem::path& path);
Status saveHelmetSheetFile(const CarSet& set, const std::filesystem::path& path, const GraphicsOptions& options);

}  // namespace tarvel
