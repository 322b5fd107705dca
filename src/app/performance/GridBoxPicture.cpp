// The grid box of the graphical grid, drawn by resources/make_grid_box.py:
// '.' face colour, 'H' highlight, 'S' shadow. Do not edit by hand.

#include "performance/GridBoxPicture.h"

namespace tarvel {

const char* const kGridBoxRows[kGridBoxHeight] = {
    "HHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHH",
    "H..........................................................................................................................................S",
    "H..........................................................................................................................................S",
    "H..........................................................................................................................................S",
    "H...SSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSSS...S",
    "H...S..................................................................................................................................H...S",
    "H...S..................................................................................................................................H...S",
    "H...S..................................................................................................................................H...S",
    "HSSSS..................................................................................................................................HSSSS",
};

}  // namespace tarvel
