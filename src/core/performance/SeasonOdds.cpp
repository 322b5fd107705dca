#include "performance/SeasonOdds.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace tarvel {

SeasonOdds runSeason(const TeamTable& teams, const DriverTable& drivers, std::span<const std::uint16_t> points,
                     const CalculatorOptions& options, std::uint64_t runs, Rand& rand) {
    SeasonOdds odds;
    odds.runs = runs;
    // Counts by slot; the cars shown do not change from race to race.
    std::array<CarOdds, kCalculatorCars> bySlot{};
    std::array<bool, kCalculatorCars> shown{};
    for (std::uint64_t run = 0; run < runs; ++run) {
        const WorkingTable race = computeRace(teams, drivers, options, rand);
        const auto cars = race.shownEntries();
        for (std::size_t i = 0; i < cars.size(); ++i) {
            const CarEntry& e = cars[i];
            CarOdds& car = bySlot[e.slot];
            if (!shown[e.slot]) {
                shown[e.slot] = true;
                car.slot = e.slot;
                car.driver = e.driverText();
                car.team = e.teamText();
            }
            const std::size_t place = i + 1;
            car.positionSum += place;
            if (e.gapText() == "DNF") {
                ++car.dnf;
            } else if (e.gapText() == "DNQ") {
                ++car.dnq;
            } else {
                car.wins += place == 1;
                car.podiums += place <= 3;
                car.points += place <= points.size() && points[place - 1] > 0;
            }
        }
    }
    for (std::size_t slot = 0; slot < bySlot.size(); ++slot)
        if (shown[slot]) odds.cars.push_back(std::move(bySlot[slot]));
    return odds;
}

std::vector<CarOdds> bestFirst(const SeasonOdds& odds) {
    std::vector<CarOdds> cars = odds.cars;
    auto key = [](const CarOdds& c) {
        return std::make_tuple(-std::int64_t(c.wins), -std::int64_t(c.podiums), -std::int64_t(c.points), c.positionSum,
                               c.slot);
    };
    std::sort(cars.begin(), cars.end(), [&](const CarOdds& l, const CarOdds& r) { return key(l) < key(r); });
    return cars;
}

}  // namespace tarvel
