"""The mark of the product, its word marks, and the pictures of the about box.

The mark is a picture that stands straight, with a level horizon, in front of the one that it was
taken as. The letters are outlines of their own: a cap height of 10, strokes of one weight, ends cut
level.
"""

from shapes import (
    ACTION,
    GLYPH_HOVER,
    HIGHLIGHT,
    TEXT,
    TEXT_QUIET,
    Raster,
    circle,
    document,
    element,
    group,
    moved,
    number,
    path,
    rect,
    turned,
)

# The mark

TILE_TOP, TILE_BOTTOM = ACTION, "#2b4554"
TILTED = "#b3cddc"
SKY_TOP, SKY_BOTTOM = HIGHLIGHT, "#dcecf5"
SEA_TOP, SEA_BOTTOM = "#41677c", "#263d4b"
TILT = -15

# What the about box is on, below its black part.
ABOUT_GROUND = "#262626"


def gradient(name, top, bottom, y1, y2):
    stops = element("stop", offset="0", stop_color=top) + element(
        "stop", offset="1", stop_color=bottom
    )
    return element(
        "linearGradient",
        stops,
        id=name,
        gradientUnits="userSpaceOnUse",
        x1=0,
        y1=y1,
        x2=0,
        y2=y2,
    )


def mark(side, tile, corner, frame, border, horizon, sun, tilted=None):
    """The mark in a box with a side.

    tile and frame are the distances of their outlines from the box, border is the frame's weight,
    horizon its row, sun a centre and a radius, tilted a drawing in place of the turned frame.
    """
    inner, end = frame + border, side - frame - border
    gradients = (
        gradient("tile", TILE_TOP, TILE_BOTTOM, tile, side - tile)
        + gradient("sky", SKY_TOP, SKY_BOTTOM, inner, horizon)
        + gradient("sea", SEA_TOP, SEA_BOTTOM, horizon, end)
    )
    extent = side - 2 * frame
    if tilted is None:
        tilted = turned(rect(frame, frame, extent, extent, border), TILT, side / 2, side / 2)
    return (
        element("defs", gradients)
        + rect(tile, tile, side - 2 * tile, side - 2 * tile, corner, fill="url(#tile)")
        + group(tilted, fill=TILTED)
        + rect(frame, frame, extent, extent, border, fill=TEXT)
        + rect(inner, inner, end - inner, horizon - inner, 0, fill="url(#sky)")
        + rect(inner, horizon, end - inner, end - horizon, 0, fill="url(#sea)")
        + circle(*sun, fill=TEXT)
    )


def large_mark():
    """On a grid of 96, with even numbers where an edge is to be sharp at 48 pixels, too."""
    return mark(96, 4, 20, frame=22, border=4, horizon=52, sun=(59, 38, 5))


def mark_of_32_pixels():
    return mark(32, 1, 7, frame=7, border=2, horizon=17, sun=(19.5, 12.5, 1.5))


def mark_of_16_pixels():
    # Of the tilted picture, whole pixels of its four corners show.
    corners = (
        rect(9, 2, 3, 1, 0) + rect(13, 9, 1, 3, 0) + rect(4, 13, 3, 1, 0) + rect(2, 4, 1, 3, 0)
    )
    return mark(16, 0, 4, frame=3, border=1, horizon=9, sun=(10, 6, 1), tilted=corners)


def marks():
    drawn = {16: (mark_of_16_pixels(), 16), 32: (mark_of_32_pixels(), 32)}
    pictures = {}
    for side in (16, 32, 48, 96, 128, 256, 512, 1024):
        body, box = drawn.get(side, (large_mark(), 96))
        pictures[f"app_icon/logo_{side}.png"] = Raster(document(body, box), side, side)
    pictures["application_icon.png"] = pictures["app_icon/logo_512.png"]
    return pictures


# Letters: each gives path data and its width, for a weight. All pieces turn the same way round, so
# that they make one outline where they overlap.

CAP = 10


def block(x, y, width, height):
    return f"M{number(x)} {number(y)}h{number(width)}v{number(height)}h{number(-width)}Z"


def slant(top_x, top_y, bottom_x, bottom_y, width):
    """A stroke between two heights, from its left end at the top to that at the bottom."""
    return (
        f"M{number(top_x)} {number(top_y)}h{number(width)}"
        f"L{number(bottom_x + width)} {number(bottom_y)}h{number(-width)}Z"
    )


def half_ring(x, y, straight, radius, weight):
    """The bowl of an R, open to the left: a level piece, a half circle and a level piece."""
    inner = radius - weight
    return (
        f"M{number(x)} {number(y)}h{number(straight)}"
        f"a{number(radius)} {number(radius)} 0 0 1 0 {number(2 * radius)}h{number(-straight)}"
        f"v{number(-weight)}h{number(straight)}"
        f"a{number(inner)} {number(inner)} 0 0 0 0 {number(-2 * inner)}h{number(-straight)}Z"
    )


def letter_v(w):
    return slant(0, 0, 3.6, CAP, w * 1.1) + slant(7.2, 0, 3.6, CAP, w * 1.1), 7.2 + w * 1.1


def letter_e(w):
    return (
        block(0, 0, w, CAP)
        + block(0, 0, 6.2, w)
        + block(0, (CAP - w) / 2, 5.6, w)
        + block(0, CAP - w, 6.2, w)
    ), 6.2


def letter_k(w):
    return (
        block(0, 0, w, CAP)
        + slant(5.4, 0, w - 0.8, 6, w * 1.35)
        + slant(2.4, 3.6, 5.8, CAP, w * 1.2)
    ), 5.8 + w * 1.2


