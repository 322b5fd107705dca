// Model and edit rules: reset, driver flags and spares, disabled cars, name
// folding, the field schema and grip form, seats and driver numbers, team moves.
#include "carset/AsciiFold.h"
#include "carset/CarSetFile.h"
#include "carset/DriverSeats.h"
#include "carset/FieldSchema.h"
#include "carset/GripForm.h"
#include "carset/TeamSwap.h"
#include "carset/SettingsDefaults.h"
#include "common/ByteIO.h"
#include "fixtures/CarSetSamples.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarvel {
namespace {

const ElementRule& rule(FieldPlace place, std::string_view name, int element = 0) {
    const FieldSpec* field = findFieldSpec(place, name);
    EXPECT_TRUE(field) << name;
    return elementRule(*field, element);
}

TEST(FieldSchema, EditRangesShownFormsAndMessages) {
    struct Case {
        FieldPlace place;
        const char* field;
        int element;
        bool highGrip;
        long long shown;      // a typed value ...
        long long stored;     // ... and what it stores, or -1 when refused with `message`
        const char* message;
    };
    const Case cases[] = {
        {FieldPlace::Team, "powerRace", 0, false, 1579, 1579, "Engine Power : 0 to 1579."},
        {FieldPlace::Team, "powerQual", 0, false, 1580, -1, "Engine Power : 0 to 1579."},
        {FieldPlace::Team, "failureProbability", 0, false, 32768, -1, "Car Failure Probability : 0 to 32767."},
        {FieldPlace::Driver, "gripRace", 0, false, 0, 15751, "Driver Grip : 0 to 17016."},
        {FieldPlace::Driver, "gripQual", 0, false, 17016, 32767, "Driver Grip : 0 to 17016."},
        {FieldPlace::Driver, "gripRace", 0, false, -1, -1, "Driver Grip : 0 to 17016."},
        {FieldPlace::Driver, "gripRace", 0, false, 17017, -1, "Driver Grip : 0 to 17016."},
        {FieldPlace::Driver, "gripRace", 0, true, 15751, 15751, "Driver Grip : 15751 to 32767."},
        {FieldPlace::Driver, "gripRace", 0, true, 15750, -1, "Driver Grip : 15751 to 32767."},
        {FieldPlace::Driver, "gripQual", 0, true, 32768, -1, "Driver Grip : 15751 to 32767."},
        {FieldPlace::Driver, "gripRandom", 0, false, 32767, 32767, "Driver Grip Range : 0 to 32767."},
        {FieldPlace::Driver, "gripRandom", 0, true, -1, -1, "Driver Grip Range : 0 to 32767."},
        {FieldPlace::Settings, "points", 25, false, 100, -1, "Points : 0 to 99."},
        {FieldPlace::Settings, "laps", 0, false, 2, -1, "Number of Laps : 3 to 124."},
        {FieldPlace::Settings, "gameSettings", 10, false, 0, -1, "Fuel Load : 1 to 50."},
        {FieldPlace::Settings, "cameras", 8 * 8 + 2, false, -32768, -1, "Coordinate: -32767 to 32767."},
        {FieldPlace::Settings, "cameras", 8 + 5, false, 181, -1, "Angle: -180 to 180."},
        {FieldPlace::Settings, "cameras", 7, false, 65535, 65535, "Tuning : 0 to 65535."},
        {FieldPlace::Settings, "damage", 17, false, 256, -1, "Damage : 0 to 255."},
        {FieldPlace::Settings, "damage", 18, false, 256, 256, "Damage : 0 to 32767."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.field) + " " + std::to_string(c.element) + " " + std::to_string(c.shown));
        const ElementRule& r = rule(c.place, c.field, c.element);
        EXPECT_EQ(messageText(rangeMessage(r, c.highGrip)), c.message);
        auto stored = fromDisplay(r, c.shown, c.highGrip);
        if (c.stored < 0) {
            ASSERT_FALSE(stored);
            EXPECT_EQ(messageText(stored.error()), c.message);
        } else {
            ASSERT_TRUE(stored);
            EXPECT_EQ(*stored, c.stored);
            EXPECT_EQ(toDisplay(r, *stored, c.highGrip), c.shown);
        }
    }
    EXPECT_EQ(messageText(rangeMessage(MessageId::RangePositiveInteger, fieldrange::kPositive)),
              "Enter positive integer 0 to 32767.");
}

