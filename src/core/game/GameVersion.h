#pragma once
// The seven recognised releases of GP2.EXE and the offsets of the data tables
// inside each of them.

#include "common/Messages.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

namespace tarvel {

constexpr int kGameReleaseCount = 7;
constexpr std::uint32_t kGameExeSize = 5702937;       // every release has this length
constexpr std::uint32_t kMinimumGameExeSize = 5675468;  // shorter files are never recognised

struct GameRelease {
    std::string_view tag;       // two characters
    std::uint32_t tagOffset;
    int dataShift;              // of the data tables against release 0
};

// In version-index order; "UK" and "US" sit one byte apart, so the order of
// the tests matters.
inline constexpr std::array<GameRelease, kGameReleaseCount> kGameReleases{{
    {"UK", 5671742, 0},
    {"It", 5674339, 52},
    {"es", 5675468, 84},
    {"Ne", 5673613, 48},
    {"fr", 5674997, 48},
    {"US", 5671741, 0},
    {"De", 5674543, 112},
}};

enum class GameTable {
    QualifyingPower,   // 20 x u16
    RacePower,         // 20 x u16
    GripPair,          // 40 x 4 bytes: qualifying grip, race grip
    GripRange,         // 40 x 4 bytes, u16 used
    FailureProbability,// 20 x u16
    DriverNumbers,     // 28 bytes
    CockpitColours,    // 14 x 3 bytes
    NumberMap,         // 40 bytes
    NameBlock,         // driver names +0, team names +960, engine names +1220
    PitBoxOrder,       // 20 bytes
    PitCrewColours,    // 14 x 16 bytes
    Count_
};

inline constexpr std::array<std::array<std::uint32_t, kGameReleaseCount>, std::size_t(GameTable::Count_)>
    kGameTableOffsets{{
        {1931244, 1931296, 1931328, 1931292, 1931292, 1931244, 1931356},
        {1931284, 1931336, 1931368, 1931332, 1931332, 1931284, 1931396},
        {1931324, 1931376, 1931408, 1931372, 1931372, 1931324, 1931436},
        {1931484, 1931536, 1931568, 1931532, 1931532, 1931484, 1931596},
        {1931644, 1931696, 1931728, 1931692, 1931692, 1931644, 1931756},
        {1950190, 1950242, 1950274, 1950238, 1950238, 1950190, 1950302},
        {1950230, 1950282, 1950314, 1950278, 1950278, 1950230, 1950342},
        {1950290, 1950342, 1950374, 1950338, 1950338, 1950290, 1950402},
        {1950330, 1950382, 1950414, 1950378, 1950378, 1950330, 1950442},
        {1954095, 1954147, 1954179, 1954143, 1954143, 1954095, 1954207},
        {1992076, 1992140, 1992172, 1992124, 1992124, 1992076, 1992188},
    }};

// Offsets that are the same in every release.
constexpr std::uint32_t kHighNoseOffset = 1238451;     // 4-byte stride; bytes +4i and +4i+53
constexpr std::uint32_t kCarNumberLayoutOffset = 1285756;  // 128 + 24 bytes
constexpr std::uint32_t kTeamNamesInBlock = 960;
constexpr std::uint32_t kEngineNamesInBlock = 1220;

// version must be 0-6.
constexpr std::uint32_t gameTableOffset(GameTable table, int version) {
    return kGameTableOffsets[std::size_t(table)][std::size_t(version)];
}

// Why a folder holds no game this program can use, in words for the user:
// the exact refusal ("File Not Found - GP2.EXE." or "Unsupported Version.")
// with its detail ("No GP2.EXE in /games/gp2"); nothing when the release is known.
std::optional<Message> gameFolderProblem(const std::filesystem::path& gameFolder);

// 0-6 for a recognised GP2.EXE in the folder, -1 otherwise (missing,
// unreadable, too short or no tag).
int DetectGameVersion(const std::filesystem::path& gameFolder);
// The same test on an executable file given by its path.
int detectGameVersionOfFile(const std::filesystem::path& exePath);

}  // namespace tarvel
