#!/usr/bin/python3
"""Makes the catalogue of correction data from lensfun's measurements.

usage: makeCatalogue.py LENSFUN_FOLDER OUTPUT

The catalogue lists which camera body and lens pairs there is correction data for. Its size is
fixed: 17 makers, 365 bodies, 39,985 pairs. What is in it is chosen like this.

Makers: those with the most bodies; ties go by name. Maker names that mean one firm count as one.
Film cameras, the stand-ins for unknown cameras and bodies without any measured lens don't count.

Bodies: those that share a mount and a sensor size take the same lenses and make up a group, and so
do a maker's cameras with a fixed lens, of which only those count that were measured for more than
distortion, or the best measured one where none was. Each group gives its share of the 365, at
least one body: the latest of each series, then the one before. Names for a single market are left
out.

Pairs: a lens fits through its own mount or an adapter that the mount is listed with, if it was
measured on a sensor that isn't smaller than the body's. Of a lens measured on several, the nearest
counts. Fixed lenses come first, then those of the body's own mount, then adapted ones, the better
measured before the others. The list is cut after 39,985.
"""

import re
import sqlite3
import sys
import zlib
from itertools import count
from pathlib import Path
from xml.etree import ElementTree

VERSION = "101.0.0.0"
MAKERS = 17
BODIES = 365
PAIRS = 39985

# A data file's identifier is the pair's number, "b" for a camera with a fixed lens and "a" for the
# others, and the edition: 001 where vignetting was measured, too. The numbers of the two files that
# are carried along go to the nearest pairs of their kind.
FIRST_NUMBER = 10000
CARRIED = ("C35830a_001", "C36841a_000")

SAME_MAKER = {
    "Leica Camera AG": "Leica",
    "LEICA CAMERA AG": "Leica",
    "Ricoh Imaging Company, Ltd.": "Ricoh",
    "Ricoh imaging company, ltd.": "Ricoh",
}
NO_DIGITAL_CAMERAS = ("Generic", "KMZ", "Rolleiflex")
ONE_MARKET_ONLY = ("rebel", "kiss")

# Cameras of these mounts correct the lenses of their own mount themselves in what they develop.
CORRECTED_IN_CAMERA = (
    "Canon EF-M", "Canon RF", "Fujifilm X", "Leica L", "Micro 4/3 System", "Nikon CX", "Nikon Z",
    "Pentax Q", "Samsung NX", "Samsung NX mini", "Sony E",
)

# "f/2.8", "F2.8", "f_2.8G", "1:2,8", "T1.5", "mmF2.8"; a focal length may follow a letter F, too.
F_NUMBER = re.compile(
    r"(?:(?<![A-Za-z])[fFT][/_ ]?|(?<=mm)F|\b1[:/])\s*(\d+(?:[.,]\d+)?)(?![\d.]|-[\d.]+ ?mm| ?mm)")
# "2,8/21" and "24mm 2.0".
F_NUMBER_FIRST = re.compile(r"\b(?=\d+[.,]?\d*/\d|\d\.\d )(\d+(?:[.,]\d+)?)(?=/\d| )")
# A lens with a converter behind or before it.
CONVERTER = re.compile(r"(?i)\b(\d(?:\.\d)?)[x\u00d7](?![a-z\d])|converter|extender|TC\d\d")

# Which of the lens pictures goes with a lens.
(NO_PICTURE, FISHEYE, WIDE_PRIME, NORMAL_PRIME, LONG_PRIME, WIDE_ZOOM, STANDARD_ZOOM,
 LONG_ZOOM) = range(8)

SCHEMA = """
CREATE TABLE Metadata (id INTEGER PRIMARY KEY, key TEXT, value TEXT);
CREATE TABLE Module (id INTEGER PRIMARY KEY, cid TEXT, body INTEGER, name TEXT,
    fmin FLOAT, fmax FLOAT, amin FLOAT, amax FLOAT, lens_id TEXT, lens_name TEXT,
    bridge INTEGER, raw_only INTEGER, rgb_only INTEGER, lens_id_thumbnail INTEGER);
CREATE TABLE Maker (id INTEGER PRIMARY KEY, name TEXT);
CREATE TABLE Body (id INTEGER, maker INTEGER, model TEXT, identifier TEXT);
"""
INDICES = {
    "Module": ("body", "cid", "raw_only", "rgb_only", "fmin", "fmax", "lens_id", "bridge"),
    "Body": ("id", "maker", "identifier"),
}


def fail(text):
    sys.exit(f"makeCatalogue: {text}")


