"""What all drawings of the product are made of: palette, grid, states and a handful of shapes.

Grid: a box has 16 columns and 16 rows, and a stroke is as wide as one of them. A line in the middle
of a column (0.75, 2.25, 3.75 and so on in the box of 24 units) fills exactly one pixel at 16 px and
three at 48 px, and has a sharp edge at 24 px. Drawings that need a line in the very middle use
AXIS, as 16 columns have no middle one. Keylines, counted from 0: a square spans columns 2 to 13, a
circle 1 to 14, a rectangle columns 1 to 14 and rows 3 to 12.

A drawing is a text of SVG elements in the colour INK, made by the functions below. icon() puts it
into a document in the colour of a state, icons() does so for several states. Fills in ACCENT show
in the state "checked" only.

A module of drawings has a function drawings(), which gives a dictionary: the key is the name below
icons/, the value a text (the SVG), bytes (the PNG) or a Raster (an SVG that becomes a PNG).
"""

import math
import struct
import zlib
from typing import NamedTuple

# Palette

GROUND = "#1b1b1b"
PANEL = "#222222"
RULE = "#444444"
TEXT = "#ffffff"
TEXT_QUIET = "#ababab"
HIGHLIGHT = "#8cbcda"
ACTION = "#688fa7"
ACTION_HOVER = "#5c8096"
ACTION_PRESSED = "#537184"
SECONDARY = "#cccccc"
GLYPH_HOVER = "#e5e5e5"
GLYPH_DISABLED = "#5a5a5a"
WARNING = "#e0b35c"
SUCCESS = "#86b878"

# Grid

BOX = 24
SMALL_BOX = 16
COLUMNS = 16
RADIUS = 2
AXIS = 11.25


def stroke_width(box):
    """A column and a trace more, as Qt draws pens of up to one pixel with slopes too thin."""
    return box / COLUMNS * 1.01


# States

INK = "INK"
ACCENT = "ACCENT"

# Opacity of areas, and of lines that stand back

SHADE = 0.4
GHOST = 0.5


class State(NamedTuple):
    colour: str
    accented: bool = False


STATES = {
    "idle": State(TEXT_QUIET),
    "hover": State(GLYPH_HOVER),
    "down": State(HIGHLIGHT),
    "disabled": State(GLYPH_DISABLED),
    "checked": State(HIGHLIGHT, accented=True),
}


# Documents


class Raster(NamedTuple):
    """An SVG that becomes a PNG of width by height pixels.

    drawIcons.py writes it to sources/NAME.svg below its output folder, and a line of the list
    rasterise.list: source, target, width and height between tabs, paths relative to the list.
    """

    svg: str
    width: int
    height: int


def document(body, box=BOX, width=None, height=None, view_box=None):
    """An SVG document; box is the side of a square one, width and height are the natural size."""
    width = box if width is None else width
    height = box if height is None else height
    if view_box is None:
        view_box = (0, 0, box, box)
    return (
        '<svg xmlns="http://www.w3.org/2000/svg" version="1.2" baseProfile="tiny"'
        f' width="{number(width)}" height="{number(height)}"'
        f' viewBox="{" ".join(number(v) for v in view_box)}">\n{body}</svg>\n'
    )


def inked(body, state, accent_colour=None):
    """The drawing in the colours of a state, which is a State or the name of one."""
    state = STATES.get(state, state)
    accent = f'fill="{accent_colour or state.colour}" fill-opacity="{number(SHADE)}"'
    body = body.replace(f'fill="{ACCENT}"', accent if state.accented else 'fill="none"')
    return body.replace(INK, state.colour)


def pen(body, box=BOX, weight=1):
    """Sets stroke, caps and joins for everything in body."""
    return group(
        body,
        fill="none",
        stroke=INK,
        stroke_width=stroke_width(box) * weight,
        stroke_linecap="round",
        stroke_linejoin="round",
    )


def icon(body, state="idle", box=BOX, size=None, weight=1):
    """The document of a drawing in a state; its natural size is that of the box if not given."""
    size = box if size is None else size
    return document(inked(pen(body, box, weight), state), box, size, size)


