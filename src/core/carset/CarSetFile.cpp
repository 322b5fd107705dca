#include "carset/CarSetFile.h"

#include "carset/AsciiFold.h"
#include "carset/SettingsDefaults.h"
#include "carset/WorkingFolder.h"
#include "common/Checksum.h"
#include "common/FileIO.h"
#include "common/RunLength.h"
#include "graphics/Bitmap.h"
#include "graphics/JamCatalogue.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace tarvel {

namespace fs = std::filesystem;
using namespace carsetfile;

namespace {

constexpr char kMagic[] = "TARVEL";
constexpr std::size_t kMagicSize = 7;
constexpr std::size_t kItemHeaderSize = 5;           // u8 coded flag, u32 length
constexpr std::size_t kMaxItemLength = 64u << 20;    // an item of unknown length is refused above this
constexpr int kLiveryMapLength = kRacingTeams;
constexpr int kCockpitRecordStoredSize170 = 29 * 12;
constexpr std::size_t kChecksumChunk = 1u << 20;

// Settings ranges in the order the 338-byte block stores them.
constexpr SettingsRange kStoredSettings180[] = {
    settings::kDamage, settings::kPoints, settings::kCameras, settings::kLaps, settings::kGame, settings::kGlobalCar,
};
// The 66-byte settings area of version 160: game settings, laps, then the
// first six global car settings.
constexpr SettingsRange kStoredSettings160[] = {
    settings::kGame, settings::kLaps, {settings::kGlobalCar.first, 6},
};
constexpr std::size_t kSettingsSize170 = 104;
constexpr std::size_t kSettingsSize160 = 66;
constexpr std::size_t kTrailer170Size = 63;

Failure invalid() { return fail(MessageId::NotValidCarSet); }
Failure cannotOpen() { return fail(MessageId::CouldntOpenCarSetFile); }

// ---------------------------------------------------------------------------
// Reading the sections
// ---------------------------------------------------------------------------

template <std::size_t N>
void readNameField(ByteReader& r, std::array<char, N>& field) {
    r.bytes(field.data(), N);
    field[N - 1] = '\0';
}

void readSettingsRanges(ByteReader& r, CarSetSettings& s, const SettingsRange* ranges, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i)
        for (int w = 0; w < ranges[i].count; ++w) s.words[ranges[i].first + w] = r.u16();
}

void readTeamBlock(ByteReader& r, CarSet& set, int subVersion) {
    auto& teams = set.teams;
    for (auto& t : teams) readNameField(r, t.name);
    for (auto& t : teams) readNameField(r, t.engine);
    for (auto& t : teams) t.powerRace = r.u16();
    for (auto& t : teams) t.powerQual = r.u16();
    for (auto& t : teams) t.failureProbability = std::min<std::uint16_t>(r.u16(), 32767);
    for (auto& t : teams) t.highNose = r.u8();
    for (auto& t : teams)
        for (auto& b : t.teamBytesA) b = r.u8();
    for (auto& t : teams)
        for (auto& b : t.teamBytesB) b = r.u8();
    for (auto& t : teams) t.teamOrder = std::int16_t(r.u8());
    for (int car = 0; car < 2; ++car)
        for (auto& t : teams) t.driver[car] = std::int16_t(r.u8());
    for (int car = 0; car < 2; ++car)
        for (auto& t : teams) t.disabled[car] = r.u8();
    for (int car = 0; car < 2; ++car)
        for (auto& t : teams) t.flagS[car] = r.u8();
    for (int n = 1; n <= kDriverNumbers; ++n) readNameField(r, set.drivers[n].name);
    for (int n = 1; n <= kDriverNumbers; ++n) set.drivers[n].gripRace = r.u16();
    for (int n = 1; n <= kDriverNumbers; ++n) set.drivers[n].gripQual = r.u16();
    for (int n = 1; n <= kDriverNumbers; ++n) set.drivers[n].gripRandom = r.u16();
    for (int n = 1; n <= kDriverNumbers; ++n) set.drivers[n].inUse = r.u8();
    if (subVersion >= 4) {
        // The unfolded names take the place of the folded ones.
        for (auto& t : teams) readNameField(r, t.name);
        for (auto& t : teams) readNameField(r, t.engine);
        for (int n = 1; n <= kDriverNumbers; ++n) readNameField(r, set.drivers[n].name);
    }
    if (subVersion >= 5) {
        r.bytes(set.carNumbers.partA.data(), set.carNumbers.partA.size());
        r.bytes(set.carNumbers.partB.data(), set.carNumbers.partB.size());
    } else {
        set.carNumbers = defaultCarNumberLayout();
    }
}

