#pragma once
// Moving a team to another place of the team list (team swapping in the main
// window): the team records, the pit lane order, the team's two driver menu
// helmet slots and its two helmets in the helmet sheet move together.

#include "carset/CarSet.h"

#include <array>

namespace tarvel {

// The list order after moving the entry at `from` to `to` (both 0-13): entry p
// of the result is the team slot that position p shows.
std::array<int, kRacingTeams> teamListAfterMove(int from, int to);

// Moves team `from` to position `to` of the list and rebuilds slots 0-13 from
// the new order. Does nothing when from == to or either is outside 0-13.
// Returns true when something moved.
bool moveTeam(CarSet& set, int from, int to);

}  // namespace tarvel