def texts(element, tag):
    """The text as cameras write it, and the one for people."""
    plain = english = None
    for child in element.findall(tag):
        text = " ".join((child.text or "").split())
        if child.get("lang") is None and plain is None:
            plain = text
        elif child.get("lang") == "en":
            english = text
    return plain, english or plain


def natural(text):
    """Sorts "D90" before "D850"."""
    return [(0, int(part), "") if part.isdecimal() else (1, 0, part)
            for part in re.split(r"(\d+)", text.casefold()) if part]


def rounded(value):
    return round(value, 3)


class Camera:
    def __init__(self, element):
        maker = texts(element, "maker")[1]
        self.maker = SAME_MAKER.get(maker, maker)
        self.identifier, self.model = texts(element, "model")
        self.mount = element.findtext("mount")
        self.crop = float(element.findtext("cropfactor"))
        # Mounts that are one camera's own start with a small letter.
        self.fixed = self.mount[0].islower()
        name = f"{self.identifier} {self.model}".casefold()
        self.one_market = any(word in name for word in ONE_MARKET_ONLY)


class Lens:
    def __init__(self, element):
        maker = texts(element, "maker")[1]
        self.maker = SAME_MAKER.get(maker, maker)
        self.model, english = texts(element, "model")
        self.mounts = [mount.text for mount in element.findall("mount")]
        self.crop = float(element.findtext("cropfactor"))
        self.fixed = self.mounts[0][0].islower()
        calibration = element.find("calibration")
        measured = [] if calibration is None else list(calibration)
        self.kinds = sorted({entry.tag for entry in measured})
        self.measurements = len(measured)
        if self.fixed:
            self.name = english if "fixed lens" in english else "fixed lens"
        elif self.maker.split()[0].casefold() in english.casefold():
            self.name = english
        else:
            self.name = f"{self.maker} {english}"
        known_as = self.model if self.fixed else self.name
        self.id = f"{zlib.crc32(f'{self.maker}|{known_as}'.encode()):08X}"

        focal = sorted(float(e.get("focal")) for e in measured if e.get("focal"))
        apertures = sorted(float(e.get("aperture")) for e in measured if e.get("aperture"))
        self.focal = self.focal_range(element, english, focal)
        self.aperture = self.aperture_range(element, english, apertures)
        self.fisheye = "fisheye" in (f"{element.findtext('type')} {self.model}").casefold()

    def focal_range(self, element, english, measured):
        names = [] if self.fixed else [self.model, english]
        converter = CONVERTER.search(self.model)
        ranges = []
        for name in names:
            found = re.search(r"(?i)(\d+(?:\.\d+)?)(?:\s*-\s*(\d+(?:\.\d+)?))?\s*mm\b", name)
            if found:
                ranges.append((float(found[1]), float(found[2] or found[1])))
        for focal in element.findall("focal"):
            ranges.append((float(focal.get("min") or focal.get("value")),
                           float(focal.get("max") or focal.get("value"))))
        if measured:
            ranges.insert(0 if converter else len(ranges), (measured[0], measured[-1]))
        return ranges[0] if ranges else None

    def aperture_range(self, element, english, measured):
        wide = narrow = None
        for name in [] if self.fixed else [self.model, english]:
            found = F_NUMBER.search(name) or F_NUMBER_FIRST.search(name)
            if found and wide is None:
                wide = float(found[1].replace(",", "."))
        converter = CONVERTER.search(self.model)
        if wide and converter and converter[1]:
            wide = measured[0] if measured else round(wide * float(converter[1]), 1)
        for aperture in element.findall("aperture"):
            wide = wide or float(aperture.get("min") or aperture.get("value"))
            # Some entries have the long end's widest aperture as the narrowest one.
            if float(aperture.get("max") or 0) >= 8:
                narrow = float(aperture.get("max"))
        if measured:
            wide = wide or measured[0]
            narrow = narrow or measured[-1]
        # Nothing known: what is usual.
        wide = wide or (2.8 if self.fixed else 4.0)
        narrow = narrow or (8.0 if self.fixed else 22.0)
        return wide, max(wide, narrow)

    def picture(self, crop):
        if self.fixed:
            return NO_PICTURE
        if self.fisheye:
            return FISHEYE
        # As on a sensor of 24 by 36 millimetres.
        shortest, longest = (length * crop for length in self.focal)
        if shortest == longest:
            return WIDE_PRIME if shortest < 36 else NORMAL_PRIME if shortest < 70 else LONG_PRIME
        return WIDE_ZOOM if longest < 56 else LONG_ZOOM if shortest > 52 else STANDARD_ZOOM


