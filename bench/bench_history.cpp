// The undo history: one undo (and its redo) on a set whose asset tables are
// full must take under a millisecond, and a history of 100 steps must hold
// under 64 MiB, shared pictures counted once.

#include "carset/CarSetDocument.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <random>
#include <string>

namespace {

using namespace tarvel;

// Every asset slot in use with a long path, every livery a picture of its own.
CarSetDocument fullDocument() {
    CarSetDocument document;
    CarSet& set = document.set;
    auto fill = [](auto& slots) {
        int n = 0;
        for (AssetSlot& slot : slots) {
            slot.status = kAssetExternal;
            setFieldText(slot.path, "/home/author/seasons/1997/replacements/item-" + std::to_string(n++) + ".bmp");
        }
    };
    fill(set.wheels), fill(set.cockpits), fill(set.jams), fill(set.menuHelmets), fill(set.sounds);
    set.recountAssets();
    std::mt19937 rng(3);
    for (auto& livery : set.liveries)
        for (auto& pixel : livery) pixel = std::uint8_t(rng());
    set.information.assign(kInformationMax, 'x');
    set.hasInformation = true;
    return document;
}

// `steps` edits; with `paint` each repaints a whole livery, else renames a team.
void edit(CarSetDocument& document, int steps, bool paint) {
    for (int i = 0; i < steps; ++i) {
        editDocument(document, StepName{"Step"}, [&](CarSet& set) {
            if (paint)
                set.liveries[std::size_t(i % kRacingTeams)].assign(std::size_t(kLiveryPixels), std::uint8_t(i));
            else
                setFieldText(set.team(i % kRacingTeams).name, std::to_string(i));
            return true;
        });
    }
}

void BM_UndoAndRedoOneStep(benchmark::State& state) {
    CarSetDocument document = fullDocument();
    edit(document, 100, state.range(0) != 0);
    for (auto _ : state) {
        if (!undoDocument(document) || !redoDocument(document)) std::abort();
    }
    state.counters["undo+redo per s"] = benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_UndoAndRedoOneStep)->Arg(0)->Arg(1)->ArgName("paint")->Unit(benchmark::kMicrosecond);

void BM_EditStep(benchmark::State& state) {
    CarSetDocument document = fullDocument();
    edit(document, 100, false);
    int i = 0;
    for (auto _ : state) {
        editDocument(document, StepName{"Step"}, [&](CarSet& set) {
            set.team(0).powerRace = std::uint16_t(++i % 1000);
            return true;
        });
    }
}
BENCHMARK(BM_EditStep)->Unit(benchmark::kMicrosecond);

void BM_HistoryOf100Steps(benchmark::State& state) {
    std::size_t bytes = 0;
    for (auto _ : state) {
        CarSetDocument document = fullDocument();
        edit(document, 100, state.range(0) != 0);
        bytes = document.history.memoryUse();
        if (bytes > (std::size_t(64) << 20)) std::abort();
    }
    state.counters["MiB held"] = double(bytes) / double(1 << 20);
}
BENCHMARK(BM_HistoryOf100Steps)->Arg(0)->Arg(1)->ArgName("paint")->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
