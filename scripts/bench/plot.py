"""The plot of what keys cost against how many rows there are, as an SVG file of its own making."""
import math

LINES = {"wideseek": ("the library", "#0b62a4", ""), "wideseek, all work": ("the library, all work", "#0b62a4", "5 4"),
         "floor": ("floor", "#3c8031", ""), "plain": ("plain search", "#c05a00", ""),
         "fts5": ("SQLite FTS5", "#8a3b8f", "")}
PANELS = [("median key", lambda group: group["median"]), ("mean key", lambda group: group["total"] / group["keys"])]
WIDTH, HEIGHT, LEFT, TOP, PANEL_WIDTH, PANEL_HEIGHT, GAP = 940, 470, 80, 50, 370, 330, 90


def decades(values):
    return math.floor(math.log10(min(values))), math.ceil(math.log10(max(values)))


def label(microseconds):
    for unit, factor in ("s", 1e6), ("ms", 1e3):
        if microseconds >= factor:
            return f"{microseconds / factor:g} {unit}"
    return f"{microseconds:g} µs"


def text(x, y, words, anchor="middle", style=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}"{style}>{words}</text>'


def line(x1, y1, x2, y2):
    return f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" stroke="#ddd"/>'


def panel(left, title, value, sizes, searches):
    series = {name: [(size["rows"], value(size[name]["all"])) for size in sizes] for name in searches}
    low_x, high_x = decades([rows for points in series.values() for rows, _ in points])
    low_y, high_y = decades([time for points in series.values() for _, time in points])

    def x(rows):
        return left + (math.log10(rows) - low_x) / (high_x - low_x) * PANEL_WIDTH

    def y(time):
        return TOP + (high_y - math.log10(time)) / (high_y - low_y) * PANEL_HEIGHT

    bottom = TOP + PANEL_HEIGHT
    parts = [text(left + PANEL_WIDTH / 2, TOP - 18, title, style=' font-weight="bold"')]
    for exponent in range(low_x, high_x + 1):
        at = x(10**exponent)
        parts += [line(at, TOP, at, bottom), text(at, bottom + 20, f"{10**exponent:,}")]
    for exponent in range(low_y, high_y + 1):
        at = y(10**exponent)
        parts += [line(left, at, left + PANEL_WIDTH, at), text(left - 8, at + 4, label(10**exponent), "end")]
    parts.append(text(left + PANEL_WIDTH / 2, bottom + 38, "rows"))
    for name, points in series.items():
        _, colour, dashes = LINES[name]
        path = " ".join(f"{x(rows):.1f},{y(time):.1f}" for rows, time in points)
        parts.append(f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="2" '
                     f'stroke-dasharray="{dashes or "none"}"/>')
        parts += [f'<circle cx="{x(rows):.1f}" cy="{y(time):.1f}" r="3.5" fill="{colour}"/>' for rows, time in points]
    return parts


def legend(searches):
    parts, at = [], LEFT
    for name in searches:
        words, colour, dashes = LINES[name]
        parts.append(f'<line x1="{at}" y1="{HEIGHT - 22}" x2="{at + 26}" y2="{HEIGHT - 22}" stroke="{colour}" '
                     f'stroke-width="2" stroke-dasharray="{dashes or "none"}"/>')
        parts.append(text(at + 32, HEIGHT - 18, words, "start"))
        at += 60 + 8 * len(words)
    return parts


def draw(data):
    sizes = [size for size in data["sizes"] if "rows" in size]
    searches = [name for name in LINES if all(name in size for size in sizes)]
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" font-family="sans-serif" '
             'font-size="13" fill="#222">', f'<rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>']
    for index, (title, value) in enumerate(PANELS):
        parts += panel(LEFT + index * (PANEL_WIDTH + GAP), title, value, sizes, searches)
    return "\n".join([*parts, *legend(searches), "</svg>", ""])