// Global car and damage settings that version 170 keeps after the team block.
void readTrailer170(ByteReader& r, CarSetSettings& s) {
    auto& w = s.words;
    w[22] = r.u8();
    for (int i = 23; i <= 25; ++i) w[i] = r.u16();
    w[26] = r.u8();
    for (int i = 27; i <= 28; ++i) w[i] = r.u16();
    w[29] = r.u8();
    w[30] = r.u16();
    for (int i = 188; i <= 205; ++i) w[i] = r.u8();
    for (int i = 206; i <= 220; ++i) w[i] = r.u16();
}

void readSettings170(ByteReader& r, CarSetSettings& s) {
    auto& w = s.words;
    for (int i = 0; i <= 7; ++i) w[i] = r.u16();
    r.skip(2);
    w[8] = r.u16();
    for (int i = 0; i < settings::kLaps.count; ++i) w[settings::kLaps.first + i] = r.u16();
    for (int i = 0; i < settings::kPoints.count; ++i) w[settings::kPoints.first + i] = r.u16();
}

// A cockpit colour record: stored whole from version 180; version 170 keeps
// 29 pairs of 16-bit values, each pair in two 32-bit values and 4 spare bytes.
void readCockpitRecord(std::span<const std::uint8_t> stored, int version,
                       std::array<std::uint8_t, kCockpitRecordSize>& record) {
    record.fill(0);
    ByteReader r(stored);
    if (version >= 180) {
        r.bytes(record.data(), record.size());
        return;
    }
    for (int pair = 0; pair < 29; ++pair) {
        std::uint32_t a = r.u32();
        std::uint32_t b = r.u32();
        r.skip(4);
        storeU16(&record[std::size_t(pair) * 4], std::uint16_t(a));
        storeU16(&record[std::size_t(pair) * 4 + 2], std::uint16_t(b));
    }
}

std::string cString7(std::span<const std::uint8_t> header) {
    std::string s;
    for (std::size_t i = 0; i < kMagicSize && i < header.size() && header[i] != 0; ++i) s += char(header[i]);
    return s;
}

// Format check on an open file: header test, then the checksum trailer.
Result<int> checkOpenFile(const CarSetFileHandle& file, const CarSetFileOptions& options,
                          std::vector<Message>* notices) {
    if (file.size() < kMagicSize) return invalid();
    auto head = file.readAt(0, std::min<std::uint64_t>(file.size(), 9));
    if (!head) return cannotOpen();
    std::string magic = cString7(*head);
    int version = 0;
    if (magic == kMagic) {
        if (head->size() < 9) return invalid();
        int stored = loadU16(head->data() + 7);
        if (stored == 160 || stored == 170 || stored == 180) {
            version = stored;
        } else if (stored > 180) {
            if (notices) {
                char number[32];
                std::snprintf(number, sizeof number, "%.2f", stored * 0.01);
                notices->push_back(Message{MessageId::RequiresNewerVersion, number});
            }
            return invalid();
        }
    } else if (magic == "120" || magic == "set") {
        // The oldest formats (120 and 100) are not read.
        return invalid();
    }
    if (version == 0) return invalid();

    if (options.verifyChecksum) {
        if (file.size() < kChecksumTrailerSize) return invalid();
        std::uint64_t body = file.size() - kChecksumTrailerSize;
        Checksum sum;
        for (std::uint64_t at = 0; at < body;) {
            std::size_t n = std::size_t(std::min<std::uint64_t>(kChecksumChunk, body - at));
            auto chunk = file.readAt(at, n);
            if (!chunk) return cannotOpen();
            sum.update(*chunk);
            at += n;
        }
        auto trailer = file.readAt(body, kChecksumTrailerSize);
        if (!trailer) return cannotOpen();
        Checksum stored;
        readChecksumTrailer(*trailer, stored);
        if (!(stored == sum)) return invalid();
    }
    return version;
}

Result<Bytes> readMap(const CarSetFileHandle& file, CarSetFileHandle::DirectoryEntry entry, std::size_t length,
                      std::size_t prefix = 0) {
    auto map = file.readAt(std::uint64_t(entry.offset) + prefix, length);
    if (!map) return invalid();
    return map;
}

// Slots whose map position is non-zero get status 2 and an empty path.
void takeMap(std::span<AssetSlot> slots, const Bytes& map, int firstSlot = 0) {
    for (std::size_t i = std::size_t(firstSlot); i < slots.size() && i < map.size(); ++i)
        if (map[i] != 0) slots[i] = AssetSlot{kAssetStored, {}};
}

void setSlotReference(AssetSlot& slot, int index) {
    slot.path.fill(0);
    storeU16(reinterpret_cast<std::uint8_t*>(slot.path.data()) + 2, std::uint16_t(index));
}

