"""Tool bars, panels and the small signs of their lists."""

import math

from shapes import (
    ACCENT, AXIS, GHOST, GROUND, HIGHLIGHT, INK, SHADE, SMALL_BOX, TEXT_QUIET, WARNING, State, arc,
    camera, chevron, circle, cross, document, dot, eye, icon, icons, inked, lens, line, magnifier,
    minus, mirrored, path, pen, plus, point, polygon, polyline, rect, refresh, scaled, solid, tick,
    turned,
)

TOGGLE = "checked disabled hover idle"
BUTTON = "down hover idle"
BUTTON_THAT_RESTS = "disabled down hover idle"
LINK = "hover idle"


# Actions


def tray():
    return path("M2.25 15.75V18.25A2 2 0 0 0 4.25 20.25H18.25A2 2 0 0 0 20.25 18.25V15.75")


def download():
    return (
        tray()
        + line(AXIS, 2.25, AXIS, 14.25)
        + polyline((6.75, 9.75), (AXIS, 14.25), (15.75, 9.75))
    )


def installed():
    return tray() + polyline((5.25, 9.75), (9, 13.5), (18.75, 3.75))


def star(x, y, radius):
    """Four points, with sides that bend in."""
    near = radius * 0.16
    return path(
        f"M{x} {y - radius}Q{x + near} {y - near} {x + radius} {y}"
        f"Q{x + near} {y + near} {x} {y + radius}"
        f"Q{x - near} {y + near} {x - radius} {y}"
        f"Q{x - near} {y - near} {x} {y - radius}Z"
    )


def wand():
    return (
        line(3, 21, 11.25, 12.75, stroke_width=2.25)
        + star(15, 9, 6)
        + solid(star(5.25, 5.25, 3.3) + star(19.5, 18.75, 3.3))
    )


def undo():
    return polyline((8.25, 3.75), (3.75, 8.25), (8.25, 12.75)) + path(
        "M3.75 8.25H14.25A6 6 0 0 1 14.25 20.25H8.25"
    )


def reset():
    """All the way back to the start."""
    return (
        arc(12, 12, 9.05, 155, -155)
        + polyline((3.75, 3.75), (3.75, 8.25), (8.25, 8.25))
        + dot(12, 12, 2.25)
    )


def save():
    return (
        path(
            "M5.75 3.75H16.5L20.25 7.5V18.25A2 2 0 0 1 18.25 20.25H5.75A2 2 0 0 1 3.75 18.25"
            "V5.75A2 2 0 0 1 5.75 3.75Z"
        )
        + path("M8.25 3.75V8.25H14.25V3.75")
        + path("M6.75 20.25V12.75H17.25V20.25")
    )


def open_picture():
    """A folder with its flap down."""
    return path(
        "M2.85 17.65A2 2 0 0 1 2.25 16.25V5.75A2 2 0 0 1 4.25 3.75H7.65A2 2 0 0 1 9.05 4.35"
        "L11.45 6.75H17.5A2 2 0 0 1 19.5 8.75V10.5"
    ) + path(
        "M7.4 11.25H20.4A1.35 1.35 0 0 1 21.7 12.95L20.5 17.3A2 2 0 0 1 18.55 18.75H4.1"
        "L6.1 12.25A1.35 1.35 0 0 1 7.4 11.25Z"
    )


def gear():
    teeth = 6
    outline = []
    for tooth in range(teeth):
        middle = 90 + tooth * 360 / teeth
        for radius, offset in ((6.75, -20), (9.75, -13), (9.75, 13), (6.75, 20)):
            outline.append(point(12, 12, radius, middle + offset))
    return polygon(*outline) + circle(12, 12, 3)


# View


def compare():
    """Before and after, side by side."""
    before = "M11.25 3.75H4.25A2 2 0 0 0 2.25 5.75V16.75A2 2 0 0 0 4.25 18.75H11.25Z"
    return (
        path(before, fill=INK, fill_opacity=SHADE, stroke="none")
        + path(before, fill=ACCENT, stroke="none")
        + rect(2.25, 3.75, 18, 15)
        + line(AXIS, 1.5, AXIS, 21)
    )


def fit():
    corner = "M2.25 6.75V5.75A2 2 0 0 1 4.25 3.75H6.75"
    other = "M2.25 17.25V18.25A2 2 0 0 0 4.25 20.25H6.75"
    left = path(corner + other)
    return left + mirrored(left) + rect(6.75, 8.25, 10.5, 7.5, 1)


def grid():
    return rect(2.25, 2.25, 18, 18, fill=ACCENT) + path(
        "M8.25 2.25V20.25M14.25 2.25V20.25M2.25 8.25H20.25M2.25 14.25H20.25"
    )


def loupe():
    """A glass over single pixels."""
    return (
        magnifier()
        + solid(rect(6, 6, 3.75, 3.75, 0) + rect(9.75, 9.75, 3.75, 3.75, 0))
    )


# Panels


def float_window():
    """A window that leaves its place."""
    return path(
        "M9.75 6.75H4.25A2 2 0 0 0 2.25 8.75V19.75A2 2 0 0 0 4.25 21.75H15.25A2 2 0 0 0 17.25 19.75"
        "V14.25M9.75 14.25L21.75 2.25M14.25 2.25H21.75V9.75"
    )


def clear():
    """A round button of a search line."""
    return circle(12, 12, 9.75) + scaled(cross(), 0.5)


def sort(up):
    """A small arrow beside a column's title."""
    arrow = polygon((12, 15.75), (6.75, 8.25), (17.25, 8.25), fill=INK)
    return turned(arrow, 180) if up else arrow


# Facts about a picture


