#!/usr/bin/env python3
"""Draws the grid box of the Grid Calculator's graphical grid (the painted
starting slot each car stands in) and writes it as a C++ source file
(src/app/performance/GridBoxPicture.cpp).

  python3 resources/make_grid_box.py

The box is 140 x 9 pixels in three roles, coloured by the window at run time
from its palette: '.' the face colour, 'H' the highlight, 'S' the shadow.
A raised bar along the top with a notch at the right end, where the car's
nose stops, drawn as lines that leave out their end point.
Only the standard library is used.
"""
import os

HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.join(HERE, "..", "src", "app", "performance", "GridBoxPicture.cpp")
WIDTH, HEIGHT = 140, 9


def polyline(pixels, points, role):
    """Lines from point to point; each line stops short of its end point."""
    for (x0, y0), (x1, y1) in zip(points, points[1:]):
        steps = max(abs(x1 - x0), abs(y1 - y0))
        for i in range(steps):
            x = x0 + (x1 - x0) * i // steps
            y = y0 + (y1 - y0) * i // steps
            if 0 <= x < WIDTH and 0 <= y < HEIGHT:
                pixels[y][x] = role


def grid_box():
    pixels = [["."] * WIDTH for _ in range(HEIGHT)]
    polyline(pixels, [(0, 9), (0, 0), (140, 0)], "H")
    polyline(pixels, [(135, 9), (135, 4)], "H")
    polyline(pixels, [(1, 8), (4, 8), (4, 4), (136, 4)], "S")
    polyline(pixels, [(139, 1), (139, 8), (135, 8)], "S")
    return ["".join(row) for row in pixels]


def main():
    rows = grid_box()
    body = "\n".join('    "%s",' % row for row in rows)
    source = (
        "// The grid box of the graphical grid, drawn by resources/make_grid_box.py:\n"
        "// '.' face colour, 'H' highlight, 'S' shadow. Do not edit by hand.\n\n"
        '#include "performance/GridBoxPicture.h"\n\n'
        "namespace tarvel {\n\n"
        "const char* const kGridBoxRows[kGridBoxHeight] = {\n%s\n};\n\n"
        "}  // namespace tarvel\n" % body
    )
    with open(OUT, "w") as f:
        f.write(source)


if __name__ == "__main__":
    main()