// The grip form only forwards to the schema rules above: each call picks its rule.
TEST(FieldSchema, GripFormFollowsTheSchema) {
    EXPECT_EQ(gripDisplayRange(true).low, 15751);
    EXPECT_EQ(gripToDisplay(15751, false), 0);
    EXPECT_EQ(*gripFromDisplay(17016, false), 32767);
    EXPECT_EQ(gripRandomFromDisplay(32768).error().id, MessageId::RangeDriverGripRandom);
}

TEST(FieldSchema, ValuesAreReadAndSetWithinTheStoredRange) {
    CarSet set;
    const FieldSpec& cameras = *findFieldSpec(FieldPlace::Settings, "cameras");
    ASSERT_TRUE(setFieldValue(set, cameras, 0, 3, -180));   // signed words keep their sign
    EXPECT_EQ(set.settings.words[std::size_t(settings::kCameras.first + 3)], 0xFF4C);
    EXPECT_EQ(fieldValue(set, cameras, 0, 3), -180);
    EXPECT_FALSE(setFieldValue(set, cameras, 0, 6, -1));     // tuning values are unsigned
    const FieldSpec& driver = *findFieldSpec(FieldPlace::Team, "driver");
    EXPECT_FALSE(setFieldValue(set, driver, 4, 1, 41));
    ASSERT_TRUE(setFieldValue(set, driver, 4, 1, 40));
    EXPECT_EQ(set.teams[4].driver[1], 40);
    EXPECT_FALSE(findFieldSpec(FieldPlace::Driver, "powerRace"));
}

TEST(DriverSeats, SeatOrderAndShownNumbers) {
    for (int i = 0; i < kSeats; ++i) EXPECT_EQ(seatIndex(seatAt(i)), i);
    EXPECT_EQ(seatAt(27), (Seat{13, 1}));
    EXPECT_EQ(seatAt(28), (Seat{14, 0}));
    struct Case {
        bool driverZero;
        int number, shown, typed, taken;   // shownDriverNumber(number); typedDriverNumber(typed) == taken
    };
    const Case cases[] = {{false, 1, 1, 0, -1}, {false, 40, 40, 41, -1}, {true, 1, 0, 0, 1},
                          {true, 2, 2, 1, -1},  {true, 2, 2, 2, 2}};
    for (const Case& c : cases) {
        CarSet set;
        set.settings.words[settings::kDriverZero] = c.driverZero;
        EXPECT_EQ(shownDriverNumber(set, c.number), c.shown);
        EXPECT_EQ(typedDriverNumber(set, c.typed), c.taken);
    }
}

TEST(DriverSeats, RenumberingExchangesOrMovesRecords) {
    CarSet set;
    setFieldText(set.driver(1).name, "One");
    setFieldText(set.driver(5).name, "Five");
    setFieldText(set.driver(3).name, "Three");
    // Onto a taken number: the two drivers exchange numbers and keep their records.
    EXPECT_EQ(renumberDriver(set, Seat{0, 0}, 5).value_or(false), true);
    EXPECT_EQ(set.team(0).driver[0], 5);
    EXPECT_EQ(set.team(2).driver[0], 1);
    EXPECT_EQ(fieldText(set.driver(5).name), "One");
    EXPECT_EQ(fieldText(set.driver(1).name), "Five");
    // Onto a free number: the record moves and the old number is freed.
    EXPECT_EQ(renumberDriver(set, Seat{1, 0}, 39).value_or(false), true);
    EXPECT_EQ(fieldText(set.driver(39).name), "Three");
    EXPECT_EQ(set.driver(39).inUse, 1);
    EXPECT_EQ(set.driver(3).inUse, 0);
    EXPECT_EQ(fieldText(set.driver(3).name), "");
    // Its own number changes nothing; numbers outside 1-40 and bad seats are refused.
    EXPECT_EQ(renumberDriver(set, Seat{1, 0}, 39).value_or(true), false);
    for (auto [seat, number] : {std::pair{Seat{1, 0}, 0}, {Seat{1, 0}, 41}, {Seat{18, 0}, 3}, {Seat{0, 2}, 3}})
        EXPECT_EQ(renumberDriver(set, seat, number).error().id, MessageId::BadDriverNumbers);
}

