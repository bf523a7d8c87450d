#!/usr/bin/env python3
"""The catalogues hold every text of the sources, nothing else, and are finished.

usage: catalogues.py PROJECT
"""

import re
import subprocess
import sys
from pathlib import Path
from xml.etree import ElementTree

# Keys rather than sentences: what people read stands in the catalogues alone.
KEYS = {"Out of memory. Program will be closed."}
LANGUAGES = {"de": "1031", "en": "1033", "fr": "1036", "ja": "1041"}


def marks(text):
    """What a translation has in common with its source."""
    return sorted(re.findall(r"%\d|…|\n", text)), len(re.findall(r"&\S", text))


def complaints(language, catalogue, updated):
    if catalogue.read_bytes() != updated.read_bytes():
        yield "doesn't fit the sources, see tools/translations"
    texts = {}
    for context in ElementTree.parse(catalogue).iter("context"):
        for message in context.iter("message"):
            source = message.findtext("source")
            translation = message.find("translation")
            text = "".join(translation.itertext())
            texts[context.findtext("name"), source] = text
            if translation.get("type"):
                yield f"{source!r} is {translation.get('type')}"
            elif not text.strip():
                yield f"{source!r} has no translation"
            elif source not in KEYS and marks(source) != marks(text):
                yield f"{source!r} has other marks in {text!r}"
    if texts.get(("CLanguageManager", "language number")) != LANGUAGES[language]:
        yield "lacks its language's number"
    if not texts.get(("CLanguageManager", "language name")):
        yield "lacks its language's name"


def main():
    project = Path(sys.argv[1])
    updated = Path.cwd() / "updated"
    subprocess.run([project / "tools/translations", updated], check=True)
    status = 0
    for language in LANGUAGES:
        name = f"vek_{language}.ts"
        catalogue = project / "PluginShell/resources/translations" / name
        for complaint in complaints(language, catalogue, updated / name):
            print(f"{name}: {complaint}", file=sys.stderr)
            status = 1
    return status


sys.exit(main())
