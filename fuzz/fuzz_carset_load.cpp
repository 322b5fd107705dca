// Loads arbitrary bytes as a car set file (checksum off) and reads back every
// item the load marked as stored in the file. Nothing may crash or read
// outside its buffers.

#include "carset/CarSetFile.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

// The file each input is written to, removed when the fuzzer exits.
struct InputFile {
    std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("tarvel-fuzz-carset-" + std::to_string(::getpid()) + ".gp2");
    ~InputFile() {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
};

const std::filesystem::path& inputPath() {
    static const InputFile file;
    return file.path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tarvel;
    {
        std::FILE* f = std::fopen(inputPath().c_str(), "wb");
        if (!f) return 0;
        if (size) std::fwrite(data, 1, size, f);
        std::fclose(f);
    }
    CarSetFileOptions options;
    options.verifyChecksum = false;
    // Any answer is fine; the check must only stay inside the file.
    (void)checkCarSetFile(inputPath(), options);

    // One set for every run: a failed load must leave it as it was, and a
    // successful one replaces all of it.
    static CarSet set;
    if (!loadCarSet(set, inputPath(), options)) return 0;
    for (const AssetKindInfo& kind : kAssetKinds)
        for (int slot = 0; slot < kind.slotCount; ++slot)
            // Only whether reading a damaged item stays inside the file matters here.
            if (kind.view(set)[std::size_t(slot)].status == kAssetStored) (void)readAssetBytes(set, kind.kind, slot);
    // Building the file from what was loaded may fail on a damaged item; it
    // must only stay inside the file and its buffers.
    (void)buildCarSetFile(set, options);
    set.storedItems.reset();
    return 0;
}