Status readBody(CarSet& set, const CarSetFileHandle& file, int version) {
    const int sub = file.subVersion();
    using Entry = CarSetFileHandle::DirectoryEntry;

    // Settings (the set starts from the defaults of every range).
    Entry e = file.directoryEntry(kEntrySettings);
    if (e.count != 0) {
        std::size_t size = version == 180 ? std::size_t(kSettingsBlockSize)
                           : version == 170 ? kSettingsSize170 : kSettingsSize160;
        auto bytes = file.readAt(e.offset, size);
        if (!bytes) return invalid();
        ByteReader r(*bytes);
        if (version == 180) readSettingsRanges(r, set.settings, kStoredSettings180, std::size(kStoredSettings180));
        else if (version == 170) readSettings170(r, set.settings);
        else readSettingsRanges(r, set.settings, kStoredSettings160, std::size(kStoredSettings160));
    }

    // Information text.
    e = file.directoryEntry(kEntryInformation);
    set.hasInformation = e.count != 0;
    set.information.clear();
    if (set.hasInformation) {
        auto length = file.readAt(e.offset, 2);
        if (!length) return invalid();
        std::size_t n = std::min<std::size_t>(loadU16(length->data()), kInformationMax);
        auto text = file.readAt(std::uint64_t(e.offset) + 2, n);
        if (!text) return invalid();
        set.information.assign(text->begin(), text->end());
    }

    // Wheels: a version 160 file only says whether all four are present.
    e = file.directoryEntry(kEntryWheels);
    if (e.count != 0) {
        if (version == 160) {
            for (auto& w : set.wheels) w = AssetSlot{kAssetStored, {}};
        } else {
            auto map = readMap(file, e, kWheelSlots);
            if (!map) return fail(map.error());
            takeMap(set.wheels, *map);
        }
    }

    if (version >= 170) {
        e = file.directoryEntry(kEntryJams);
        if (e.count != 0) {
            auto map = readMap(file, e, kJamSlots);
            if (!map) return fail(map.error());
            takeMap(set.jams, *map, kFirstUsableJam);
        }

        e = file.directoryEntry(kEntryMenuHelmets);
        if (e.count != 0) {
            auto statuses = readMap(file, e, kMenuHelmetSlots);
            if (!statuses) return fail(statuses.error());
            for (int i = 0; i < kMenuHelmetSlots; ++i) {
                std::uint8_t s = (*statuses)[i];
                AssetSlot& slot = set.menuHelmets[i];
                slot = AssetSlot{};
                if (s == kAssetExternal || s == kAssetStored) {
                    slot.status = kAssetStored;
                    setSlotReference(slot, i);
                } else if (s == kAssetNotStored) {
                    slot.status = kAssetNotStored;
                } else if (s != kAssetEmpty) {
                    return invalid();
                }
            }
        }

        e = file.directoryEntry(kEntryCockpits);
        if (e.count != 0) {
            auto map = readMap(file, e, kCockpitSlots);
            if (!map) return fail(map.error());
            for (int i = 0; i < kCockpitSlots; ++i) {
                if ((*map)[i] == 0) continue;
                set.cockpits[i] = AssetSlot{kAssetStored, {}};
                auto at = file.slotOffset(kEntryCockpits, i, kCockpitSlots);
                if (!at) return fail(at.error());
                auto record = file.readAt(*at, std::size_t(file.cockpitRecordStoredSize()));
                if (!record) return invalid();
                readCockpitRecord(*record, version, set.cockpitRecords[i]);
            }
        }

        e = file.directoryEntry(kEntrySounds);
        if (e.count != 0) {
            auto map = readMap(file, e, kSoundSlots);
            if (!map) return fail(map.error());
            takeMap(set.sounds, *map);
        }
    }

    // Team and driver block.
    e = file.directoryEntry(kEntryTeams);
    if (e.count == 0) return invalid();
    {
        std::size_t size = std::size_t(teamBlockSize(sub)) + (version == 170 ? kTrailer170Size : 0);
        auto block = file.readAt(e.offset, size);
        if (!block) return invalid();
        ByteReader r(*block);
        set.teams.fill(TeamRecord{});
        set.drivers.fill(DriverRecord{});
        readTeamBlock(r, set, sub);
        if (version == 170) readTrailer170(r, set.settings);
        if (!r.ok()) return invalid();
    }

    // The pictures the set holds in memory.
    for (int t = 0; t < kRacingTeams; ++t) {
        auto livery = file.readStoredItem(kEntryLiveries, t, kLiveryMapLength, kLiveryPixels);
        if (!livery) return fail(livery.error());
        set.liveries[t] = std::move(*livery);
    }
    e = file.directoryEntry(kEntryHelmetSheet);
    if (e.count == 0) return invalid();
    auto sheet = file.readItemAt(e.offset, kHelmetSheetPixels);
    if (!sheet) return fail(sheet.error());
    set.helmetSheet = std::move(*sheet);

    set.recountAssets();
    return {};
}

// ---------------------------------------------------------------------------
// Writing
// ---------------------------------------------------------------------------

// The file being built, with a reusable buffer for coding items.
struct FileBuilder {
    ByteWriter w;
    Bytes scratch;
    bool compress = true;
};