TEST(DriverSeats, ExchangingSeatsKeepsFlagsWithTheSeat) {
    CarSet set;
    set.team(0).disabled[1] = 1;
    EXPECT_TRUE(exchangeSeats(set, Seat{0, 1}, Seat{17, 1}));
    EXPECT_EQ(set.team(0).driver[1], 36);
    EXPECT_EQ(set.team(17).driver[1], 2);
    EXPECT_EQ(set.team(0).disabled[1], 1);
    EXPECT_EQ(set.driver(2).inUse, 1);
    const CarSet before = set;
    for (auto [a, b] : {std::pair{Seat{0, 1}, Seat{0, 1}}, {Seat{0, 1}, Seat{18, 0}}, {Seat{-1, 0}, Seat{0, 0}}})
        EXPECT_FALSE(exchangeSeats(set, a, b));
    EXPECT_EQ(set.teams[0].driver, before.teams[0].driver);
}

TEST(TeamSwap, ListOrderAfterAMove) {
    struct Case {
        int from, to;
        std::vector<int> head;   // the first entries of the new order
    };
    const Case cases[] = {{1, 4, {0, 2, 3, 4, 1, 5}}, {13, 0, {13, 0, 1}}, {3, 3, {0, 1, 2, 3}}, {0, 14, {0, 1, 2}}};
    for (const Case& c : cases) {
        const auto order = teamListAfterMove(c.from, c.to);
        EXPECT_EQ(std::vector<int>(order.begin(), order.begin() + std::ptrdiff_t(c.head.size())), c.head)
            << c.from << "->" << c.to;
    }
    EXPECT_EQ(teamListAfterMove(13, 0)[13], 12);
}

TEST(TeamSwap, MoveCarriesTheTeamsThingsAndKeepsEverythingElse) {
    CarSet set;
    for (int i = 0; i < kRacingTeams; ++i) {
        setFieldText(set.team(i).name, "N" + std::to_string(i));
        set.team(i).teamOrder = std::int16_t(kRacingTeams - 1 - i);
        set.liveries[std::size_t(i)].assign(kLiveryPixels, std::uint8_t(i));
    }
    set.menuHelmets[2 * 13 + 1].status = kAssetExternal;
    setFieldText(set.team(14).name, "spare");
    set.team(14).driver[0] = 29;
    std::vector<std::string> pitNames;
    for (int i = 0; i < kRacingTeams; ++i) pitNames.push_back(fieldText(set.team(set.team(i).teamOrder).name));

    for (auto [from, to] : {std::pair{0, 14}, {-1, 3}, {5, 5}}) EXPECT_FALSE(moveTeam(set, from, to));
    ASSERT_TRUE(moveTeam(set, 13, 0));
    EXPECT_EQ(fieldText(set.team(0).name), "N13");
    EXPECT_EQ(set.team(0).driver[0], 27);   // team 13's first driver
    EXPECT_EQ(set.liveries[0][0], 13);
    EXPECT_EQ(set.menuHelmets[1].status, kAssetExternal);
    EXPECT_EQ(set.menuHelmetCount, 1);
    EXPECT_EQ(fieldText(set.team(14).name), "spare");
    EXPECT_EQ(set.team(14).driver[0], 29);
    // The pit lane list keeps its order of teams.
    for (int i = 0; i < kRacingTeams; ++i)
        EXPECT_EQ(fieldText(set.team(set.team(i).teamOrder).name), pitNames[std::size_t(i)]) << i;
}

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
