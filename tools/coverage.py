#!/usr/bin/env python3
"""Tells the coverage that gcovr counted, and compares the lines that no test reaches with those that a
page gives a reason for: rows of a table of file, lines in code spans, and reason.

usage: coverage.py --least PERCENT COVERAGE.json PAGE.md
"""
import argparse
import collections
import json
import pathlib
import re
import sys


def excused_lines(page):
    """The lines that the page names: for each file its texts, each as often as it stands there."""
    lines = collections.defaultdict(collections.Counter)
    for row in page.read_text(encoding="utf-8").splitlines():
        cells = re.split(r"(?<!\\)\|", row)
        if len(cells) != 5:
            continue
        for file in re.findall(r"`([^`]+)`", cells[1]):
            lines["PluginShell/" + file].update(
                text.replace("\\|", "|") for text in re.findall(r"`([^`]+)`", cells[2]))
    return lines


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--least", type=float, required=True)
    parser.add_argument("counters", type=pathlib.Path)
    parser.add_argument("page", type=pathlib.Path)
    arguments = parser.parse_args()

    excused = excused_lines(arguments.page)
    lines = reached = branches = taken = 0
    failed = False
    for file in json.loads(arguments.counters.read_text(encoding="utf-8"))["files"]:
        path = file["file"]
        source = pathlib.Path(path).read_text(encoding="utf-8").splitlines()
        for line in file["lines"]:
            if line.get("gcovr/noncode"):
                continue
            lines += 1
            reached += line["count"] > 0
            branches += len(line["branches"])
            taken += sum(branch["count"] > 0 for branch in line["branches"])
            text = source[line["line_number"] - 1].strip()
            if line["count"] == 0:
                excused[path][text] -= 1
                if excused[path][text] < 0:
                    print(f"{path}:{line['line_number']}: no test reaches: {text}")
                    failed = True
    for path, texts in sorted(excused.items()):
        for text, left in sorted(texts.items()):
            if left > 0:
                print(f"{arguments.page}: {path} has no such line, or a test reaches it: {text}")
                failed = True

    share = 100.0 * reached / max(lines, 1)
    print(f"lines: {share:.1f} percent ({reached} of {lines}), branches: "
          f"{100.0 * taken / max(branches, 1):.1f} percent ({taken} of {branches})")
    if share < arguments.least:
        print(f"at least {arguments.least:g} percent of the lines are asked for")
        failed = True
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
