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

// Refusals with the reason in plain words (the file's name is added where the
// load or check gives up).
inline Failure invalid(std::string reason) { return fail(Message{MessageId::NotValidCarSet, {}, std::move(reason)}); }
inline Failure cannotOpen(std::string reason) {
    return fail(Message{MessageId::CouldntOpenCarSetFile, {}, std::move(reason)});
}
inline Failure cannotRead() { return cannotOpen("the file could not be read"); }
// A read that found the end of the file says where: "the file ends at byte
// 41,203" becomes "... inside the team and driver block", and "the file ends
// at byte 100, before byte 417,806" becomes "..., before the settings at byte 417,806".
std::string endOfFileReason(std::uint64_t fileSize, std::uint64_t readFrom);
std::string placeEndOfFile(const std::string& reason, std::string_view what);
template <class T>
Result<T> inside(Result<T> read, std::string_view what) {
    if (read) return read;
    Message message = read.error();
    message.detail = placeEndOfFile(message.detail, what);
    return fail(std::move(message));
}

// The "TARVEL" magic field of a header as text (up to its NUL).
std::string headerMagic(std::span<const std::uint8_t> header);

// A menu helmet slot of status 2 names its own slot in its path field.
void setSlotReference(AssetSlot& slot, int index);

// The slots of a table that a save writes: status 1 and 2 (and 3 where the
// kind stores it) from `firstSlot` on.
std::vector<int> presentSlots(std::span<const AssetSlot> slots, int firstSlot, bool takeNotStored);

}  // namespace tarvel::carsetfile
