#pragma once
// Season odds: many races in a row on one random generator, counted per car.
// In each race the cars shown are placed 1, 2, ... in the calculator's order;
// a car finishes unless its gap reads "DNF" or "DNQ".

#include "performance/Calculators.h"

#include <cstdint>
#include <span>
#include <vector>

namespace tarvel {

struct CarOdds {
    std::uint32_t slot = 0;
    std::string driver{};   // Windows-1252, as the race shows it
    std::string team{};
    std::uint64_t wins = 0;
    std::uint64_t podiums = 0;
    std::uint64_t points = 0;    // finishes in a place the points table rewards
    std::uint64_t dnf = 0;
    std::uint64_t dnq = 0;
    std::uint64_t positionSum = 0;
};

struct SeasonOdds {
    std::uint64_t runs = 0;
    std::vector<CarOdds> cars;   // the cars shown, in slot order (none when no race was run)
};

// `points` is the championship points table by place (place 1 first); a
// place beyond its end scores nothing.
SeasonOdds runSeason(const TeamTable& teams, const DriverTable& drivers, std::span<const std::uint16_t> points,
                     const CalculatorOptions& options, std::uint64_t runs, Rand& rand);

// The cars best first: more wins, then podiums, then points finishes, then
// the lower mean place, then slot order.
std::vector<CarOdds> bestFirst(const SeasonOdds& odds);

}  // namespace tarvel