def icons(name, body, states, box=BOX, size=None, weight=1):
    """name_STATE.svg for each of the states, a text of names with blanks between."""
    return {
        f"{name}_{state}.svg": icon(body, state, box, size, weight) for state in states.split()
    }


def png(width, height, pixels):
    """A PNG of rows of RGBA bytes, top row first."""

    def chunk(kind, data):
        return (
            struct.pack(">I", len(data))
            + kind
            + data
            + struct.pack(">I", zlib.crc32(kind + data))
        )

    stride = 4 * width
    rows = b"".join(
        b"\0" + bytes(pixels[row * stride : (row + 1) * stride]) for row in range(height)
    )
    return (
        b"\x89PNG\r\n\x1a\n"
        + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0))
        + chunk(b"IDAT", zlib.compress(rows, 9))
        + chunk(b"IEND", b"")
    )


# Elements. Further attributes are given with "_" for "-": stroke_width=2.


def number(value):
    text = f"{value:.3f}".rstrip("0").rstrip(".")
    return "0" if text == "-0" else text


def element(tag, body=None, **attributes):
    text = "".join(
        f' {key.replace("_", "-")}="{value if isinstance(value, str) else number(value)}"'
        for key, value in attributes.items()
        if value is not None
    )
    return f"<{tag}{text}/>\n" if body is None else f"<{tag}{text}>\n{body}</{tag}>\n"


def group(body, **attributes):
    return element("g", body, **attributes)


def path(data, **attributes):
    return element("path", d=data, **attributes)


def line(x1, y1, x2, y2, **attributes):
    return element("line", x1=x1, y1=y1, x2=x2, y2=y2, **attributes)


def rect(x, y, width, height, radius=RADIUS, **attributes):
    return element(
        "rect", x=x, y=y, width=width, height=height, rx=radius or None, **attributes
    )


def circle(x, y, radius, **attributes):
    return element("circle", cx=x, cy=y, r=radius, **attributes)


def ellipse(x, y, radius_x, radius_y, **attributes):
    return element("ellipse", cx=x, cy=y, rx=radius_x, ry=radius_y, **attributes)


def points_data(points):
    return " ".join(f"{number(x)},{number(y)}" for x, y in points)


def polyline(*points, **attributes):
    return element("polyline", points=points_data(points), **attributes)


def polygon(*points, **attributes):
    return element("polygon", points=points_data(points), **attributes)


def dot(x, y, radius=1.5):
    return circle(x, y, radius, fill=INK, stroke="none")


def solid(body):
    """Fills what is in body with the colour of the pen instead of drawing its outline."""
    return group(body, fill=INK, stroke="none")


def turned(body, degrees, x=BOX / 2, y=BOX / 2):
    return group(body, transform=f"rotate({number(degrees)} {number(x)} {number(y)})")


def moved(body, x, y):
    return group(body, transform=f"translate({number(x)} {number(y)})")


def mirrored(body, box=BOX):
    """Left and right exchanged."""
    return group(body, transform=f"translate({number(box)} 0) scale(-1 1)")


def scaled(body, factor, box=BOX):
    """The drawing scaled about the middle of the box, with strokes of the usual width."""
    offset = box / 2 * (1 - factor)
    return group(
        body,
        transform=f"translate({number(offset)} {number(offset)}) scale({number(factor)})",
        stroke_width=stroke_width(box) / factor,
    )


def point(x, y, radius, degrees):
    """The point of a circle in a direction: 0 is right, 90 is up."""
    angle = math.radians(degrees)
    return x + radius * math.cos(angle), y - radius * math.sin(angle)


def arc_data(x, y, radius, start, end):
    """Path data of an arc between two directions, as for point(); to the left if end > start."""
    x1, y1 = point(x, y, radius, start)
    x2, y2 = point(x, y, radius, end)
    large = 1 if abs(end - start) > 180 else 0
    sweep = 0 if end > start else 1
    r = number(radius)
    return f"M{number(x1)} {number(y1)}A{r} {r} 0 {large} {sweep} {number(x2)} {number(y2)}"


