#!/usr/bin/python3
"""Makes the seven font files of the product from installed fonts.

usage: renameFonts.py ROBOTO_FOLDER OPEN_SANS_FOLDER QUICKSAND_FOLDER OUTPUT_FOLDER

Each file comes out as a family of its own whose only style is the regular one, whatever its weight
was, under the name that the style sheets ask for: it matches exactly without a weight beside it.
The names that the fonts had are gone, as the licence of one of them wants it for a changed font;
the notices of copyright, trademark and licence stay.
"""

import sys
from pathlib import Path

try:
    from fontTools.ttLib import TTFont, TTLibError
except ImportError:
    sys.exit("renameFonts: fontTools is missing: install python3-fonttools")

# Output, folder by its place in the arguments, input, family.
FONTS = (
    ("MavenProLight-300.otf", 2, "Quicksand-Light.ttf", "MavenProLight300"),
    ("MavenPro-Medium.ttf", 2, "Quicksand-Medium.ttf", "MavenPro-Medium"),
    ("OpenSans-Light.ttf", 1, "OpenSans-Light.ttf", "OpenSansLight"),
    ("Roboto-Bold.ttf", 0, "Roboto-Bold.ttf", "RobotoBold"),
    ("Roboto-Light.ttf", 0, "Roboto-Light.ttf", "RobotoLight"),
    ("Roboto-Regular.ttf", 0, "Roboto-Regular.ttf", "RobotoRegular"),
    ("Roboto-Medium.ttf", 0, "Roboto-Medium.ttf", "RobotoMedium"),
)

# Entries of the name table.
FAMILY, STYLE, UNIQUE, FULL, POSTSCRIPT = 1, 2, 3, 4, 6
OTHER_NAMES = (16, 17, 18, 20, 21, 22, 25)

WINDOWS_UNICODE_ENGLISH = (3, 1, 0x409)
REGULAR_STYLE = 1 << 6
ITALIC_UNDERSCORE_AND_BOLD = 1 << 0 | 1 << 1 | 1 << 5
REGULAR_WEIGHT = 400


def fail(text):
    sys.exit(f"renameFonts: {text}")


def rename(source, target, family):
    # The time of the change would make each build's file another one.
    font = TTFont(source, recalcTimestamp=False)
    names = font["name"]
    names.names = [record for record in names.names
                   if record.nameID not in (FAMILY, STYLE, UNIQUE, FULL, POSTSCRIPT, *OTHER_NAMES)]
    for number, text in ((FAMILY, family), (STYLE, "Regular"), (UNIQUE, f"{family};Regular"),
                         (FULL, family), (POSTSCRIPT, family)):
        names.setName(text, number, *WINDOWS_UNICODE_ENGLISH)
    font["OS/2"].fsSelection &= ~ITALIC_UNDERSCORE_AND_BOLD
    font["OS/2"].fsSelection |= REGULAR_STYLE
    font["OS/2"].usWeightClass = REGULAR_WEIGHT
    font["head"].macStyle = 0
    # A signature wouldn't be true any more.
    if "DSIG" in font:
        del font["DSIG"]
    font.save(target)


def main():
    if len(sys.argv) != 5:
        fail("usage: renameFonts.py ROBOTO_FOLDER OPEN_SANS_FOLDER QUICKSAND_FOLDER OUTPUT_FOLDER")
    folders = [Path(argument) for argument in sys.argv[1:4]]
    output = Path(sys.argv[4])
    for _, folder, file, _ in FONTS:
        if not (folders[folder] / file).is_file():
            fail(f"{folders[folder] / file} is missing")
    output.mkdir(parents=True, exist_ok=True)
    for target, folder, file, family in FONTS:
        try:
            rename(folders[folder] / file, output / target, family)
        except (OSError, TTLibError) as error:
            fail(f"{folders[folder] / file} can't be turned into {target}: {error}")


if __name__ == "__main__":
    main()
