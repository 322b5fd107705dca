// The calculators: one grid, one race, and a season of 10,000 races with
// random grip and car failures (the season odds view runs it while the user
// waits; it must stay under 100 ms).

#include "fixtures/PerformanceSamples.h"
#include "performance/SeasonOdds.h"

#include <benchmark/benchmark.h>

namespace {

using namespace tarvel;

void Grid(benchmark::State& state) {
    const CarSet set = test::calculatorSample();
    Rand rand(1);
    for (auto _ : state) benchmark::DoNotOptimize(computeGrid(set.teams, set.drivers, true, rand));
}
BENCHMARK(Grid);

void Race(benchmark::State& state) {
    const CarSet set = test::calculatorSample();
    Rand rand(1);
    for (auto _ : state)
        benchmark::DoNotOptimize(computeRace(set.teams, set.drivers, {.randomGrip = true, .carFailure = true}, rand));
}
BENCHMARK(Race);

void Season(benchmark::State& state) {
    const CarSet set = test::calculatorSample();
    const std::span points(set.settings.range(settings::kPoints), std::size_t(settings::kPoints.count));
    Rand rand(1);
    for (auto _ : state) {
        const SeasonOdds odds =
            runSeason(set.teams, set.drivers, points, {.randomGrip = true, .carFailure = true}, 10000, rand);
        benchmark::DoNotOptimize(odds.cars.data());
    }
}
BENCHMARK(Season)->Unit(benchmark::kMillisecond);

}  // namespace
