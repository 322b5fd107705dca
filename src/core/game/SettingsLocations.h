#pragma once
// Where the game-wide settings live in GP2.EXE and F1GSTATE.SAV: the offsets
// that move with the release (indexed by the version index 0-6), those that
// are the same in every release, and the instruction bytes the on/off
// switches write.

#include "game/GameVersion.h"

#include <array>
#include <cstdint>

namespace tarvel::settingsat {

using PerRelease = std::array<std::uint32_t, kGameReleaseCount>;

// Per release.
inline constexpr PerRelease kLaps{1951848, 1951900, 1951932, 1951896, 1951896, 1951848, 1951960};
inline constexpr PerRelease kPoints{1954061, 1954113, 1954145, 1954109, 1954109, 1954061, 1954173};
inline constexpr PerRelease kDriverZero{1951847, 1951899, 1951931, 1951895, 1951895, 1951847, 1951959};
// Each lap count again in the per-circuit records of 7 bytes.
constexpr std::uint32_t kLapsRecordCopy = 1991;
constexpr std::uint32_t kLapsRecordStride = 7;

// Game settings, every release.
constexpr std::uint32_t kDriverAids = 1224468;        // one byte per level, five levels
constexpr std::uint32_t kTrackRecordsA = 1029530;
constexpr std::uint32_t kTrackRecordsB = 1078954;
constexpr std::uint32_t kComputerFuelShown = 937730;
constexpr std::uint32_t kFuelPractice = 673688;
constexpr std::uint32_t kFuelQualifying = 704464;     // held as the load minus 1

// Global car settings, every release.
constexpr std::uint32_t kPlayerPowerRace = 678552;
constexpr std::uint32_t kPlayerPowerQual = 678559;
constexpr std::uint32_t kPitSpeedLimit = 1280068;
constexpr std::uint32_t kNoSpeedLimit = 596851;
constexpr std::uint32_t kPlayerWeight = 1282248;
constexpr std::uint32_t kComputerWeight = 1282252;
constexpr std::uint32_t kGripFactor = 1282272;         // 32 bits
constexpr std::uint32_t kRandomPowerVariation = 678669;
constexpr std::uint32_t kSelectedTeamPowerA = 678539;
constexpr std::uint32_t kSelectedTeamPowerB = 678539 + 365;

// Onboard cameras, every release: nine records of eight 16-bit values.
constexpr std::uint32_t kCameras = 1274714;

// F1GSTATE.SAV.
constexpr std::uint32_t kStateQuickRaceLength = 647;
constexpr std::uint32_t kStateMultiplayerTurns = 6464;
constexpr std::uint32_t kStateComputerPerformance = 6468;

// Instruction bytes of the switches: what "off" and "on" write.
inline constexpr std::array<std::uint8_t, 2> kTrackRecordsAOff{0x72, 0x38};
inline constexpr std::array<std::uint8_t, 2> kTrackRecordsBOff{0x72, 0x5C};
inline constexpr std::array<std::uint8_t, 2> kTrackRecordsOn{0x90, 0x90};
constexpr std::uint8_t kConditionalJump = 0x74;        // off for the fuel display and the speed limit
constexpr std::uint8_t kJump = 0xEB;                   // on
constexpr std::uint8_t kJumpIfBelow = 0x72;            // first byte of the track records sites when off
inline constexpr std::array<std::uint8_t, 5> kRandomPowerOn{0xE8, 0x49, 0xFF, 0xFF, 0xFF};   // a call
inline constexpr std::array<std::uint8_t, 5> kRandomPowerOff{0x90, 0x90, 0x90, 0x90, 0x90};
constexpr std::uint8_t kDriverZeroOn = 255;
constexpr std::uint8_t kDriverZeroOff = 254;
constexpr std::uint8_t kSelectedTeamPowerOn = 0;
constexpr std::uint8_t kSelectedTeamPowerOff = 255;

}  // namespace tarvel::settingsat