void writeItem(FileBuilder& b, std::span<const std::uint8_t> raw) {
    Bytes& out = b.w.data();
    if (b.compress && !raw.empty()) {
        // Only a coded form below the limit is kept, so coding stops there.
        std::size_t limit = static_cast<std::size_t>(static_cast<double>(raw.size()) * 0.9);
        if (b.scratch.size() < limit + 2) b.scratch.resize(limit + 2);
        std::size_t coded = runLengthEncodeBounded(raw, b.scratch.data(), limit);
        if (runLengthPays(raw.size(), coded)) {
            std::uint8_t head[kItemHeaderSize] = {1};
            storeU32(head + 1, std::uint32_t(coded));
            out.insert(out.end(), head, head + kItemHeaderSize);
            out.insert(out.end(), b.scratch.data(), b.scratch.data() + coded);
            return;
        }
    }
    std::uint8_t head[kItemHeaderSize] = {0};
    storeU32(head + 1, std::uint32_t(raw.size()));
    out.insert(out.end(), head, head + kItemHeaderSize);
    out.insert(out.end(), raw.begin(), raw.end());
}

void setDirectoryEntry(ByteWriter& w, int entry, std::uint8_t count, std::size_t offset) {
    w.patchU8(std::size_t(entry), count);
    w.patchU32(std::size_t(entry) + 1, std::uint32_t(offset));
}

// Writes the index map and the offset table of a slotted section and returns
// where the offset table starts; `present` lists the slots in order.
std::size_t beginSlottedSection(ByteWriter& w, int mapLength, const std::vector<int>& present) {
    std::vector<std::uint8_t> map(std::size_t(mapLength), 0);
    for (std::size_t i = 0; i < present.size(); ++i) map[std::size_t(present[i])] = std::uint8_t(i + 1);
    w.bytes(map.data(), map.size());
    std::size_t table = w.size();
    w.zeros(4 * present.size());
    return table;
}

std::vector<int> presentSlots(std::span<const AssetSlot> slots, int firstSlot, bool takeNotStored) {
    std::vector<int> present;
    for (int i = firstSlot; i < int(slots.size()); ++i) {
        auto s = slots[std::size_t(i)].status;
        if (s == kAssetExternal || s == kAssetStored || (takeNotStored && s == kAssetNotStored)) present.push_back(i);
    }
    return present;
}

Status writeAssetSection(FileBuilder& b, const CarSet& set, AssetKind kind, int entry, int firstSlot) {
    ByteWriter& w = b.w;
    const int slots = assetSlotCount(kind);
    std::vector<AssetSlot> table;
    for (int i = 0; i < slots; ++i) table.push_back(assetSlot(set, kind, i));
    std::vector<int> present = presentSlots(table, firstSlot, kind == AssetKind::Cockpit);
    if (present.empty()) return {};
    setDirectoryEntry(w, entry, std::uint8_t(present.size()), w.size());
    std::size_t tableAt = beginSlottedSection(w, slots, present);
    for (std::size_t i = 0; i < present.size(); ++i) {
        int slot = present[i];
        w.patchU32(tableAt + 4 * i, std::uint32_t(w.size()));
        auto item = readAssetBytes(set, kind, slot);
        if (!item) return fail(item.error());
        if (kind == AssetKind::Cockpit) w.bytes(set.cockpitRecords[std::size_t(slot)].data(), kCockpitRecordSize);
        writeItem(b, *item);
    }
    return {};
}

Status writeMenuHelmets(FileBuilder& b, const CarSet& set) {
    ByteWriter& w = b.w;
    setDirectoryEntry(w, kEntryMenuHelmets, 1, w.size());
    std::vector<int> present;
    for (int i = 0; i < kMenuHelmetSlots; ++i) {
        auto s = set.menuHelmets[std::size_t(i)].status;
        std::uint8_t stored = s == kAssetExternal ? std::uint8_t(kAssetStored)
                              : s <= kAssetNotStored ? std::uint8_t(s) : std::uint8_t(kAssetEmpty);
        w.u8(stored);
        if (stored == kAssetStored) present.push_back(i);
    }
    std::size_t tableAt = beginSlottedSection(w, kMenuHelmetSlots, present);
    for (std::size_t i = 0; i < present.size(); ++i) {
        w.patchU32(tableAt + 4 * i, std::uint32_t(w.size()));
        auto item = readAssetBytes(set, AssetKind::MenuHelmet, present[i]);
        if (!item) return fail(item.error());
        writeItem(b, *item);
    }
    return {};
}

template <std::size_t N>
void writeNameField(ByteWriter& w, const std::array<char, N>& field, bool fold) {
    std::uint8_t out[N];
    if (fold) {
        foldNameField(field.data(), out, N);
    } else {
        std::size_t i = 0;
        for (; i < N && field[i] != '\0'; ++i) out[i] = std::uint8_t(field[i]);
        for (; i < N; ++i) out[i] = 0;
    }
    w.bytes(out, N);
}

