#include "carset/CarSetPictures.h"

#include "carset/WorkingFolder.h"
#include "graphics/BuiltinPictures.h"
#include "graphics/Helmets.h"
#include "graphics/Jam.h"
#include "graphics/JamCatalogue.h"

#include <algorithm>

namespace tarvel {
namespace fs = std::filesystem;

namespace {

bool isRacingTeam(int team) { return team >= 0 && team < kRacingTeams; }

bool isLivery(const BitmapBuffer& b) { return b.valid() && b.width == kLiveryWidth && b.height == kLiveryHeight; }
bool isSheet(const BitmapBuffer& b) {
    return b.valid() && b.width == kHelmetSheetWidth && b.height == kHelmetSheetHeight;
}

// Pixels held without header: rows of 256, the same as the bitmap's rows.
BitmapBuffer bitmapFromPixels(const std::vector<std::uint8_t>& pixels, int width, int height) {
    BitmapBuffer bitmap(width, height);
    std::copy_n(pixels.begin(), std::min(pixels.size(), bitmap.pixelBytes()), bitmap.pixels());
    return bitmap;
}

void setCarBitmapSource(CarSet& set, int team, std::uint16_t status, const fs::path& path) {
    AssetSlot& slot = set.team(team).carBitmap;
    slot.status = status;
    setFieldText(slot.path, path.string());
}

}  // namespace

BitmapBuffer defaultLiveryBitmap() {
    BitmapBuffer livery(kLiveryWidth, kLiveryHeight);
    std::copy_n(kBuiltinLiveryPixels, livery.pixelBytes(), livery.pixels());
    return livery;
}

void fillDefaultPictures(CarSet& set) {
    BitmapBuffer livery = defaultLiveryBitmap();
    for (auto& pixels : set.liveries) pixels.assign(livery.pixels(), livery.pixels() + kLiveryPixels);
    BitmapBuffer sheet = BuildDefaultHelmetSheet();
    set.helmetSheet.assign(sheet.pixels(), sheet.pixels() + kHelmetSheetPixels);
}

BitmapBuffer liveryBitmap(const CarSet& set, int team) {
    if (!isRacingTeam(team)) return BitmapBuffer(kLiveryWidth, kLiveryHeight);
    return bitmapFromPixels(set.liveries[std::size_t(team)], kLiveryWidth, kLiveryHeight);
}

BitmapBuffer helmetSheetBitmap(const CarSet& set) {
    return bitmapFromPixels(set.helmetSheet, kHelmetSheetWidth, kHelmetSheetHeight);
}

bool setLiveryPixels(CarSet& set, int team, const BitmapBuffer& bitmap) {
    if (!isRacingTeam(team) || !isLivery(bitmap)) return false;
    set.liveries[std::size_t(team)].assign(bitmap.pixels(), bitmap.pixels() + kLiveryPixels);
    return true;
}

bool setHelmetSheetPixels(CarSet& set, const BitmapBuffer& bitmap) {
    if (!isSheet(bitmap)) return false;
    set.helmetSheet.assign(bitmap.pixels(), bitmap.pixels() + kHelmetSheetPixels);
    return true;
}

Status loadTeamLivery(CarSet& set, int team, const fs::path& path) {
    if (!isRacingTeam(team)) return fail(MessageId::CouldntLoadBitmap);
    auto bitmap = LoadBitmap8(path, kLiveryWidth, kLiveryHeight);
    if (!bitmap) return fail(bitmap.error());
    setLiveryPixels(set, team, *bitmap);
    setCarBitmapSource(set, team, kAssetExternal, path);
    return {};
}

Status takeTeamLivery(CarSet& set, int team, const BitmapBuffer& livery, const fs::path& path) {
    if (!isRacingTeam(team) || !setLiveryPixels(set, team, livery)) return fail(MessageId::CouldntLoadBitmap);
    setCarBitmapSource(set, team, kAssetExternal, path);
    return {};
}

Status saveTeamLivery(const CarSet& set, int team, const fs::path& path, const GraphicsOptions& options) {
    if (!isRacingTeam(team)) return fail(MessageId::CouldntSaveBitmap);
    return SaveBitmap8(path, liveryBitmap(set, team), options);
}

Status importTeamCarFromGame(CarSet& set, int team, const fs::path& gameFolder, const fs::path& workingFolder,
                             const GraphicsOptions& options, Progress* progress) {
    if (!isRacingTeam(team)) return fail(MessageId::FailedToConvertJam);
    const fs::path working = jamBitmapFile(workingFolder, team);
    if (!ExportJamToBitmap(gameFolder, team, working, options, progress)) return fail(MessageId::FailedToConvertJam);
    auto bitmap = LoadBitmap8(working, kLiveryWidth, kLiveryHeight);
    if (!bitmap) return fail(MessageId::FailedToConvertJam);
    setLiveryPixels(set, team, *bitmap);
    setCarBitmapSource(set, team, kAssetExternal, working);
    return {};
}

Status exportTeamCarToGame(const CarSet& set, int team, const fs::path& gameFolder, const GraphicsOptions& options,
                           Progress* progress) {
    if (!isRacingTeam(team)) return fail(MessageId::FailedToPatchJam);
    return PatchGameJam(gameFolder, liveryBitmap(set, team), team, options, progress);
}

Status importHelmetsFromGame(CarSet& set, const fs::path& gameFolder, const fs::path& workingFolder,
                             const GraphicsOptions& options, Progress* progress) {
    const fs::path working = jamBitmapFile(workingFolder, kHelmetsJam);
    if (!ExportJamToBitmap(gameFolder, kHelmetsJam, working, options, progress)) return fail(MessageId::ImportFailed);
    auto sheet = LoadHelmetSheet(working);
    if (!sheet) return fail(MessageId::ImportFailed);
    setHelmetSheetPixels(set, *sheet);
    return {};
}

Status exportHelmetsToGame(const CarSet& set, const fs::path& gameFolder, const GraphicsOptions& options,
                           Progress* progress) {
    if (!PatchGameJam(gameFolder, helmetSheetBitmap(set), kHelmetsJam, options, progress))
        return fail(MessageId::ExportFailed);
    return {};
}

Status loadHelmetSheetFile(CarSet& set, const fs::path& path) {
    auto sheet = LoadHelmetSheet(path);
    if (!sheet) return fail(sheet.error());
    setHelmetSheetPixels(set, *sheet);
    return {};
}

Status saveHelmetSheetFile(const CarSet& set, const fs::path& path, const GraphicsOptions& options) {
    return SaveHelmetSheet(path, helmetSheetBitmap(set), options);
}

}  // namespace tarvel
