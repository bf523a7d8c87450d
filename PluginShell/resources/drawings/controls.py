"""Check boxes, radio buttons, arrows, slider handles, window buttons and the sign of work going on.

These are small and drawn pixel by pixel: the unit of their boxes is a pixel, and lines lie in the
middle of one.
"""

from shapes import (
    ACTION, ACTION_HOVER, ACTION_PRESSED, GLYPH_DISABLED, GLYPH_HOVER, GROUND, HIGHLIGHT,
    SECONDARY, SMALL_BOX, STATES, State, TEXT, TEXT_QUIET, circle,
    document, icon, icons, line, path, point, polygon, polyline, rect, turned,
)

LINK = "hover idle"
BUTTON = "down hover idle"
STATE_NAMES = ("idle", "hover", "down", "disabled")

# What is chosen stands on a ground of its own: ground, edge and sign in each state.
CHOSEN = {
    "idle": (ACTION, ACTION, TEXT),
    "hover": (ACTION_HOVER, HIGHLIGHT, TEXT),
    "down": (ACTION_PRESSED, HIGHLIGHT, TEXT),
    "disabled": ("none", GLYPH_DISABLED, GLYPH_DISABLED),
}


# On the about box's ground of #262626.
ABOUT_HANDLE = "#777777"


# Check boxes and radio buttons


def check_box(**attributes):
    return rect(1.5, 1.5, 13, 13, 2, **attributes)


def radio_button(**attributes):
    return circle(8, 8, 6.5, **attributes)


def check_sign(colour):
    return polyline(
        (4.5, 8.25), (7, 10.75), (11.5, 5.25), fill="none", stroke=colour, stroke_width=1.75,
        stroke_linecap="round", stroke_linejoin="round",
    )


def partial_sign(colour):
    return rect(4, 7, 8, 2, 0.5, fill=colour)


def radio_sign(colour):
    return circle(8, 8, 3, fill=colour)


def choices(name, shape, sign=None):
    """name_STATE.svg for each state, with a sign or empty."""
    result = {}
    for state in STATE_NAMES:
        if sign:
            ground, edge, ink = CHOSEN[state]
            body = shape(fill=ground, stroke=edge) + sign(ink)
        else:
            body = shape(fill="none", stroke=STATES[state].colour)
        result[f"{name}_{state}.svg"] = document(body, SMALL_BOX)
    return result


# Arrows


def combo_arrow():
    return polyline((2.5, 4.25), (6, 7.75), (9.5, 4.25))


def combo_arrows():
    """The white ones are for combo boxes on a coloured ground."""
    colours = {f"arrow_{state}": STATES[state] for state in ("disabled", "hover", "idle")}
    colours["white_arrow_idle"] = State(TEXT)
    colours["white_arrow_hover"] = State(HIGHLIGHT)
    return {
        f"comboBox/{name}.svg": icon(combo_arrow(), state, 12, weight=2)
        for name, state in colours.items()
    }


def disclosure(opened):
    arrow = polyline((6.25, 3.5), (10.75, 8), (6.25, 12.5))
    return turned(arrow, 90, 8, 8) if opened else arrow


def scroll_arrow(direction):
    """A triangle for 8 pixels, filled."""
    degrees = {"up": 0, "right": 90, "down": 180, "left": 270}[direction]
    triangle = polygon((4, 2), (7, 6), (1, 6), fill=TEXT_QUIET, stroke=TEXT_QUIET,
                       stroke_width=0.75, stroke_linejoin="round")
    return document(turned(triangle, degrees, 4, 4), 8)


# Handles


def slider_handle(face, edge, groove):
    body = rect(0.5, 0.5, 6, 18, 1.5, fill=face, stroke=edge) + line(3.5, 6, 3.5, 13, stroke=groove)
    return document(body, 0, 7, 19, (0, 0, 7, 19))


def slider_handles():
    """black_handle is for dark grounds, white_handle for light ones, where its edge shows it."""
    dark = {
        "idle": TEXT_QUIET, "hover": GLYPH_HOVER, "down": HIGHLIGHT, "disabled": GLYPH_DISABLED,
    }
    light = {
        "idle": (TEXT, GLYPH_DISABLED),
        "hover": (TEXT, ACTION),
        "down": (HIGHLIGHT, ACTION_PRESSED),
        "disabled": (SECONDARY, TEXT_QUIET),
    }
    result = {}
    for state in STATE_NAMES:
        result[f"slider/black_handle_{state}.svg"] = slider_handle(dark[state], GROUND, GROUND)
        face, edge = light[state]
        result[f"slider/white_handle_{state}.svg"] = slider_handle(face, edge, edge)
    return result


def about_scroll_handle():
    """For a scroll bar 11 pixels wide, of any length."""
    return document(rect(3, 2, 5, 36, 2.5, fill=ABOUT_HANDLE), 0, 11, 40, (0, 0, 11, 40))


# Windows


def window_close():
    return line(3.5, 3.5, 12.5, 12.5) + line(12.5, 3.5, 3.5, 12.5)


def window_maximize():
    return rect(2.5, 3.5, 11, 9, 1)


def window_minimize():
    return line(3, 11.5, 13, 11.5)


def window_restore():
    return rect(2.5, 5.5, 8, 7, 1) + path(
        "M5.5 3.5A1 1 0 0 1 6.5 2.5H12.5A1 1 0 0 1 13.5 3.5V8.5A1 1 0 0 1 12.5 9.5"
    )


# Work going on


def processing(frame):
    """Eight spokes, clockwise from the top; the frame's own is the brightest, earlier ones fade."""
    body = ""
    for spoke in range(8):
        age = (frame - 1 - spoke) % 8
        direction = 90 - 45 * spoke
        (x1, y1), (x2, y2) = point(12, 12, 5.25, direction), point(12, 12, 9.75, direction)
        body += line(x1, y1, x2, y2, stroke_opacity=max(0.15, 1 - age * 0.14))
    return icon(body, STATES["hover"], weight=1.5)


def drawings():
    return {
        **choices("checkBox/checked", check_box, check_sign),
        **choices("checkBox/partial", check_box, partial_sign),
        **choices("checkBox/unchecked", check_box),
        **choices("radioButton/checked", radio_button, radio_sign),
        **choices("radioButton/unchecked", radio_button),
        **combo_arrows(),
        **icons("groupBox/closed", disclosure(False), LINK, SMALL_BOX, weight=1.5),
        **icons("groupBox/opened", disclosure(True), LINK, SMALL_BOX, weight=1.5),
        **{f"scrollBar/{way}.svg": scroll_arrow(way) for way in ("up", "right", "down", "left")},
        **slider_handles(),
        "aboutDialog/scroll.svg": about_scroll_handle(),
        **icons("winTitleBar/close", window_close(), LINK, SMALL_BOX),
        **icons("winTitleBar/maximize", window_maximize(), LINK, SMALL_BOX),
        **icons("winTitleBar/minimize", window_minimize(), LINK, SMALL_BOX),
        **icons("winTitleBar/restore", window_restore(), LINK, SMALL_BOX),
        **icons("secondary_windows/close", window_close(), BUTTON, SMALL_BOX, weight=1.25),
        **{f"processing/frame_{frame}.svg": processing(frame) for frame in range(1, 9)},
    }
