#!/usr/bin/env python3
"""Draws Tarvel's built-in pictures in the game palette and writes them as a
C++ source file (src/core/graphics/BuiltinPictures.cpp).

  python3 resources/make_pictures.py [--preview DIR]

--preview also writes the pictures as 8-bit BMP files for a look.

Pictures:
  default livery  256 x 164: a plain white-and-graphite car texture with a
                  blue pinstripe, laid out as the game's unfolded car texture
                  (wings, nose, sidepods, engine cover), white plates where
                  the car numbers go, transparent (0) where there is no paint.
  single helmet   74 x 15: the unrolled helmet: yellow shell (61, with 52 for
                  the darker shade) that the default sheet recolours, a dark
                  visor and a white crown stripe.
Only the standard library is used.
"""
import os
import struct
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.join(HERE, "..", "src", "core", "graphics", "BuiltinPictures.cpp")

# Game palette indexes used here.
TRANSPARENT = 0
BLACK = 1
GRAPHITE = 5
DARK_GREY = 8
MID_GREY = 14
LIGHT_GREY = 22
SILVER = 26
OFF_WHITE = 29
WHITE = 31
BLUE = 129          # 738FC7
DARK_BLUE = 150     # 2F337F
RED = 43            # C7333B
YELLOW = 61         # EFD307, recoloured by the default helmet sheet
YELLOW_SHADE = 52   # AFA707, recoloured by the default helmet sheet


class Picture:
    """Rows top-down while drawing; written bottom-up."""

    def __init__(self, width, height):
        self.width = width
        self.height = height
        self.px = [[TRANSPARENT] * width for _ in range(height)]

    def rect(self, x, y, w, h, colour):
        for row in range(max(y, 0), min(y + h, self.height)):
            for col in range(max(x, 0), min(x + w, self.width)):
                self.px[row][col] = colour

    def frame(self, x, y, w, h, colour):
        self.rect(x, y, w, 1, colour)
        self.rect(x, y + h - 1, w, 1, colour)
        self.rect(x, y, 1, h, colour)
        self.rect(x + w - 1, y, 1, h, colour)

    def shaded(self, x, y, w, h, light, dark, edge=3):
        """A panel in `light` whose lower and right edges fade into `dark`."""
        self.rect(x, y, w, h, light)
        for i in range(edge):
            shade = dark + (light - dark) * i // edge
            self.rect(x, y + h - 1 - i, w, 1, shade)
            self.rect(x + w - 1 - i, y, 1, h - i, shade)

    def taper(self, x, y, w, h, narrow, colour):
        """A panel whose width shrinks evenly to `narrow` towards its top row."""
        for row in range(h):
            width = narrow + (w - narrow) * row // max(h - 1, 1)
            left = x + (w - width) // 2
            self.rect(left, y + row, width, 1, colour)

    def bottom_up(self, stride):
        out = bytearray()
        for row in reversed(self.px):
            out += bytes(row) + bytes(stride - self.width)
        return bytes(out)


def number_plate(p, left_bottom_x, bottom_row, w, h):
    """A white plate with a black rim, given in bottom-up bitmap rows."""
    top = p.height - bottom_row - h
    p.rect(left_bottom_x, top, w, h, WHITE)
    p.frame(left_bottom_x, top, w, h, BLACK)


