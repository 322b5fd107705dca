#pragma once
// The global car settings record (settings words 22-32): the player's power,
// weight and pit speed limit, the computer cars' weight and performance mode,
// the grip factor and three switches patched into GP2.EXE's code.

#include "carset/FieldSchema.h"
#include "common/Result.h"
#include "game/GameFileAccess.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace tarvel {

namespace globalcar {
constexpr int kDriverZero = 0;
constexpr int kPowerRace = 1;
constexpr int kPowerQual = 2;
constexpr int kPitSpeedLimit = 3;
constexpr int kNoSpeedLimit = 4;
constexpr int kPlayerWeight = 5;
constexpr int kComputerWeight = 6;
constexpr int kComputerPerformance = 7;   // 0 all the same, 1 the set's values, 2 random; state file only
constexpr int kGripFactor = 8;
constexpr int kRandomPowerVariation = 9;
constexpr int kSelectedTeamPower = 10;
constexpr int kWords = 11;

constexpr FieldRange kPitSpeedRange{1, 201};
constexpr FieldRange kWeightRange{401, 4000};
constexpr FieldRange kGripFactorRange{0, 1000};
constexpr FieldRange kPerformanceModes{0, 2};
}  // namespace globalcar

// The pit speed limit as the game holds it: 324 units a step from 716.
constexpr std::uint16_t encodePitSpeed(std::uint16_t value) { return std::uint16_t((value - 1) * 324 + 716); }
constexpr std::uint16_t decodePitSpeed(std::uint16_t raw) {
    return std::uint16_t((std::clamp<int>(raw, 716, 65516) - 716) / 324 + 1);
}

// The labels beside the weight and pit speed bars: "%dkg [%dlb]", "%dkph [%dmph]"
// (the words taken as kilograms and km/h, converted and rounded to whole units).
std::string weightLabel(int kilograms);
std::string speedLabel(int kph);

// Import reads every word but the performance mode from GP2.EXE (clamping the
// powers, weights, pit speed and grip factor), then that mode from the state
// file with access.useStateFile; export writes them back. Failures as for the
// game settings.
Status TransferGlobalCarSettings(std::span<std::uint16_t, globalcar::kWords> record, TransferDirection direction,
                                 const GameAccess& access);

}  // namespace tarvel
