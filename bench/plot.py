"""Lines in an SVG: small charts side by side, one a series, each from 0 to its own highest value."""

from html import escape

WIDTH, HEIGHT = 210, 150          # of a chart, with its texts
LEFT, RIGHT, TOP, BOTTOM = 34, 10, 24, 26
COLUMNS = 5


def panel(title, points, ticks, highest, x, y):
    """One chart: `points` are values over `ticks`, from 0 to `highest`."""
    inner_width, inner_height = WIDTH - LEFT - RIGHT, HEIGHT - TOP - BOTTOM

    def place(index, value):
        return (x + LEFT + inner_width * (index + 0.5) / len(ticks),
                y + TOP + inner_height * (1 - value / highest))

    base = y + HEIGHT - BOTTOM
    yield f'<text class="title" x="{x + LEFT}" y="{y + 15}">{escape(title)}</text>'
    yield f'<path class="axis" d="M{x + LEFT} {y + TOP}V{base}h{inner_width}"/>'
    for share in (0.5, 1):
        _, level = place(0, highest * share)
        yield (f'<text class="value" x="{x + LEFT - 4}" y="{level + 3:.1f}">'
               f'{highest * share:.3g}</text>')
    for index, tick in enumerate(ticks):
        column, _ = place(index, 0)
        yield f'<text class="tick" x="{column:.1f}" y="{base + 12}">{escape(str(tick))}</text>'
    places = [place(index, value) for index, value in enumerate(points)]
    line = "L".join(f"{column:.1f} {level:.1f}" for column, level in places)
    yield f'<path class="line" d="M{line}"/>'
    for column, level in places:
        yield f'<circle cx="{column:.1f}" cy="{level:.1f}" r="2.2"/>'


def charts(title, ticks, series):
    """The text of an SVG file. `series` maps names to values over `ticks`."""
    rows = -(-len(series) // COLUMNS)
    width, height = COLUMNS * WIDTH + 10, rows * HEIGHT + 40
    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
        f'role="img" aria-label="{escape(title)}">',
        "<style>text{font:11px sans-serif;fill:#555}.head{font-size:15px}.title{font-weight:600}"
        ".value{text-anchor:end;font-size:9px}.tick{text-anchor:middle;font-size:9px}"
        ".axis{fill:none;stroke:#999}.line{fill:none;stroke:#2a78c4;stroke-width:1.6}"
        "circle{fill:#2a78c4}</style>",
        f'<text class="head" x="10" y="22">{escape(title)}</text>',
    ]
    for index, (name, points) in enumerate(series.items()):
        highest = 1.15 * max(points) or 1
        parts += panel(name, points, ticks, highest, 5 + index % COLUMNS * WIDTH,
                       32 + index // COLUMNS * HEIGHT)
    return "\n".join([*parts, "</svg>", ""])
