#!/usr/bin/env python3
"""Drawings become pictures of the size that is asked for; what can't be drawn is told by line.

usage: rasterise.py RASTERISE
"""

import struct
import subprocess
import sys
from pathlib import Path

SQUARE = (
    "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 10 10'>"
    "<rect width='10' height='10' fill='#f00'/></svg>"
)
FILES = {
    "square.svg": SQUARE,
    "text.svg": "no drawing",
    # Qt's reader takes it, and prints what it doesn't understand.
    "warning.svg": SQUARE.replace("#f00", "url(#nothing)"),
}
NO_DRAWING = "isn't a drawing that can be read"
NO_LINE = "isn't a drawing, a picture, a width and a height"

# What is asked for, and what is complained about. a.png is the one that can be drawn.
ROWS = {
    "a square": (["square.svg\ta.png\t7\t5"], []),
    "empty lines": (["", "square.svg\ta.png\t7\t5", ""], []),
    "nothing": ([], []),
    "no such drawing": (["none.svg\tb.png\t7\t5"], [f"line 1: none.svg {NO_DRAWING}"]),
    "what isn't a drawing": (["text.svg\tb.png\t7\t5"], [f"line 1: text.svg {NO_DRAWING}"]),
    "a warning of the reader's": (
        ["warning.svg\tb.png\t7\t5"],
        [f"line 1: warning.svg {NO_DRAWING}"],
    ),
    "a picture in no folder": (
        ["square.svg\tnone/b.png\t7\t5"],
        ["line 1: square.svg can't be written: "],
    ),
    "three fields": (["square.svg\tb.png\t7"], [f"line 1: square.svg {NO_LINE}"]),
    "five fields": (["square.svg\tb.png\t7\t5\t1"], [f"line 1: square.svg {NO_LINE}"]),
    "a width that isn't a number": (["square.svg\tb.png\tx\t5"], [f"line 1: square.svg {NO_LINE}"]),
    "no height": (["square.svg\tb.png\t7\t0"], [f"line 1: square.svg {NO_LINE}"]),
    "too wide": (["square.svg\tb.png\t4097\t5"], [f"line 1: square.svg {NO_LINE}"]),
    "too high": (["square.svg\tb.png\t7\t4097"], [f"line 1: square.svg {NO_LINE}"]),
    "all lines are looked at": (
        ["none.svg\tb.png\t7\t5", "", "square.svg\ta.png\t7\t5", "square.svg"],
        [f"line 1: none.svg {NO_DRAWING}", f"line 4: square.svg {NO_LINE}"],
    ),
}


def run(rasterise, *arguments):
    done = subprocess.run(
        [rasterise, *arguments], stderr=subprocess.PIPE, encoding="utf-8", timeout=60
    )
    return done.returncode, [
        line for line in done.stderr.splitlines() if line.startswith(("rasterise:", "usage:"))
    ]


def size(picture):
    """Width and height as the file's head has them."""
    return struct.unpack(">II", picture.read_bytes()[16:24])


def complaints(rasterise, name, lines, expected):
    folder = Path(name.replace(" ", "-").replace("'", ""))
    folder.mkdir()
    for file, content in FILES.items():
        (folder / file).write_text(content)
    listed = folder / "pictures.list"
    listed.write_text("".join(f"{line}\n" for line in lines))

    status, printed = run(rasterise, str(listed))
    wanted = [f"rasterise: {listed}, {text}" for text in expected]
    if status != (1 if expected else 0):
        yield f"the exit status is {status}"
    if len(printed) != len(wanted) or not all(map(str.startswith, printed, wanted)):
        yield f"it prints {printed}"
    pictures = {path.name: size(path) for path in folder.glob("**/*.png")}
    drawn = any(line.startswith("square.svg\ta.png") for line in lines)
    if pictures != ({"a.png": (7, 5)} if drawn else {}):
        yield f"it draws {pictures}"


def main():
    rasterise = sys.argv[1]
    failures = [
        f"{name}: {complaint}"
        for name, (lines, expected) in ROWS.items()
        for complaint in complaints(rasterise, name, lines, expected)
    ]
    for arguments in [], ["a", "b"]:
        if run(rasterise, *arguments) != (2, ["usage: rasterise LIST"]):
            failures.append(f"{len(arguments)} arguments: the usage isn't shown")
    status, printed = run(rasterise, "none.list")
    if status != 2 or len(printed) != 1 or not printed[0].startswith("rasterise: none.list: "):
        failures.append(f"no such list: {status}, {printed}")
    print("\n".join(failures))
    return 1 if failures else 0


sys.exit(main())
