#!/usr/bin/env python3
"""Checks what the acceptance tests of the project beside this file came to.

usage: check.py JUNIT_FILE NUMBER_OF_EQUAL_SCRIPTS BUILD_FOLDER
"""

import collections
import pathlib
import struct
import sys
import time
import xml.etree.ElementTree
import zlib

RED, GREEN, BLUE = (255, 0, 0), (0, 255, 0), (0, 0, 255)
BIG, DIALOG = 80000, 39000  # pixels of nearly all of the window, and of the dialog
SCREEN, OFFSCREEN = (1600, 1200), (800, 600)

Failure = collections.namedtuple("Failure", "texts size colours seconds", defaults=[None, {}, 60])

PASSING = ["defaultSettings", "files", "leavesProcess", "offscreen", "smallScreen", "meantToFail",
           "meantToFailForReason", "meantToTimeOut"]

FAILING = {
    "fails": Failure(
        ["Product name: Vek Marlowick 3", "[startTest] start of execute",
         "fail reason: compare actual (70) != expected (20)", "FAILED: the script failed"],
        SCREEN, {RED: BIG, GREEN: 0}),
    "failsInDialog": Failure(
        ["fail reason: compare actual (in the dialog) != expected (elsewhere)",
         "FAILED: the script failed"], SCREEN, {GREEN: BIG, BLUE: DIALOG}),
    "failsAtTopLevel": Failure(
        ["uncaught exception at line 7 ( ReferenceError: Can't find variable: noSuchGlobal )",
         "FAILED: the script failed"], SCREEN, {RED: BIG, GREEN: 0}),
    "failsOffscreen": Failure(
        ["FAILED: the script failed"], OFFSCREEN, {RED: BIG, GREEN: 0}),
    "failsAboveVerdict": Failure(
        ["fail reason: compare actual (first phase) != expected (another)", "\nPASS\n",
         "FAILED: the verdict is PASS, but a failure stands above it"], SCREEN, {GREEN: BIG}),
    "endsWithStatus": Failure(
        ["\nPASS\n", "FAILED: the verdict is PASS, but the host's exit status is 7"],
        SCREEN, {GREEN: BIG}),
    "crashes": Failure(
        ["Product name: Vek Marlowick 3",
         "FAILED: the host crashed with the signal SIGABRT"], SCREEN, {RED: BIG}),
    "crashesMeantToFail": Failure(
        ["FAILED: the host crashed with the signal SIGABRT"], SCREEN, {RED: BIG}),
    "hangs": Failure(
        ["FAILED: the host did not end within 7 seconds, and was killed"], SCREEN, {RED: BIG},
        seconds=10),
    "hangsMeantToFail": Failure(
        ["FAILED: the host did not end within 7 seconds, and was killed"], SCREEN, {RED: BIG},
        seconds=10),
    "timesOut": Failure(
        ["running is timed out", "FAILED: the script failed"], SCREEN, {RED: BIG}),
    "timesOutMeantToFail": Failure(
        ["running is timed out", "FAILED: the script was meant to fail, but its time ran out"],
        SCREEN, {RED: BIG}),
    "passesMeantToFail": Failure(
        ["\nPASS\n", "FAILED: the script passed, and was meant to fail"],
        SCREEN, {GREEN: BIG}),
    "failsForAnotherReason": Failure(
        ["fail reason: compare actual (70) != expected (20)",
         "FAILED: the script failed, but not for the reason \"compare actual (1) != expected (2)\""],
        SCREEN, {RED: BIG, GREEN: 0}),
    "noReport": Failure(["FAILED: there is no report; the host's exit status is 0"]),
    "noReportMeantToFail": Failure(["FAILED: there is no report; the host's exit status is 0"]),
    "noHost": Failure(["can't be started: No such file or directory"]),
}

SURROUNDINGS = ["HOME", "DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR", "TMPDIR",
                "folder", "data"]

complaints = []


def require(condition, text):
    if not condition:
        complaints.append(text)


def unfiltered(data, width, height):
    """The RGB rows of a PNG file's data."""
    stride, above, position = width * 3, bytearray(width * 3), 0
    for _ in range(height):
        kind, row = data[position], bytearray(data[position + 1:position + 1 + stride])
        position += 1 + stride
        for i in range(stride) if kind else ():
            left = row[i - 3] if i >= 3 else 0
            up, corner = above[i], above[i - 3] if i >= 3 else 0
            if kind == 1:
                value = left
            elif kind == 2:
                value = up
            elif kind == 3:
                value = (left + up) // 2
            else:
                estimate = left + up - corner
                value = min((left, up, corner), key=lambda one: abs(estimate - one))
            row[i] = (row[i] + value) & 255
        yield row
        above = row


