#pragma once
// Reading and writing the team, driver and performance tables of GP2.EXE and
// its cockpit and pit crew colour tables.

#include "carset/CarSet.h"
#include "carset/FieldSchema.h"
#include "common/Result.h"

#include <cstdint>
#include <filesystem>
#include <span>

namespace tarvel {

class Progress;

struct ExecutableTransferOptions {
    int version = 0;            // 0-6
    bool useStateFile = false;  // names and numbers come from / also go to F1GSTATE.SAV
};

// Import: fills the 14 teams (and the spare driver slots), the drivers and
// carNumbersImport. Fails with "Bad Driver Numbers.", "Bad Pit Box Numbers."
// or "Couldn't Read Data from GP2.EXE.". What was read before a failure stays.
Status TransferExecutableTables(CarSet& set, const std::filesystem::path& gameFolder,
                                const ExecutableTransferOptions& options, Progress* progress = nullptr);
// Export: writes them (and the first car number layout copy); fails with "GP2.EXE
// was not Patched Correctly.".
Status TransferExecutableTables(const CarSet& set, const std::filesystem::path& gameFolder,
                                const ExecutableTransferOptions& options, Progress* progress = nullptr);

// Cockpit colours (teamBytesA): GP2.EXE and, with the state file in use,
// F1GSTATE.SAV at the same layout.
Status ImportCockpitColours(CarSet& set, const std::filesystem::path& gameFolder,
                            const ExecutableTransferOptions& options);
Status ExportCockpitColours(const CarSet& set, const std::filesystem::path& gameFolder,
                            const ExecutableTransferOptions& options, bool fixGreen);
// Pit crew colours (teamBytesB): GP2.EXE only.
Status ImportPitCrewColours(CarSet& set, const std::filesystem::path& gameFolder,
                            const ExecutableTransferOptions& options);
Status ExportPitCrewColours(const CarSet& set, const std::filesystem::path& gameFolder,
                            const ExecutableTransferOptions& options, bool fixGreen);

// The green fix applied before colour bytes go to the game: runs from the last
// byte to the first; 104..123 move up the palette, then 194..213 move by 20.
void applyPaletteFix(std::span<std::uint8_t> bytes);

// Power as the game stores it and back (with the import clamps).
constexpr std::uint16_t encodePower(std::uint16_t power) { return std::uint16_t(power + 32817u); }
constexpr std::uint16_t decodePower(std::uint16_t raw) {
    if (raw < 32817) raw = 32817;
    unsigned power = raw - 32817u;
    return std::uint16_t(power > unsigned(fieldrange::kEnginePower.high) ? fieldrange::kEnginePower.high : power);
}

}  // namespace tarvel
