"""The cursors, readable on any picture: black with a white contour, hands white with a black one.

The tool cursors are 23 by 24 pixels with the hot spot in the middle, which is the pixel (11, 12).
"""

from shapes import (
    Raster,
    arc_data,
    circle,
    document,
    group,
    line,
    path,
    point,
    polygon,
    turned,
)

WIDTH, HEIGHT = 23, 24
HOT_X, HOT_Y = 11.5, 12.5
BLACK, WHITE = "#000000", "#ffffff"

SHAFT = 1.5
HEAD_WIDTH = 4.5
HEAD_LENGTH = 5


def contoured(body, stroked=0):
    """The contour of one pixel round a black body, and the body.

    stroked is the width of the body's strokes; 0 stands for a filled outline.
    """
    contour = group(
        body,
        fill="none" if stroked else WHITE,
        stroke=WHITE,
        stroke_width=stroked + 2,
        stroke_linejoin="round",
        stroke_linecap="round",
    )
    if not stroked:
        return contour, group(body, fill=BLACK)
    return contour, group(
        body, fill="none", stroke=BLACK, stroke_width=stroked, stroke_linecap="round"
    )


def layered(*parts):
    """All contours first, so that none of them cuts a neighbour's body."""
    return "".join(contour for contour, _ in parts) + "".join(body for _, body in parts)


def tool_cursor(body):
    return document(body, 0, WIDTH, HEIGHT, (0, 0, WIDTH, HEIGHT))


def double_arrow(reach, degrees=0):
    """Two heads away from each other; reach is the distance of the tips from the hot spot."""
    neck = reach - HEAD_LENGTH
    right = [
        (neck, -SHAFT),
        (neck, -HEAD_WIDTH),
        (reach, 0),
        (neck, HEAD_WIDTH),
        (neck, SHAFT),
    ]
    outline = right + [(-x, -y) for x, y in right]
    body = polygon(*((HOT_X + x, HOT_Y + y) for x, y in outline))
    return turned(body, degrees, HOT_X, HOT_Y) if degrees else body


def four_arrows(reach):
    neck, head = reach - 4, 3.5
    right = [
        (SHAFT, -SHAFT),
        (neck, -SHAFT),
        (neck, -head),
        (reach, 0),
        (neck, head),
        (neck, SHAFT),
    ]
    outline = []
    for _ in range(4):
        outline += right
        right = [(-y, x) for x, y in right]
    return polygon(*((HOT_X + x, HOT_Y + y) for x, y in outline))


def rotation(degrees):
    """A bow with two heads over the hot spot, which is marked with a dot."""
    x, y, radius, end = HOT_X, HOT_Y + 2, 8.5, 26
    bow = path(arc_data(x, y, radius, end + 5, 180 - end - 5))

    def head(side):
        tip_x, tip_y = HOT_X + side * 9.2, HOT_Y + 4.5
        base_x, base_y = point(x, y, radius, end if side > 0 else 180 - end)
        along_x, along_y = tip_x - base_x, tip_y - base_y
        scale = 3.5 / (along_x * along_x + along_y * along_y) ** 0.5
        across_x, across_y = -along_y * scale, along_x * scale
        return polygon(
            (tip_x, tip_y),
            (base_x + across_x, base_y + across_y),
            (base_x - across_x, base_y - across_y),
        )

    parts = layered(
        contoured(bow, 2.2),
        contoured(head(-1)),
        contoured(head(1)),
        contoured(circle(HOT_X, HOT_Y, 1.5)),
    )
    return turned(parts, degrees, HOT_X, HOT_Y) if degrees else parts


def square_cursor(body):
    return Raster(document(body, 24), 24, 24)


def hand(fingers, thumb, palm):
    """A white hand: fingers are strokes with a black edge, and the palm covers where they begin."""
    strokes = "".join(line(*finger) for finger in fingers) + path(thumb)
    outline = group(
        strokes + path(palm),
        fill=BLACK,
        stroke=BLACK,
        stroke_width=5,
        stroke_linecap="round",
        stroke_linejoin="round",
    )
    inside = group(
        strokes, fill="none", stroke=WHITE, stroke_width=2.7, stroke_linecap="round"
    ) + path(palm, fill=WHITE, stroke=WHITE, stroke_width=2.7, stroke_linejoin="round")
    return outline + inside


def open_hand():
    return hand(
        [
            (7.4, 5.8, 8.7, 12.5),
            (10.9, 3.9, 11.3, 12.5),
            (14.5, 4.6, 14.1, 12.5),
            (17.8, 7.3, 16.9, 12.5),
        ],
        "M4 12.6L7.6 16.6",
        "M8.4 13.4L17 13.4C17 16.4 16.2 17.6 15.4 20H10.2C9.4 18.6 8.6 17.8 7.6 16.4Z",
    )


def closed_hand():
    return hand(
        [
            (7.6, 9.9, 7.9, 12.5),
            (10.9, 9.1, 11, 12.5),
            (14.2, 9.3, 14.1, 12.5),
            (17.4, 10.6, 16.9, 12.5),
        ],
        "M5 13.6L6.9 15.2",
        "M7.8 13.4L17 13.4C17 16.4 16.2 17.6 15.4 20H10.2C9.4 18.6 8.4 17.6 6.9 15.4Z",
    )


def pointer():
    outline = polygon(
        (5, 2),
        (5, 18.5),
        (9, 15),
        (11.6, 21.2),
        (14.4, 20),
        (11.8, 14),
        (17, 14),
    )
    return layered(contoured(outline))


def zoom(sign):
    ring = circle(9.5, 9.5, 6)
    glass = circle(9.5, 9.5, 6, fill=WHITE, fill_opacity="0.6")
    signs = line(6.5, 9.5, 12.5, 9.5)
    if sign == "+":
        signs += line(9.5, 6.5, 9.5, 12.5)
    return (
        glass
        + layered(contoured(ring, 2), contoured(line(15.2, 15.2, 20, 20), 3))
        + group(signs, stroke=BLACK, stroke_width=1)
    )


def drawings():
    arrows = {
        "diagonal_left": double_arrow(11, 45),
        "diagonal_right": double_arrow(11, -45),
        "horizontal": double_arrow(10.5),
        "square": four_arrows(10.5),
        "vertical": double_arrow(10.5, 90),
    }
    return {
        **{
            f"cursors/cusors_arrow_{name}.svg": tool_cursor(layered(contoured(body)))
            for name, body in arrows.items()
        },
        "cursors/cusors_rotation_bottom.svg": tool_cursor(rotation(180)),
        "cursors/cusors_rotation_top.svg": tool_cursor(rotation(0)),
        "cursors/draging.png": square_cursor(closed_hand()),
        "cursors/hand.png": square_cursor(open_hand()),
        "cursors/mouse.png": square_cursor(pointer()),
        "cursors/zoom-in.png": square_cursor(zoom("+")),
        "cursors/zoom-out.png": square_cursor(zoom("-")),
    }
