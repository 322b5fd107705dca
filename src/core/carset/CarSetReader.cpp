// Reading a car set file: the format check and the load of every section.
#include "carset/CarSetFile.h"

#include "carset/CarSetFileFormat.h"
#include "carset/FieldSchema.h"
#include "carset/SettingsDefaults.h"
#include "common/Checksum.h"
#include "graphics/Helmets.h"

#include <algorithm>
#include <cstdio>
#include <string>

namespace tarvel {

namespace fs = std::filesystem;
using namespace carsetfile;

namespace {

constexpr std::size_t kChecksumChunk = 1u << 20;
// The asset tables in the order their maps are read.
constexpr AssetKind kReadOrder[] = {AssetKind::Wheel, AssetKind::Jam, AssetKind::MenuHelmet, AssetKind::Cockpit,
                                    AssetKind::Sound};
// The 66-byte settings area of version 160: game settings, laps, then the
// first six global car settings.
constexpr SettingsRange kStoredSettings160[] = {
    settings::kGame, settings::kLaps, {settings::kGlobalCar.first, 6},
};
constexpr std::size_t kSettingsSize170 = 104;
constexpr std::size_t kSettingsSize160 = 66;
constexpr std::size_t kTrailer170Size = 63;

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
    for (auto& t : teams) t.failureProbability = std::min<std::uint16_t>(r.u16(), fieldrange::kPositive.high);
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


// Format check on an open file: header test, then the checksum trailer.
Result<int> checkOpenFile(const CarSetFileHandle& file, const CarSetFileOptions& options,
                          std::vector<Message>* notices) {
    if (file.size() < kMagicSize)
        return invalid("the file is " + groupedNumber(file.size()) + " bytes long, too short for a car set");
    auto head = file.readAt(0, std::min<std::uint64_t>(file.size(), 9));
    if (!head) return fail(head.error());
    std::string magic = headerMagic(*head);
    int version = 0;
    if (magic == kMagic) {
        if (head->size() < 9) return invalid("the file ends inside its header");
        int stored = loadU16(head->data() + 7);
        if (stored == 160 || stored == 170 || stored == 180) {
            version = stored;
        } else if (stored > 180) {
            if (notices) {
                char number[32];
                std::snprintf(number, sizeof number, "%.2f", stored * 0.01);
                notices->push_back(Message{MessageId::RequiresNewerVersion, number});
            }
            return invalid("format version " + std::to_string(stored) + " is newer than this program reads");
        } else {
            return invalid("unknown format version " + std::to_string(stored));
        }
    } else if (magic == "120" || magic == "set") {
        // The oldest formats (120 and 100) are not read.
        return invalid(std::string("format ") + (magic == "set" ? "100" : "120") + " is too old to be read");
    }
    if (version == 0) return invalid("not a car set file: it does not start with a car set header");

    if (options.verifyChecksum) {
        if (file.size() < kChecksumTrailerSize) return invalid("the file ends before its checksum");
        std::uint64_t body = file.size() - kChecksumTrailerSize;
        Checksum sum;
        for (std::uint64_t at = 0; at < body;) {
            std::size_t n = std::size_t(std::min<std::uint64_t>(kChecksumChunk, body - at));
            auto chunk = file.readAt(at, n);
            if (!chunk) return fail(chunk.error());
            sum.update(*chunk);
            at += n;
        }
        auto trailer = file.readAt(body, kChecksumTrailerSize);
        if (!trailer) return fail(trailer.error());
        Checksum stored;
        readChecksumTrailer(*trailer, stored);
        if (!(stored == sum)) return invalid("checksum does not match: the file was changed or damaged");
    }
    return version;
}

Result<Bytes> readMap(const CarSetFileHandle& file, CarSetFileHandle::DirectoryEntry entry, std::size_t length,
                      std::string_view what) {
    return inside(file.readAt(std::uint64_t(entry.offset), length), what);
}

// Slots whose map position is non-zero get status 2 and an empty path.
void takeMap(std::span<AssetSlot> slots, const Bytes& map, int firstSlot = 0) {
    for (std::size_t i = std::size_t(firstSlot); i < slots.size() && i < map.size(); ++i)
        if (map[i] != 0) slots[i] = AssetSlot{kAssetStored, {}};
}

// A status map (menu helmets): one status byte per slot.
Status takeStatusMap(std::span<AssetSlot> slots, const Bytes& statuses) {
    for (std::size_t i = 0; i < slots.size() && i < statuses.size(); ++i) {
        const std::uint8_t s = statuses[i];
        AssetSlot& slot = slots[i];
        slot = AssetSlot{};
        if (s == kAssetExternal || s == kAssetStored) {
            slot.status = kAssetStored;
            setSlotReference(slot, int(i));
        } else if (s == kAssetNotStored) {
            slot.status = kAssetNotStored;
        } else if (s != kAssetEmpty) {
            return invalid("menu helmet " + std::to_string(i) + " has an unknown status " + std::to_string(s));
        }
    }
    return {};
}

Status readBody(CarSet& set, const CarSetFileHandle& file, int version) {
    const int sub = file.subVersion();
    using Entry = CarSetFileHandle::DirectoryEntry;

    // Settings (the set starts from the defaults of every range).
    Entry e = file.directoryEntry(kEntrySettings);
    if (e.count != 0) {
        std::size_t size = version == 180 ? std::size_t(kSettingsBlockSize)
                           : version == 170 ? kSettingsSize170 : kSettingsSize160;
        auto bytes = inside(file.readAt(e.offset, size), "the settings");
        if (!bytes) return fail(bytes.error());
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
        auto length = inside(file.readAt(e.offset, 2), "the information text");
        if (!length) return fail(length.error());
        std::size_t n = std::min<std::size_t>(loadU16(length->data()), kInformationMax);
        auto text = inside(file.readAt(std::uint64_t(e.offset) + 2, n), "the information text");
        if (!text) return fail(text.error());
        set.information.assign(text->begin(), text->end());
    }

    // The asset tables. A version 160 file only says whether all four wheels
    // are present, and holds no other asset table.
    for (AssetKind kind : kReadOrder) {
        const AssetKindInfo& k = assetKind(kind);
        e = file.directoryEntry(k.directoryEntry);
        if (e.count == 0) continue;
        std::span<AssetSlot> slots = k.editSlots(set);
        if (version == 160) {
            if (kind == AssetKind::Wheel)
                for (auto& w : slots) w = AssetSlot{kAssetStored, {}};
            continue;
        }
        const std::string table = "the " + std::string(k.label) + " table";
        auto map = readMap(file, e, std::size_t(k.slotCount), table);
        if (!map) return fail(map.error());
        if (k.statusMap) {
            if (Status taken = takeStatusMap(slots, *map); !taken) return taken;
        } else {
            takeMap(slots, *map, k.firstSlot);
        }
        if (!k.recordBeforeItem) continue;
        for (int i = 0; i < k.slotCount; ++i) {
            if ((*map)[std::size_t(i)] == 0) continue;
            auto at = inside(file.slotOffset(k.directoryEntry, i, k.slotCount), table);
            if (!at) return fail(at.error());
            auto record = inside(file.readAt(*at, std::size_t(file.cockpitRecordStoredSize())), "a cockpit colour record");
            if (!record) return fail(record.error());
            readCockpitRecord(*record, version, set.cockpitRecords[std::size_t(i)]);
        }
    }

    // Team and driver block.
    e = file.directoryEntry(kEntryTeams);
    if (e.count == 0) return invalid("the file has no team and driver block");
    {
        std::size_t size = std::size_t(teamBlockSize(sub)) + (version == 170 ? kTrailer170Size : 0);
        auto block = inside(file.readAt(e.offset, size), "the team and driver block");
        if (!block) return fail(block.error());
        ByteReader r(*block);
        set.teams.fill(TeamRecord{});
        set.drivers.fill(DriverRecord{});
        readTeamBlock(r, set, sub);
        if (version == 170) readTrailer170(r, set.settings);
        if (!r.ok()) return invalid("the team and driver block is cut short");
    }

    // The pictures the set holds in memory.
    for (int t = 0; t < kRacingTeams; ++t) {
        auto livery = inside(file.readStoredItem(kEntryLiveries, t, kLiveryMapLength, kLiveryPixels),
                             "the livery of team " + std::to_string(t + 1));
        if (!livery) return fail(livery.error());
        set.liveries[t] = std::move(*livery);
    }
    if (version == 160) {
        // Version 160 keeps no helmet sheet: the set takes the built-in one.
        BitmapBuffer sheet = BuildDefaultHelmetSheet();
        set.helmetSheet.assign(sheet.pixels(), sheet.pixels() + kHelmetSheetPixels);
    } else {
        e = file.directoryEntry(kEntryHelmetSheet);
        if (e.count == 0) return invalid("the file has no helmet sheet");
        auto sheet = inside(file.readItemAt(e.offset, kHelmetSheetPixels), "the helmet sheet");
        if (!sheet) return fail(sheet.error());
        set.helmetSheet = std::move(*sheet);
    }

    set.recountAssets();
    return {};
}

// A file that fails its checksum because it was cut short says so: the reader
// is run without the checksum to find where it ends.
Message explainChecksumFailure(const CarSetFileHandle& file, Message failure) {
    auto version = checkOpenFile(file, CarSetFileOptions{false, false}, nullptr);
    if (!version) return failure;
    CarSet scratch{CarSet::WithoutPictures{}};
    if (Status read = readBody(scratch, file, *version); !read && read.error().detail.starts_with("the file ends"))
        return read.error();
    return failure;
}

Result<int> checkFile(const CarSetFileHandle& file, const fs::path& path, const CarSetFileOptions& options,
                      std::vector<Message>* notices) {
    auto version = checkOpenFile(file, options, notices);
    if (version) return version;
    Message failure = version.error();
    if (failure.detail.starts_with("checksum")) failure = explainChecksumFailure(file, std::move(failure));
    return fail(aboutFile(std::move(failure), path));
}

}  // namespace

Result<int> checkCarSetFile(const fs::path& path, const CarSetFileOptions& options, std::vector<Message>* notices) {
    auto file = CarSetFileHandle::open(path);
    if (!file) return fail(file.error());
    return checkFile(**file, path, options, notices);
}

Result<int> loadCarSet(CarSet& set, const fs::path& path, const CarSetFileOptions& options,
                       std::vector<Message>* notices) {
    auto file = CarSetFileHandle::open(path);
    if (!file) return fail(file.error());
    auto version = checkFile(**file, path, options, notices);
    if (!version) return fail(version.error());

    // Everything is read into a fresh set; `set` is only touched on success.
    CarSet loaded{CarSet::WithoutPictures{}};
    if (Status read = readBody(loaded, **file, *version); !read) return fail(aboutFile(read.error(), path));

    for (int i = 0; i < kTeamSlots; ++i) {
        loaded.teams[i].slotIndex = std::uint16_t(i);
        loaded.teams[i].carBitmap = AssetSlot{i < kRacingTeams ? kAssetStored : kAssetNotStored, {}};
    }
    loaded.storedItems = std::move(*file);
    set = std::move(loaded);
    return *version;
}

}  // namespace tarvel
