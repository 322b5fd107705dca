#pragma once
// The pictures a car set holds in memory (team liveries, helmet sheet) and
// their exchange with bitmap files and with the game's JAM files.

#include "carset/CarSet.h"

#include <filesystem>

namespace tarvel {

// Fills the 14 liveries with the built-in default livery and the helmet sheet
// with the built-in default sheet.
void fillDefaultPictures(CarSet& set);

}  // namespace tarvel
