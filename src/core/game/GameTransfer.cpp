#include "game/GameTransfer.h"

#include "carset/AssetKinds.h"
#include "carset/CarSetFile.h"
#include "carset/CarSetPictures.h"
#include "carset/WorkingFolder.h"
#include "common/FileIO.h"
#include "graphics/Jam.h"
#include "graphics/JamCatalogue.h"
#include "graphics/MenuHelmet.h"
#include "game/GameBackup.h"
#include "game/GameExecutable.h"
#include "game/GameSettingsTransfer.h"
#include "game/GameVersion.h"
#include "game/GlobalCarSettings.h"
#include "game/LapsAndPoints.h"
#include "game/OnboardCameras.h"
#include "game/StateFile.h"
#include "game/TransferItems.h"

#include <algorithm>
#include <cassert>
#include <charconv>
#include <ctime>
#include <optional>

namespace tarvel {
namespace {

using Direction = TransferDirection;

constexpr const char* kExecutableName = "GP2.EXE";
constexpr const char* kStateFileName = "F1GSTATE.SAV";

// A new empty folder inside `parent`; empty when none could be made.
std::filesystem::path uniqueScratchFolder(const std::filesystem::path& parent) {
    std::error_code ec;
    for (int n = 0; n < 1000; ++n) {
        std::filesystem::path folder = parent / ("tarvel-rehearsal-" + std::to_string(n));
        if (std::filesystem::create_directories(folder, ec)) return folder;
    }
    return {};
}

ExecutableTransferOptions exeOptions(const ItemCall& call) { return {call.context.version, call.useStateFile}; }

Status importTeamData(CarSet& set, const ItemCall& call) {
    if (call.useStateFile) {
        Status names = ReadStateFileNames(set, call.context.gameFolder);
        if (!names) return names;
    }
    return TransferExecutableTables(set, call.context.gameFolder, exeOptions(call), &call.progress);
}

Status exportTeamData(const CarSet& set, const ItemCall& call) {
    if (call.useStateFile) {
        Status names = WriteStateFileNames(set, call.context.gameFolder);
        if (!names) return names;
    }
    return TransferExecutableTables(set, call.context.gameFolder, exeOptions(call), &call.progress);
}

// A failing colour table reads or writes GP2.EXE's own failure message.
Status importCockpitColours(CarSet& set, const ItemCall& call) {
    call.progress.setFile("GP2.EXE");
    if (!ImportCockpitColours(set, call.context.gameFolder, exeOptions(call))) return fail(MessageId::CouldntReadGp2Exe);
    return {};
}
Status exportCockpitColours(const CarSet& set, const ItemCall& call) {
    call.progress.setFile("GP2.EXE");
    if (!ExportCockpitColours(set, call.context.gameFolder, exeOptions(call), call.context.options.fixGreen))
        return fail(MessageId::Gp2ExeNotPatched);
    return {};
}
Status importPitCrewColours(CarSet& set, const ItemCall& call) {
    call.progress.setFile("GP2.EXE");
    if (!ImportPitCrewColours(set, call.context.gameFolder, exeOptions(call))) return fail(MessageId::CouldntReadGp2Exe);
    return {};
}
Status exportPitCrewColours(const CarSet& set, const ItemCall& call) {
    call.progress.setFile("GP2.EXE");
    if (!ExportPitCrewColours(set, call.context.gameFolder, exeOptions(call), call.context.options.fixGreen))
        return fail(MessageId::Gp2ExeNotPatched);
    return {};
}

GraphicsOptions pictureOptions(const ItemCall& call) { return graphicsOptions(call.context.options); }

void setSlot(AssetSlot& slot, const std::filesystem::path& path) {
    slot.status = kAssetExternal;
    setFieldText(slot.path, path.string());
}

// A picture of the set's slot as a bitmap: the slot's bottom-up pixel rows from
// wherever its status says they are.
Result<BitmapBuffer> slotBitmap(const CarSet& set, AssetKind kind, int slot, int width, int height) {
    auto pixels = readAssetBytes(set, kind, slot);
    if (!pixels) return fail(pixels.error());
    BitmapBuffer bitmap(width, height);
    if (!bitmap.valid() || pixels->size() != std::size_t(width) * std::size_t(height)) return fail(MessageId::CouldntLoadBitmap);
    for (int row = 0; row < height; ++row)
        std::copy_n(pixels->begin() + std::ptrdiff_t(row) * width, width, bitmap.row(row));
    return bitmap;
}

Status importCarJam(CarSet& set, const ItemCall& call) {
    if (!importTeamCarFromGame(set, call.item - 1, call.context.gameFolder, call.context.workingFolder,
                               pictureOptions(call), &call.progress))
        return fail(MessageId::FailedToConvertJam);
    return {};
}
Status exportCarJam(const CarSet& set, const ItemCall& call) {
    return exportTeamCarToGame(set, call.item - 1, call.context.gameFolder, pictureOptions(call), &call.progress);
}
Status importHelmetsJam(CarSet& set, const ItemCall& call) {
    if (!importHelmetsFromGame(set, call.context.gameFolder, call.context.workingFolder, pictureOptions(call), &call.progress))
        return fail(MessageId::FailedToConvertJam);
    return {};
}
Status exportHelmetsJam(const CarSet& set, const ItemCall& call) {
    return exportHelmetsToGame(set, call.context.gameFolder, pictureOptions(call), &call.progress);
}

// Menu helmets go to the working folder; the slots take them over once the
// whole import has succeeded.
Status importMenuHelmet(CarSet&, const ItemCall& call) {
    const int slot = assetSlotOfTransferItem(call.item)->slot;   // items 16-43: menu helmets 0-27
    if (!ImportMenuHelmetFromGame(call.context.gameFolder, slot, menuHelmetFile(call.context.workingFolder, slot),
                                  &call.progress))
        return fail(MessageId::FailedToImportMenuHelmet);
    return {};
}
Status exportMenuHelmet(const CarSet& set, const ItemCall& call) {
    const int slot = assetSlotOfTransferItem(call.item)->slot;   // items 16-43: menu helmets 0-27
    if (set.menuHelmets[std::size_t(slot)].status == kAssetEmpty) return {};   // the game keeps its own
    auto picture = slotBitmap(set, AssetKind::MenuHelmet, slot, kMenuHelmetSide, kMenuHelmetSide);
    if (!picture || !ExportMenuHelmetToGame(call.context.gameFolder, slot, *picture, &call.progress))
        return fail(MessageId::FailedToExportMenuHelmet);
    return {};
}

// Wheels (items 48-51) and the other JAM files (158-356): the game's file
// becomes the working folder's JAM%.3d.BMP and the slot points at it. The
// item table only routes those items here.
AssetItemSlot jamItemSlot(int item) {
    const auto slot = assetSlotOfTransferItem(item);
    assert(slot && (slot->kind == AssetKind::Wheel || slot->kind == AssetKind::Jam));
    return *slot;
}
Status importJamItem(CarSet& set, const ItemCall& call) {
    int number = transferItemJamNumber(call.item);
    std::filesystem::path working = jamBitmapFile(call.context.workingFolder, number);
    if (!ExportJamToBitmap(call.context.gameFolder, number, working, pictureOptions(call), &call.progress))
        return fail(MessageId::FailedToConvertJam);
    const AssetItemSlot target = jamItemSlot(call.item);
    setSlot(*findAssetSlot(set, target.kind, target.slot), working);
    return {};
}
Status exportJamItem(const CarSet& set, const ItemCall& call) {
    const AssetItemSlot source = jamItemSlot(call.item);
    if (findAssetSlot(set, source.kind, source.slot)->status == kAssetEmpty) return {};   // the game keeps its own
    int number = transferItemJamNumber(call.item);
    auto picture = slotBitmap(set, source.kind, source.slot, kJamCanvasWidth, JamInfo(number).canvasHeight);
    if (!picture) return fail(MessageId::FailedToPatchJam);
    return PatchGameJam(call.context.gameFolder, *picture, number, pictureOptions(call), &call.progress);
}

// The settings records: the import reads into the record's second copy, which
// starts as the first so that words the import leaves alone (those of a state
// file that is not used) keep the set's values; the first copy takes it over
// once the whole import has succeeded. The export writes the first copy.
template <std::size_t N>
using SettingsTransferFn = Status (*)(std::span<std::uint16_t, N>, TransferDirection, const GameAccess&);

GameAccess settingsAccess(const ItemCall& call) {
    return {call.context.gameFolder, call.context.version, call.useStateFile, &call.progress};
}

template <SettingsRange Words, SettingsRange Copy, std::size_t N, SettingsTransferFn<N> Transfer>
Status importSettings(CarSet& set, const ItemCall& call) {
    static_assert(Words.count == int(N) && Copy.count == int(N));
    std::copy_n(set.settings.range(Words), N, set.settings.range(Copy));
    return Transfer(std::span<std::uint16_t, N>(set.settings.range(Copy), N), Direction::Import, settingsAccess(call));
}
template <SettingsRange Words, SettingsRange Copy, std::size_t N, SettingsTransferFn<N> Transfer>
Status exportSettings(const CarSet& set, const ItemCall& call) {
    std::array<std::uint16_t, N> words{};
    std::copy_n(set.settings.range(Words), N, words.begin());
    return Transfer(words, Direction::Export, settingsAccess(call));
}

struct SettingsItem {
    int item;
    SettingsRange words;
    SettingsRange copy;
};
constexpr std::array<SettingsItem, 5> kSettingsItems{{
    {52, settings::kGlobalCar, settings::kGlobalCarImport},
    {54, settings::kCameras, settings::kCamerasImport},
    {155, settings::kGame, settings::kGameImport},
    {156, settings::kPoints, settings::kPointsImport},
    {157, settings::kLaps, settings::kLapsImport},
}};
template <SettingsRange Words, SettingsRange Copy, std::size_t N, SettingsTransferFn<N> Transfer>
struct SettingsItemFns {
    static constexpr ImportItemFn in = importSettings<Words, Copy, N, Transfer>;
    static constexpr ExportItemFn out = exportSettings<Words, Copy, N, Transfer>;
};
using GlobalCarItem = SettingsItemFns<settings::kGlobalCar, settings::kGlobalCarImport, globalcar::kWords, TransferGlobalCarSettings>;
using CameraItem = SettingsItemFns<settings::kCameras, settings::kCamerasImport, camera::kWords, ReadWriteCameras>;
using GameSettingsItem = SettingsItemFns<settings::kGame, settings::kGameImport, gamesettings::kWords, TransferGameSettings>;
using PointsItem = SettingsItemFns<settings::kPoints, settings::kPointsImport, kPointsPositions, TransferPoints>;
using LapsItem = SettingsItemFns<settings::kLaps, settings::kLapsImport, kCircuitCount, TransferLaps>;

// The item table: runs of items with their label, game file and transfer functions.
constexpr std::array<TransferItemRange, 16> kItemRanges{{
    {0, 0, "Team Data", GameFileKind::Executable, importTeamData, exportTeamData},
    {1, 14, "Car JAMs", GameFileKind::Jam, importCarJam, exportCarJam},
    {15, 15, "Helmets JAM", GameFileKind::Jam, importHelmetsJam, exportHelmetsJam},
    {16, 43, "Menu Helmets", GameFileKind::MenuFile, importMenuHelmet, exportMenuHelmet},
    {44, 44, "Cockpit Colours", GameFileKind::Executable, importCockpitColours, exportCockpitColours},
    {45, 46, "Cockpits", GameFileKind::Cockpit, nullptr, nullptr},
    {47, 47, "Pit Crew Colours", GameFileKind::Executable, importPitCrewColours, exportPitCrewColours},
    {48, 51, "Wheel JAMs", GameFileKind::Jam, importJamItem, exportJamItem},
    {52, 52, "Car Settings", GameFileKind::Executable, GlobalCarItem::in, GlobalCarItem::out},
    {53, 53, "Damage Data", GameFileKind::Executable, nullptr, nullptr},
    {54, 54, "Camera Data", GameFileKind::Executable, CameraItem::in, CameraItem::out},
    {55, 154, "Sound Effects", GameFileKind::SoundCatalogue, nullptr, nullptr},
    {155, 155, "Game Settings", GameFileKind::Executable, GameSettingsItem::in, GameSettingsItem::out},
    {156, 156, "Points Data", GameFileKind::Executable, PointsItem::in, PointsItem::out},
    {157, 157, "Laps Data", GameFileKind::Executable, LapsItem::in, LapsItem::out},
    {158, 356, "JAM Files", GameFileKind::Jam, importJamItem, exportJamItem},
}};

static_assert(kItemRanges.front().first == 0 && kItemRanges.back().last == kTransferItemCount - 1);

const TransferItemRange& rangeOf(int item) {
    for (const auto& r : kItemRanges)
        if (item >= r.first && item <= r.last) return r;
    return kItemRanges.front();
}

bool selected(const TransferSelection& items, int item) { return items[std::size_t(item)] != 0; }

// Every selected item's game file must exist; it is made writable on the way.
Status checkGameFiles(const TransferSelection& items, const GameContext& context) {
    for (int item = 0; item < kTransferItemCount; ++item) {
        if (!selected(items, item) || !transferItemAvailable(item)) continue;
        TransferItemInfo info = transferItemInfo(item);
        if (info.gameFile.empty()) continue;
        auto path = findGameFile(context.gameFolder, info.gameFile);
        if (!path)
            return fail(Message{MessageId::FileNotFound, std::string(info.displayName),
                                std::string(info.gameFile) + " is not in " + context.gameFolder.string()});
        (void)clearReadOnly(*path);   // each writer clears it again and fails if it cannot
    }
    return {};
}

// The game itself first (a folder without GP2.EXE says so, whatever the
// items), then its release, then every selected item's file.
Status checkGame(const TransferSelection& items, const GameContext& context) {
    if (!findGameFile(context.gameFolder, kExecutableName) || context.version < 0 || context.version >= kGameReleaseCount) {
        if (auto problem = gameFolderProblem(context.gameFolder)) return fail(*problem);
        return fail(MessageId::UnsupportedVersion);
    }
    return checkGameFiles(items, context);
}

struct RunOutcome {
    bool aborted = false;
    std::optional<Message> error;
};

std::string itemDetail(int item, const GameContext& context) {
    const TransferItemInfo info = transferItemInfo(item);
    const auto found = findGameFile(context.gameFolder, info.gameFile);
    const std::string file = found ? found->lexically_relative(context.gameFolder).generic_string() : info.gameFile;
    return "Item " + std::to_string(item) + " (" + std::string(info.label) + "), game file " + file + ".";
}

template <class Set, class Run>
RunOutcome runItems(Set& set, const TransferSelection& items, const GameContext& context, Progress& progress,
                    bool useStateFile, Run run) {
    RunOutcome outcome;
    ItemCall call{0, context, useStateFile, progress};
    for (int item = 0; item < kTransferItemCount; ++item) {
        if (progress.aborted()) {
            outcome.aborted = true;
            break;
        }
        if (!selected(items, item) || !transferItemAvailable(item)) continue;
        const TransferItemRange& range = rangeOf(item);
        progress.setCategory(range.label);
        call.item = item;
        Status status = run(range, set, call);
        if (!status) {
            outcome.error = status.error();
            // The exact message stays; the detail says which item and game file failed.
            if (outcome.error->detail.empty()) outcome.error->detail = itemDetail(item, context);
            break;
        }
    }
    // An abort pressed during the last item, or during the item that failed,
    // still counts: the abort is reported first and the failure after it.
    if (!outcome.aborted && progress.aborted()) outcome.aborted = true;
    return outcome;
}

bool anySelected(const TransferSelection& selection, std::initializer_list<int> items) {
    for (int item : items)
        if (selected(selection, item)) return true;
    return false;
}

}  // namespace

TransferItemInfo transferItemInfo(int item) {
    TransferItemInfo info;
    info.item = item;
    if (item < 0 || item >= kTransferItemCount) return info;
    const TransferItemRange& range = rangeOf(item);
    info.label = range.label;
    info.available = range.importItem != nullptr && range.exportItem != nullptr;
    GameFileName name = transferItemGameFile(item, range.file);
    info.gameFile = std::move(name.relative);
    info.displayName = std::move(name.display);
    return info;
}

bool transferItemAvailable(int item) {
    if (item < 0 || item >= kTransferItemCount) return false;
    const TransferItemRange& range = rangeOf(item);
    return range.importItem != nullptr && range.exportItem != nullptr;
}

void selectAvailableTransferItems(TransferSelection& selection) {
    for (int item = 0; item < kTransferItemCount; ++item) selection[std::size_t(item)] = transferItemAvailable(item) ? 1 : 0;
}

Result<TransferSelection> parseTransferItemList(std::string_view list) {
    TransferSelection selection{};
    const auto invalid = [] { return fail(MessageId::InvalidField, "--items"); };
    const auto number = [](std::string_view text, int& value) {
        if (text.empty()) return false;
        auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
        return ec == std::errc() && end == text.data() + text.size() && value >= 0 && value < kTransferItemCount;
    };
    if (list.empty()) return invalid();
    while (true) {
        std::size_t comma = list.find(',');
        std::string_view part = list.substr(0, comma);
        int first = 0, last = 0;
        std::size_t dash = part.find('-');
        if (dash == std::string_view::npos) {
            if (!number(part, first)) return invalid();
            last = first;
        } else if (!number(part.substr(0, dash), first) || !number(part.substr(dash + 1), last) || last < first) {
            return invalid();
        }
        for (int item = first; item <= last; ++item) {
            if (!transferItemAvailable(item)) return fail(MessageId::ItemNotAvailable, std::to_string(item));
            selection[std::size_t(item)] = 1;
        }
        if (comma == std::string_view::npos) break;
        list.remove_prefix(comma + 1);
    }
    return selection;
}

// The game files the selected items read, each once, in item order.
std::vector<std::string> importSourceFiles(const TransferSelection& items) {
    std::vector<std::string> files;
    for (int item = 0; item < kTransferItemCount; ++item) {
        if (!selected(items, item) || !transferItemAvailable(item)) continue;
        const std::string file(transferItemInfo(item).gameFile);
        if (!file.empty() && std::find(files.begin(), files.end(), file) == files.end()) files.push_back(file);
    }
    return files;
}

int selectedCount(const TransferSelection& items) {
    int count = 0;
    for (int item = 0; item < kTransferItemCount; ++item) count += selected(items, item) && transferItemAvailable(item);
    return count;
}

Status ImportFromGame(CarSet& set, const TransferSelection& items, const GameContext& context, Progress& progress,
                      bool& changed, TransferReport* report) {
    changed = false;
    if (Status game = checkGame(items, context); !game) return game;
    bool useStateFile = CheckStateFile(context.gameFolder);
    RunOutcome outcome = runItems(set, items, context, progress, useStateFile,
                                  [](const TransferItemRange& range, CarSet& s, const ItemCall& call) {
                                      return range.importItem(s, call);
                                  });
    // Whatever was read before a failure or an abort stays in the set.
    for (auto flag : items) changed = changed || (flag != 0);
    if (outcome.aborted) return fail(MessageId::ImportAborted);
    if (outcome.error) return fail(*outcome.error);
    if (anySelected(items, {0, 44, 47})) set.carNumbers = set.carNumbersImport;
    for (const SettingsItem& record : kSettingsItems)
        if (selected(items, record.item))
            std::copy_n(set.settings.range(record.copy), record.words.count, set.settings.range(record.words));
    for (int slot = 0; slot < kMenuHelmetCount; ++slot)
        if (selected(items, transferItemOfAssetSlot(AssetKind::MenuHelmet, slot)))
            setSlot(set.menuHelmets[std::size_t(slot)], menuHelmetFile(context.workingFolder, slot));
    set.recountAssets();
    if (report) *report = TransferReport{selectedCount(items), importSourceFiles(items), {}};
    return {};
}

Status ExportToGame(const CarSet& set, const TransferSelection& items, const GameContext& context, Progress& progress,
                    std::vector<Message>* notices, TransferReport* report) {
    if (Status game = checkGame(items, context); !game) return game;
    TransferReport done{selectedCount(items), exportTargetFiles(set, items, context), {}};
    if (!context.backupsRoot.empty()) {
        auto backup = BackUpGameFiles(context.backupsRoot, context.gameFolder, done.files, std::time(nullptr));
        if (!backup) return fail(backup.error());
        done.backupId = backup->id;
    }
    bool useStateFile = CheckStateFile(context.gameFolder);
    RunOutcome outcome = runItems(set, items, context, progress, useStateFile,
                                  [](const TransferItemRange& range, const CarSet& s, const ItemCall& call) {
                                      return range.exportItem(s, call);
                                  });
    if (outcome.aborted) {
        if (outcome.error && notices) notices->push_back(*outcome.error);
        return fail(MessageId::ExportAborted);
    }
    if (outcome.error) return fail(*outcome.error);
    if (report) *report = std::move(done);
    return {};
}

namespace {
// The selected items whose export writes something: an empty picture or menu
// helmet slot leaves the game's own file alone.
TransferSelection writingItems(const CarSet& set, const TransferSelection& items) {
    TransferSelection writing{};
    for (int item = 0; item < kTransferItemCount; ++item) {
        if (!selected(items, item) || !transferItemAvailable(item)) continue;
        const auto slot = assetSlotOfTransferItem(item);
        if (slot && findAssetSlot(set, slot->kind, slot->slot)->status == kAssetEmpty) continue;
        writing[std::size_t(item)] = 1;
    }
    return writing;
}
}  // namespace

std::vector<std::string> exportTargetFiles(const CarSet& set, const TransferSelection& items,
                                           const GameContext& context) {
    std::vector<std::string> files;
    auto add = [&](std::string file) {
        if (!file.empty() && std::find(files.begin(), files.end(), file) == files.end()) files.push_back(std::move(file));
    };
    const TransferSelection writing = writingItems(set, items);
    for (int item = 0; item < kTransferItemCount; ++item)
        if (selected(writing, item)) add(transferItemInfo(item).gameFile);
    // The team data, the game settings and the car settings also write into a valid state file.
    if (anySelected(writing, {0, 52, 155}) && CheckStateFile(context.gameFolder)) add(kStateFileName);
    return files;
}

Result<std::vector<FileChange>> DryRunExport(const CarSet& set, const TransferSelection& items,
                                             const GameContext& context) {
    if (Status game = checkGame(items, context); !game) return fail(game.error());
    namespace fs = std::filesystem;
    std::error_code ec;
    const fs::path scratch = uniqueScratchFolder(context.workingFolder.empty() ? fs::temp_directory_path(ec)
                                                                                : context.workingFolder);
    if (scratch.empty()) return fail(MessageId::CouldntWriteFile, context.workingFolder.string());
    struct Removal {
        fs::path folder;
        ~Removal() {
            std::error_code ignored;
            fs::remove_all(folder, ignored);
        }
    } removal{scratch};

    // The export reads the executable and the state file besides what it writes.
    std::vector<std::string> files = exportTargetFiles(set, items, context);
    std::vector<std::string> copied = files;
    for (const char* read : {kExecutableName, kStateFileName})
        if (std::find(copied.begin(), copied.end(), read) == copied.end()) copied.push_back(read);
    std::vector<std::pair<std::string, Bytes>> before;
    for (const std::string& name : copied) {
        const auto found = findGameFile(context.gameFolder, name);
        if (!found) continue;
        auto data = readWholeFile(*found);
        const fs::path copy = scratch / found->lexically_relative(context.gameFolder);
        fs::create_directories(copy.parent_path(), ec);
        if (!data || !writeFileAtomically(copy, *data)) return fail(MessageId::CouldntWriteFile, copy.string());
        if (std::find(files.begin(), files.end(), name) != files.end()) before.emplace_back(name, std::move(*data));
    }

    GameContext rehearsal = context;
    rehearsal.gameFolder = scratch;
    rehearsal.backupsRoot.clear();
    Progress quiet;
    if (Status exported = ExportToGame(set, writingItems(set, items), rehearsal, quiet); !exported)
        return fail(exported.error());

    std::vector<FileChange> changes;
    for (const auto& [name, old] : before) {
        const auto found = findGameFile(scratch, name);
        const auto now = found ? readWholeFile(*found) : std::nullopt;
        if (!now) return fail(MessageId::CouldntLoadFile, name);
        const std::size_t common = std::min(old.size(), now->size());
        std::uint64_t differing = std::max(old.size(), now->size()) - common;
        for (std::size_t i = 0; i < common; ++i) differing += old[i] != (*now)[i] ? 1 : 0;
        if (differing != 0) changes.push_back(FileChange{name, differing});
    }
    return changes;
}

namespace {

std::string counted(std::size_t n, const char* one, const char* many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

// "A", "A and B", "A, B and C", "A, B, C, D, E and 3 more".
std::string listed(const std::vector<std::string>& names) {
    constexpr std::size_t kShown = 5;
    std::vector<std::string> shown(names.begin(), names.begin() + std::ptrdiff_t(std::min(names.size(), kShown)));
    if (names.size() > kShown) shown.push_back(std::to_string(names.size() - kShown) + " more");
    std::string text;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        if (i > 0) text += i + 1 == shown.size() ? " and " : ", ";
        text += shown[i];
    }
    return text;
}

}  // namespace

std::string describeExportChanges(const std::vector<FileChange>& changes) {
    std::vector<std::string> changed;
    for (const FileChange& change : changes)
        if (change.bytesChanged > 0) changed.push_back(change.file);
    if (changed.empty()) return "No file of the game will change.";
    return std::to_string(changed.size()) + " of the game's files will change: " + listed(changed) +
           ". A backup of them is kept first.";
}

std::string describeImport(const TransferReport& report, const std::filesystem::path& gameFolder) {
    return "Imported " + counted(std::size_t(report.items), "item", "items") + " from " + gameFolder.string() + ": " +
           counted(report.files.size(), "file", "files") + " read.";
}

std::string describeExport(const TransferReport& report, const std::filesystem::path& gameFolder) {
    std::string text = "Exported " + counted(std::size_t(report.items), "item", "items") + " to " +
                       gameFolder.string() + ": " + counted(report.files.size(), "file", "files") + " written";
    text += report.backupId.empty() ? std::string(".") : "; backup " + report.backupId + " kept.";
    return text;
}

}  // namespace tarvel