class Database:
    def __init__(self, folder):
        files = sorted(Path(folder).glob("*.xml"))
        if not files:
            fail(f"there are no lens files in {folder}")
        self.adapters = {}
        cameras = {}
        lenses = []
        for file in files:
            try:
                root = ElementTree.parse(file).getroot()
            except (OSError, ElementTree.ParseError) as error:
                fail(f"{file} can't be read: {error}")
            for mount in root.findall("mount"):
                self.adapters.setdefault(mount.findtext("name"), set()).update(
                    adapter.text for adapter in mount.findall("compat"))
            for element in root.findall("camera"):
                camera = Camera(element)
                cameras.setdefault((camera.maker, camera.identifier), camera)
            lenses += map(Lens, root.findall("lens"))
        self.lenses = [lens for lens in lenses
                       if lens.kinds and lens.focal and lens.maker != "Generic"]
        self.cameras = [camera for _, camera in sorted(cameras.items())
                        if camera.maker not in NO_DIGITAL_CAMERAS
                        and "film" not in camera.identifier
                        and not camera.one_market
                        # A camera's other picture formats.
                        and not re.search(r"\d:\d", camera.identifier)]
        # The largest sensor that a lens was measured on tells what it was made for.
        self.crops = {}
        for lens in self.lenses:
            self.crops[lens.id] = min(lens.crop, self.crops.get(lens.id, lens.crop))
        self.known = {}

    def lenses_of(self, camera):
        """The lenses that fit, by maker and name, each as (lens, whether through an adapter)."""
        key = (camera.mount, camera.crop)
        if key not in self.known:
            adapters = self.adapters.get(camera.mount, ())
            best = {}
            for lens in self.lenses:
                own = camera.mount in lens.mounts
                if not own and not any(mount in adapters for mount in lens.mounts):
                    continue
                if not camera.fixed and lens.crop > camera.crop * 1.01:
                    continue
                rank = (not own, -lens.crop, -len(lens.kinds), -lens.measurements, lens.model)
                known = best.get((lens.maker, lens.name))
                if known is None or rank < known[0]:
                    best[lens.maker, lens.name] = (rank, lens, not own)
            self.known[key] = [best[name][1:] for name in sorted(best)]
        return self.known[key]

    def kinds_of(self, camera):
        return {kind for lens, _ in self.lenses_of(camera) for kind in lens.kinds}


