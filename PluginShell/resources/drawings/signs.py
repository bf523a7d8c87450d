"""The signs of message boxes and of the crash reporter, and the single icons."""

from bars import found
from shapes import (
    ACTION, ACTION_PRESSED, AXIS, HIGHLIGHT, RULE, SUCCESS, WARNING, State, camera, chevron, circle,
    cross, dot, eye, file_sheet, folder, icon, lens, line, magnifier, minus, mirrored, padlock,
    path, picture, plus, polyline, rect, refresh, scaled, tick, turned,
)

# On white
ALERT_ON_LIGHT = "#c2653f"
SUCCESS_ON_LIGHT = "#4d8a4c"

MESSAGE_BOX_SIZE = 40


# What has to be told


def disc():
    return circle(12, 12, 9.75)


def stem(top, bottom):
    """Of "i" and "!": heavier than a line, as the middle of the box lies between two pixels."""
    return line(12, top, 12, bottom, stroke_width=2)


def alert():
    return (
        path(
            "M10.27 3.5L2.2 17.5A2 2 0 0 0 3.93 20.5H20.07A2 2 0 0 0 21.8 17.5L13.73 3.5"
            "A2 2 0 0 0 10.27 3.5Z"
        )
        + stem(8.4, 13.4)
        + dot(12, 16.9, 1.25)
    )


def error():
    return disc() + scaled(cross(), 0.5)


def info():
    return disc() + dot(12, 7.4, 1.25) + stem(11.25, 16.6)


def question():
    return disc() + path("M8.9 9.6A3.1 3.1 0 1 1 13.6 12.2C12.5 12.9 12 13.4 12 14.4") + dot(
        12, 17.3, 1.25
    )


def update_available():
    return disc() + line(12, 6.75, 12, 17.25) + polyline((7.8, 13.05), (12, 17.25), (16.2, 13.05))


def message_box_signs():
    drawn = {
        "alert_dark_icon": (alert(), ALERT_ON_LIGHT),
        "alert_icon": (alert(), WARNING),
        "error_dark_icon": (error(), ALERT_ON_LIGHT),
        "info_dark_icon": (info(), ACTION),
        "info_icon": (info(), HIGHLIGHT),
        "question_mark_dark_icon": (question(), ACTION),
        "question_mark_icon": (question(), HIGHLIGHT),
    }
    return {
        f"messagebox/{name}.svg": icon(body, State(colour), size=MESSAGE_BOX_SIZE)
        for name, (body, colour) in drawn.items()
    }


# The crash reporter, whose window is light


def attachment():
    clip = path(
        "M17.25 7.5V16.5A5.25 5.25 0 0 1 6.75 16.5V6A3.75 3.75 0 0 1 14.25 6V15.75"
        "A2.25 2.25 0 0 1 9.75 15.75V8.25"
    )
    return turned(clip, 40)


def bug():
    side = (
        path("M7.5 11.7L3.75 9V6.75M6.75 14.25H2.25M7.5 17.4L3.75 19.5V21.75")
        + path("M9.9 4.9L8.25 2.25")
    )
    return (
        rect(6.75, 8.25, 10.5, 13.5, 5.25)
        + path("M8.25 9.2V8.25A3.75 3.75 0 0 1 15.75 8.25V9.2")
        + line(12, 12.75, 12, 21.75)
        + side
        + mirrored(side)
    )


# Single icons


def copy():
    return rect(8.25, 8.25, 12, 12) + path(
        "M5.75 15.75A2 2 0 0 1 3.75 13.75V5.75A2 2 0 0 1 5.75 3.75H13.75A2 2 0 0 1 15.75 5.75"
    )


def pencil():
    return path(
        "M3.75 20.25V15.75L15.6 3.9A1.5 1.5 0 0 1 17.7 3.9L20.1 6.3A1.5 1.5 0 0 1 20.1 8.4"
        "L8.25 20.25Z"
    ) + line(12.9, 6.6, 17.4, 11.1)


def chain():
    half = path("M9.75 7.5H6.75A4.5 4.5 0 0 0 6.75 16.5H9.75")
    return turned(half + mirrored(half) + line(8.25, 12, 15.75, 12), -45)


def printer():
    return (
        path("M6.75 8.25V3.25A1 1 0 0 1 7.75 2.25H16.25A1 1 0 0 1 17.25 3.25V8.25")
        + path(
            "M6.75 17.25H4.25A2 2 0 0 1 2.25 15.25V10.25A2 2 0 0 1 4.25 8.25H19.75"
            "A2 2 0 0 1 21.75 10.25V15.25A2 2 0 0 1 19.75 17.25H17.25"
        )
        + rect(6.75, 14.25, 10.5, 7.5, 1)
        + dot(18, 11.25, 0.9)
    )


def bin_with_lid():
    return (
        line(3.75, 5.25, 20.25, 5.25)
        + path("M8.25 5.25V3.75A1.5 1.5 0 0 1 9.75 2.25H14.25A1.5 1.5 0 0 1 15.75 3.75V5.25")
        + path("M5.25 5.25L6.1 19.87A2 2 0 0 0 8.1 21.75H15.9A2 2 0 0 0 17.9 19.87L18.75 5.25")
        + line(9.75, 9.75, 9.75, 17.25)
        + line(14.25, 9.75, 14.25, 17.25)
    )


def person():
    return circle(12, 7.5, 4.5) + path(
        "M3.75 20.25V19.5A6 6 0 0 1 9.75 14.25H14.25A6 6 0 0 1 20.25 19.5V20.25Z"
    )


def single_icons():
    return {
        "arrow_down": chevron("down"),
        "arrow_left": chevron("left"),
        "arrow_right": chevron("right"),
        "arrow_up": chevron("up"),
        "camera": camera(),
        "checkmark": tick(),
        "close": cross(),
        "copy": copy(),
        "edit": pencil(),
        "eye": eye(),
        "file": file_sheet(),
        "folder": folder(),
        "image": picture(),
        "info": info(),
        "lens": lens(),
        "link": chain(),
        "lock": padlock(),
        "minus": minus(),
        "plus": plus(),
        "print": printer(),
        "refresh": refresh(),
        "search": magnifier(),
        "trash": bin_with_lid(),
        "user": person(),
    }


def drawings():
    return {
        **message_box_signs(),
        "crashSender/attachment.svg": icon(attachment(), State(ACTION_PRESSED)),
        "crashSender/bug.svg": icon(bug(), State(ACTION_PRESSED)),
        "crashSender/failed.svg": icon(error(), State(ALERT_ON_LIGHT)),
        "crashSender/sent.svg": icon(found(), State(SUCCESS_ON_LIGHT)),
        "secondary_windows/up_to_date.svg": icon(found(), State(SUCCESS)),
        "secondary_windows/update_available.svg": icon(update_available(), State(HIGHLIGHT)),
        **{f"{name}.svg": icon(body) for name, body in single_icons().items()},
        "separator.svg": icon(line(AXIS, 2.25, AXIS, 21.75), State(RULE)),
        "warning.svg": icon(alert(), State(WARNING)),
    }
