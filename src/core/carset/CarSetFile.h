#pragma once
// The car set file (.GP2): format version 180 sub-version 6 is written; 180,
// 170 and 160 are read. Items (pictures, sounds) stay in the file and are read
// on demand through the open file handle that a load leaves in the set
// (CarSet::storedItems). The reader is CarSetReader.cpp, the writer
// CarSetWriter.cpp; the handle and its item reads are CarSetFileHandle.

#include "carset/CarSet.h"
#include "carset/CarSetFileHandle.h"
#include "common/ByteIO.h"
#include "common/Messages.h"
#include "common/Result.h"

#include <filesystem>
#include <vector>

namespace tarvel {

struct CarSetFileOptions {
    bool verifyChecksum = true;   // "Config"/"CheckSum"
    bool compress = true;         // run-length code items where it pays
};

// The version (180, 170, 160) of a readable file, or "Couldn't Open Car Set
// File." / "File is not a valid Tarvel Car Set.". A file of a newer version
// adds "This file requires Tarvel v%.2f." to `notices` before it is refused.
Result<int> checkCarSetFile(const std::filesystem::path& path, const CarSetFileOptions& options,
                            std::vector<Message>* notices = nullptr);

// Loads into a fresh set and takes it over only on success: a failed load
// leaves `set` exactly as it was. Gives the file's format version; the set's
// storedItems then refers to the open file.
Result<int> loadCarSet(CarSet& set, const std::filesystem::path& path, const CarSetFileOptions& options,
                       std::vector<Message>* notices = nullptr);

// The bytes of the file that saveCarSet writes for `set` (checksum included).
// Items of status 2 are read from the set's storedItems.
Result<Bytes> buildCarSetFile(const CarSet& set, const CarSetFileOptions& options);

// Writes through a temporary file beside the target and an atomic rename; a
// failed save leaves the old file and the model as they were. On success the
// set refers to the new file (statuses as after a load of it).
Status saveCarSet(CarSet& set, const std::filesystem::path& path, const CarSetFileOptions& options);

}  // namespace tarvel
