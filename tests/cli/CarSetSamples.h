#pragma once
// Car sets for the command-line tests: every stored field given a value of
// its own, and a comparison of the stored tables.

#include "carset/CarSet.h"
#include "common/Rand.h"

#include <gtest/gtest.h>

#include <string>

namespace tarvel::cli {

// Every stored field of the set changed to a value of its own, names with
// characters outside ASCII.
inline void scramble(CarSet& set, std::uint32_t seed) {
    Rand rand(seed);
    auto byte = [&] { return std::uint16_t(rand() & 0xFF); };
    for (std::size_t i = 0; i < set.teams.size(); ++i) {
        TeamRecord& t = set.teams[i];
        setFieldText(t.name, "\xC9quipe " + std::to_string(i));    // Équipe
        setFieldText(t.engine, "M\xF6tor\x80" + std::to_string(i));  // Mötor€
        t.powerRace = std::uint16_t(rand() % 1580);
        t.powerQual = std::uint16_t(rand() % 1580);
        t.failureProbability = std::uint16_t(rand());
        t.highNose = std::uint16_t(rand() & 1);
        for (auto& b : t.teamBytesA) b = byte();
        for (auto& b : t.teamBytesB) b = byte();
        t.driver = {std::int16_t(40 - 2 * (i % 20)), std::int16_t(39 - 2 * (i % 20))};
        t.disabled = {std::uint16_t(i == 3), 0};
        t.flagS = {0, std::uint16_t(i == 5)};
        t.teamOrder = std::int16_t(19 - i);
    }
    for (int n = 1; n <= kDriverNumbers; ++n) {
        DriverRecord& d = set.drivers[std::size_t(n)];
        setFieldText(d.name, "Pil\xF3to N\xBA" + std::to_string(n));   // Pilóto Nº
        d.gripRace = std::uint16_t(15751 + rand() % 17017);
        d.gripQual = std::uint16_t(15751 + rand() % 17017);
        d.gripRandom = std::uint16_t(rand());
        d.inUse = std::uint16_t(n % 3 != 0);
    }
    for (SettingsRange r : {settings::kGame, settings::kGlobalCar, settings::kCameras, settings::kDamage,
                            settings::kPoints, settings::kLaps})
        for (int w = 0; w < r.count; ++w) set.settings.words[std::size_t(r.first + w)] = std::uint16_t(rand() * 2 + (rand() & 1));
    for (auto& b : set.carNumbers.partA) b = std::uint8_t(byte());
    for (auto& b : set.carNumbers.partB) b = std::uint8_t(byte());
    set.hasInformation = true;
    set.information = "Caf\xE9 \x93quoted\x94\r\nline two";
}

inline void expectSameTables(const CarSet& a, const CarSet& b) {
    for (std::size_t i = 0; i < a.teams.size(); ++i) {
        const TeamRecord &x = a.teams[i], &y = b.teams[i];
        SCOPED_TRACE("team " + std::to_string(i));
        EXPECT_EQ(x.name, y.name);
        EXPECT_EQ(x.engine, y.engine);
        EXPECT_EQ(x.powerRace, y.powerRace);
        EXPECT_EQ(x.powerQual, y.powerQual);
        EXPECT_EQ(x.failureProbability, y.failureProbability);
        EXPECT_EQ(x.highNose, y.highNose);
        EXPECT_EQ(x.teamBytesA, y.teamBytesA);
        EXPECT_EQ(x.teamBytesB, y.teamBytesB);
        EXPECT_EQ(x.driver, y.driver);
        EXPECT_EQ(x.disabled, y.disabled);
        EXPECT_EQ(x.flagS, y.flagS);
        EXPECT_EQ(x.teamOrder, y.teamOrder);
    }
    for (std::size_t n = 1; n < a.drivers.size(); ++n) {
        SCOPED_TRACE("driver " + std::to_string(n));
        EXPECT_EQ(a.drivers[n].name, b.drivers[n].name);
        EXPECT_EQ(a.drivers[n].gripRace, b.drivers[n].gripRace);
        EXPECT_EQ(a.drivers[n].gripQual, b.drivers[n].gripQual);
        EXPECT_EQ(a.drivers[n].gripRandom, b.drivers[n].gripRandom);
        EXPECT_EQ(a.drivers[n].inUse, b.drivers[n].inUse);
    }
    for (SettingsRange r : {settings::kGame, settings::kGlobalCar, settings::kCameras, settings::kDamage,
                            settings::kPoints, settings::kLaps})
        for (int w = 0; w < r.count; ++w)
            EXPECT_EQ(a.settings.words[std::size_t(r.first + w)], b.settings.words[std::size_t(r.first + w)])
                << "word " << r.first + w;
    EXPECT_EQ(a.carNumbers, b.carNumbers);
    EXPECT_EQ(a.hasInformation, b.hasInformation);
    EXPECT_EQ(a.information, b.information);
}

}  // namespace tarvel::cli