void writeTeamBlock(ByteWriter& w, const CarSet& set) {
    const auto& teams = set.teams;
    for (const auto& t : teams) writeNameField(w, t.name, true);
    for (const auto& t : teams) writeNameField(w, t.engine, true);
    for (const auto& t : teams) w.u16(t.powerRace);
    for (const auto& t : teams) w.u16(t.powerQual);
    for (const auto& t : teams) w.u16(t.failureProbability);
    for (const auto& t : teams) w.u8(std::uint8_t(t.highNose));
    for (const auto& t : teams)
        for (auto b : t.teamBytesA) w.u8(std::uint8_t(b));
    for (const auto& t : teams)
        for (auto b : t.teamBytesB) w.u8(std::uint8_t(b));
    for (const auto& t : teams) w.u8(std::uint8_t(t.teamOrder));
    for (int car = 0; car < 2; ++car)
        for (const auto& t : teams) w.u8(std::uint8_t(t.driver[car]));
    for (int car = 0; car < 2; ++car)
        for (const auto& t : teams) w.u8(std::uint8_t(t.disabled[car]));
    for (int car = 0; car < 2; ++car)
        for (const auto& t : teams) w.u8(std::uint8_t(t.flagS[car]));
    for (int n = 1; n <= kDriverNumbers; ++n) writeNameField(w, set.drivers[n].name, true);
    for (int n = 1; n <= kDriverNumbers; ++n) w.u16(set.drivers[n].gripRace);
    for (int n = 1; n <= kDriverNumbers; ++n) w.u16(set.drivers[n].gripQual);
    for (int n = 1; n <= kDriverNumbers; ++n) w.u16(set.drivers[n].gripRandom);
    for (int n = 1; n <= kDriverNumbers; ++n) w.u8(std::uint8_t(set.drivers[n].inUse));
    for (const auto& t : teams) writeNameField(w, t.name, false);
    for (const auto& t : teams) writeNameField(w, t.engine, false);
    for (int n = 1; n <= kDriverNumbers; ++n) writeNameField(w, set.drivers[n].name, false);
    w.bytes(set.carNumbers.partA.data(), set.carNumbers.partA.size());
    w.bytes(set.carNumbers.partB.data(), set.carNumbers.partB.size());
}

// Statuses after the set was written to (or read from) a file.
void markStoredAfterSave(CarSet& set) {
    for (int i = 0; i < kTeamSlots; ++i) {
        set.teams[i].slotIndex = std::uint16_t(i);
        set.teams[i].carBitmap = AssetSlot{kAssetStored, {}};
    }
    auto stored = [](std::span<AssetSlot> slots, int first, bool takeNotStored) {
        for (int i : presentSlots(slots, first, takeNotStored)) slots[std::size_t(i)] = AssetSlot{kAssetStored, {}};
    };
    stored(set.wheels, 0, false);
    stored(set.jams, kFirstUsableJam, false);
    stored(set.sounds, 0, false);
    stored(set.cockpits, 0, true);
    for (auto& d : set.cockpitDesigns) d.clear();
    for (int i = 0; i < kMenuHelmetSlots; ++i) {
        AssetSlot& slot = set.menuHelmets[i];
        if (slot.status == kAssetExternal || slot.status == kAssetStored) {
            slot.status = kAssetStored;
            setSlotReference(slot, i);
        }
    }
    set.recountAssets();
}

Result<Bytes> readSoundFile(const fs::path& path) {
    std::error_code ec;
    if (!fs::exists(path, ec)) return fail(MessageId::FileNotFound, path.string());
    auto data = readWholeFile(path);
    if (!data) return fail(MessageId::CouldntLoadSound);
    if (data->size() < 8 || std::memcmp(data->data(), "RIFF", 4) != 0) return fail(MessageId::CouldntLoadSound);
    std::uint64_t length = std::uint64_t(loadU32(data->data() + 4)) + 8;
    if (length > data->size()) return fail(MessageId::CouldntLoadSound);
    data->resize(std::size_t(length));
    return std::move(*data);
}

Result<Bytes> readPictureFile(const fs::path& path, int width, int height) {
    std::error_code ec;
    if (!fs::exists(path, ec)) return fail(MessageId::FileNotFound, path.string());
    auto bitmap = LoadBitmap8(path, width, height);
    if (!bitmap) return fail(bitmap.error());
    // Rows are padded to 4 bytes; the stored item holds them unpadded.
    Bytes pixels;
    pixels.reserve(std::size_t(width) * std::size_t(height));
    for (int r = 0; r < height; ++r) pixels.insert(pixels.end(), bitmap->row(r), bitmap->row(r) + width);
    return pixels;
}

int jamRows(int number) { return JamInfo(number).canvasHeight; }

fs::path slotPath(const AssetSlot& slot) { return fs::path(fieldText(slot.path)); }

}  // namespace

// ---------------------------------------------------------------------------
// Public interface
// ---------------------------------------------------------------------------

