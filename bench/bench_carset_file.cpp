// Car set file speed: opening a set whose every asset table is full must take
// about as long as opening an empty one (items are read on demand), and saving
// must move item data at 200 MB/s or more.

#include "carset/CarSetFile.h"
#include "common/Checksum.h"
#include "common/RunLength.h"
#include "graphics/Bitmap.h"
#include "graphics/JamCatalogue.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <unistd.h>

namespace {

using namespace tarvel;
namespace fs = std::filesystem;

constexpr std::size_t kSoundBytes = 100 * 1024;

void writeFile(const fs::path& path, const Bytes& data) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data.data()), std::streamsize(data.size()));
}

// Pixels with the mix of runs and detail a texture has.
void paintTexture(std::uint8_t* pixels, std::size_t n, std::mt19937& rng) {
    for (std::size_t i = 0; i < n;) {
        std::size_t run = rng() % 3 == 0 ? 1 + rng() % 40 : 1;
        std::uint8_t colour = std::uint8_t(rng());
        for (std::size_t k = 0; k < run && i < n; ++k) pixels[i++] = colour;
    }
}

Bytes waveFile(std::size_t dataBytes, std::mt19937& rng) {
    ByteWriter w;
    w.bytes("RIFF", 4);
    w.u32(std::uint32_t(dataBytes - 8));
    w.bytes("WAVE", 4);
    while (w.size() < dataBytes) w.u8(std::uint8_t(128 + int(rng() % 64) - 32));
    return std::move(w.data());
}

struct Sets {
    fs::path folder;
    fs::path empty;
    fs::path full;
    std::size_t fullItemBytes = 0;

    Sets() {
        folder = fs::temp_directory_path() / ("tarvel-bench-carset-" + std::to_string(::getpid()));
        fs::create_directories(folder);
        empty = folder / "empty.gp2";
        full = folder / "full.gp2";
        CarSetFileOptions options;
        CarSet emptySet;
        if (!saveCarSet(emptySet, empty, options)) std::abort();

        std::mt19937 rng(7);
        CarSet set;
        auto external = [&](AssetSlot& slot, const fs::path& path) {
            slot.status = kAssetExternal;
            setFieldText(slot.path, path.string());
        };
        auto picture = [&](const std::string& name, int width, int height) {
            BitmapBuffer bitmap(width, height);
            paintTexture(bitmap.pixels(), bitmap.pixelBytes(), rng);
            fs::path path = folder / name;
            writeFile(path, encodeBitmapKeepingPalette(bitmap));
            fullItemBytes += std::size_t(width) * std::size_t(height);
            return path;
        };
        for (int i = 0; i < kWheelSlots; ++i)
            external(set.wheels[i], picture("W" + std::to_string(i) + ".BMP", 256, JamInfo(kFirstWheelJam + i).canvasHeight));
        for (int i = kFirstUsableJam; i < kJamSlots; ++i)
            external(set.jams[i], picture("J" + std::to_string(i) + ".BMP", 256, JamInfo(i).canvasHeight));
        for (int i = 0; i < kMenuHelmetSlots; ++i)
            external(set.menuHelmets[i], picture("M" + std::to_string(i) + ".BMP", 104, 104));
        for (int i = 0; i < kSoundSlots; ++i) {
            fs::path path = folder / ("S" + std::to_string(i) + ".WAV");
            writeFile(path, waveFile(kSoundBytes, rng));
            external(set.sounds[i], path);
            fullItemBytes += kSoundBytes;
        }
        for (int i = 0; i < kCockpitSlots; ++i) {
            fs::path path = folder / ("C" + std::to_string(i) + ".CPD");
            Bytes cockpit(60000);
            paintTexture(cockpit.data(), cockpit.size(), rng);
            writeFile(path, cockpit);
            external(set.cockpits[i], path);
            fullItemBytes += cockpit.size();
        }
        set.recountAssets();
        if (!saveCarSet(set, full, options)) std::abort();
    }
    ~Sets() {
        std::error_code ec;
        fs::remove_all(folder, ec);
    }
};

Sets& sets() {
    static Sets instance;
    return instance;
}

