// Writing a car set file: the whole file built in memory, then saved through
// a temporary file and a rename.
#include "carset/CarSetFile.h"

#include "carset/CarSetFileFormat.h"
#include "carset/AsciiFold.h"
#include "common/Checksum.h"
#include "common/FileIO.h"
#include "common/RunLength.h"

#include <algorithm>
#include <cstring>

namespace tarvel {

namespace fs = std::filesystem;
using namespace carsetfile;

namespace {

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

// The sections of the asset tables, in the order the file holds them.
constexpr AssetKind kWriteOrder[] = {AssetKind::Wheel, AssetKind::Jam, AssetKind::Cockpit, AssetKind::MenuHelmet,
                                     AssetKind::Sound};

// The status byte a status-map section keeps for a slot: an outside file is
// stored from now on, an unknown status is written as empty.
std::uint8_t storedStatus(std::uint16_t status) {
    if (status == kAssetExternal) return kAssetStored;
    return status <= kAssetNotStored ? std::uint8_t(status) : std::uint8_t(kAssetEmpty);
}

Status writeAssetSection(FileBuilder& b, const CarSet& set, const AssetKindInfo& kind) {
    ByteWriter& w = b.w;
    const std::span<const AssetSlot> slots = kind.view(set);
    std::vector<int> present;
    if (kind.statusMap) {
        // Always present: one status byte per slot, then the slotted items.
        setDirectoryEntry(w, kind.directoryEntry, 1, w.size());
        for (int i = 0; i < kind.slotCount; ++i) {
            const std::uint8_t stored = storedStatus(slots[std::size_t(i)].status);
            w.u8(stored);
            if (stored == kAssetStored) present.push_back(i);
        }
    } else {
        present = presentSlots(slots, kind.firstSlot, kind.storesNotStored);
        if (present.empty()) return {};
        setDirectoryEntry(w, kind.directoryEntry, std::uint8_t(present.size()), w.size());
    }
    const std::size_t tableAt = beginSlottedSection(w, kind.slotCount, present);
    for (std::size_t i = 0; i < present.size(); ++i) {
        const int slot = present[i];
        w.patchU32(tableAt + 4 * i, std::uint32_t(w.size()));
        auto item = readAssetBytes(set, kind.kind, slot);
        if (!item) return fail(item.error());
        if (kind.recordBeforeItem) w.bytes(set.cockpitRecords[std::size_t(slot)].data(), kCockpitRecordSize);
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
    for (const AssetKindInfo& kind : kAssetKinds) {
        std::span<AssetSlot> slots = kind.editSlots(set);
        if (kind.statusMap) {
            for (int i = 0; i < kind.slotCount; ++i) {
                AssetSlot& slot = slots[std::size_t(i)];
                if (storedStatus(slot.status) != kAssetStored) continue;
                slot.status = kAssetStored;
                setSlotReference(slot, i);
            }
        } else {
            for (int i : presentSlots(slots, kind.firstSlot, kind.storesNotStored))
                slots[std::size_t(i)] = AssetSlot{kAssetStored, {}};
        }
    }
    for (auto& d : set.cockpitDesigns) d.clear();
    set.recountAssets();
}

}  // namespace

Result<Bytes> buildCarSetFile(const CarSet& set, const CarSetFileOptions& options) {
    FileBuilder b;
    b.compress = options.compress;
    ByteWriter& w = b.w;
    // Room for the pictures held in memory and for what the open file stores,
    // so that the growing file is not copied again and again.
    std::size_t estimate = std::size_t(kLiveryPixels) * kRacingTeams + kHelmetSheetPixels + 65536;
    if (set.storedItems) estimate += std::size_t(std::min<std::uint64_t>(set.storedItems->size(), 1u << 30));
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

    for (AssetKind kind : kWriteOrder)
        if (Status written = writeAssetSection(b, set, assetKind(kind)); !written) return fail(written.error());

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
    if (std::string reason; !writeFileAtomically(path, *bytes, &reason))
        return fail(aboutFile(Message{MessageId::CouldntSaveCarSet, {}, reason}, path));
    auto file = CarSetFileHandle::open(path);
    if (!file) return fail(MessageId::CouldntSaveCarSet);

    markStoredAfterSave(set);
    set.storedItems = std::move(*file);
    return {};
}

}  // namespace tarvel
