#include "carset/AsciiFold.h"
#include "carset/CarSet.h"
#include "carset/CarSetFile.h"
#include "fixtures/CarSetSamples.h"
#include "carset/SettingsDefaults.h"
#include "common/ByteIO.h"

#include <gtest/gtest.h>

#include <string_view>
#include <utility>

namespace tarvel {
namespace {

// The stored defaults are pinned by the written default set (test_carset_file);
// a reset must give that set again, whatever was changed.
TEST(CarSetModel, ResetGivesTheDefaultSetAgain) {
    CarSet set;
    test::scramble(set, 3);
    set.jams[20].status = kAssetExternal;
    set.teams[15].carBitmap.status = kAssetStored;
    set.recountAssets();
    set.resetToDefaults();
    EXPECT_EQ(buildCarSetFile(set, {}).value_or(Bytes{}), buildCarSetFile(CarSet{}, {}).value_or(Bytes{1}));
    for (int k = 0; k < kTeamSlots; ++k)
        EXPECT_EQ(set.teams[k].carBitmap.status, k < kRacingTeams ? kAssetEmpty : kAssetNotStored) << k;
    EXPECT_EQ(set.jamCount, 0);
    EXPECT_EQ(loadU32(&set.carNumbers.partA[32 * 2 + 16]), 14u);  // fifth value of the third entry
}

TEST(CarSetModel, DriverFlagsFollowTheFirstEighteenSlots) {
    CarSet set;
    set.teams[0].driver[0] = 40;
    set.teams[18].driver[0] = 1;  // slots 18 and 19 do not count
    set.assignDriverFlags();
    const std::pair<int, int> inUse[] = {{40, 1}, {1, 0}, {2, 1}, {37, 0}, {36, 1}};
    for (auto [number, flag] : inUse) EXPECT_EQ(set.drivers[std::size_t(number)].inUse, flag) << number;
}

TEST(CarSetModel, PerformanceSnapshotRestoresTablesAndGlobalSettings) {
    CarSet set;
    set.teams[2].powerRace = 1500;
    set.snapshotPerformance();
    set.teams[2].powerRace = 1;
    setFieldText(set.drivers[5].name, "Changed");
    set.drivers[5].gripQual = 20000;
    set.settings.words[settings::kDriverZero] = 1;
    set.settings.words[32] = 77;
    set.restorePerformance();
    EXPECT_EQ(set.teams[2].powerRace, 1500);
    EXPECT_EQ(fieldText(set.drivers[5].name), "Drivers Name");
    EXPECT_EQ(set.drivers[5].gripQual, 30751);
    EXPECT_FALSE(set.driverZero());
    EXPECT_EQ(set.settings.words[32], kDefaultGlobalCarSettings[10]);
}

TEST(CarSetModel, SpareDriversTakeTheHighestFreeNumbers) {
    CarSet set;
    set.drivers.fill(DriverRecord{});
    for (int t = 14; t < kTeamSlots; ++t) set.teams[t].driver = {0, 0};
    // Teams use 1-27 and 40.
    set.teams[13].driver[1] = 40;
    set.assignSpareDrivers();
    // Free numbers from 40 down, skipping 40: 39..32 fill positions 35..28.
    for (int i = 0; i < 8; ++i) EXPECT_EQ(set.spareDriverNumber(i), 32 + i) << i;
    EXPECT_EQ(set.teams[17].driver[1], 39);
    EXPECT_EQ(set.teams[13].driver[1], 40);
    for (int n = 32; n <= 39; ++n) {
        const DriverRecord& d = set.drivers[std::size_t(n)];
        EXPECT_TRUE(fieldText(d.name) == "Drivers Name" && d.gripQual == 30751 && d.gripRandom == 500 && d.inUse == 1) << n;
    }
    EXPECT_EQ(set.drivers[40].inUse, 1);
    EXPECT_EQ(set.drivers[28].inUse, 0);  // not referenced by anyone
}

TEST(CarSetModel, DisabledCarsRule) {
    CarSet set;
    setFieldText(set.teams[2].name, "Arrow");
    setFieldText(set.teams[5].name, "Bolt");
    // None disabled: allowed.
    EXPECT_EQ(checkDisableCar(set, 2, 0).kind, DisableDecision::Allowed);
    // A second car of the same team needs confirmation ...
    set.teams[2].disabled[0] = 1;
    auto second = checkDisableCar(set, 2, 1);
    EXPECT_EQ(second.kind, DisableDecision::NeedsConfirmation);
    EXPECT_EQ(second.text, "This will cause corruption on the\r\nin game 'Choose Driver/Team' menu.");
    // ... except in the last team, and not in another team.
    set.teams[2].disabled[0] = 0;
    set.teams[13].disabled[0] = 1;
    EXPECT_EQ(checkDisableCar(set, 13, 1).kind, DisableDecision::Allowed);
    EXPECT_EQ(checkDisableCar(set, 4, 0).kind, DisableDecision::Allowed);
    // Two already disabled: refused, listed in team order.
    set.teams[13].disabled[0] = 0;
    set.teams[5].disabled[0] = 1;
    set.teams[2].disabled[1] = 1;
    auto refused = checkDisableCar(set, 7, 0);
    EXPECT_EQ(refused.kind, DisableDecision::Refused);
    EXPECT_EQ(refused.text,
              "Only 2 Cars can be Disabled.\r\n\r\nAlready Disabled :\r\n\r\n"
              "Arrow - Second Driver\r\nBolt - First Driver");
    // Flags of slots 14-19 are not counted.
    set.teams[5].disabled[0] = 0;
    set.teams[15].disabled[0] = 1;
    EXPECT_EQ(checkDisableCar(set, 7, 0).kind, DisableDecision::Allowed);
}

TEST(CarSetModel, DriverListEntries) {
    CarSet set;
    setFieldText(set.drivers[1].name, "First");
    setFieldText(set.drivers[2].name, "Second");
    EXPECT_EQ(driverListEntry(set, 0, 0), "[01] First");
    set.settings.words[settings::kDriverZero] = 1;
    EXPECT_EQ(driverListEntry(set, 0, 0), "[00] First");
    EXPECT_EQ(driverListEntry(set, 0, 1), "[02] Second");
    set.teams[0].flagS[1] = 1;
    set.teams[0].disabled[1] = 1;
    EXPECT_EQ(driverListEntry(set, 0, 1), "[02] Second (S) (D)");
}

TEST(CarSetModel, FieldTextStaysInsideItsField) {
    std::array<char, kTeamNameSize> field;
    field.fill('x');
    setFieldText(field, "A much longer name than fits");
    EXPECT_EQ(fieldText(field), "A much longe");
    EXPECT_EQ(field[12], '\0');
    field.fill('y');  // no terminator at all
    EXPECT_EQ(fieldText(field).size(), std::size_t(kTeamNameSize));
}

// ASCII stays; bytes 128-255 fold to the letters below or stay as they are.
TEST(AsciiFold, EveryByteIsFoldedOrKept) {
    const std::string_view upper =
        "\x80\x81\x82""f\x84\x85\x86\x87\x88\x89S\x8BO\x8D\x8E\x8F\x90\x91\x92\x93\x94\x95\x96\x97\x98\x99s\x9Bo\x9D\x9EY"
        "\xA0\xA1""c\xA3\xA4Y\xA6\xA7\xA8""ca\xAB\xAC\xADR\xAF\xB0\xB1\xB2\xB3\xB4u\xB6\xB7\xB8\xB9\xBA\xBB\xBC\xBD\xBE\xBF"
        "AAAAAAACEEEEIIIIDNOOOOOxOUUUUYPBaaaaaaaceeeeiiiionooooo\xF7ouuuuypy";
    ASSERT_EQ(upper.size(), 128u);
    const auto& t = asciiFoldTable();
    for (int c = 0; c < 256; ++c)
        EXPECT_EQ(t[std::size_t(c)], c < 128 ? c : static_cast<unsigned char>(upper[std::size_t(c - 128)])) << c;
}

TEST(AsciiFold, NameFieldIsFoldedUpToItsTerminator) {
    std::array<char, kTeamNameSize> field{};
    const char name[] = "R\xe9nault \xc6";
    std::copy(std::begin(name), std::end(name), field.begin());
    field[11] = 'Z';  // junk after the terminator
    std::uint8_t out[kTeamNameSize];
    foldNameField(field.data(), out, kTeamNameSize);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(out)), "Renault A");
    for (std::size_t i = 9; i < kTeamNameSize; ++i) EXPECT_EQ(out[i], 0) << i;
}

}  // namespace
}  // namespace tarvel
