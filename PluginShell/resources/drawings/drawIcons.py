#!/usr/bin/env python3
"""Draws all icons of the product: drawIcons.py --qrc INVENTORY --out FOLDER

Writes FOLDER/icons/... for every icons/ entry of the inventory. PNGs that are drawn as SVGs are
left to the rasteriser: their sources come to FOLDER/sources/..., and FOLDER/rasterise.list names
them, one a line: source, target, width and height between tabs, paths relative to the list. Status
1, with nothing written, if an entry has no drawing or a drawing no entry.
"""

import argparse
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path, PurePosixPath

sys.dont_write_bytecode = True

import bars
import controls
import cursors
import logo
import shadows
import signs
import tools
from shapes import Raster

MODULES = (bars, controls, cursors, logo, shadows, signs, tools)
PREFIX = "icons/"


class Mismatch(Exception):
    pass


def entries(inventory):
    """The names below icons/ that the inventory lists."""
    files = (element.text.strip() for element in ElementTree.parse(inventory).iter("file"))
    return {file[len(PREFIX) :] for file in files if file.startswith(PREFIX)}


def all_drawings():
    result = {}
    for module in MODULES:
        for name, drawing in module.drawings().items():
            if name in result:
                raise Mismatch(f"{name} is drawn twice, the second time in {module.__name__}.py")
            is_svg = isinstance(drawing, str)
            if is_svg != name.endswith(".svg"):
                raise Mismatch(f"{name} in {module.__name__}.py isn't what its name says")
            result[name] = drawing
    return result


def check(listed, drawn):
    problems = [f"no drawing of {name}" for name in sorted(listed - drawn)]
    problems += [f"no entry for the drawing {name}" for name in sorted(drawn - listed)]
    if problems:
        raise Mismatch("\n".join(problems))


def write(target, content):
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_bytes(content if isinstance(content, bytes) else content.encode())


def write_all(drawings, folder):
    jobs = []
    for name, drawing in sorted(drawings.items()):
        if isinstance(drawing, Raster):
            source = PurePosixPath("sources", name).with_suffix(".svg")
            write(folder / source, drawing.svg)
            jobs.append(f"{source}\t{PREFIX}{name}\t{drawing.width}\t{drawing.height}\n")
            (folder / PREFIX / name).parent.mkdir(parents=True, exist_ok=True)
        else:
            write(folder / PREFIX / name, drawing)
    write(folder / "rasterise.list", "".join(jobs))


def main():
    parser = argparse.ArgumentParser(description="Draws all icons of the product.")
    parser.add_argument("--qrc", required=True, type=Path, help="the resource file that lists them")
    parser.add_argument("--out", required=True, type=Path, help="the folder that they are put into")
    arguments = parser.parse_args()
    try:
        listed = entries(arguments.qrc)
        drawings = all_drawings()
        check(listed, set(drawings))
        write_all(drawings, arguments.out)
    except Mismatch as problem:
        sys.exit(str(problem))
    except OSError as problem:
        sys.exit(f"{problem.filename}: {problem.strerror}")
    except ElementTree.ParseError as problem:
        sys.exit(f"{arguments.qrc} isn't a resource file: {problem}")


if __name__ == "__main__":
    main()