def letter_m(w):
    return (
        block(0, 0, w, CAP)
        + block(9 - w, 0, w, CAP)
        + slant(0, 0, 4.5 - w * 0.6, 7.4, w * 1.2)
        + slant(9 - w * 1.2, 0, 4.5 - w * 0.6, 7.4, w * 1.2)
    ), 9


def letter_a(w):
    return (
        slant(3.6, 0, 0, CAP, w * 1.1)
        + slant(3.6, 0, 7.2, CAP, w * 1.1)
        + block(1.6, 6.2, 4 + w * 1.1, w)
    ), 7.2 + w * 1.1


def letter_r(w):
    radius = 3.125
    return (
        block(0, 0, w, CAP)
        + half_ring(0, 0, 3.4, radius, w)
        + slant(2.6, 2 * radius - w, 5.4, CAP, w * 1.2)
    ), 5.4 + w * 1.2


def letter_l(w):
    return block(0, 0, w, CAP) + block(0, CAP - w, 5.6, w), 5.6


def letter_o(w):
    outer, inner = CAP / 2, CAP / 2 - w
    return (
        f"M0 {outer}a{outer} {outer} 0 0 1 {CAP} 0a{outer} {outer} 0 0 1 {-CAP} 0Z"
        f"M{number(w)} {outer}a{number(inner)} {number(inner)} 0 0 0 {number(2 * inner)} 0"
        f"a{number(inner)} {number(inner)} 0 0 0 {number(-2 * inner)} 0Z"
    ), CAP


def letter_w(w):
    return (
        slant(0, 0, 2.6, CAP, w * 1.1)
        + slant(5.2, 0, 2.6, CAP, w * 1.1)
        + slant(5.2, 0, 7.8, CAP, w * 1.1)
        + slant(10.4, 0, 7.8, CAP, w * 1.1)
    ), 10.4 + w * 1.1


def letter_i(w):
    return block(0, 0, w, CAP), w


def letter_c(w):
    outer, inner = CAP / 2, CAP / 2 - w
    # The opening's ends lie 45 degrees above and below.
    cut, cut_inner = 0.7071 * outer, 0.7071 * inner
    return (
        f"M{number(outer + cut)} {number(outer - cut)}"
        f"A{outer} {outer} 0 1 0 {number(outer + cut)} {number(outer + cut)}"
        f"L{number(outer + cut_inner)} {number(outer + cut_inner)}"
        f"A{number(inner)} {number(inner)} 0 1 1 {number(outer + cut_inner)}"
        f" {number(outer - cut_inner)}Z"
    ), outer + cut


def letter_3(w):
    radius = (CAP + w) / 4
    return (
        half_ring(0.3, 0, 2.4, radius, w) + half_ring(0, 2 * radius - w, 2.8, radius, w)
    ), 2.8 + radius


LETTERS = {
    "V": letter_v,
    "E": letter_e,
    "K": letter_k,
    "M": letter_m,
    "A": letter_a,
    "R": letter_r,
    "L": letter_l,
    "O": letter_o,
    "W": letter_w,
    "I": letter_i,
    "C": letter_c,
    "3": letter_3,
}


def word(text, cap, weight, spacing, colour):
    """A word and its width. Each letter begins with a whole unit, so that stems are sharp."""
    scale = cap / CAP
    x, body = 0, ""
    for letter in text:
        if letter == " ":
            x += round(0.5 * cap)
            continue
        data, width = LETTERS[letter](weight / scale)
        body += group(path(data), transform=f"translate({number(x)} 0) scale({number(scale)})")
        end = x + width * scale
        x = round(end + spacing)
    return group(body, fill=colour), end


def word_mark(text, width, height, cap, weight, spacing, colour, to_the_right=False):
    body, extent = word(text, cap, weight, spacing, colour)
    body = moved(body, width - round(extent) if to_the_right else 0, (height - cap) / 2)
    return Raster(document(body, 0, width, height, (0, 0, width, height)), width, height)


def horizontal_logo():
    maker, _ = word("VEK", 26, 4, 5, TEXT)
    product, _ = word("MARLOWICK 3", 16, 2, 4, TEXT_QUIET)
    body = (
        group(large_mark(), transform=f"scale({number(64 / 96)})")
        + moved(maker, 76, 6)
        + moved(product, 76, 42)
    )
    return Raster(document(body, 0, 256, 64, (0, 0, 256, 64)), 256, 64)


def short_logo():
    name, width = word("KR3", 16, 2, 3, GLYPH_HOVER)
    width = 40 + round(width) + 2
    return document(
        mark_of_32_pixels() + moved(name, 40, 8), 0, width, 32, (0, 0, width, 32)
    )


def about_line():
    """The line along the left side of the about box, which is 508 pixels high.

    It hides all of the window's transparent ground, and ends in the colour of the box beside it.
    """
    stops = element("stop", offset="0", stop_color=HIGHLIGHT) + element(
        "stop", offset="1", stop_color=ABOUT_GROUND
    )
    fade = element("linearGradient", stops, id="fade", x1="0", y1="0", x2="0", y2="1")
    body = element("defs", fade) + rect(0, 0, 4, 508, 0, fill="url(#fade)")
    return Raster(document(body, 0, 4, 508, (0, 0, 4, 508)), 4, 508)


def drawings():
    return {
        **marks(),
        "logo.png": horizontal_logo(),
        "logo_kr3.svg": short_logo(),
        "aboutDialog/VEK.png": word_mark("VEK", 96, 32, 28, 4, 6, TEXT),
        "aboutDialog/KR.png": word_mark("KR", 64, 32, 24, 3, 5, TEXT_QUIET, True),
        "aboutDialog/line-left.png": about_line(),
    }