def read_picture(path):
    """Size and number of pixels by colour."""
    file = path.read_bytes()
    require(file.startswith(b"\x89PNG\r\n\x1a\n"), f"{path} is no PNG file")
    position, data, size = 8, b"", None
    while position < len(file):
        length, kind = struct.unpack_from(">I4s", file, position)
        content = file[position + 8:position + 8 + length]
        if kind == b"IHDR":
            size = struct.unpack_from(">II", content)
            require(content[8:10] == b"\x08\x02", f"{path} has other pixels than RGB")
        elif kind == b"IDAT":
            data += content
        position += length + 12
    colours = collections.Counter()
    for row in unfiltered(zlib.decompress(data), *size):
        colours.update(zip(row[0::3], row[1::3], row[2::3]))
    return size, colours


def check_picture(name, failure, path):
    size, colours = read_picture(path)
    require(size == failure.size, f"{name}: the screenshot has the size {size}")
    for colour, count in failure.colours.items():
        seen = colours[colour]
        require(seen >= count if count else seen == 0,
                f"{name}: the screenshot has {seen} pixels of {colour}")


def check_failing(name, case, build):
    failure, text = FAILING[name], case.findtext("system-out")
    require(case.get("status") == "fail" and case.find("failure") is not None,
            f"{name} is {case.get('status')} instead of failing")
    for expected in failure.texts:
        require(expected in text, f"{name}: its output lacks \"{expected}\":\n{text}")
    require(float(case.get("time")) <= failure.seconds, f"{name} took {case.get('time')} seconds")

    path = build / "acceptance" / name / "screenshot.png"
    require(path.exists() == bool(failure.size), f"{name}: the screenshot is wrongly there or not")
    if failure.size and path.exists():
        require(f"[[ATTACHMENT|{path}]]" in text, f"{name}: its screenshot isn't attached:\n{text}")
        check_picture(name, failure, path)


def check_alone(cases):
    """None of the equal scripts shared anything with another."""
    seen = {what: collections.Counter() for what in SURROUNDINGS}
    for name, case in cases.items():
        if not name.startswith("alone/"):
            continue
        text = case.findtext("system-out")
        require(f"\nthis is number {name[6:]}\n" in text, f"{name} has another's report:\n{text}")
        for what in SURROUNDINGS:
            values = [line.partition("=")[2] for line in text.splitlines()
                      if line.startswith(what + "=")]
            require(len(values) == 1 and values[0], f"{name} does not tell its {what}:\n{text}")
            seen[what].update(values)
    for what, values in seen.items():
        if what != "DISPLAY":  # whose numbers are used again
            require(max(values.values(), default=0) == 1, f"{what} was shared: {values}")


def left_processes(build):
    """What hosts have left behind stands where they stood."""
    found = []
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            if build / "acceptance" in (folder / "cwd").resolve().parents:
                found.append((folder / "cmdline").read_bytes())
        except OSError:
            pass
    return found


def main():
    junit, scripts, build = sys.argv[1], int(sys.argv[2]), pathlib.Path(sys.argv[3])
    suite = xml.etree.ElementTree.parse(junit).getroot()
    cases = {case.get("name"): case for case in suite.iter("testcase")}

    passing = PASSING + [f"alone/{number}" for number in range(1, scripts + 1)]
    others = set(cases).symmetric_difference(passing + list(FAILING))
    if others:
        print(f"missing, or not expected: {sorted(others)}")
        return 1
    counts = {what: int(suite.get(what)) for what in ("tests", "failures", "disabled", "skipped")}
    require(counts == {"tests": scripts + 25, "failures": 17, "disabled": 0, "skipped": 0},
            f"other counts than expected: {counts}")

    for name in passing:
        case = cases[name]
        require(case.get("status") == "run" and case.find("failure") is None,
                f"{name} has not passed:\n{case.findtext('system-out')}")
        require("PASSED" in case.findtext("system-out"), f"{name} does not say that it has passed")
    for name in FAILING:
        check_failing(name, cases[name], build)
    check_alone(cases)
    left = left_processes(build.resolve())
    require(not left, f"processes were left behind: {left}")

    print("\n".join(complaints) or f"all {len(cases)} tests came out as they should")
    return 1 if complaints else 0


sys.exit(main())
