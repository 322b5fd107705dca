#pragma once
// Inside the car set file code only: what the reader, the writer and the
// file handle share about the layout.

#include "carset/AssetKinds.h"
#include "carset/CarSet.h"
#include "carset/CarSetFileHandle.h"
#include "common/ByteIO.h"
#include "common/Messages.h"
#include "common/Result.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tarvel::carsetfile {

constexpr char kMagic[] = "TARVEL";
constexpr std::size_t kMagicSize = 7;
constexpr std::size_t kItemHeaderSize = 5;           // u8 coded flag, u32 length
constexpr std::size_t kMaxItemLength = 64u << 20;    // an item of unknown length is refused above this
constexpr int kLiveryMapLength = kRacingTeams;
constexpr int kCockpitRecordStoredSize170 = 29 * 12;

// Settings ranges in the order the 338-byte block stores them.
constexpr SettingsRange kStoredSettings180[] = {
    settings::kDamage, settings::kPoints, settings::kCameras, settings::kLaps, settings::kGame, settings::kGlobalCar,
};

inline Failure invalid() { return fail(MessageId::NotValidCarSet); }
inline Failure cannotOpen() { return fail(MessageId::CouldntOpenCarSetFile); }

// The "TARVEL" magic field of a header as text (up to its NUL).
std::string headerMagic(std::span<const std::uint8_t> header);

// A menu helmet slot of status 2 names its own slot in its path field.
void setSlotReference(AssetSlot& slot, int index);

// The slots of a table that a save writes: status 1 and 2 (and 3 where the
// kind stores it) from `firstSlot` on.
std::vector<int> presentSlots(std::span<const AssetSlot> slots, int firstSlot, bool takeNotStored);

}  // namespace tarvel::carsetfile
