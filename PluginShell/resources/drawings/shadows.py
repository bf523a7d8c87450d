"""Soft shadows, computed to the pixel: frames of eight pieces, and the ring round the loupe.

A shadow's darkness falls off with the distance from what throws it as a Gaussian does. The pieces
of a frame meet without a seam, because a Gaussian of two directions is the product of two
Gaussians: where a corner touches an edge, both have the same darkness.
"""

import math

from shapes import png

# The fall-off ends so many deviations away; what is left there is taken off, so that it ends at
# nothing.
REACH = 3.0
REST = math.exp(-REACH * REACH / 2)


def falloff(*distances):
    """What is left of the darkness, 1 to 0, so many deviations away in each direction."""
    left = math.exp(-sum(distance * distance for distance in distances) / 2)
    return max(0.0, (left - REST) / (1 - REST))


def shade(width, height, darkness):
    """A PNG of black pixels; darkness(column, row) is how opaque they are, 0 to 1."""
    pixels = bytearray(4 * width * height)
    pixels[3::4] = bytes(
        round(255 * darkness(column, row)) for row in range(height) for column in range(width)
    )
    return png(width, height, pixels)


def frame(folder, side, strength):
    """The eight pieces round a rectangle, each a square. Light comes from above: the shadow reaches
    its whole side to the bottom, three quarters of it to the left and right, and half of it to the
    top."""
    reach = {"left": side * 0.75, "right": side * 0.75, "top": side * 0.5, "bottom": side}

    def piece(*edges):
        def darkness(column, row):
            outward = {
                "left": side - column - 0.5,
                "right": column + 0.5,
                "top": side - row - 0.5,
                "bottom": row + 0.5,
            }
            return strength * falloff(*(outward[edge] * REACH / reach[edge] for edge in edges))

        return shade(side, side, darkness)

    edges = [
        ("top",),
        ("bottom",),
        ("left",),
        ("right",),
        ("top", "left"),
        ("top", "right"),
        ("bottom", "left"),
        ("bottom", "right"),
    ]
    return {f"{folder}/{'_'.join(names)}.png": piece(*names) for names in edges}


def loupe(scale):
    """The ring round the loupe, a disc of 200 pixels; it begins under the loupe's rim."""
    margin, radius, drop, rim = 24, 100, 4, 2
    side = 2 * (radius + margin)
    centre = side / 2

    def darkness(column, row):
        x = (column + 0.5) / scale - centre
        y = (row + 0.5) / scale - centre
        inside = min(1.0, max(0.0, (math.hypot(x, y) - radius + rim) * scale + 0.5))
        if inside == 0:
            return 0.0
        distance = max(0.0, math.hypot(x, y - drop) - radius)
        return 0.5 * inside * falloff(distance * REACH / (margin - drop))

    return shade(side * scale, side * scale, darkness)


def drawings():
    return {
        **frame("shadow", 16, 0.42),
        **frame("previewShadow", 24, 0.5),
        "loupeShadow/shadow.png": loupe(1),
        "loupeShadow/shadow@2x.png": loupe(2),
    }