int carsetfile::teamBlockSize(int subVersion) {
    int size = 2 * kTeamSlots * kTeamNameSize + 3 * 2 * kTeamSlots + kTeamSlots * (1 + 3 + 16) + 7 * kTeamSlots +
               kDriverNumbers * (kDriverNameSize + 3 * 2 + 1);
    if (subVersion >= 4) size += 2 * kTeamSlots * kTeamNameSize + kDriverNumbers * kDriverNameSize;
    if (subVersion >= 5) size += int(sizeof(CarNumberLayout::partA) + sizeof(CarNumberLayout::partB));
    return size;
}

Result<std::shared_ptr<CarSetFileHandle>> CarSetFileHandle::open(const fs::path& path) {
    std::shared_ptr<CarSetFileHandle> handle(new CarSetFileHandle());
    handle->path_ = path;
    std::error_code ec;
    if (fs::is_directory(path, ec)) return cannotOpen();
    handle->file_.open(path, std::ios::binary);
    if (!handle->file_) return cannotOpen();
    handle->file_.seekg(0, std::ios::end);
    std::streamoff end = handle->file_.tellg();
    if (!handle->file_ || end < 0) return cannotOpen();
    handle->size_ = std::uint64_t(end);
    std::size_t headerBytes = std::size_t(std::min<std::uint64_t>(handle->size_, kHeaderSize));
    auto header = handle->readAt(0, headerBytes);
    if (!header) return cannotOpen();
    std::copy(header->begin(), header->end(), handle->header_.begin());
    return handle;
}

int CarSetFileHandle::version() const {
    if (cString7(header_) != kMagic) return 0;
    return loadU16(&header_[7]);
}

int CarSetFileHandle::subVersion() const { return version() ? header_[9] : 0; }

CarSetFileHandle::DirectoryEntry CarSetFileHandle::directoryEntry(int entryOffset) const {
    DirectoryEntry e;
    if (entryOffset < 0 || entryOffset + 5 > kHeaderSize) return e;
    e.count = header_[std::size_t(entryOffset)];
    e.offset = loadU32(&header_[std::size_t(entryOffset) + 1]);
    return e;
}

Result<Bytes> CarSetFileHandle::readAt(std::uint64_t offset, std::size_t length) const {
    if (offset > size_ || length > size_ - offset) return invalid();
    Bytes data(length);
    if (length == 0) return data;
    file_.clear();
    file_.seekg(std::streamoff(offset));
    file_.read(reinterpret_cast<char*>(data.data()), std::streamsize(length));
    if (!file_ || std::size_t(file_.gcount()) != length) return cannotOpen();
    return data;
}

Result<Bytes> CarSetFileHandle::readItemAt(std::uint64_t offset, std::size_t expectedRawLength) const {
    auto head = readAt(offset, kItemHeaderSize);
    if (!head) return fail(head.error());
    std::uint8_t coded = (*head)[0];
    std::uint32_t length = loadU32(head->data() + 1);
    if (coded > 1) return invalid();
    if (coded == 0 && expectedRawLength != 0 && length != expectedRawLength) return invalid();
    auto stored = readAt(offset + kItemHeaderSize, length);
    if (!stored) return fail(stored.error());
    if (coded == 0) {
        if (length > kMaxItemLength) return invalid();
        return stored;
    }
    Bytes raw;
    std::size_t limit = expectedRawLength != 0 ? expectedRawLength : kMaxItemLength;
    raw.reserve(expectedRawLength);
    if (!runLengthDecode(*stored, raw, limit)) return invalid();
    if (expectedRawLength != 0 && raw.size() != expectedRawLength) return invalid();
    return raw;
}

Result<std::uint64_t> CarSetFileHandle::slotOffset(int directoryEntryOffset, int slot, int mapLength,
                                                   int mapPrefix) const {
    DirectoryEntry e = directoryEntry(directoryEntryOffset);
    if (e.count == 0 || slot < 0 || slot >= mapLength || mapPrefix < 0) return invalid();
    std::uint64_t mapAt = std::uint64_t(e.offset) + std::uint64_t(mapPrefix);
    auto position = readAt(mapAt + std::uint64_t(slot), 1);
    if (!position) return fail(position.error());
    int index = (*position)[0];
    if (index == 0) return invalid();
    auto entry = readAt(mapAt + std::uint64_t(mapLength) + 4 * std::uint64_t(index - 1), 4);
    if (!entry) return fail(entry.error());
    return std::uint64_t(loadU32(entry->data()));
}

Result<Bytes> CarSetFileHandle::readStoredItem(int directoryEntryOffset, int slot, int mapLength,
                                               std::size_t expectedRawLength, int mapPrefix, int itemPrefix) const {
    auto at = slotOffset(directoryEntryOffset, slot, mapLength, mapPrefix);
    if (!at) return fail(at.error());
    if (itemPrefix < 0) return invalid();
    return readItemAt(*at + std::uint64_t(itemPrefix), expectedRawLength);
}

