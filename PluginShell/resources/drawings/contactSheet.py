#!/usr/bin/env python3
"""Lays all icons out on one sheet: contactSheet.py --icons FOLDER --painter PROGRAM --out PNG

FOLDER is the icons folder that drawIcons.py and the rasteriser have filled, PROGRAM is paintSheet.
Each icon stands on dark and on light ground at 48, 24 and 16 pixels, with its name below, sorted by
folders. PNGs aren't drawn larger than they are. --scale 2 gives a sheet for a closer look, --only
FOLDER a part of it.
"""

import argparse
import os
import re
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True

from shapes import GROUND, HIGHLIGHT, PANEL, TEXT_QUIET, number

LIGHT = "#f4f4f4"

COLUMNS = 8
MARGIN = 16
GAP = 8
PAD = 6
# 48 pixels to the left, 24 above 16 to the right.
PLACES = ((48, 0, 0), (24, 54, 0), (16, 58, 32))
TILE_WIDTH, TILE_HEIGHT = 54 + 24 + 2 * PAD, 48 + 2 * PAD
CELL_WIDTH, CELL_HEIGHT = 2 * TILE_WIDTH, TILE_HEIGHT + 16
TITLE_HEIGHT = 26
TITLE_PIXELS, NAME_PIXELS = 14, 10
TOP = "icons"


def natural_size(file):
    if file.suffix == ".svg":
        root = re.search(r"<svg[^>]*>", file.read_text()).group()
        return tuple(float(re.search(rf' {side}="([\d.]+)"', root).group(1))
                     for side in ("width", "height"))
    return struct.unpack(">II", file.read_bytes()[16:24])


def fitted(file, side):
    """The size of the icon in a square."""
    width, height = natural_size(file)
    factor = side / max(width, height)
    if file.suffix == ".png":
        factor = min(factor, 1)
    return max(1, round(width * factor)), max(1, round(height * factor))


def cell(file, x, y):
    steps = []
    for ground, left in ((PANEL, x), (LIGHT, x + TILE_WIDTH)):
        steps.append(("box", left, y, TILE_WIDTH, TILE_HEIGHT, ground))
        for side, right, below in PLACES:
            width, height = fitted(file, side)
            steps.append(("image", left + PAD + right + (side - width) // 2,
                          y + PAD + below + (side - height) // 2, width, height, file))
    steps.append(("text", x, y + TILE_HEIGHT, CELL_WIDTH, 16, TEXT_QUIET, NAME_PIXELS, file.name))
    return steps


def group(title, files, x, y, columns):
    width = columns * (CELL_WIDTH + GAP) - GAP
    steps = [("text", x, y, width, TITLE_HEIGHT - 4, HIGHLIGHT, TITLE_PIXELS, title)]
    for index, file in enumerate(files):
        row, column = divmod(index, columns)
        steps += cell(file, x + column * (CELL_WIDTH + GAP),
                      y + TITLE_HEIGHT + row * (CELL_HEIGHT + GAP))
    return steps


def in_reading_order(file):
    """Numbers in names by their value: logo_16 before logo_128."""
    parts = re.split(r"(\d+)", file.as_posix())
    return [int(part) if part.isdigit() else part for part in parts]


def layout(folder, only):
    """Groups from left to right, and on to the next shelf where one doesn't fit any more."""
    groups = {TOP: []}
    for file in sorted(folder.rglob("*"), key=in_reading_order):
        title = file.parent.relative_to(folder).as_posix()
        if file.suffix in (".svg", ".png") and (not only or title in only):
            groups.setdefault(TOP if title == "." else title, []).append(file.resolve())
    steps = []
    used, top, shelf = 0, MARGIN, 0
    for title, files in groups.items():
        if not files:
            continue
        columns = min(COLUMNS, len(files))
        if used + columns > COLUMNS:
            used, top, shelf = 0, top + shelf, 0
        left = MARGIN + used * (CELL_WIDTH + GAP)
        steps += group(title, files, left, top, columns)
        rows = -(-len(files) // columns)
        used += columns
        shelf = max(shelf, TITLE_HEIGHT + rows * (CELL_HEIGHT + GAP) + GAP)
    width = 2 * MARGIN + COLUMNS * (CELL_WIDTH + GAP) - GAP
    return [("size", width, top + shelf + MARGIN, GROUND)] + steps


def main():
    parser = argparse.ArgumentParser(description="Lays all icons out on one sheet.")
    parser.add_argument("--icons", required=True, type=Path, help="the folder with the icons")
    parser.add_argument("--painter", required=True, type=Path, help="the program paintSheet")
    parser.add_argument("--out", required=True, type=Path, help="the PNG to write")
    parser.add_argument("--scale", type=int, default=1, help="how many times as large")
    parser.add_argument("--only", nargs="*", help="folders below the icons' one, or . for itself")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        steps = Path(folder, "layout")
        steps.write_text("".join(
            "\t".join(number(v) if isinstance(v, (int, float)) else str(v) for v in step) + "\n"
            for step in layout(arguments.icons, arguments.only)
        ))
        done = subprocess.run(
            [arguments.painter, steps, arguments.out, str(arguments.scale)],
            env={**os.environ, "QT_QPA_PLATFORM": "offscreen"},
        )
    sys.exit(done.returncode)


if __name__ == "__main__":
    main()
