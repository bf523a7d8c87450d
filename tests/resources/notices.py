#!/usr/bin/env python3
"""A bundle's folder Licenses has every notice, which reads as the text that it is made of, and the
notices about all the others name all that is carried.

usage: notices.py FOLDER INVENTORY NOTICE...
"""

import html
import re
import sys
from pathlib import Path

OURS = ("icons/", "qss/", "other/")
ABOUT = ("AboutFontsAndData.txt", "AboutSoftware.txt")


def main():
    folder, inventory, *notices = sys.argv[1:]
    names = {Path(notice).name for notice in notices}
    files = {file.name: file.read_bytes() for file in Path(folder).iterdir()}
    complaints = [f"{name} is in only one of folder and list" for name in files.keys() ^ names]

    for name, content in files.items():
        text = content.decode("ascii", "replace")
        if len(text) < 200:
            complaints.append(f"{name} is nearly empty")
        if re.search("[<>\N{REPLACEMENT CHARACTER}]", text) or html.unescape(text).count("&lt;"):
            complaints.append(f"{name} would be taken for something else than text")
    system = Path("/usr/share/doc/qtbase5-dev/copyright").read_text(encoding="utf-8")
    shown = html.unescape(files["Qt.txt"].decode("ascii")).replace("\N{NO-BREAK SPACE}", " ")
    if shown.rstrip("\n") != system.expandtabs().rstrip("\n"):
        complaints.append("Qt.txt isn't Qt's notice")

    about = "".join(files[name].decode("ascii") for name in ABOUT)
    for file in re.findall(r"<file>(.*)</file>", Path(inventory).read_text(encoding="utf-8")):
        name = file.rsplit("/", 1)[-1]
        if not file.startswith(OURS) and not name.endswith(".caf") and name not in about:
            complaints.append(f"the notices don't name {name}")
    told = set(re.findall(r"[\w.-]+\.txt", about)) - {"countries.en.txt"}
    complaints += [f"the notices refer to {name}, which isn't there" for name in told - names]
    for name in names - told - set(ABOUT) - {"GPL-2.txt"}: # to which others refer in passing
        complaints.append(f"nothing refers to {name}")
    print("\n".join(complaints))
    return 1 if complaints else 0


sys.exit(main())
