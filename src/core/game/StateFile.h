#pragma once
// The game's saved state F1GSTATE.SAV: its checksum trailer and the names and
// driver numbers the game takes from it instead of GP2.EXE.

#include "carset/CarSet.h"
#include "common/ByteIO.h"
#include "common/Result.h"

#include <cstdint>
#include <filesystem>
#include <span>

namespace tarvel {

namespace statefile {
constexpr std::uint32_t kQuickRaceLength = 647;
constexpr std::uint32_t kMultiplayer = 6464;
constexpr std::uint32_t kDriverNumbers = 14322;
constexpr std::uint32_t kCockpitColours = 14362;
constexpr std::uint32_t kNumberMap = 14422;
constexpr std::uint32_t kDriverNames = 14462;
constexpr std::uint32_t kTeamNames = 15422;
constexpr std::uint32_t kEngineNames = 15682;
}  // namespace statefile

struct StateFileTrailer {
    std::uint16_t sum = 0;
    std::uint16_t rolling = 0;
    bool operator==(const StateFileTrailer&) const = default;
};

// Sum and rotating value over a payload.
StateFileTrailer computeStateFileTrailer(std::span<const std::uint8_t> payload);

enum class StateFileState { Valid, Absent, Invalid };

// Clears the read-only attribute of an existing file, then tests its trailer.
StateFileState stateFileState(const std::filesystem::path& gameFolder);
// True when the folder holds an F1GSTATE.SAV whose trailer matches.
bool CheckStateFile(const std::filesystem::path& gameFolder);

// Team and engine names, driver numbers, seat flags and the names of the
// drivers in the 14 teams. Fails with "Bad Driver Numbers." or "Couldn't Read
// Data from F1GSTATE.SAV.".
Status ReadStateFileNames(CarSet& set, const std::filesystem::path& gameFolder);
// Writes all of the above and then the trailer; fails with "F1GSTATE.SAV was
// not Patched Correctly.".
Status WriteStateFileNames(const CarSet& set, const std::filesystem::path& gameFolder);
// Recomputes and writes the trailer of the file at `path`.
bool WriteStateFileChecksum(const std::filesystem::path& path);

}  // namespace tarvel
