#!/usr/bin/env python3
"""A bundle's folder Licenses has every text that is told, and the notice names all that is carried.

usage: licences.py FOLDER INVENTORY NAME...
"""

import re
import sys
from pathlib import Path

OURS = ("icons/", "qss/", "other/")


def main():
    folder, inventory, *names = sys.argv[1:]
    found = {file.name for file in Path(folder).iterdir() if file.stat().st_size > 0}
    complaints = [f"{name} is in only one of folder and list" for name in found ^ set(names)]

    notice = (Path(folder) / "BundledData.txt").read_text(encoding="utf-8")
    for file in re.findall(r"<file>(.*)</file>", Path(inventory).read_text(encoding="utf-8")):
        name = file.rsplit("/", 1)[-1]
        if not file.startswith(OURS) and not name.endswith(".caf") and name not in notice:
            complaints.append(f"the notice doesn't name {name}")
    for name in re.findall(r"\((?:\S+, )*(\S+\.txt)(?:, \S+\.txt)*\)", notice):
        if name not in names:
            complaints.append(f"the notice refers to {name}, which isn't there")
    print("\n".join(complaints))
    return 1 if complaints else 0


sys.exit(main())
