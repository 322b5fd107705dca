#pragma once
// The five kinds of replacement assets a car set holds in slots (wheel
// textures, cockpits, JAM files, driver menu helmets, sounds): one row of data
// each, read by the file reader and writer, the JSON edge, the window title
// and the transfer to and from the game.

#include "carset/CarSet.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace tarvel {

enum class AssetKind { Wheel, Cockpit, Jam, MenuHelmet, Sound };

// How the raw length of a slot's item is known.
enum class ItemLength {
    Any,          // varies (whole WAV files, cockpit files)
    JamRows,      // 256 x the canvas height of JAM file jamBase + slot
    MenuHelmet,   // 104 x 104
};

// How a status-1 slot's outside file becomes the item.
enum class SourceFile { Picture, Sound, Whole };

struct AssetKindInfo {
    AssetKind kind;
    std::string_view jsonName;      // key under "assets" and "counts"
    std::string_view label;         // in plain words, for messages: "JAM file"
    char titleLetter;               // " - W(%d)" in the window title
    int slotCount;
    int firstSlot;                  // slots below it are never stored (JAM files 0-18)
    int directoryEntry;             // header offset of the section's directory entry
    int mapPrefix;                  // bytes before the index map (the menu helmets' status bytes)
    bool recordBeforeItem;          // a cockpit colour record precedes each item
    bool storesNotStored;           // status-3 slots are written too (cockpit designs)
    bool statusMap;                 // the section always exists and starts with one status byte per slot
    ItemLength length;
    int jamBase;                    // JAM number of slot 0 (wheels 15-18), for JamRows and the working file
    SourceFile source;
    std::string_view workingFile;   // temporary file name pattern in the working folder ("" none)
    int firstItem;                  // transfer item of slot firstSlot, -1 none
    int itemSlots;                  // how many slots from firstSlot have a transfer item
    std::span<AssetSlot> (*editSlots)(CarSet&);
    std::span<const AssetSlot> (*view)(const CarSet&);
    std::uint8_t CarSet::*count;
};

namespace assetkinds {
constexpr int kDirectoryWheels = 74;
constexpr int kDirectoryJams = 79;
constexpr int kDirectorySounds = 99;
constexpr int kDirectoryCockpits = 104;
constexpr int kDirectoryMenuHelmets = 109;
constexpr std::string_view kJamWorkingFile = "JAM%.3d.BMP";
constexpr std::string_view kMenuHelmetWorkingFile = "MENU%.2d.BMP";
constexpr std::string_view kSoundWorkingFile = "WAV%.2d.WAV";
}  // namespace assetkinds

// In AssetKind order, which is also the order of the window title's counts
// and of the JSON tables.
inline constexpr std::array<AssetKindInfo, 5> kAssetKinds{{
    {AssetKind::Wheel, "wheels", "wheel", 'W', kWheelSlots, 0, assetkinds::kDirectoryWheels, 0, false, false, false,
     ItemLength::JamRows, 15, SourceFile::Picture, assetkinds::kJamWorkingFile, 48, kWheelSlots,
     [](CarSet& s) { return std::span<AssetSlot>(s.wheels); },
     [](const CarSet& s) { return std::span<const AssetSlot>(s.wheels); }, &CarSet::wheelCount},
    {AssetKind::Cockpit, "cockpits", "cockpit", 'C', kCockpitSlots, 0, assetkinds::kDirectoryCockpits, 0, true, true, false,
     ItemLength::Any, 0, SourceFile::Whole, "", 45, kCockpitSlots,
     [](CarSet& s) { return std::span<AssetSlot>(s.cockpits); },
     [](const CarSet& s) { return std::span<const AssetSlot>(s.cockpits); }, &CarSet::cockpitCount},
    {AssetKind::Jam, "jams", "JAM file", 'J', kJamSlots, kFirstUsableJam, assetkinds::kDirectoryJams, 0, false, false, false,
     ItemLength::JamRows, 0, SourceFile::Picture, assetkinds::kJamWorkingFile, 158, kJamSlots - kFirstUsableJam,
     [](CarSet& s) { return std::span<AssetSlot>(s.jams); },
     [](const CarSet& s) { return std::span<const AssetSlot>(s.jams); }, &CarSet::jamCount},
    {AssetKind::MenuHelmet, "menuHelmets", "menu helmet", 'H', kMenuHelmetSlots, 0, assetkinds::kDirectoryMenuHelmets,
     kMenuHelmetSlots, false, false, true, ItemLength::MenuHelmet, 0, SourceFile::Picture,
     assetkinds::kMenuHelmetWorkingFile, 16, 28,
     [](CarSet& s) { return std::span<AssetSlot>(s.menuHelmets); },
     [](const CarSet& s) { return std::span<const AssetSlot>(s.menuHelmets); }, &CarSet::menuHelmetCount},
    {AssetKind::Sound, "sounds", "sound", 'S', kSoundSlots, 0, assetkinds::kDirectorySounds, 0, false, false, false,
     ItemLength::Any, 0, SourceFile::Sound, assetkinds::kSoundWorkingFile, 55, kSoundSlots,
     [](CarSet& s) { return std::span<AssetSlot>(s.sounds); },
     [](const CarSet& s) { return std::span<const AssetSlot>(s.sounds); }, &CarSet::soundCount},
}};

constexpr const AssetKindInfo& assetKind(AssetKind kind) { return kAssetKinds[std::size_t(kind)]; }
static_assert(assetKind(AssetKind::Sound).kind == AssetKind::Sound && assetKind(AssetKind::Jam).kind == AssetKind::Jam);

// The kind whose JSON name is `name`, or nullptr.
constexpr const AssetKindInfo* findAssetKind(std::string_view name) {
    for (const AssetKindInfo& k : kAssetKinds)
        if (k.jsonName == name) return &k;
    return nullptr;
}

// The slot's raw item length (0 when it varies: sounds, cockpits). Slot must be in range.
std::size_t assetItemLength(AssetKind kind, int slot);

// The slot, or nullptr when `slot` is outside the kind's table.
const AssetSlot* findAssetSlot(const CarSet& set, AssetKind kind, int slot);
AssetSlot* findAssetSlot(CarSet& set, AssetKind kind, int slot);

}  // namespace tarvel

namespace tarvel {

// The asset slot that transfer item `item` carries, if it carries one.
struct AssetItemSlot {
    AssetKind kind;
    int slot;
};
constexpr std::optional<AssetItemSlot> assetSlotOfTransferItem(int item) {
    for (const AssetKindInfo& k : kAssetKinds)
        if (k.firstItem >= 0 && item >= k.firstItem && item < k.firstItem + k.itemSlots)
            return AssetItemSlot{k.kind, k.firstSlot + item - k.firstItem};
    return std::nullopt;
}
// The transfer item of a slot, or -1.
constexpr int transferItemOfAssetSlot(AssetKind kind, int slot) {
    const AssetKindInfo& k = assetKind(kind);
    if (k.firstItem < 0 || slot < k.firstSlot || slot >= k.firstSlot + k.itemSlots) return -1;
    return k.firstItem + slot - k.firstSlot;
}
static_assert(transferItemOfAssetSlot(AssetKind::Jam, 19) == 158 && transferItemOfAssetSlot(AssetKind::Jam, 217) == 356);
static_assert(assetSlotOfTransferItem(51)->kind == AssetKind::Wheel && assetSlotOfTransferItem(51)->slot == 3);
static_assert(assetSlotOfTransferItem(43)->slot == 27 && !assetSlotOfTransferItem(44));

}  // namespace tarvel
