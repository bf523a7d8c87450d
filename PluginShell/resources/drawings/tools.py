"""The correction tools, their modes, and the guides that they draw over the picture."""

import math

from shapes import (
    ACCENT, GHOST, GROUND, HIGHLIGHT, INK, SHADE, TEXT, arc, arc_data, circle, document, dot,
    ellipse, icons, line, mirrored, moved, padlock, path, png, point, polygon, polyline, rect,
    turned,
)

TOOL = "checked disabled down hover idle"
MODE = "checked disabled hover idle"
BUTTON = "down hover idle"

GRIP = 2.25


# Parts that several tools have


def grip(x, y):
    return circle(x, y, GRIP, fill=ACCENT)


def guide(start, end):
    """A line with a grip at each end."""
    length = math.dist(start, end)
    dx = (end[0] - start[0]) / length * GRIP
    dy = (end[1] - start[1]) / length * GRIP
    return (
        line(start[0] + dx, start[1] + dy, end[0] - dx, end[1] - dy) + grip(*start) + grip(*end)
    )


def bent_square(corner, middle, **attributes):
    """A square about the middle of the box whose corners and sides are that far from it."""
    near, far = 12 - corner, 12 + corner
    low, high = 12 - 2 * middle + corner, 12 + 2 * middle - corner
    return path(
        f"M{near} {near}Q12 {low} {far} {near}Q{high} 12 {far} {far}"
        f"Q12 {high} {near} {far}Q{low} 12 {near} {near}Z",
        **attributes,
    )


# Tools


def horizon():
    """A sun that rises over a slanting horizon, and the level below it."""
    rays = "".join(
        line(*point(12, 12.75, 6.9, angle), *point(12, 12.75, 9, angle)) for angle in (35, 90, 145)
    )
    sun = path("M8.25 12.75A3.75 3.75 0 0 1 15.75 12.75Z", fill=INK)
    return (
        path("M2.6 15.3L21.4 10.2V20.25H2.6Z", fill=ACCENT, stroke="none")
        + turned(sun + rays + line(2.25, 12.75, 21.75, 12.75), -15, 12, 12.75)
        + line(2.25, 20.25, 21.75, 20.25)
    )


def level_line():
    return guide((4.5, 14.25), (19.5, 5.25)) + line(2.25, 20.25, 21.75, 20.25)


def rotate_slightly():
    """A knob on a level, and an arrow above it, clockwise."""
    return (
        line(2.25, 18.75, 21.75, 18.75, stroke_opacity=GHOST)
        + arc(12, 15, 9.55, 165, 45)
        + polyline((18.75, 3.75), (18.75, 8.25), (14.25, 8.25))
        + dot(12, 18.75, 2.25)
    )


def crop():
    return path("M6.75 6.75H17.25V17.25H6.75Z", fill=ACCENT, stroke="none") + path(
        "M6.75 2.25V16.25A1 1 0 0 0 7.75 17.25H21.75M2.25 6.75H16.25A1 1 0 0 1 17.25 7.75V21.75"
    )


def landscape():
    return rect(2.25, 9.75, 19.5, 12, fill=ACCENT) + path(
        "M2.25 6.75V4.25A2 2 0 0 1 4.25 2.25H12.25A2 2 0 0 1 14.25 4.25V6.75", stroke_opacity=GHOST
    )


def portrait():
    return rect(2.25, 2.25, 12, 19.5, fill=ACCENT) + path(
        "M17.25 9.75H19.75A2 2 0 0 1 21.75 11.75V19.75A2 2 0 0 1 19.75 21.75H17.25",
        stroke_opacity=GHOST,
    )


def rotate_quarter():
    """A picture that is turned to the right."""
    return (
        rect(2.25, 9.75, 10.5, 10.5)
        + path("M6.75 3.75H12.75A6 6 0 0 1 18.75 9.75V12.75")
        + polyline((15.75, 9.75), (18.75, 12.75), (21.75, 9.75))
    )