void open(benchmark::State& state, const fs::path& path, bool verifyChecksum) {
    CarSetFileOptions options;
    options.verifyChecksum = verifyChecksum;
    CarSet set;
    for (auto _ : state) {
        if (!loadCarSet(set, path, options)) state.SkipWithError("load failed");
        benchmark::DoNotOptimize(set.jamCount);
    }
    state.counters["fileMB"] = double(fs::file_size(path)) / 1e6;
}

void BM_OpenEmptySet(benchmark::State& state) { open(state, sets().empty, false); }
void BM_OpenFullSet(benchmark::State& state) { open(state, sets().full, false); }
void BM_OpenEmptySetChecksum(benchmark::State& state) { open(state, sets().empty, true); }
void BM_OpenFullSetChecksum(benchmark::State& state) { open(state, sets().full, true); }

// Saving a full set whose items come from the open car set file; bytes are
// the raw item data moved.
void BM_SaveFullSet(benchmark::State& state) {
    CarSetFileOptions options;
    options.compress = state.range(0) != 0;
    CarSet set;
    if (!loadCarSet(set, sets().full, options)) {
        state.SkipWithError("load failed");
        return;
    }
    fs::path target = sets().folder / "saved.gp2";
    for (auto _ : state) {
        if (!saveCarSet(set, target, options)) state.SkipWithError("save failed");
    }
    state.SetBytesProcessed(std::int64_t(state.iterations()) * std::int64_t(sets().fullItemBytes));
}

// Saving a full set whose items come from outside files (bitmaps and WAV files).
void BM_SaveFromOutsideFiles(benchmark::State& state) {
    CarSetFileOptions options;
    CarSet loaded;
    if (!loadCarSet(loaded, sets().full, options)) {
        state.SkipWithError("load failed");
        return;
    }
    fs::path target = sets().folder / "outside.gp2";
    for (auto _ : state) {
        state.PauseTiming();
        CarSet set;
        auto external = [&](AssetSlot& slot, const std::string& name) {
            slot.status = kAssetExternal;
            setFieldText(slot.path, (sets().folder / name).string());
        };
        for (int i = 0; i < kWheelSlots; ++i) external(set.wheels[i], "W" + std::to_string(i) + ".BMP");
        for (int i = kFirstUsableJam; i < kJamSlots; ++i) external(set.jams[i], "J" + std::to_string(i) + ".BMP");
        for (int i = 0; i < kMenuHelmetSlots; ++i) external(set.menuHelmets[i], "M" + std::to_string(i) + ".BMP");
        for (int i = 0; i < kSoundSlots; ++i) external(set.sounds[i], "S" + std::to_string(i) + ".WAV");
        for (int i = 0; i < kCockpitSlots; ++i) external(set.cockpits[i], "C" + std::to_string(i) + ".CPD");
        state.ResumeTiming();
        if (!saveCarSet(set, target, options)) state.SkipWithError("save failed");
    }
    state.SetBytesProcessed(std::int64_t(state.iterations()) * std::int64_t(sets().fullItemBytes));
}

void BM_RunLengthEncodeTexture(benchmark::State& state) {
    std::mt19937 rng(3);
    Bytes raw(1 << 20);
    paintTexture(raw.data(), raw.size(), rng);
    Bytes out;
    for (auto _ : state) {
        out.clear();
        runLengthEncode(raw, out);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(std::int64_t(state.iterations()) * std::int64_t(raw.size()));
}

void BM_ChecksumTrailer(benchmark::State& state) {
    std::mt19937 rng(5);
    Bytes data(8 << 20);
    for (auto& b : data) b = std::uint8_t(rng());
    for (auto _ : state) benchmark::DoNotOptimize(computeChecksum(data));
    state.SetBytesProcessed(std::int64_t(state.iterations()) * std::int64_t(data.size()));
}

}  // namespace

BENCHMARK(BM_OpenEmptySet)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenFullSet)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenEmptySetChecksum)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenFullSetChecksum)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveFullSet)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveFromOutsideFiles)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RunLengthEncodeTexture);
BENCHMARK(BM_ChecksumTrailer)->Unit(benchmark::kMillisecond);