int CarSetFileHandle::cockpitRecordStoredSize() const {
    return version() == 170 ? kCockpitRecordStoredSize170 : kCockpitRecordSize;
}

int assetSlotCount(AssetKind kind) {
    switch (kind) {
        case AssetKind::Wheel: return kWheelSlots;
        case AssetKind::Cockpit: return kCockpitSlots;
        case AssetKind::Jam: return kJamSlots;
        case AssetKind::MenuHelmet: return kMenuHelmetSlots;
        case AssetKind::Sound: return kSoundSlots;
    }
    return 0;
}

std::size_t assetItemLength(AssetKind kind, int slot) {
    switch (kind) {
        case AssetKind::Wheel: return std::size_t(kLiveryWidth) * std::size_t(jamRows(kFirstWheelJam + slot));
        case AssetKind::Jam: return std::size_t(kLiveryWidth) * std::size_t(jamRows(slot));
        case AssetKind::MenuHelmet: return kMenuHelmetPixels;
        case AssetKind::Cockpit:
        case AssetKind::Sound: return 0;
    }
    return 0;
}

const AssetSlot& assetSlot(const CarSet& set, AssetKind kind, int slot) {
    switch (kind) {
        case AssetKind::Wheel: return set.wheels.at(std::size_t(slot));
        case AssetKind::Cockpit: return set.cockpits.at(std::size_t(slot));
        case AssetKind::Jam: return set.jams.at(std::size_t(slot));
        case AssetKind::MenuHelmet: return set.menuHelmets.at(std::size_t(slot));
        case AssetKind::Sound: break;
    }
    return set.sounds.at(std::size_t(slot));
}

AssetSlot& assetSlot(CarSet& set, AssetKind kind, int slot) {
    return const_cast<AssetSlot&>(assetSlot(std::as_const(set), kind, slot));
}

Result<Bytes> readAssetBytes(const CarSet& set, AssetKind kind, int slot) {
    if (slot < 0 || slot >= assetSlotCount(kind)) return fail(MessageId::CouldntLoadFile);
    const AssetSlot& s = assetSlot(set, kind, slot);
    const std::size_t length = assetItemLength(kind, slot);
    switch (s.status) {
        case kAssetExternal: {
            fs::path path = slotPath(s);
            switch (kind) {
                case AssetKind::Sound: return readSoundFile(path);
                case AssetKind::Cockpit: {
                    std::error_code ec;
                    if (!fs::exists(path, ec)) return fail(MessageId::FileNotFound, path.string());
                    auto data = readWholeFile(path);
                    if (!data) return fail(MessageId::FailedToImportCockpit);
                    return std::move(*data);
                }
                case AssetKind::MenuHelmet: return readPictureFile(path, 104, 104);
                case AssetKind::Wheel:
                case AssetKind::Jam: return readPictureFile(path, kLiveryWidth, int(length / kLiveryWidth));
            }
            break;
        }
        case kAssetStored: {
            const CarSetFileHandle* file = set.document.openFile.get();
            if (!file) return cannotOpen();
            switch (kind) {
                case AssetKind::Wheel: return file->readStoredItem(kEntryWheels, slot, kWheelSlots, length);
                case AssetKind::Jam: return file->readStoredItem(kEntryJams, slot, kJamSlots, length);
                case AssetKind::Sound: return file->readStoredItem(kEntrySounds, slot, kSoundSlots, 0);
                case AssetKind::MenuHelmet:
                    return file->readStoredItem(kEntryMenuHelmets, slot, kMenuHelmetSlots, length, kMenuHelmetSlots);
                case AssetKind::Cockpit:
                    return file->readStoredItem(kEntryCockpits, slot, kCockpitSlots, 0, 0,
                                                file->cockpitRecordStoredSize());
            }
            break;
        }
        case kAssetNotStored:
            if (kind == AssetKind::Cockpit && !set.cockpitDesigns[std::size_t(slot)].empty())
                return set.cockpitDesigns[std::size_t(slot)];
            break;
        default: break;
    }
    return fail(MessageId::CouldntLoadFile);
}

Result<int> checkCarSetFile(const fs::path& path, const CarSetFileOptions& options, std::vector<Message>* notices) {
    auto file = CarSetFileHandle::open(path);
    if (!file) return fail(file.error());
    return checkOpenFile(**file, options, notices);
}

