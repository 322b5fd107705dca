// The calculators on whatever a car set file may hold: arbitrary team and
// driver figures, driver numbers, disabled flags and names, with every option.
#include "performance/SeasonOdds.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tarvel;
    std::size_t at = 0;
    auto next = [&]() -> std::uint16_t {
        std::uint16_t v = 0;
        if (at + 2 <= size) std::memcpy(&v, data + at, 2);
        at += 2;
        return v;
    };
    static TeamTable teams;
    static DriverTable drivers;
    teams = {};
    drivers = {};
    for (TeamRecord& t : teams) {
        for (char& c : t.name) c = char(next());   // names without their terminator
        t.powerRace = next(), t.powerQual = next(), t.failureProbability = next();
        t.driver = {std::int16_t(next()), std::int16_t(next())};
        t.disabled = {std::uint16_t(next() & 1), std::uint16_t(next() & 1)};
    }
    for (DriverRecord& d : drivers) {
        for (char& c : d.name) c = char(next());
        d.gripRace = next(), d.gripQual = next(), d.gripRandom = next();
    }
    const std::uint16_t points[3] = {next(), next(), next()};
    Rand rand(next());
    for (const bool randomGrip : {false, true})
        for (const bool carFailure : {false, true}) {
            const WorkingTable race = computeRace(teams, drivers, {randomGrip, carFailure}, rand);
            if (race.shown < 0 || race.shown > kCalculatorCars) __builtin_trap();
            for (const CarEntry& e : race.entries)
                if (e.slot >= std::uint32_t(kCalculatorCars) || e.gapText().empty()) __builtin_trap();
            const SeasonOdds odds = runSeason(teams, drivers, points, {randomGrip, carFailure}, 3, rand);
            if (odds.cars.size() != std::size_t(race.shown)) __builtin_trap();
        }
    return 0;
}
