#pragma once
// The grid box each car of the graphical grid stands in (140 x 9), as rows of
// colour roles drawn by resources/make_grid_box.py, and its image in the
// colours of a palette.

#include <QImage>
#include <QPalette>

namespace tarvel {

constexpr int kGridBoxWidth = 140;
constexpr int kGridBoxHeight = 9;
extern const char* const kGridBoxRows[kGridBoxHeight];

// '.' the button face, 'H' the light (highlight) and 'S' the dark (shadow) colour.
QImage gridBoxImage(const QPalette& palette);

}  // namespace tarvel