def keystoning():
    """A facade that falls back, and the uprights that its sides are to become."""
    return (
        polygon((8.25, 3.75), (15.75, 3.75), (20.25, 20.25), (3.75, 20.25), fill=ACCENT)
        + line(2.25, 3.75, 2.25, 14.25)
        + line(21.75, 3.75, 21.75, 14.25)
    )


def converging_verticals():
    return guide((7.5, 4.5), (4.5, 19.5)) + guide((16.5, 4.5), (19.5, 19.5))


def converging_horizontals():
    return guide((4.5, 7.5), (19.5, 4.5)) + guide((4.5, 16.5), (19.5, 19.5))


def four_corners():
    corners = ((7.5, 4.5), (16.5, 4.5), (19.5, 19.5), (4.5, 19.5))
    return "".join(guide(a, b) for a, b in zip(corners, corners[1:] + corners[:1]))


def distortion():
    """A frame bent outward and inward."""
    return bent_square(8.25, 9.75) + bent_square(8.25, 4.5, fill=ACCENT)


def barrel():
    lines = path("M8.7 3.2Q6.3 12 8.7 20.8M15.3 3.2Q17.7 12 15.3 20.8")
    return bent_square(8.25, 9.75, fill=ACCENT) + lines


def pincushion():
    lines = path("M8.25 5Q11.25 12 8.25 19M15.75 5Q12.75 12 15.75 19")
    return bent_square(9.75, 6.75, fill=ACCENT) + lines


def fisheye():
    """The round picture in its frame, with a horizon that bulges."""
    return (
        rect(2.25, 2.25, 19.5, 19.5)
        + circle(12, 12, 6.75, fill=ACCENT)
        + path("M5.5 13.5Q12 6.75 18.5 13.5")
    )


def anamorphose():
    """Somebody drawn wide at the edge of a picture, and the way back to a natural width."""
    inward = polygon((1.5, 4.5), (4.5, 7.5), (1.5, 10.5), fill=INK, stroke_width=0.75)
    shoulders = "M3.75 20.25V18.25A4 4 0 0 1 7.75 14.25H16.25A4 4 0 0 1 20.25 18.25V20.25Z"
    return (
        ellipse(12, 7.5, 4.5, 3.75, fill=ACCENT)
        + path(shoulders, fill=ACCENT)
        + inward
        + mirrored(inward)
    )


def sphere():
    return circle(12, 12, 9.75, fill=ACCENT) + path(
        "M2.25 12C5 16.5 19 16.5 21.75 12M12 2.25C7.5 5 7.5 19 12 21.75"
    )


def cylinder():
    """A sheet that is rolled around somebody in its middle."""
    return path(
        "M2.25 3.75Q12 9.75 21.75 3.75V20.25Q12 14.25 2.25 20.25Z", fill=ACCENT
    ) + path("M8.25 6.4V17.6M15.75 6.4V17.6")


def tilt_shift():
    """A picture that is sharp in a band across it."""
    blurred = (
        "M2.25 11.25L21.75 8.25V5.75A2 2 0 0 0 19.75 3.75H4.25A2 2 0 0 0 2.25 5.75Z"
        "M21.75 12.75L2.25 15.75V18.25A2 2 0 0 0 4.25 20.25H19.75A2 2 0 0 0 21.75 18.25Z"
    )
    return (
        path(blurred, fill=INK, fill_opacity=SHADE, stroke="none")
        + path(blurred, fill=ACCENT, stroke="none")
        + rect(2.25, 3.75, 19.5, 16.5)
        + path("M2.25 11.25L21.75 8.25M2.25 15.75L21.75 12.75")
    )


def linear_blur():
    dashes = path("M2.25 3.75H3.75M8.25 3.75H9.75M14.25 3.75H15.75M20.25 3.75H21.75")
    return (
        rect(2.25, 8.25, 19.5, 7.5, 0, fill=ACCENT, stroke="none")
        + path("M2.25 8.25H21.75M2.25 15.75H21.75")
        + dashes
        + moved(dashes, 0, 16.5)
        + dot(12, 12)
    )


