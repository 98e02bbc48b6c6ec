#!/usr/bin/env python3
"""Draws the driver's About-box logo, res/kvologo.bmp: a receipt printer with a paper roll
coming out of it and the letters KVO, on magenta (the colour the About box leaves
transparent). 64 x 64 pixels, 24 bits. Run it again after changing the drawing."""
import struct
import sys

W = H = 64
MAGENTA = (255, 0, 255)
BODY = (28, 52, 96)
EDGE = (12, 26, 54)
PAPER = (250, 250, 244)
INK = (120, 120, 120)
LIGHT = (70, 200, 90)
LETTER = (255, 255, 255)

pixels = [[MAGENTA for _ in range(W)] for _ in range(H)]


def rect(x0, y0, x1, y1, colour):
    for y in range(y0, y1):
        for x in range(x0, x1):
            pixels[y][x] = colour


# The receipt coming out of the printer, with printed lines and a torn top edge.
rect(18, 4, 46, 26, PAPER)
for x in range(18, 46, 4):
    rect(x, 4, x + 2, 6, MAGENTA)
for y, length in ((10, 22), (14, 16), (18, 20)):
    rect(21, y, 21 + length, y + 1, INK)
# The printer's body with its edge, slot and status light.
rect(6, 24, 58, 58, EDGE)
rect(8, 26, 56, 56, BODY)
rect(14, 26, 50, 29, EDGE)
rect(48, 50, 52, 53, LIGHT)

# KVO in a 5 x 7 pixel alphabet, drawn twice as large.
GLYPHS = {
    "K": ["10001", "10010", "10100", "11000", "10100", "10010", "10001"],
    "V": ["10001", "10001", "10001", "10001", "01010", "01010", "00100"],
    "O": ["01110", "10001", "10001", "10001", "10001", "10001", "01110"],
}
x = 13
for letter in "KVO":
    for row, bits in enumerate(GLYPHS[letter]):
        for col, bit in enumerate(bits):
            if bit == "1":
                rect(x + 2 * col, 33 + 2 * row, x + 2 * col + 2, 35 + 2 * row, LETTER)
    x += 13

row_bytes = (W * 3 + 3) & ~3
image = bytearray()
for y in reversed(range(H)):  # bottom-up rows
    line = bytearray()
    for (r, g, b) in pixels[y]:
        line += bytes((b, g, r))
    image += line + bytes(row_bytes - len(line))
header = struct.pack("<2sIHHI", b"BM", 54 + len(image), 0, 0, 54)
info = struct.pack("<IiiHHIIiiII", 40, W, H, 1, 24, 0, len(image), 2835, 2835, 0, 0)
out = sys.argv[1] if len(sys.argv) > 1 else "res/kvologo.bmp"
with open(out, "wb") as f:
    f.write(header + info + image)