def aperture():
    blades = 6
    hole, rim = 5, 9.75
    body = circle(12, 12, rim)
    for blade in range(blades):
        x1, y1 = point(0, 0, hole, blade * 60)
        x2, y2 = point(0, 0, hole, blade * 60 + 60)
        dx, dy = (x2 - x1) / hole, (y2 - y1) / hole
        along = x1 * dx + y1 * dy
        length = -along + math.sqrt(along * along - hole * hole + rim * rim)
        body += line(12 + x1, 12 + y1, 12 + x1 + dx * length, 12 + y1 + dy * length)
    return body


def distance():
    return (
        path("M2.25 4.5V18M21.75 4.5V18M5.25 11.25H18.75")
        + polyline((8.25, 8.25), (5.25, 11.25), (8.25, 14.25))
        + polyline((15.75, 8.25), (18.75, 11.25), (15.75, 14.25))
    )


def focal_length():
    """A lens, and its focus on the axis."""
    return (
        path("M6.75 1.5Q13.5 11.25 6.75 21Q0 11.25 6.75 1.5Z")
        + line(12.75, AXIS, 18, AXIS)
        + path("M11.25 5.25L18 9M11.25 17.25L18 13.5", stroke_opacity=GHOST)
        + dot(20.25, AXIS, 2.25)
    )


def found():
    return circle(12, 12, 9.75) + polyline((6.75, 11.25), (10.5, 15), (17.25, 8.25))


def missing():
    return circle(12, 12, 9.75) + line(12, 6.75, 12, 12.75, stroke_width=2.25) + dot(12, 17.25, 1.5)


# Badges on thumbnails: a disc of their own, as they lie on pictures


def badge(body, ink, ground):
    disc = circle(12, 12, 11.25, fill=ground, stroke="none")
    return document(disc + inked(pen(scaled(body, 0.6)), State(ink)))


def sliders():
    return (
        path("M2.25 6.75H21.75M2.25 17.25H21.75")
        + solid(circle(8.25, 6.75, 3.75) + circle(15.75, 17.25, 3.75))
    )


def loading():
    return circle(12, 12, 9, stroke_opacity=SHADE) + arc(12, 12, 9, 90, -30)


def no_picture():
    return rect(2.25, 3.75, 19.5, 16.5) + line(3, 19.5, 21, 4.5)


def drawings():
    plain = {
        "cafDialog/camera": camera(),
        "cafDialog/installed": installed(),
        "cafDialog/lens": lens(),
        "cafDialog/search": magnifier(),
        "cafDialog/update": refresh(),
        "correctionInfo/aperture": aperture(),
        "correctionInfo/camera": camera(),
        "correctionInfo/distance": distance(),
        "correctionInfo/focal_length": focal_length(),
        "correctionInfo/lens": lens(),
    }
    return {
        **{f"{name}.svg": icon(body) for name, body in plain.items()},
        **icons("additionalOptions/arrow_closed", chevron("right"), LINK, size=SMALL_BOX),
        **icons("additionalOptions/arrow_opened", chevron("down"), LINK, size=SMALL_BOX),
        **icons("buttons/add", plus(), BUTTON),
        **icons("buttons/auto", wand(), BUTTON_THAT_RESTS),
        **icons("buttons/close", cross(), BUTTON),
        **icons("buttons/download", download(), BUTTON_THAT_RESTS),
        **icons("buttons/remove", minus(), BUTTON),
        **icons("cafDialog/clear", clear(), LINK, size=SMALL_BOX),
        "cafDialog/sort_down.svg": icon(sort(up=False), size=SMALL_BOX),
        "cafDialog/sort_up.svg": icon(sort(up=True), size=SMALL_BOX),
        **icons("confirm/apply", tick(), BUTTON),
        **icons("confirm/cancel", cross(), BUTTON),
        "correctionInfo/found.svg": icon(found(), State(HIGHLIGHT)),
        "correctionInfo/missing.svg": icon(missing(), State(WARNING)),
        **icons("leftToolBar/compare", compare(), TOGGLE),
        **icons("leftToolBar/fit", fit(), BUTTON),
        **icons("leftToolBar/grid", grid(), TOGGLE),
        **icons("leftToolBar/loupe", loupe(), TOGGLE),
        **icons("leftToolBar/zoom_in", magnifier("+"), BUTTON),
        **icons("leftToolBar/zoom_out", magnifier("-"), BUTTON),
        **icons("plugin_bar/cancel", cross(), BUTTON),
        **icons("plugin_bar/save", save(), BUTTON),
        **icons("reset/reset", reset(), BUTTON_THAT_RESTS),
        **icons("settingsPanel/dock_close", cross(), LINK, size=SMALL_BOX),
        **icons("settingsPanel/dock_float", float_window(), LINK, size=SMALL_BOX),
        **icons("settingsPanel/hidden", eye(hidden=True), LINK),
        **icons("settingsPanel/visible", eye(), LINK),
        "thumbnail/corrected.svg": badge(sliders(), HIGHLIGHT, GROUND),
        "thumbnail/loading.svg": badge(loading(), TEXT_QUIET, GROUND),
        "thumbnail/missing.svg": badge(no_picture(), WARNING, GROUND),
        "thumbnail/selected.svg": badge(tick(), GROUND, HIGHLIGHT),
        **icons("toolbar/open", open_picture(), BUTTON_THAT_RESTS),
        **icons("toolbar/preferences", gear(), BUTTON),
        **icons("toolbar/redo", mirrored(undo()), BUTTON_THAT_RESTS),
        **icons("toolbar/save", save(), BUTTON_THAT_RESTS),
        **icons("toolbar/undo", undo(), BUTTON_THAT_RESTS),
    }