Status loadCarSet(CarSet& set, const fs::path& path, const CarSetFileOptions& options,
                  std::vector<Message>* notices) {
    auto file = CarSetFileHandle::open(path);
    if (!file) return fail(file.error());
    auto version = checkOpenFile(**file, options, notices);
    if (!version) return fail(version.error());

    // Everything is read into a fresh set; `set` is only touched on success.
    CarSet loaded{CarSet::WithoutPictures{}};
    loaded.transferItems = set.transferItems;
    loaded.document.workingFolder = set.document.workingFolder;
    loaded.document.currentTeam = set.document.currentTeam;
    if (auto status = readBody(loaded, **file, *version); !status) return status;

    for (int i = 0; i < kTeamSlots; ++i) {
        loaded.teams[i].slotIndex = std::uint16_t(i);
        loaded.teams[i].carBitmap = AssetSlot{i < kRacingTeams ? kAssetStored : kAssetNotStored, {}};
    }
    loaded.document.path = path;
    loaded.document.hasFile = true;
    loaded.document.dirty = false;
    loaded.document.loadedVersion = *version;
    loaded.document.openFile = std::move(*file);
    if (!loaded.document.workingFolder.empty()) deleteTemporaryAssetFiles(loaded.document.workingFolder);
    set = std::move(loaded);
    return {};
}

Result<Bytes> buildCarSetFile(const CarSet& set, const CarSetFileOptions& options) {
    FileBuilder b;
    b.compress = options.compress;
    ByteWriter& w = b.w;
    // Room for the pictures held in memory and for what the open file stores,
    // so that the growing file is not copied again and again.
    std::size_t estimate = std::size_t(kLiveryPixels) * kRacingTeams + kHelmetSheetPixels + 65536;
    if (set.document.openFile) estimate += std::size_t(std::min<std::uint64_t>(set.document.openFile->size(), 1u << 30));
    w.data().reserve(estimate);
    w.bytes(kMagic, kMagicSize);
    w.u16(kCurrentVersion);
    w.u8(kCurrentSubVersion);
    w.zeros(kHeaderSize - w.size());

    // Team liveries, from memory.
    setDirectoryEntry(w, kEntryLiveries, kRacingTeams, w.size());
    std::vector<int> teams(kRacingTeams);
    for (int t = 0; t < kRacingTeams; ++t) teams[std::size_t(t)] = t;
    std::size_t tableAt = beginSlottedSection(w, kLiveryMapLength, teams);
    for (int t = 0; t < kRacingTeams; ++t) {
        const auto& livery = set.liveries[std::size_t(t)];
        if (livery.size() != std::size_t(kLiveryPixels)) return fail(MessageId::CouldntSaveCarSet);
        w.patchU32(tableAt + 4 * std::size_t(t), std::uint32_t(w.size()));
        writeItem(b, livery);
    }

    if (set.helmetSheet.size() != std::size_t(kHelmetSheetPixels)) return fail(MessageId::CouldntSaveCarSet);
    setDirectoryEntry(w, kEntryHelmetSheet, 1, w.size());
    writeItem(b, set.helmetSheet);

    if (auto s = writeAssetSection(b, set, AssetKind::Wheel, kEntryWheels, 0); !s) return fail(s.error());
    if (auto s = writeAssetSection(b, set, AssetKind::Jam, kEntryJams, kFirstUsableJam); !s) return fail(s.error());
    if (auto s = writeAssetSection(b, set, AssetKind::Cockpit, kEntryCockpits, 0); !s) return fail(s.error());
    if (auto s = writeMenuHelmets(b, set); !s) return fail(s.error());
    if (auto s = writeAssetSection(b, set, AssetKind::Sound, kEntrySounds, 0); !s) return fail(s.error());

    setDirectoryEntry(w, kEntryTeams, 1, w.size());
    writeTeamBlock(w, set);

    setDirectoryEntry(w, kEntrySettings, 1, w.size());
    for (const SettingsRange& r : kStoredSettings180)
        for (int i = 0; i < r.count; ++i) w.u16(set.settings.words[std::size_t(r.first + i)]);

    if (set.hasInformation) {
        setDirectoryEntry(w, kEntryInformation, 1, w.size());
        std::size_t n = std::min<std::size_t>(set.information.size(), kInformationMax);
        w.u16(std::uint16_t(n));
        w.bytes(set.information.data(), n);
    }

    if (!w.ok() || w.size() > 0xFFFFFFFFu - kChecksumTrailerSize) return fail(MessageId::CouldntSaveCarSet);
    appendChecksum(w.data());
    return std::move(w.data());
}

Status saveCarSet(CarSet& set, const fs::path& path, const CarSetFileOptions& options) {
    auto bytes = buildCarSetFile(set, options);
    if (!bytes) return fail(bytes.error());
    // The open file (possibly the very file being replaced) stays open through
    // the rename, so status-2 items remain readable until the new handle takes over.
    if (!writeFileAtomically(path, *bytes)) return fail(MessageId::CouldntSaveCarSet);
    auto file = CarSetFileHandle::open(path);
    if (!file) return fail(MessageId::CouldntSaveCarSet);

    markStoredAfterSave(set);
    set.document.openFile = std::move(*file);
    set.document.path = path;
    set.document.hasFile = true;
    set.document.dirty = false;
    set.document.loadedVersion = kCurrentVersion;
    return {};
}

}  // namespace tarvel
