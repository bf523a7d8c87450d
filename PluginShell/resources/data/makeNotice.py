#!/usr/bin/env python3
"""Makes a notice of a plain text: the about box takes notices for markup, in whatever encoding the
system has, so characters that mean something there, and those beyond ASCII, become references.

usage: makeNotice.py TEXT NOTICE
"""

import html
import re
import sys
from pathlib import Path


def notice(text):
    text = html.escape(text.expandtabs(), quote=False)
    text = re.sub(r"(?m)^ +", lambda blanks: "&nbsp;" * len(blanks.group()), text)
    return text.encode("ascii", "xmlcharrefreplace")


def main():
    source, target = map(Path, sys.argv[1:])
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_bytes(notice(source.read_text(encoding="utf-8", errors="replace").rstrip("\n") + "\n"))


main()
