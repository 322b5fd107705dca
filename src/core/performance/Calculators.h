#pragma once
// The grid and race calculators: a prediction of the starting grid and of the
// finishing order from the teams' engine power and the drivers' grip. Both
// fill a working table of 28 car entries (two per racing team) and change
// nothing in the car set. Random draws come from the Rand handed in, so a
// seeded run repeats exactly.

#include "carset/CarSet.h"
#include "common/Rand.h"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace tarvel {

constexpr int kCalculatorCars = 2 * kRacingTeams;   // 28
constexpr int kGridStarters = 26;                   // the game starts 26 cars

using TeamTable = std::array<TeamRecord, kTeamSlots>;
using DriverTable = std::array<DriverRecord, kDriverNumbers + 1>;

// One car of the working table; an entry is swapped with its neighbour as a whole.
struct CarEntry {
    std::array<char, 25> driver{};   // Windows-1252, NUL-terminated
    std::array<char, 32> team{};     // grid "(TEAM - ENGINE)", race "TEAM - ENGINE"
    std::uint32_t slot = 0;          // 2 x team + car
    std::int32_t power = 0;          // after the reference was subtracted
    std::int32_t grip = 0;           // after random variation and the reference
    std::int32_t failure = 0;        // race only
    float score = 0.0f;              // lap-time deficit, then the gap in percent
    std::array<char, 10> gap{};      // "+0.00%", or "DNF" / "DNQ" in a race
    std::array<char, 15> label{};    // grid only: "POLE", "ROW n", "DNQ"
    std::uint32_t disabled = 0;
    std::uint32_t dnq = 0;           // race only: 1 and 2 for the grid's 27th and 28th
    std::uint32_t dnf = 0;           // race only: the failure probability of a car that failed

    std::string_view driverText() const { return text(driver); }
    std::string_view teamText() const { return text(team); }
    std::string_view gapText() const { return text(gap); }
    std::string_view labelText() const { return text(label); }

private:
    template <std::size_t N>
    static std::string_view text(const std::array<char, N>& field) {
        std::size_t n = 0;
        while (n < N && field[n] != '\0') ++n;
        return {field.data(), n};
    }
};

struct WorkingTable {
    std::array<CarEntry, kCalculatorCars> entries{};
    int shown = 0;   // cars not disabled; they lead the table once it is sorted
    std::span<const CarEntry> shownEntries() const { return std::span(entries).first(std::size_t(shown)); }
};

struct CalculatorOptions {
    bool randomGrip = false;
    bool carFailure = false;   // the race only
};

// The starting grid in grid order, with gaps and position labels.
WorkingTable computeGrid(const TeamTable& teams, const DriverTable& drivers, bool randomGrip, Rand& rand);
// The finishing order; runs the grid first (its draws included) to find the
// two cars that would not qualify.
WorkingTable computeRace(const TeamTable& teams, const DriverTable& drivers, const CalculatorOptions& options,
                         Rand& rand);

// The label the plain-text grid shows for shown position `index` (0-based):
// "1)" ... "26)", then "DNQ".
std::string_view textGridLabel(int index, std::array<char, 8>& buffer);

}  // namespace tarvel
