#include "carset/CarSet.h"

#include "carset/CarSetPictures.h"
#include "carset/SettingsDefaults.h"

#include <algorithm>
#include <cassert>
#include <cstdio>
#include <cstring>

namespace tarvel {

namespace {
constexpr std::uint16_t kDefaultGrip = 30751;
constexpr std::uint16_t kDefaultGripRandom = 500;
constexpr char kDefaultDriverName[] = "Drivers Name";
constexpr std::uint16_t kDefaultTeamBytesA[3] = {16, 48, 214};
constexpr std::uint16_t kDefaultTeamBytesB[16] = {0, 16, 1, 214, 48, 32, 16, 16, 48, 16, 16, 16, 16, 214, 214, 32};

void setDefaultDriver(DriverRecord& d, bool named) {
    d = DriverRecord{};
    if (named) setFieldText(d.name, kDefaultDriverName);
    d.gripRace = kDefaultGrip;
    d.gripQual = kDefaultGrip;
    d.gripRandom = kDefaultGripRandom;
    d.inUse = 1;
}
}  // namespace

std::string fieldText(const char* field, std::size_t size) {
    std::size_t n = 0;
    while (n < size && field[n] != '\0') ++n;
    return std::string(field, n);
}

void setFieldText(char* field, std::size_t size, std::string_view text) {
    if (size == 0) return;
    std::size_t n = std::min(text.size(), size - 1);
    std::memset(field, 0, size);
    std::memcpy(field, text.data(), n);
}

CarSet::CarSet() { resetToDefaults(); }

CarSet::CarSet(WithoutPictures) { resetTablesToDefaults(); }

void CarSet::resetToDefaults() {
    resetTablesToDefaults();
    fillDefaultPictures(*this);
}

void CarSet::resetTablesToDefaults() {
    // 1. Team and driver tables zeroed.
    teams.fill(TeamRecord{});
    drivers.fill(DriverRecord{});

    // 2. Every team slot.
    for (int k = 0; k < kTeamSlots; ++k) {
        TeamRecord& t = teams[k];
        if (k < kRacingTeams) {
            setFieldText(t.name, "Team Name");
            setFieldText(t.engine, "Engine");
        }
        t.powerRace = 760;
        t.powerQual = 770;
        t.failureProbability = 5000;
        t.highNose = 1;
        std::copy(std::begin(kDefaultTeamBytesA), std::end(kDefaultTeamBytesA), t.teamBytesA.begin());
        std::copy(std::begin(kDefaultTeamBytesB), std::end(kDefaultTeamBytesB), t.teamBytesB.begin());
        t.driver = {std::int16_t(2 * k + 1), std::int16_t(2 * k + 2)};
        t.teamOrder = std::int16_t(k);
        t.carBitmap.status = k < kRacingTeams ? kAssetEmpty : kAssetNotStored;
        t.slotIndex = std::uint16_t(k);
    }

    // 3. Drivers 1-36; 29-36 are the unnamed spare drivers, 37-40 stay zero.
    for (int n = 1; n <= 36; ++n) setDefaultDriver(drivers[n], n <= 28);

    // 4. Car numbers, settings, information, assets.
    carNumbers = defaultCarNumberLayout();
    carNumbersImport = carNumbers;
    setAllSettingsDefaults(settings);
    hasInformation = false;
    information.clear();
    wheels.fill(AssetSlot{});
    cockpits.fill(AssetSlot{});
    jams.fill(AssetSlot{});
    menuHelmets.fill(AssetSlot{});
    sounds.fill(AssetSlot{});
    for (auto& r : cockpitRecords) r.fill(0);
    for (auto& d : cockpitDesigns) d.clear();
    recountAssets();

    // 5. No file holds the set any more.
    storedItems.reset();
}

void CarSet::assignDriverFlags() {
    for (auto& d : drivers) d.inUse = 0;
    for (int slot = 0; slot < kRacingTeams + kSpareSlots; ++slot)
        for (int car = 0; car < 2; ++car) {
            int n = teams[slot].driver[car];
            if (n >= 1 && n <= kDriverNumbers) drivers[n].inUse = 1;
        }
}

void CarSet::snapshotPerformance() {
    teamsBackup = teams;
    driversBackup = drivers;
    std::copy_n(settings.range(settings::kGlobalCar), 11, globalCarBackup.begin());
}

void CarSet::restorePerformance() {
    teams = teamsBackup;
    drivers = driversBackup;
    std::copy_n(globalCarBackup.begin(), 11, settings.range(settings::kGlobalCar));
}

void CarSet::assignSpareDrivers() {
    std::array<int, 36> list{};
    for (int t = 0; t < kRacingTeams; ++t) {
        list[2 * t] = teams[t].driver[0];
        list[2 * t + 1] = teams[t].driver[1];
    }
    int position = 35;
    for (int number = kDriverNumbers; number >= 1 && position >= 28; --number) {
        if (std::find(list.begin(), list.begin() + 28, number) != list.begin() + 28) continue;
        list[position--] = number;
        setDefaultDriver(drivers[number], true);
    }
    for (int slot = 0; slot < kRacingTeams + kSpareSlots; ++slot) {
        teams[slot].driver = {std::int16_t(list[2 * slot]), std::int16_t(list[2 * slot + 1])};
        for (int car = 0; car < 2; ++car) {
            int n = list[2 * slot + car];
            if (n >= 1 && n <= kDriverNumbers) drivers[n].inUse = 1;
        }
    }
}

void CarSet::recountAssets() {
    auto count = [](const auto& table) {
        return std::uint8_t(std::count_if(table.begin(), table.end(), [](const AssetSlot& s) { return s.status != kAssetEmpty; }));
    };
    wheelCount = count(wheels);
    cockpitCount = count(cockpits);
    jamCount = count(jams);
    menuHelmetCount = count(menuHelmets);
    soundCount = count(sounds);
}

DisableDecision checkDisableCar(const CarSet& set, int team, int car) {
    (void)car;   // the rule counts cars of every team; which car is asked for does not change it
    int disabledCount = 0;
    for (int t = 0; t < kRacingTeams; ++t)
        for (int c = 0; c < 2; ++c) disabledCount += set.teams[t].disabled[c] ? 1 : 0;
    if (disabledCount >= 2) {
        std::string text(messageTemplate(MessageId::OnlyTwoCarsDisabled));
        bool first = true;
        for (int t = 0; t < kRacingTeams; ++t)
            for (int c = 0; c < 2; ++c) {
                if (!set.teams[t].disabled[c]) continue;
                text += fieldText(set.teams[t].name);
                text += c == 0 ? " - First Driver" : " - Second Driver";
                if (first) text += "\r\n";
                first = false;
            }
        return {DisableDecision::Refused, text};
    }
    const TeamRecord& current = set.team(team);
    if (team == kRacingTeams - 1 || (!current.disabled[0] && !current.disabled[1]))
        return {DisableDecision::Allowed, {}};
    return {DisableDecision::NeedsConfirmation, std::string(messageTemplate(MessageId::DisabledCarCorruption))};
}

std::string driverListEntry(const CarSet& set, int team, int car) {
    assert(car == 0 || car == 1);
    const TeamRecord& t = set.team(team);
    int number = t.driver[std::size_t(car)];
    int shown = (number == 1 && set.driverZero()) ? 0 : number;
    char head[16];
    std::snprintf(head, sizeof head, "[%.2d] ", shown);
    std::string entry = head;
    if (number >= 1 && number <= kDriverNumbers) entry += fieldText(set.drivers[number].name);
    if (t.flagS[car]) entry += " (S)";
    if (t.disabled[car]) entry += " (D)";
    return entry;
}

}  // namespace tarvel
