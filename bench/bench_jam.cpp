// JAM conversion speed: ExportJamToBitmap's conversion and BuildJamFromBitmap
// over every file of the catalogue (synthetic files of the real canvas sizes),
// against a plain copy of the same bytes.
#include "fixtures/JamFixture.h"
#include "graphics/Jam.h"
#include "graphics/JamCatalogue.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

struct Corpus {
    std::vector<tarvel::Bytes> plain;               // unscrambled files
    std::vector<tarvel::BitmapBuffer> pictures;     // their bitmaps
    std::size_t bytes = 0;
};

const Corpus& corpus() {
    static const Corpus c = [] {
        Corpus built;
        for (int n = 0; n < tarvel::kJamCatalogueSize; ++n) {
            built.plain.push_back(tarvel::test::makeJamFile(n, 1, false));
            built.bytes += built.plain.back().size();
            built.pictures.push_back(*tarvel::convertJamToBitmap(built.plain.back(), n, {}));
        }
        return built;
    }();
    return c;
}

void reportPerFile(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * tarvel::kJamCatalogueSize);
    state.SetBytesProcessed(state.iterations() * std::int64_t(corpus().bytes));
}

void BM_CopyAllJams(benchmark::State& state) {
    const Corpus& c = corpus();
    for (auto _ : state) {
        for (const auto& file : c.plain) {
            tarvel::Bytes copy = file;
            benchmark::DoNotOptimize(copy.data());
        }
    }
    reportPerFile(state);
}
BENCHMARK(BM_CopyAllJams);

void BM_ScrambleAllJams(benchmark::State& state) {
    const Corpus& c = corpus();
    for (auto _ : state) {
        for (const auto& file : c.plain) {
            tarvel::Bytes copy = file;
            tarvel::JamScramble(copy);
            benchmark::DoNotOptimize(copy.data());
        }
    }
    reportPerFile(state);
}
BENCHMARK(BM_ScrambleAllJams);

void BM_ConvertAllJamsToBitmaps(benchmark::State& state) {
    const Corpus& c = corpus();
    for (auto _ : state) {
        for (int n = 0; n < tarvel::kJamCatalogueSize; ++n) {
            auto bitmap = tarvel::convertJamToBitmap(c.plain[std::size_t(n)], n, {});
            benchmark::DoNotOptimize(bitmap->data.data());
        }
    }
    reportPerFile(state);
}
BENCHMARK(BM_ConvertAllJamsToBitmaps);

void BM_BuildAllJamsFromBitmaps(benchmark::State& state) {
    const Corpus& c = corpus();
    tarvel::GraphicsOptions options;
    options.fixGreen = true;
    for (auto _ : state) {
        for (int n = 0; n < tarvel::kJamCatalogueSize; ++n) {
            tarvel::Bytes jam = c.plain[std::size_t(n)];
            auto size = tarvel::BuildJamFromBitmap(jam, c.pictures[std::size_t(n)], n, options);
            benchmark::DoNotOptimize(size);
        }
    }
    reportPerFile(state);
}
BENCHMARK(BM_BuildAllJamsFromBitmaps);

}  // namespace