def radial_blur():
    quarters = (45, 135, 225, 315)
    dashes = "".join(arc_data(12, 12, 9.75, middle - 26, middle + 26) for middle in quarters)
    return circle(12, 12, 5.25, fill=ACCENT) + path(dashes) + dot(12, 12)


def hand():
    return path(
        "M8.25 14.25V5.25A1.5 1.5 0 0 1 11.25 5.25V11.25V3.75A1.5 1.5 0 0 1 14.25 3.75V11.25"
        "V5.25A1.5 1.5 0 0 1 17.25 5.25V12V8.25A1.5 1.5 0 0 1 20.25 8.25V15"
        "A6.75 6.75 0 0 1 13.5 21.75H12.75C10.4 21.75 8.7 20.8 7.4 18.9"
        "L3.6 13.5A1.5 1.5 0 0 1 6 11.7L8.25 14.25",
        fill=ACCENT,
    )


# Guides over the picture, which have to show on any ground


def guide_handle(colour):
    body = circle(8, 8, 6, fill=GROUND, fill_opacity=0.7) + circle(
        8, 8, 4.25, fill=colour, stroke=GROUND, stroke_width=0.5
    )
    return document(body, 16)


def guide_pattern(colour):
    """A dash of five pixels with a dark edge, and a gap."""

    def rgba(text, alpha):
        return bytes.fromhex(text[1:]) + bytes([alpha])

    light = rgba(colour, 255)
    dark = rgba(GROUND, 160)
    faint = rgba(GROUND, 70)
    edge = [dark] * 6 + [faint] * 2
    middle = [light] * 5 + [dark] + [faint] * 2
    return png(8, 3, b"".join(edge + middle + edge))


def drawings():
    padlocks = icons("crop/lock", padlock(opened=True), "disabled hover idle")
    padlocks |= icons("crop/lock", padlock(), "checked")
    return {
        **icons("anamorphose/anamorphose", anamorphose(), TOOL),
        **icons("anamorphose/cylindrical", cylinder(), MODE),
        **icons("anamorphose/spherical", sphere(), MODE),
        **icons("crop/crop", crop(), TOOL),
        **icons("crop/landscape", landscape(), MODE),
        **padlocks,
        **icons("crop/portrait", portrait(), MODE),
        **icons("crop/rotate_left", mirrored(rotate_quarter()), BUTTON),
        **icons("crop/rotate_right", rotate_quarter(), BUTTON),
        **icons("distortion/barrel", barrel(), MODE),
        **icons("distortion/distortion", distortion(), TOOL),
        **icons("distortion/fisheye", fisheye(), MODE),
        **icons("distortion/pincushion", pincushion(), MODE),
        **icons("handTool/hand", hand(), TOOL),
        **icons("horizon/horizon", horizon(), TOOL),
        **icons("horizon/level_line", level_line(), MODE),
        **icons("horizon/rotate_ccw", mirrored(rotate_slightly()), BUTTON),
        **icons("horizon/rotate_cw", rotate_slightly(), BUTTON),
        **icons("keystoning/horizontal", converging_horizontals(), MODE),
        **icons("keystoning/keystoning", keystoning(), TOOL),
        **icons("keystoning/rectangle", four_corners(), MODE),
        **icons("keystoning/vertical", converging_verticals(), MODE),
        "perspective/handle_hover.svg": guide_handle(HIGHLIGHT),
        "perspective/handle_idle.svg": guide_handle(TEXT),
        "perspective/line.png": guide_pattern(TEXT),
        "perspective/line_hover.png": guide_pattern(HIGHLIGHT),
        **icons("tiltshift/linear", linear_blur(), MODE),
        **icons("tiltshift/radial", radial_blur(), MODE),
        **icons("tiltshift/tiltshift", tilt_shift(), TOOL),
    }
