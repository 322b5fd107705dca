#pragma once
// The game settings record (settings words 0-10): driver aids per level, quick
// race length, the track records and computer fuel switches, multiplayer
// turns and the initial fuel loads, moved to and from GP2.EXE and the state file.

#include "common/Result.h"
#include "game/GameFileAccess.h"

#include <cstdint>
#include <span>

namespace tarvel {

namespace gamesettings {
constexpr int kLevels = 5;             // words 0-4: "Rookie" .. "Ace", bit k = aid k
constexpr int kAidCount = 7;
constexpr int kQuickRaceLength = 5;    // state file only
constexpr int kTrackRecords = 6;
constexpr int kComputerFuel = 7;
constexpr int kMultiplayerTurns = 8;   // state file only
constexpr int kFuelPractice = 9;
constexpr int kFuelQualifying = 10;
constexpr int kWords = 11;
}  // namespace gamesettings

// Import reads the record from the game, export writes it. The state file's
// two words are moved only with access.useStateFile; otherwise they keep their
// values. A read that fails part way keeps what it read ("Couldn't Read Data
// from GP2.EXE."); a write that fails leaves what it wrote ("GP2.EXE was not
// Patched Correctly."). An unknown release opens nothing ("Unsupported Version.").
Status TransferGameSettings(std::span<std::uint16_t, gamesettings::kWords> record, TransferDirection direction,
                            const GameAccess& access);

}  // namespace tarvel
