#include "carset/CarSetFile.h"

#include "CarSetTestSupport.h"
#include "carset/SettingsDefaults.h"
#include "common/Checksum.h"
#include "graphics/Bitmap.h"
#include "graphics/JamCatalogue.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <random>

namespace tarvel {
namespace {

using test::makeWave;
using test::ScratchFolder;

CarSetFileOptions checked() { return CarSetFileOptions{}; }
CarSetFileOptions unchecked() {
    CarSetFileOptions o;
    o.verifyChecksum = false;
    return o;
}

// A set in which every stored field differs from its default; even liveries
// code well, odd ones stay raw.
CarSet richSet() {
    CarSet set;
    test::scramble(set, 99);
    std::mt19937 rng(99);
    for (int t = 0; t < kRacingTeams; ++t) {
        if (t % 2 == 0) set.liveries[t].assign(kLiveryPixels, std::uint8_t(t));
        else
            for (auto& p : set.liveries[t]) p = std::uint8_t(rng());
    }
    for (std::size_t i = 0; i < set.helmetSheet.size(); ++i) set.helmetSheet[i] = std::uint8_t(i / 1000);
    return set;
}

Bytes pictureFile(int width, int height, std::uint8_t seed) {
    BitmapBuffer bitmap(width, height);
    for (int r = 0; r < height; ++r)
        for (int x = 0; x < width; ++x) bitmap.row(r)[x] = std::uint8_t(1 + (seed + x * 3 + r) % 150);
    return encodeBitmapKeepingPalette(bitmap);
}

std::size_t directoryOffset(const Bytes& file, int entry) { return loadU32(&file[std::size_t(entry) + 1]); }

// The writer's output pinned byte for byte: file size and checksum trailer.
std::string fingerprint(const Bytes& file) {
    char text[48];
    std::snprintf(text, sizeof text, "%zu:%02x%02x%02x%02x", file.size(), file[file.size() - 4], file[file.size() - 3],
                  file[file.size() - 2], file[file.size() - 1]);
    return text;
}

// Default sets written coded and raw, pinned (the set with every field and
// every asset table is pinned below).
TEST(CarSetFile, WrittenBytesAreUnchanged) {
    struct Case {
        const char* name;
        CarSet set;
        bool compress;
        const char* fingerprint;
    };
    CarSet withInformation;
    withInformation.hasInformation = true;
    withInformation.information = "text";
    const Case cases[] = {
        {"default", CarSet{}, true, "49073:82166ff3"},
        {"default, raw", CarSet{}, false, "638723:c3ba941f"},
        {"information", withInformation, true, "49079:b819d57a"},
    };
    for (const Case& c : cases) {
        CarSetFileOptions options;
        options.compress = c.compress;
        auto file = buildCarSetFile(c.set, options);
        ASSERT_TRUE(file) << c.name;
        EXPECT_EQ(fingerprint(*file), c.fingerprint) << c.name;
        EXPECT_TRUE(checksumTrailerMatches(*file)) << c.name;
    }
}

// Every asset table taken from outside files, over a set with every field set.
class CarSetAssets : public ::testing::Test {
protected:
    void SetUp() override {
        test::writeFileBytes(dir / "wheel.bmp", pictureFile(256, JamInfo(kFirstWheelJam + 2).canvasHeight, 3));
        test::writeFileBytes(dir / "jam.bmp", pictureFile(256, JamInfo(40).canvasHeight, 9));
        test::writeFileBytes(dir / "menu.bmp", pictureFile(104, 104, 5));
        test::writeFileBytes(dir / "a.wav", makeWave(5000, 1, 17));
        test::writeFileBytes(dir / "b.wav", makeWave(300, 200));
        cockpit = Bytes(777, 4);
        for (std::size_t i = 0; i < cockpit.size(); i += 13) cockpit[i] = 220;
        test::writeFileBytes(dir / "cockpit.cpd", cockpit);
        external(set.wheels[2], "wheel.bmp");
        external(set.jams[40], "jam.bmp");
        external(set.menuHelmets[7], "menu.bmp");
        set.menuHelmets[8].status = kAssetNotStored;
        external(set.sounds[0], "a.wav");
        external(set.sounds[99], "b.wav");
        external(set.cockpits[1], "cockpit.cpd");
        set.cockpitRecords[1].fill(0x5A);
        set.cockpitRecords[1][0] = 1;
        set.cockpits[0].status = kAssetNotStored;
        set.cockpitDesigns[0] = Bytes(64, 0xC8);
        set.recountAssets();
    }
    void external(AssetSlot& slot, const std::string& name) {
        slot.status = kAssetExternal;
        setFieldText(slot.path.data(), slot.path.size(), (dir / name).string());
    }
    struct Item {
        AssetKind kind;
        int slot;
    };
    static constexpr Item kItems[] = {
        {AssetKind::Wheel, 2},  {AssetKind::Jam, 40},    {AssetKind::MenuHelmet, 7}, {AssetKind::Sound, 0},
        {AssetKind::Sound, 99}, {AssetKind::Cockpit, 1}, {AssetKind::Cockpit, 0},
    };
    std::vector<Bytes> readAll(const CarSet& s) {
        std::vector<Bytes> items;
        for (const Item& item : kItems) {
            auto bytes = readAssetBytes(s, item.kind, item.slot);
            EXPECT_TRUE(bytes) << int(item.kind) << "/" << item.slot;
            items.push_back(bytes ? *bytes : Bytes{});
        }
        return items;
    }
    Bytes saved() {
        EXPECT_TRUE(saveCarSet(set, dir / "set.gp2", checked()));
        return test::readFileBytes(dir / "set.gp2");
    }