def arc(x, y, radius, start, end, **attributes):
    return path(arc_data(x, y, radius, start, end), **attributes)


# Drawings with a meaning that occur in more than one place, in the box of 24 units.


def cross():
    return line(5.25, 5.25, 18.75, 18.75) + line(18.75, 5.25, 5.25, 18.75)


def tick():
    return polyline((3.75, 12.75), (9, 18), (20.25, 6.75))


def minus():
    return line(3.75, AXIS, 18.75, AXIS)


def plus():
    return minus() + line(AXIS, 3.75, AXIS, 18.75)


def chevron(direction):
    """Direction: right, up, left or down."""
    body = polyline((8.25, 5.25), (15, 12), (8.25, 18.75))
    return turned(body, {"right": 0, "up": -90, "left": 180, "down": 90}[direction])


def magnifier(sign=""):
    """sign: nothing, + or -."""
    body = circle(9.75, 9.75, 7.5, fill=ACCENT) + line(15.2, 15.2, 21, 21)
    if sign:
        body += line(6.75, 9.75, 12.75, 9.75)
    if sign == "+":
        body += line(9.75, 6.75, 9.75, 12.75)
    return body


def camera():
    return path(
        "M4.25 6.75H7.5L9.05 4.35A1.35 1.35 0 0 1 10.2 3.75H13.8A1.35 1.35 0 0 1 14.95 4.35"
        "L16.5 6.75H19.75A2 2 0 0 1 21.75 8.75V18.25A2 2 0 0 1 19.75 20.25H4.25"
        "A2 2 0 0 1 2.25 18.25V8.75A2 2 0 0 1 4.25 6.75Z"
    ) + circle(12, 13.5, 3.75, fill=ACCENT)


def lens():
    """An objective from the front, with light on its glass."""
    return (
        circle(12, 12, 9.75)
        + circle(12, 12, 6, fill=ACCENT)
        + arc(12, 12, 2.25, 90, 180)
    )


def eye(hidden=False):
    body = path(
        "M2.25 12C4.6 7.7 8 5.25 12 5.25S19.4 7.7 21.75 12"
        "C19.4 16.3 16 18.75 12 18.75S4.6 16.3 2.25 12Z"
    )
    return body + dot(12, 12, 3) + (line(3.75, 20.25, 20.25, 3.75) if hidden else "")


def padlock(opened=False):
    shackle = (
        "M8.25 9.75V6.75A3.75 3.75 0 0 1 15.2 4.75" if opened
        else "M8.25 9.75V7.5A3.75 3.75 0 0 1 15.75 7.5V9.75"
    )
    return path(shackle) + rect(5.25, 9.75, 13.5, 10.5, fill=ACCENT) + dot(12, 15)


def folder():
    return path(
        "M2.25 16.75V5.75A2 2 0 0 1 4.25 3.75H7.65A2 2 0 0 1 9.05 4.35L11.45 6.75H19.75"
        "A2 2 0 0 1 21.75 8.75V16.75A2 2 0 0 1 19.75 18.75H4.25A2 2 0 0 1 2.25 16.75Z"
    )


def picture(sun=True):
    body = rect(2.25, 3.75, 19.5, 15)
    body += path("M2.25 15.75L7.5 10.5L15.75 18.75M12.75 15.75L16.5 12L21.75 17.25")
    return body + (dot(15, 8.25) if sun else "")


def refresh():
    """Two arrows that run after each other in a circle."""
    half = arc(12, 12, 9.05, 165, 25) + polyline((20.25, 3.75), (20.25, 8.25), (15.75, 8.25))
    return half + turned(half, 180)


def file_sheet():
    """A sheet with a folded corner."""
    return path(
        "M5.75 2.25H12.75L18.75 8.25V19.75A2 2 0 0 1 16.75 21.75H5.75A2 2 0 0 1 3.75 19.75V4.25"
        "A2 2 0 0 1 5.75 2.25Z"
    ) + polyline((12.75, 2.25), (12.75, 8.25), (18.75, 8.25))