def livery():
    p = Picture(256, 164)
    # Front wing (top band, between the two front number plates).
    p.shaded(18, 1, 220, 5, GRAPHITE + 6, GRAPHITE)
    p.shaded(18, 7, 220, 5, GRAPHITE + 6, GRAPHITE)
    p.rect(18, 1, 10, 11, WHITE)                     # end plates
    p.rect(228, 1, 10, 11, WHITE)
    p.rect(28, 6, 200, 1, BLUE)
    # Nose cone top, narrowing towards the tip, with the pinstripe.
    p.taper(8, 16, 100, 44, 30, WHITE)
    p.taper(52, 16, 12, 44, 4, BLUE)
    for i in range(4):
        p.rect(8 + 2 * i, 56 + i, 100 - 4 * i, 1, SILVER - 2 * i)
    # Nose sides.
    p.shaded(112, 16, 140, 20, WHITE, LIGHT_GREY)
    p.rect(112, 28, 140, 2, BLUE)
    p.rect(112, 34, 140, 2, GRAPHITE)
    # Sidepod tops (left and right halves of the unfolded body).
    p.shaded(8, 64, 118, 44, WHITE, SILVER)
    p.shaded(130, 64, 118, 44, WHITE, SILVER)
    p.rect(8, 84, 118, 3, BLUE)
    p.rect(130, 84, 118, 3, BLUE)
    p.rect(8, 104, 118, 4, GRAPHITE)
    p.rect(130, 104, 118, 4, GRAPHITE)
    # Sponsor panels left blank in off-white with a light rim.
    for x in (20, 72, 142, 194):
        p.rect(x, 70, 42, 12, OFF_WHITE)
        p.frame(x, 70, 42, 12, LIGHT_GREY)
    # Engine cover and cockpit surround.
    p.shaded(8, 112, 240, 26, WHITE, SILVER)
    p.rect(96, 112, 64, 10, DARK_GREY)               # cockpit opening rim
    p.rect(104, 114, 48, 6, BLACK)
    p.rect(8, 136, 240, 2, BLUE)
    # Rear wing.
    p.shaded(18, 141, 220, 8, GRAPHITE + 6, GRAPHITE)
    p.shaded(18, 150, 220, 8, MID_GREY, DARK_GREY)
    p.rect(18, 141, 8, 17, WHITE)
    p.rect(230, 141, 8, 17, WHITE)
    p.rect(26, 149, 204, 1, BLUE)
    # Mirrors and small parts in the free corners.
    p.shaded(2, 16, 4, 10, GRAPHITE + 4, GRAPHITE, 1)
    p.shaded(250, 40, 4, 10, GRAPHITE + 4, GRAPHITE, 1)
    # Number plates (bottom-up positions of the car number layout).
    number_plate(p, 244, 150, 12, 14)
    number_plate(p, 2, 150, 12, 14)
    number_plate(p, 114, 28, 14, 11)
    number_plate(p, 184, 28, 14, 11)
    # The first column is the game's colour strip: no paint there.
    p.rect(0, 0, 1, 164, TRANSPARENT)
    return p


def helmet():
    p = Picture(74, 15)
    # Shell all round, darker towards the chin.
    p.rect(0, 0, 74, 15, YELLOW)
    p.rect(0, 11, 74, 4, YELLOW_SHADE)
    # Crown stripe and a shaded band either side of it.
    p.rect(0, 0, 74, 2, WHITE)
    p.rect(0, 2, 74, 1, YELLOW_SHADE)
    # Visor opening at the front (the middle of the unrolled shell).
    p.rect(25, 5, 24, 5, GRAPHITE)
    p.rect(27, 6, 20, 3, BLACK)
    p.rect(25, 4, 24, 1, DARK_GREY)
    # Side stripes in the darker shade.
    p.rect(6, 7, 14, 2, YELLOW_SHADE)
    p.rect(54, 7, 14, 2, YELLOW_SHADE)
    # Neck rim.
    p.rect(2, 14, 70, 1, DARK_GREY)
    return p


def array_text(name, data):
    lines = []
    for i in range(0, len(data), 32):
        lines.append("    " + ",".join(str(b) for b in data[i:i + 32]) + ",")
    return "extern const std::uint8_t %s[%d];\nconst std::uint8_t %s[%d] = {\n%s\n};\n" % (
        name, len(data), name, len(data), "\n".join(lines))


def palette_from_header():
    text = open(os.path.join(HERE, "..", "src", "core", "graphics", "Palette.h")).read()
    start = text.index("GamePalette{{")
    body = text[start:text.index("}}", start)]
    return [int(tok.strip().rstrip(","), 16) for tok in body.split() if tok.startswith("0x")][:256]


def write_bmp(path, picture, palette):
    stride = (picture.width + 3) & ~3
    pixels = picture.bottom_up(stride)
    header = struct.pack("<2sIHHI", b"BM", 1078 + len(pixels), 0, 0, 1078)
    info = struct.pack("<IiiHHIIiiII", 40, picture.width, picture.height, 1, 8, 0, 0, 0, 0, 256, 256)
    pal = b"".join(struct.pack("<BBBB", c & 255, (c >> 8) & 255, (c >> 16) & 255, 0) for c in palette)
    with open(path, "wb") as f:
        f.write(header + info + pal + pixels)


def main():
    car = livery()
    hel = helmet()
    source = (
        "// Generated by resources/make_pictures.py; do not edit.\n"
        "#include \"graphics/BuiltinPictures.h\"\n\n"
        "namespace tarvel {\n\n"
        + array_text("kBuiltinLiveryPixels", car.bottom_up(256)) + "\n"
        + array_text("kBuiltinHelmetPixels", hel.bottom_up(76)) + "\n"
        + "}  // namespace tarvel\n")
    with open(OUT, "w") as f:
        f.write(source)
    if "--preview" in sys.argv:
        folder = sys.argv[sys.argv.index("--preview") + 1]
        os.makedirs(folder, exist_ok=True)
        palette = palette_from_header()
        write_bmp(os.path.join(folder, "livery.bmp"), car, palette)
        write_bmp(os.path.join(folder, "helmet.bmp"), hel, palette)


if __name__ == "__main__":
    main()