    ScratchFolder dir;
    CarSet set = richSet();
    Bytes cockpit;
};

// A set with every field and every asset table saved and loaded: external
// items are read in their stored form, saved, and read back (and saved again)
// byte for byte; the file is pinned.
TEST_F(CarSetAssets, EveryKindIsStoredAndReadBackByteForByte) {
    const auto before = readAll(set);
    EXPECT_EQ(before[0].size(), 256u * JamInfo(17).canvasHeight);
    EXPECT_EQ(before[1].size(), 256u * JamInfo(40).canvasHeight);
    ASSERT_EQ(before[2].size(), 10816u);
    EXPECT_EQ(before[2][0], 1 + 5 % 150);     // bottom row first, as the bitmap holds it
    EXPECT_EQ(before[2][104], 1 + 6 % 150);
    EXPECT_EQ(before[3], makeWave(5000, 1));  // the bytes behind the RIFF chunk are not part of it
    EXPECT_EQ(before[4], makeWave(300, 200));
    EXPECT_EQ(before[5], cockpit);
    EXPECT_EQ(before[6], Bytes(64, 0xC8));
    for (auto [kind, slot] : {std::pair{AssetKind::Sound, 1}, {AssetKind::Sound, 100}, {AssetKind::MenuHelmet, 8}})
        EXPECT_FALSE(readAssetBytes(set, kind, slot)) << slot;   // empty slots have no item

    const Bytes file = saved();
    EXPECT_EQ(fingerprint(file), "418173:2234b6ca");
    // The saved set now refers to the new file.
    for (const AssetSlot* slot : {&set.wheels[2], &set.sounds[99], &set.cockpits[0], &set.menuHelmets[7]})
        EXPECT_EQ(slot->status, kAssetStored);
    EXPECT_EQ(fieldText(set.wheels[2].path), "");
    EXPECT_EQ(loadU16(reinterpret_cast<const std::uint8_t*>(set.menuHelmets[7].path.data()) + 2), 7);
    EXPECT_EQ(set.menuHelmets[8].status, kAssetNotStored);
    EXPECT_EQ(readAll(set), before);

    CarSet loaded;
    ASSERT_TRUE(loadCarSet(loaded, dir / "set.gp2", checked()));
    test::expectSameStoredData(set, loaded);
    EXPECT_EQ(loaded.liveries, set.liveries);
    EXPECT_EQ(loaded.helmetSheet, set.helmetSheet);
    EXPECT_EQ(fieldText(loaded.teams[0].name), "\xC9quipe 0");   // the unfolded name wins over the folded copy
    for (int i = 0; i < kTeamSlots; ++i) {
        EXPECT_EQ(loaded.teams[i].slotIndex, i);
        EXPECT_EQ(loaded.teams[i].carBitmap.status, i < kRacingTeams ? kAssetStored : kAssetNotStored);
    }
    EXPECT_EQ(readAll(loaded), before);
    EXPECT_EQ((std::array{loaded.wheelCount, loaded.jamCount, loaded.soundCount, loaded.cockpitCount, loaded.menuHelmetCount}),
              (std::array<std::uint8_t, 5>{1, 1, 2, 2, 2}));
    EXPECT_EQ(loaded.menuHelmets[8].status, kAssetNotStored);
    EXPECT_EQ(loaded.cockpitRecords, set.cockpitRecords);
    // A set loaded from a file is saved again with items from that file.
    ASSERT_TRUE(saveCarSet(loaded, dir / "copy.gp2", checked()));
    EXPECT_EQ(test::readFileBytes(dir / "copy.gp2"), file);
    // The open file is still read after a rename and a delete.
    std::filesystem::rename(dir / "set.gp2", dir / "moved.gp2");
    EXPECT_EQ(readAll(set), before);
    std::filesystem::remove(dir / "moved.gp2");
    EXPECT_EQ(readAll(set), before);
}

TEST_F(CarSetAssets, SavingOverTheOpenFileKeepsItsItems) {
    auto before = readAll(set);
    saved();
    CarSet loaded;
    ASSERT_TRUE(loadCarSet(loaded, dir / "set.gp2", checked()));
    loaded.teams[0].powerRace = 1234;
    loaded.sounds[0] = AssetSlot{};  // one item dropped
    loaded.recountAssets();
    ASSERT_TRUE(saveCarSet(loaded, dir / "set.gp2", checked()));
    CarSet again;
    ASSERT_TRUE(loadCarSet(again, dir / "set.gp2", checked()));
    EXPECT_EQ(again.teams[0].powerRace, 1234);
    EXPECT_EQ(again.sounds[0].status, kAssetEmpty);
    // The saved set reads its items from the new file.
    EXPECT_FALSE(readAssetBytes(loaded, AssetKind::Sound, 0));
    for (std::size_t i = 0; i < std::size(kItems); ++i)
        if (i != 3) {
            EXPECT_EQ(readAssetBytes(loaded, kItems[i].kind, kItems[i].slot).value_or(Bytes{}), before[i]) << i;
        }
}

TEST_F(CarSetAssets, FailedSaveLeavesTheOldFileAndTheModel) {
    const Bytes old = saved();
    CarSet edited = set;
    edited.teams[0].powerRace = 999;
    external(edited.sounds[5], "missing.wav");
    edited.recountAssets();
    const CarSet copy = edited;
    auto status = saveCarSet(edited, dir / "set.gp2", checked());
    ASSERT_FALSE(status);
    EXPECT_EQ(status.error().id, MessageId::FileNotFound);
    EXPECT_EQ(test::readFileBytes(dir / "set.gp2"), old);
    EXPECT_EQ(edited.sounds[5].status, kAssetExternal);
    EXPECT_EQ(edited.sounds[5].path, copy.sounds[5].path);
    EXPECT_EQ(edited.storedItems, copy.storedItems);
    // A damaged sound says why.
    const Bytes wave = makeWave(300, 1);
    const struct {
        Bytes file;
        const char* reason;
    } sounds[] = {
        {Bytes{'R', 'I', 'F'}, "bad.wav: not a RIFF WAVE sound file"},
        {Bytes(wave.begin(), wave.begin() + 100),
         "bad.wav: the file ends at byte 100 inside its sound data (344 bytes announced)"},
    };
    for (const auto& c : sounds) {
        test::writeFileBytes(dir / "bad.wav", c.file);
        external(edited.sounds[5], "bad.wav");
        auto refused = saveCarSet(edited, dir / "set.gp2", checked());
        ASSERT_FALSE(refused);
        EXPECT_EQ(refused.error().id, MessageId::CouldntLoadSound);
        EXPECT_EQ(refused.error().detail, c.reason);
    }
    // A folder that does not exist cannot take the file, and no temporary file is left.
    edited.sounds[5] = AssetSlot{};
    EXPECT_EQ(saveCarSet(edited, dir / "no-such-folder" / "x.gp2", checked()).error().id, MessageId::CouldntSaveCarSet);
    int files = 0;
    for (auto& e : std::filesystem::directory_iterator(dir.path())) files += e.path().extension() == ".gp2" ? 1 : 0;
    EXPECT_EQ(files, 1);
}

TEST_F(CarSetAssets, DamagedItemOffsetsGiveErrors) {
    const Bytes file = saved();
    const std::size_t sounds = directoryOffset(file, 99);
    Bytes bad = file;
    storeU32(&bad[sounds + 100], 0xFFFFFF00u);                   // first sound points past the end
    storeU32(&bad[sounds + 104], std::uint32_t(bad.size() - 6));  // second sound's length runs past the end
    bad[sounds + 99] = 7;  // map position beyond the offset table is read from wherever it lands
    test::writeFileBytes(dir / "bad.gp2", bad);
    CarSet loaded;
    ASSERT_TRUE(loadCarSet(loaded, dir / "bad.gp2", unchecked()));
    EXPECT_FALSE(readAssetBytes(loaded, AssetKind::Sound, 0));
    EXPECT_FALSE(readAssetBytes(loaded, AssetKind::Sound, 99));
    // A coded item that decodes to the wrong size.
    bad = file;
    std::size_t item = loadU32(&bad[directoryOffset(file, 109) + 72]);
    bad[item] = 1;
    storeU32(&bad[item + 1], 2);
    bad[item + 5] = 255;
    test::writeFileBytes(dir / "bad2.gp2", bad);
    ASSERT_TRUE(loadCarSet(loaded, dir / "bad2.gp2", unchecked()));
    EXPECT_EQ(readAssetBytes(loaded, AssetKind::MenuHelmet, 7).error().id, MessageId::NotValidCarSet);
}

TEST_F(CarSetAssets, TruncatedFilesAreRefusedAndLeaveTheSetAlone) {
    const Bytes file = saved();
    CarSet loaded;
    ASSERT_TRUE(loadCarSet(loaded, dir / "set.gp2", checked()));
    loaded.teams[3].powerQual = 4;  // an unsaved edit
    const CarSet before = loaded;
    // Cut inside every section: header, livery map, coded and raw liveries,
    // helmet sheet, team block, settings, information text, each asset table.
    std::vector<std::size_t> cuts = {0, 5, 8, 100, 255, 256, 260, 300, 20000, 300000, file.size() - 6};
    for (int entry : {69, 84, 89, 94, 74, 79, 99, 104, 109}) {
        std::size_t at = directoryOffset(file, entry);
        ASSERT_GT(at, 0u) << entry;
        for (std::size_t into : {0, 1, 7, 40})
            if (at + into < file.size() - 4) cuts.push_back(at + into);
    }
    for (std::size_t cut : cuts) {
        ASSERT_LT(cut, file.size() - 4);
        SCOPED_TRACE(cut);
        test::writeFileBytes(dir / "cut.gp2", Bytes(file.begin(), file.begin() + std::ptrdiff_t(cut)));
        for (const auto& options : {checked(), unchecked()}) {
            auto status = loadCarSet(loaded, dir / "cut.gp2", options);
            ASSERT_FALSE(status);
            EXPECT_EQ(status.error().id, MessageId::NotValidCarSet);
            // The reason names the file and says where it ends (or why it is not a set at all).
            const std::string& detail = status.error().detail;
            EXPECT_TRUE(detail.starts_with("cut.gp2: ")) << detail;
            if (cut >= 9) {
                EXPECT_TRUE(detail.starts_with("cut.gp2: the file ends at byte " + groupedNumber(cut))) << detail;
            }
        }
        EXPECT_EQ(loaded.teams[3].powerQual, 4);
        EXPECT_EQ(loaded.storedItems, before.storedItems);
    }
    test::expectSameTables(loaded, before);
    EXPECT_EQ(loaded.liveries, before.liveries);
    EXPECT_EQ(loaded.information, before.information);
}

// --- checking and refusing files ------------------------------------------

Bytes savedDefaultFile(const ScratchFolder& dir) {
    CarSet set;
    set.hasInformation = true;
    set.information = "text";
    EXPECT_TRUE(saveCarSet(set, dir / "good.gp2", checked()));
    return test::readFileBytes(dir / "good.gp2");
}

// Version and magic: the versions read, the newer one noticed, the rest refused.
TEST(CarSetFileCheck, VersionsAndMagic) {
    ScratchFolder dir;
    const Bytes good = savedDefaultFile(dir);
    auto version = [&](int v) {
        Bytes b = good;
        storeU16(&b[7], std::uint16_t(v));
        return b;
    };
    auto magic = [](const char* text) {
        Bytes b(400, 0);
        std::memcpy(b.data(), text, 4);
        return b;
    };
    Bytes noZero = good;
    noZero[6] = 'S';   // the magic must end with its zero byte
    const struct {
        Bytes file;
        int version;
        const char* notice;
        const char* reason;   // the detail after "x.gp2: "
    } cases[] = {
        {good, 180, nullptr, ""},
        {version(170), 170, nullptr, ""},
        {version(181), 0, "This file requires Tarvel v1.81.", "format version 181 is newer than this program reads"},
        {version(179), 0, nullptr, "unknown format version 179"},
        {version(120), 0, nullptr, "unknown format version 120"},
        {version(0), 0, nullptr, "unknown format version 0"},
        {magic("120"), 0, nullptr, "format 120 is too old to be read"},
        {magic("set"), 0, nullptr, "format 100 is too old to be read"},
        {noZero, 0, nullptr, "not a car set file: it does not start with a car set header"},
        {Bytes{}, 0, nullptr, "the file is 0 bytes long, too short for a car set"},
        {Bytes{'T', 'A', 'R'}, 0, nullptr, "the file is 3 bytes long, too short for a car set"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.version << " " << c.file.size());
        test::writeFileBytes(dir / "x.gp2", c.file);
        std::vector<Message> notices;
        auto checkedVersion = checkCarSetFile(dir / "x.gp2", unchecked(), &notices);
        EXPECT_EQ(checkedVersion.value_or(0), c.version);
        if (!checkedVersion) {
            EXPECT_EQ(checkedVersion.error().id, MessageId::NotValidCarSet);
            EXPECT_EQ(checkedVersion.error().detail, std::string("x.gp2: ") + c.reason);
        }
        EXPECT_EQ(notices.size() == 1 ? messageText(notices[0]) : std::to_string(notices.size()), c.notice ? c.notice : "0");
    }
    const Message missing = checkCarSetFile(dir / "none.gp2", checked()).error();
    EXPECT_EQ(messageText(missing), "Couldn't Open Car Set File.");
    EXPECT_EQ(missing.detail, "none.gp2: no such file");
    EXPECT_EQ(checkCarSetFile(dir.path(), checked()).error().id, MessageId::CouldntOpenCarSetFile);
    EXPECT_TRUE(checkCarSetFile(dir.path(), checked()).error().detail.ends_with(": a folder, not a file"));
}

TEST(CarSetFileCheck, ChecksumOption) {
    ScratchFolder dir;
    const Bytes good = savedDefaultFile(dir);
    Bytes file = good;
    file[directoryOffset(file, 84) + 520] ^= 0x01;   // the first team's power
    test::writeFileBytes(dir / "x.gp2", file);
    CarSet set;
    auto refused = loadCarSet(set, dir / "x.gp2", checked());
    ASSERT_FALSE(refused);
    EXPECT_EQ(messageText(refused.error()), "File is not a valid Tarvel Car Set.");
    EXPECT_EQ(refused.error().detail, "x.gp2: checksum does not match: the file was changed or damaged");
    EXPECT_FALSE(set.storedItems);
    ASSERT_TRUE(loadCarSet(set, dir / "x.gp2", unchecked()));
    EXPECT_EQ(set.teams[0].powerRace, 760 ^ 1);
    // A wrong trailer alone.
    file = good;
    file.back() ^= 0x80;
    test::writeFileBytes(dir / "y.gp2", file);
    EXPECT_FALSE(loadCarSet(set, dir / "y.gp2", checked()));
    EXPECT_TRUE(loadCarSet(set, dir / "y.gp2", unchecked()));
}

TEST(CarSetFileCheck, HostileDirectoryAndLengths) {
    ScratchFolder dir;
    const Bytes good = savedDefaultFile(dir);
    const std::size_t sheet = directoryOffset(good, 69);
    const std::pair<const char*, std::function<void(Bytes&)>> damages[] = {
        {"team block far away", [](Bytes& b) { storeU32(&b[85], 0xFFFFFFF0u); }},
        {"team block missing", [](Bytes& b) { b[84] = 0; }},
        {"livery map position beyond the table", [](Bytes& b) { b[256 + 3] = 200; }},
        {"item neither raw nor coded", [&](Bytes& b) { b[sheet] = 7; }},
        {"item length beyond the file", [&](Bytes& b) { storeU32(&b[sheet + 1], 0xFFFFFFFFu); }},
        {"unknown menu helmet status", [&](Bytes& b) { b[directoryOffset(good, 109) + 3] = 9; }},
        {"information length beyond the file", [&](Bytes& b) { storeU16(&b[directoryOffset(good, 94)], 60000); }},
        {"settings in the trailer", [&](Bytes& b) { storeU32(&b[90], std::uint32_t(good.size() - 10)); }},
    };
    CarSet set;
    ASSERT_TRUE(loadCarSet(set, dir / "good.gp2", unchecked()));
    for (const auto& [what, damage] : damages) {
        Bytes bad = good;
        damage(bad);
        test::writeFileBytes(dir / "h.gp2", bad);
        EXPECT_FALSE(loadCarSet(set, dir / "h.gp2", unchecked())) << what;
    }
}

// --- older versions, built from their layout -------------------------------

struct OldFile {
    ByteWriter w;
    explicit OldFile(int version) {
        w.bytes("TARVEL", 7);
        w.u16(std::uint16_t(version));
        w.u8(3);   // sub-version 3
        w.zeros(256 - w.size());
    }
    void entry(int at, std::uint8_t count) {
        w.patchU8(std::size_t(at), count);
        w.patchU32(std::size_t(at) + 1, std::uint32_t(w.size()));
    }
    void item(const Bytes& raw) {
        w.u8(0);
        w.u32(std::uint32_t(raw.size()));
        w.bytes(raw.data(), raw.size());
    }
    void words(std::initializer_list<int> values) {
        for (int v : values) w.u16(std::uint16_t(v));
    }
    void liveries() {
        entry(64, 14);
        for (int t = 1; t <= 14; ++t) w.u8(std::uint8_t(t));
        std::size_t table = w.size();
        w.zeros(56);
        for (int t = 0; t < 14; ++t) {
            w.patchU32(table + 4 * std::size_t(t), std::uint32_t(w.size()));
            item(Bytes(kLiveryPixels, std::uint8_t(t + 1)));
        }
    }
    // Team block of sub-version 3: folded names only, no car number layout.
    void teamBlock() {
        entry(84, 1);
        for (int k = 0; k < 20; ++k) name("Old" + std::to_string(k), 13);
        for (int k = 0; k < 20; ++k) name("Eng", 13);
        for (int k = 0; k < 20; ++k) w.u16(std::uint16_t(600 + k));
        for (int k = 0; k < 20; ++k) w.u16(std::uint16_t(610 + k));
        for (int k = 0; k < 20; ++k) w.u16(k == 0 ? 50000 : 100);
        w.zeros(20 + 60 + 320);
        for (int k = 0; k < 20; ++k) w.u8(std::uint8_t(k));
        for (int car = 0; car < 2; ++car)
            for (int k = 0; k < 20; ++k) w.u8(std::uint8_t(2 * k + car + 1));
        w.zeros(80);
        for (int n = 1; n <= 40; ++n) name("Pilot" + std::to_string(n), 24);
        for (int n = 1; n <= 40; ++n) w.u16(std::uint16_t(20000 + n));
        for (int n = 1; n <= 40; ++n) w.u16(std::uint16_t(21000 + n));
        for (int n = 1; n <= 40; ++n) w.u16(std::uint16_t(n));
        for (int n = 1; n <= 40; ++n) w.u8(1);
    }
    void name(const std::string& text, std::size_t size) {
        Bytes field(size, 0);
        std::copy(text.begin(), text.end(), field.begin());
        w.bytes(field.data(), size);
    }
    Bytes finish() {
        appendChecksum(w.data());
        return w.data();
    }
};

TEST(CarSetFileOldVersions, Version170) {
    ScratchFolder dir;
    OldFile f(170);
    f.liveries();
    f.entry(69, 1);
    f.item(Bytes(kHelmetSheetPixels, 77));
    // One JAM and one sound, read on demand like version 180's.
    f.entry(79, 1);
    Bytes jamMap(218, 0);
    jamMap[19] = 1;
    f.w.bytes(jamMap.data(), jamMap.size());
    f.w.u32(std::uint32_t(f.w.size() + 4));
    Bytes jam(256u * JamInfo(19).canvasHeight, 42);
    f.item(jam);
    // Cockpit slot 1 with its old colour record: 29 pairs of 32-bit values.
    f.entry(104, 1);
    f.w.u8(0);
    f.w.u8(1);
    f.w.u32(std::uint32_t(f.w.size() + 4));
    for (int pair = 0; pair < 29; ++pair) {
        f.w.u32(std::uint32_t(0x10000 + pair));
        f.w.u32(std::uint32_t(500 + pair));
        f.w.u32(0xDEADBEEF);
    }
    f.item(Bytes{9, 8, 7});
    f.entry(89, 1);
    f.words({100, 101, 102, 103, 104, 105, 106, 107, 0xAAAA /* skipped */, 108});
    for (int i = 0; i < 16; ++i) f.w.u16(std::uint16_t(40 + i));
    for (int i = 0; i < 26; ++i) f.w.u16(std::uint16_t(26 - i));
    f.teamBlock();
    f.w.u8(1);  // DriverZero
    f.words({23, 24, 25});
    f.w.u8(26);
    f.words({27, 28});
    f.w.u8(29);
    f.words({30});
    for (int i = 0; i < 18; ++i) f.w.u8(std::uint8_t(i + 1));
    for (int i = 0; i < 15; ++i) f.w.u16(std::uint16_t(1000 + i));
    test::writeFileBytes(dir / "old.gp2", f.finish());

    CarSet set;
    ASSERT_EQ(loadCarSet(set, dir / "old.gp2", checked()).value_or(0), 170);
    EXPECT_EQ(fieldText(set.teams[5].name), "Old5");
    EXPECT_EQ(set.teams[0].failureProbability, 32767);
    EXPECT_EQ(set.teams[19].powerQual, 629);
    EXPECT_EQ(set.teams[7].teamOrder, 7);
    EXPECT_EQ(set.teams[7].driver[1], 16);
    EXPECT_EQ(fieldText(set.drivers[40].name), "Pilot40");
    EXPECT_EQ(set.drivers[3].gripQual, 21003);
    EXPECT_EQ(set.carNumbers, defaultCarNumberLayout());
    // Settings words as version 170 keeps them, and defaults where it has none.
    const std::pair<int, int> words[] = {
        {7, 107},  {8, 108},  {9, kDefaultGameSettings[9]}, {306, 40}, {321, 55},  {254, 26},
        {22, 1},   {25, 25},  {26, 26},   {29, 29},   {30, 30},  {31, kDefaultGlobalCarSettings[9]},
        {188, 1},  {205, 18}, {206, 1000}, {220, 1014}, {44, std::uint16_t(kDefaultCameras[0])},
    };
    for (auto [word, value] : words) EXPECT_EQ(set.settings.words[std::size_t(word)], value) << word;
    EXPECT_EQ(set.liveries[3], Bytes(kLiveryPixels, 4));
    EXPECT_EQ(set.helmetSheet, Bytes(kHelmetSheetPixels, 77));
    EXPECT_EQ(set.jamCount, 1);
    EXPECT_EQ(readAssetBytes(set, AssetKind::Jam, 19).value_or(Bytes{}), jam);
    EXPECT_EQ(set.cockpits[1].status, kAssetStored);
    // The old record becomes the current one: 16-bit pairs, the rest zero.
    const auto& record = set.cockpitRecords[1];
    EXPECT_EQ((std::array{loadU16(&record[0]), loadU16(&record[2]), loadU16(&record[4 * 28]), loadU16(&record[4 * 28 + 2])}),
              (std::array<std::uint16_t, 4>{0, 500, 28, 528}));
    EXPECT_EQ(record[116], 0);
    EXPECT_EQ(readAssetBytes(set, AssetKind::Cockpit, 1).value_or(Bytes{}), (Bytes{9, 8, 7}));

    // Saved again it becomes a version 180 file with the same content.
    ASSERT_TRUE(saveCarSet(set, dir / "new.gp2", checked()));
    CarSet converted;
    ASSERT_TRUE(loadCarSet(converted, dir / "new.gp2", checked()));
    test::expectSameTables(set, converted);
    EXPECT_EQ(readAssetBytes(converted, AssetKind::Jam, 19).value_or(Bytes{}), jam);
    EXPECT_EQ(converted.cockpitRecords, set.cockpitRecords);
}

// Version 160 keeps no helmet sheet and no JAM table: the set takes the
// built-in sheet, and a JAM section is ignored.
TEST(CarSetFileOldVersions, Version160) {
    ScratchFolder dir;
    OldFile f(160);
    f.liveries();
    Bytes wheels[4];
    f.entry(74, 4);
    for (int i = 1; i <= 4; ++i) f.w.u8(std::uint8_t(i));
    std::size_t table = f.w.size();
    f.w.zeros(16);
    for (int i = 0; i < 4; ++i) {
        f.w.patchU32(table + 4 * std::size_t(i), std::uint32_t(f.w.size()));
        wheels[i] = Bytes(256u * JamInfo(kFirstWheelJam + i).canvasHeight, std::uint8_t(i + 60));
        f.item(wheels[i]);
    }
    f.entry(79, 1);
    f.w.zeros(218);
    f.entry(89, 1);
    for (int i = 0; i < 11; ++i) f.w.u16(std::uint16_t(i + 1));
    for (int i = 0; i < 16; ++i) f.w.u16(std::uint16_t(60 + i));
    for (int i = 0; i < 6; ++i) f.w.u16(std::uint16_t(i));
    f.entry(94, 1);
    f.w.u16(5);
    f.w.bytes("Hello", 5);
    f.teamBlock();
    test::writeFileBytes(dir / "old.gp2", f.finish());

    CarSet set;
    ASSERT_EQ(loadCarSet(set, dir / "old.gp2", checked()).value_or(0), 160);
    EXPECT_EQ(set.helmetSheet, CarSet{}.helmetSheet);
    EXPECT_EQ(set.liveries[13], Bytes(kLiveryPixels, 14));
    EXPECT_TRUE(set.hasInformation);
    EXPECT_EQ(set.information, "Hello");
    EXPECT_EQ(set.settings.words[10], 11);
    EXPECT_EQ(set.settings.words[321], 75);
    EXPECT_EQ(set.settings.words[27], 5);
    EXPECT_EQ(set.settings.words[28], kDefaultGlobalCarSettings[6]);
    EXPECT_EQ(set.wheelCount, 4);
    EXPECT_EQ(set.jamCount, 0);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(readAssetBytes(set, AssetKind::Wheel, i).value_or(Bytes{}), wheels[i]);
    EXPECT_EQ(fieldText(set.drivers[1].name), "Pilot1");
}

}  // namespace
}  // namespace tarvel
