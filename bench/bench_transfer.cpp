// A full export and a full import of every available transfer item against a
// synthetic installation, next to a plain copy of the game files they touch
// (the same bytes): the ratio of the two is the cost of the transfer itself.

#include "carset/CarSet.h"
#include "common/Progress.h"
#include "fixtures/GameFixture.h"
#include "game/GameTransfer.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <filesystem>

namespace {
namespace fs = std::filesystem;
using namespace tarvel;

struct Installation {
    test::TempFolder folder{"bench-transfer"};
    GameContext context;
    Installation() {
        context.gameFolder = test::makeTestGame(folder.path() / "game", {});
        context.version = 0;
        context.workingFolder = folder.path() / "work";
        fs::create_directories(context.workingFolder);
    }
};

Installation& installation() {
    static Installation instance;
    return instance;
}

// Every file of the installation that an available item touches.
std::vector<fs::path> touchedFiles(const GameContext& context) {
    std::vector<fs::path> files;
    for (int item = 0; item < kTransferItemCount; ++item) {
        if (!transferItemAvailable(item)) continue;
        std::string relative = transferItemInfo(item).gameFile;
        for (auto& c : relative)
            if (c == '\\') c = '/';
        fs::path path = fs::path(context.gameFolder) / relative;
        if (files.empty() || files.back() != path) files.push_back(path);
    }
    files.push_back(fs::path(context.gameFolder) / "F1GSTATE.SAV");
    std::sort(files.begin(), files.end());
    files.erase(std::unique(files.begin(), files.end()), files.end());
    return files;
}

void BM_CopyTouchedFiles(benchmark::State& state) {
    Installation& game = installation();
    auto files = touchedFiles(game.context);
    fs::path target = game.folder.path() / "copy";
    for (auto _ : state) {
        for (const auto& file : files) {
            fs::path out = target / fs::relative(file, game.context.gameFolder);
            fs::create_directories(out.parent_path());
            fs::copy_file(file, out, fs::copy_options::overwrite_existing);
        }
    }
    state.counters["files"] = double(files.size());
}
BENCHMARK(BM_CopyTouchedFiles)->Unit(benchmark::kMillisecond);

// A set that holds a picture for every slot: the game's own, imported once.
bool importEverything(benchmark::State& state, CarSet& set, const TransferSelection& items) {
    Progress progress;
    bool changed = false;
    Status imported = ImportFromGame(set, items, installation().context, progress, changed);
    if (!imported) state.SkipWithError(messageText(imported.error()).c_str());
    return imported.has_value();
}

// The whole export; with `backup`, the files it writes are backed up first
// (the newest ten backups kept, so older ones are removed as it runs).
void exportAllItems(benchmark::State& state, bool backup) {
    Installation& game = installation();
    CarSet set;
    TransferSelection items;
    selectAvailableTransferItems(items);
    if (!importEverything(state, set, items)) return;
    GameContext context = game.context;
    if (backup) context.backupsRoot = game.folder.path() / "backups";
    Progress progress;
    for (auto _ : state) {
        Status done = ExportToGame(set, items, context, progress);
        if (!done) state.SkipWithError(messageText(done.error()).c_str());
    }
    state.counters["files"] = double(exportTargetFiles(set, items, context).size());
}
void BM_ExportAllItems(benchmark::State& state) { exportAllItems(state, false); }
void BM_ExportAllItemsWithBackup(benchmark::State& state) { exportAllItems(state, true); }
BENCHMARK(BM_ExportAllItems)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ExportAllItemsWithBackup)->Unit(benchmark::kMillisecond);

void BM_ImportAllItems(benchmark::State& state) {
    Installation& game = installation();
    Progress progress;
    TransferSelection items;
    selectAvailableTransferItems(items);
    for (auto _ : state) {
        CarSet set;
        bool changed = false;
        Status done = ImportFromGame(set, items, game.context, progress, changed);
        if (!done) state.SkipWithError(messageText(done.error()).c_str());
        benchmark::DoNotOptimize(set.teams[0].powerRace);
    }
}
BENCHMARK(BM_ImportAllItems)->Unit(benchmark::kMillisecond);

}  // namespace
