"""Draws the growth curves of the benchmarks."""

import html
import math
import statistics

from rows import items

COLUMNS, WIDTH, HEIGHT, MARGIN = 3, 330, 200, 50
SIDES = (("floor", "#9a9a9a", "4 3"), ("library", "#1f5fa8", ""))


def curve(row, side, rounds):
    """Returns points of n and the median time of one item in nanoseconds."""
    ns = sorted(n for key, found, n in rounds[0] if (key, found) == (row.key, side))
    return [(n, statistics.median(results[row.key, side, n]["ns"] for results in rounds) / items(row, n))
            for n in ns]


def panel(row, rounds, left, top):
    curves = {side: curve(row, side, rounds) for side, _, _ in SIDES}
    points = [point for side in curves.values() for point in side]
    lowest, highest = min(n for n, _ in points), max(n for n, _ in points)
    most = 1.15 * max(time for _, time in points)
    right, bottom = left + WIDTH - MARGIN, top + HEIGHT - 50

    def place(n, time):
        share = math.log(n / lowest) / math.log(highest / lowest)
        return f"{left + share * (right - left):.1f},{bottom - time / most * (bottom - top):.1f}"

    unit, size = next((unit, size) for unit, size in (("ms", 1e6), ("us", 1e3), ("ns", 1)) if most >= size or size == 1)
    yield f'<text x="{left}" y="{top - 10}" font-weight="bold">{html.escape(row.title)}</text>'
    yield f'<path d="M{left},{top} V{bottom} H{right}" fill="none" stroke="#444"/>'
    yield f'<text x="{left - 4}" y="{top + 8}" text-anchor="end">{most / size:.3g}</text>'
    yield f'<text x="{left - 4}" y="{top + 22}" text-anchor="end">{unit}</text>'
    yield f'<text x="{left - 4}" y="{bottom}" text-anchor="end">0</text>'
    yield f'<text x="{left}" y="{bottom + 14}">{lowest:,}</text>'
    plural = "" if row.items or not row.per else row.per if row.per.endswith("B") else row.per + "s"
    yield f'<text x="{right}" y="{bottom + 14}" text-anchor="end">{highest:,} {plural}</text>'
    for side, colour, dashes in SIDES:
        line = " ".join(place(n, time) for n, time in curves[side])
        yield f'<polyline points="{line}" fill="none" stroke="{colour}" stroke-width="2" stroke-dasharray="{dashes}"/>'


def picture(rows, rounds):
    rows = [row for row in rows if row.floor and len({n for key, _, n in rounds[0] if key == row.key}) > 1]
    height = math.ceil(len(rows) / COLUMNS) * HEIGHT + 40
    lines = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{COLUMNS * WIDTH + MARGIN}" height="{height}" '
             'font-family="sans-serif" font-size="11">', '<rect width="100%" height="100%" fill="#fff"/>',
             f'<text x="{MARGIN}" y="18">Time of one item over n, on a logarithmic axis: the library (solid blue) '
             'beside its floor (dashed grey)</text>']
    for place, row in enumerate(rows):
        lines += panel(row, rounds, MARGIN + place % COLUMNS * WIDTH, 52 + place // COLUMNS * HEIGHT)
    return "\n".join([*lines, "</svg>", ""])
