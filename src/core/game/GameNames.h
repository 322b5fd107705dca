#pragma once
// Names and driver numbers as the game stores them in GP2.EXE and
// F1GSTATE.SAV.

#include "carset/CarSet.h"

#include <cstdint>
#include <span>

namespace tarvel {

// A name field in the game's code page from one in the Windows code page and
// back; the result has exactly the field's size, so a conversion never moves
// the bytes that follow.
void nameToGame(std::span<const char> windowsField, std::span<std::uint8_t> gameField);
void nameFromGame(std::span<const std::uint8_t> gameField, std::span<char> windowsField);

// "Spare%.2d" for number n, "Not Used" for 13, zero-padded to 24 bytes.
void placeholderDriverName(int number, std::span<std::uint8_t, 24> out);

// The driver number table of the 28 seats, bytes as stored (a flag bit of 128
// on top): three or more empty seats, a repeated number or a number above 40
// make the table unusable.
constexpr int kGameSeats = 2 * kRacingTeams;
bool driverNumbersValid(std::span<const std::uint8_t, kGameSeats> raw);

}  // namespace tarvel
