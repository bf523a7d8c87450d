#!/usr/bin/python3
"""Makes the list of countries that a person chooses from, with Windows line ends.

usage: makeCountries.py ISO_3166_1_JSON OUTPUT

Five favourites come first, then a line that can't be chosen, then all countries by the alphabet;
the favourites are among those again. Names are those of iso-codes: the common name where it has
one, else the listed one. PLAIN_NAMES replaces those that are turned round for sorting, or carry a
second name, and some official forms of which a short one is in use.
"""

import json
import sys
import unicodedata
from pathlib import Path

FAVOURITES = ("US", "FR", "DE", "GB", "JP")
SEPARATOR = "--------------- ; not_selectable"
COUNTRIES = 238

LEFT_OUT = {
    "AQ": "no permanent population",
    "BV": "uninhabited",
    "GS": "no permanent population",
    "HM": "uninhabited",
    "TF": "no permanent population",
    "UM": "no permanent population, military bases",
    "IO": "military territory, no other population",
    # The four smallest of the inhabited territories without a government of their own, each with
    # fewer than 2,000 people.
    "PN": "about 50 people",
    "CC": "about 600 people",
    "TK": "about 1,500 people",
    "CX": "about 1,700 people",
}

PLAIN_NAMES = {
    "BN": "Brunei",
    "BQ": "Caribbean Netherlands",
    "CD": "Democratic Republic of the Congo",
    "FK": "Falkland Islands",
    "FM": "Micronesia",
    "MF": "Saint Martin",
    "PS": "Palestine",
    "RU": "Russia",
    "SX": "Sint Maarten",
    "VA": "Vatican City",
    "VG": "British Virgin Islands",
    "VI": "United States Virgin Islands",
}


def fail(text):
    sys.exit(f"makeCountries: {text}")


def sort_key(name):
    """Word by word, without regard to accents, capitals and punctuation."""
    letters = "".join(character for character in unicodedata.normalize("NFD", name.casefold())
                      if not unicodedata.combining(character))
    words = "".join(character if character.isalnum() else " " if character in " -" else ""
                    for character in letters)
    return words.split(), name


def main():
    if len(sys.argv) != 3:
        fail("usage: makeCountries.py ISO_3166_1_JSON OUTPUT")
    try:
        entries = json.loads(Path(sys.argv[1]).read_text(encoding="utf-8"))["3166-1"]
    except OSError as error:
        fail(f"{sys.argv[1]} can't be read: {error.strerror}")
    except (ValueError, KeyError, TypeError):
        fail(f"{sys.argv[1]} isn't a list of countries")
    names = {}
    for entry in entries:
        code = entry["alpha_2"]
        names[code] = PLAIN_NAMES.get(code) or entry.get("common_name") or entry["name"]
    for code in (*LEFT_OUT, *PLAIN_NAMES, *FAVOURITES):
        if code not in names:
            fail(f"{sys.argv[1]} has no country {code}")

    countries = sorted((name for code, name in names.items() if code not in LEFT_OUT),
                       key=sort_key)
    if len(countries) != COUNTRIES:
        fail(f"{sys.argv[1]} gives {len(countries)} countries, not {COUNTRIES}")
    lines = [*(names[code] for code in FAVOURITES), SEPARATOR, *countries]
    try:
        Path(sys.argv[2]).write_bytes("".join(f"{line}\r\n" for line in lines).encode("utf-8"))
    except OSError as error:
        fail(f"{sys.argv[2]} can't be written: {error.strerror}")


if __name__ == "__main__":
    main()