def shares(sizes, total):
    """Parts of the total in proportion to the sizes, the largest remainders rounded up. None is
    less than one or more than its size."""
    whole = sum(sizes.values())
    parts = {key: max(1, size * total // whole) for key, size in sizes.items()}
    by_remainder = sorted(sizes, key=lambda key: (-(sizes[key] * total % whole), key))
    for key in by_remainder:
        if sum(parts.values()) < total and parts[key] < sizes[key]:
            parts[key] += 1
    by_size = sorted(sizes, key=lambda key: (-parts[key], key))
    while sum(parts.values()) > total:
        for key in by_size:
            if sum(parts.values()) > total and parts[key] > 1:
                parts[key] -= 1
    return parts


def latest_of_each_series_first(cameras):
    """Then the one before it of each, and so on. Numbers of as many digits make a series."""
    cameras.sort(key=lambda camera: natural(camera.identifier), reverse=True)
    lengths = {}
    places = {}
    for camera in cameras:
        series = re.sub(r"\d", "#", re.sub(r" Mark .*", "", camera.identifier))
        places[camera.identifier] = lengths[series] = lengths.get(series, 0) + 1
    cameras.sort(key=lambda camera: places[camera.identifier])


def chosen_bodies(database):
    cameras = [camera for camera in database.cameras if database.lenses_of(camera)]
    sizes = {}
    for camera in cameras:
        sizes[camera.maker] = sizes.get(camera.maker, 0) + 1
    makers = sorted(sizes, key=lambda maker: (-sizes[maker], maker))[:MAKERS]
    if len(makers) < MAKERS:
        fail(f"there are {len(makers)} makers of cameras, not {MAKERS}")

    groups = {}
    for camera in cameras:
        if camera.maker in makers:
            key = (camera.maker, "fixed" if camera.fixed else camera.mount,
                   0 if camera.fixed else camera.crop)
            groups.setdefault(key, []).append(camera)
    for (_, mount, _), group in groups.items():
        latest_of_each_series_first(group)
        if mount == "fixed":
            group.sort(key=lambda camera: -len(database.kinds_of(camera)))
            measured = [camera for camera in group if len(database.kinds_of(camera)) > 1]
            group[:] = measured or group[:1]

    if len(groups) > BODIES:
        fail(f"there are {len(groups)} groups of bodies, more than {BODIES} bodies")
    parts = shares({key: len(group) for key, group in groups.items()}, BODIES)
    bodies = [camera for key, group in groups.items() for camera in group[:parts[key]]]
    if len(bodies) != BODIES:
        fail(f"there are {len(bodies)} bodies to choose, not {BODIES}")
    bodies.sort(key=lambda camera: (camera.maker, natural(camera.identifier)))
    return bodies


def chosen_pairs(database, bodies):
    """Numbers of bodies with their lenses, in the catalogue's order."""
    pairs = []
    for number, camera in enumerate(bodies):
        for lens, adapted in database.lenses_of(camera):
            rank = (not camera.fixed, adapted, -len(lens.kinds), -lens.measurements,
                    lens.maker, lens.name, number)
            pairs.append((rank, number, lens, adapted))
    if len(pairs) < PAIRS:
        fail(f"there are {len(pairs)} body and lens pairs, not {PAIRS}")
    pairs.sort(key=lambda pair: pair[0])
    pairs = [pair[1:] for pair in pairs[:PAIRS]]
    if len({number for number, _, _ in pairs}) < len(bodies):
        fail("a body is left without a lens")
    pairs.sort(key=lambda pair: (pair[0], pair[1].maker, natural(pair[1].name), pair[1].name))
    return pairs


def identifiers(bodies, pairs):
    kinds = [f"{'b' if bodies[number].fixed else 'a'}_{int('vignetting' in lens.kinds):03}"
             for number, lens, _ in pairs]
    numbers = list(range(FIRST_NUMBER + 1, FIRST_NUMBER + 1 + len(pairs)))
    for carried in CARRIED:
        place = numbers.index(int(carried[1:6]))
        nearest = min((other for other, kind in enumerate(kinds) if kind == carried[6:]),
                      key=lambda other: abs(other - place))
        numbers[place], numbers[nearest] = numbers[nearest], numbers[place]
    return [f"C{number:05}{kind}" for number, kind in zip(numbers, kinds)]


def module_row(row, cid, body_id, camera, lens, adapted, picture):
    raw_only = (not adapted and camera.mount in CORRECTED_IN_CAMERA) or "DNG" in lens.name
    # Fixed lenses for which there is nothing but distortion were measured on developed pictures.
    rgb_only = camera.fixed and lens.kinds == ["distortion"] and not raw_only
    return (row, cid, body_id, f"{camera.model} + {lens.name}", *map(rounded, lens.focal),
            *map(rounded, lens.aperture), lens.id, lens.name, int(camera.fixed), int(raw_only),
            int(rgb_only), picture)


def write(output, measurements, bodies, pairs):
    makers = sorted({camera.maker for camera in bodies})
    maker_ids = {maker: number for number, maker in enumerate(makers, 1)}
    modules = [module_row(row, cid, number + 1, bodies[number], lens, adapted,
                          lens.picture(measurements.crops[lens.id]))
               for row, cid, (number, lens, adapted) in zip(count(1), identifiers(bodies, pairs),
                                                            pairs)]

    output.unlink(missing_ok=True)
    database = sqlite3.connect(output, isolation_level=None)
    database.executescript("PRAGMA page_size = 4096; PRAGMA auto_vacuum = NONE;"
                           "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF;")
    database.execute("BEGIN")
    for statement in SCHEMA.split(";"):
        database.execute(statement.strip())
    database.execute("INSERT INTO Metadata VALUES (1, 'Version', ?)", (VERSION,))
    database.executemany("INSERT INTO Maker VALUES (?, ?)",
                         [(number, maker) for maker, number in maker_ids.items()])
    database.executemany("INSERT INTO Body VALUES (?, ?, ?, ?)",
                         [(number, maker_ids[camera.maker], camera.model, camera.identifier)
                          for number, camera in enumerate(bodies, 1)])
    database.executemany(f"INSERT INTO Module VALUES ({', '.join('?' * 14)})", modules)
    for table, columns in INDICES.items():
        for column in columns:
            database.execute(f"CREATE INDEX {table}_{column} ON {table} ({column})")
    database.execute("COMMIT")
    database.execute("ANALYZE")
    database.execute("VACUUM")
    database.close()


def main():
    if len(sys.argv) != 3:
        fail("usage: makeCatalogue.py LENSFUN_FOLDER OUTPUT")
    database = Database(sys.argv[1])
    bodies = chosen_bodies(database)
    pairs = chosen_pairs(database, bodies)
    try:
        write(Path(sys.argv[2]), database, bodies, pairs)
    except (OSError, sqlite3.Error) as error:
        fail(f"{sys.argv[2]} can't be written: {error}")


if __name__ == "__main__":
    main()
