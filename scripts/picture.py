#!/usr/bin/env python3
"""Draws the phone's search screen as it is, docs/phone-screen.svg: runs the phone on the sample in a terminal, types a key,
and draws what the terminal then shows, cell by cell.

  scripts/picture.py           draws it
  scripts/picture.py --check   fails when it would be drawn differently

Nothing here knows what stands where on the screen. Drawn again, the picture is the same: what a time was is not shown, but
its order of magnitude ("0.7 ms" as "<10 ms"). Needs tmux."""
import os, re, subprocess, sys, tempfile, time, unicodedata
from itertools import groupby
from pathlib import Path
from typing import NamedTuple, Optional
from xml.sax.saxutils import escape

ROOT = Path(__file__).resolve().parent.parent
PICTURE = ROOT / "docs/phone-screen.svg"
TITLE = "The phone's search screen: the keypad's 533 has been typed, and finds Jed, Lee, Kees and Jędrzejczyk"
KEYS = "533"
COLUMNS, LINES = 84, 22
QUIET = 1.5  # seconds without a change; LDAP answers sooner
PATIENCE = 30

CELL, LINE, FONT = 8.4, 18, 14  # pixels
FRAME, BAR = 14, 30  # around the cells, and above them
INK, PAPER, EDGE = "#d8dee9", "#1d2129", "#5b6478"
COLOURS = ["#4c566a", "#f07178", "#a3d977", "#ecc565", "#82aaff", "#e39cf5", "#6fd3dd", "#e5e9f0"]


class Style(NamedTuple):
    """What the terminal was told for a cell (ECMA-48, SGR)."""
    bold: bool = False
    dim: bool = False
    underline: bool = False
    reverse: bool = False
    colour: Optional[int] = None
    ground: Optional[int] = None

    def told(self, code):
        if code == 0:
            return Style()
        if 30 <= code % 60 <= 39:  # 90 to 97 are the bright ones
            return self._replace(colour=code % 10 if code % 10 < 8 else None)
        if 40 <= code % 60 <= 49:
            return self._replace(ground=code % 10 if code % 10 < 8 else None)
        changes = {1: {"bold": True}, 2: {"dim": True}, 4: {"underline": True}, 7: {"reverse": True},
                   22: {"bold": False, "dim": False}, 24: {"underline": False}, 27: {"reverse": False}}
        if code not in changes:
            sys.exit(f"picture: the screen uses a style that is not drawn here: {code}")
        return self._replace(**changes[code])


def tmux(socket, *arguments):
    environment = {name: value for name, value in os.environ.items() if name not in ("NO_COLOR", "TMUX")}
    return subprocess.run(["tmux", "-u", "-f", "/dev/null", "-S", socket, *arguments], check=True, capture_output=True,
                          text=True, env={**environment, "LC_ALL": "C.UTF-8"}).stdout


def when_quiet(socket):
    """What the terminal shows once that stays as it is, and where its cursor is."""
    shown, since = "", time.monotonic()
    end = since + PATIENCE
    while not shown.strip() or time.monotonic() < since + QUIET:
        if time.monotonic() > end:
            sys.exit(f"picture: the screen is not at rest after {PATIENCE} seconds; it shows\n{shown}")
        time.sleep(0.1)
        now = tmux(socket, "capture-pane", "-p", "-e", "-N")
        if now != shown:
            shown, since = now, time.monotonic()
    x, y = tmux(socket, "display", "-p", "#{cursor_x} #{cursor_y}").split()
    return shown, (int(x), int(y))


def photograph():
    subprocess.run([ROOT / "run.sh", "--version"], check=True, stdout=subprocess.DEVNULL)  # builds
    with tempfile.TemporaryDirectory() as folder:
        socket = folder + "/socket"
        try:
            tmux(socket, "new-session", "-d", "-x", str(COLUMNS), "-y", str(LINES), str(ROOT / "run.sh"), "phone", "--root",
                 str(ROOT / "sample"))
            when_quiet(socket)
            for key in KEYS:
                tmux(socket, "send-keys", "-l", key)
                photo = when_quiet(socket)
            return photo
        finally:
            subprocess.run(["tmux", "-S", socket, "kill-server"], capture_output=True)


def cells_of(shown):
    """Lines of cells, each a character with the marks upon it, its style and its width. Styles go on to the next line."""
    style, lines = Style(), [[]]
    for code, character in re.findall(r"\x1b\[([\d;]*)m|(.)", shown.rstrip("\n"), re.S):
        if character == "\n":
            lines.append([])
        elif character and unicodedata.combining(character):
            lines[-1][-1] = (lines[-1][-1][0] + character, *lines[-1][-1][1:])
        elif character:
            lines[-1].append((character, style, 1 + (unicodedata.east_asian_width(character) in "WF")))
        else:
            for each in code.split(";"):
                style = style.told(int(each or 0))
    return lines


def plain(cells):
    """A character for each cell."""
    return "".join(cell[0][0] for cell in cells)


def without_times(line):
    """The line with magnitudes for times; what stands behind two blanks stays where it is."""
    for match in reversed(list(re.finditer(r"\d+(\.\d+)? ms", plain(line)))):
        limit = next(10 ** n for n in range(1, 9) if float(match[0].split()[0]) < 10 ** n)
        start, end = match.span()
        style = line[start][1]
        rest = plain(line[end:])
        gap = end + (rest.index("  ") if "  " in rest else len(rest))
        text = f"<{limit} ms"
        more = end - start - len(text)
        blanks = [(" ", line[gap - 1][1], 1)] * max(more, 0)
        line = [*line[:start], *((c, style, 1) for c in text), *line[end:gap], *blanks, *line[gap + max(-more, 0):]]
    return line


def inks(style):
    ink = INK if style.colour is None else COLOURS[style.colour]
    ground = None if style.ground is None else COLOURS[style.ground]
    return (ground or PAPER, ink) if style.reverse else (ink, ground)


def drawn(line, number):
    """The line's grounds and texts, a run of cells in one style at a time. The text is set to the width of its cells."""
    column, top = 0, BAR + number * LINE
    grounds, texts = [], []
    for style, cells in groupby(line, key=lambda cell: cell[1]):
        cells = list(cells)
        width = sum(cell[2] for cell in cells)
        ink, ground = inks(style)
        if ground:
            grounds.append(f'<rect x="{FRAME + column * CELL:.1f}" y="{top}" width="{width * CELL:.1f}" height="{LINE}" '
                           f'fill="{ground}"/>')
        # Blanks are drawn where they are underlined only, and none at the ends: who draws may drop them there.
        for part in re.finditer(".+" if style.underline else r"\S+( \S+)*", plain(cells)):
            before = sum(cell[2] for cell in cells[:part.start()])
            text = "".join(cell[0] for cell in cells[part.start():part.end()])
            size = sum(cell[2] for cell in cells[part.start():part.end()])
            marks = "".join(f' {name}="{value}"' for name, value, wanted in (
                ("fill", ink, ink != INK), ("font-weight", "bold", style.bold), ("opacity", "0.6", style.dim),
                ("text-decoration", "underline", style.underline)) if wanted)
            texts.append(f'<text x="{FRAME + (column + before) * CELL:.1f}" y="{top + 13}" textLength="{size * CELL:.1f}"'
                         f'{marks}>{escape(text)}</text>')
        column += width
    return grounds + texts


def picture(shown, cursor):
    width, height = 2 * FRAME + COLUMNS * CELL, BAR + LINES * LINE + FRAME
    svg = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width:.1f} {height}" width="{width:.1f}" '
           f'height="{height}" role="img">', f"<title>{escape(TITLE)}</title>",
           f'<rect x="0.5" y="0.5" width="{width - 1:.1f}" height="{height - 1}" rx="8" fill="{PAPER}" stroke="{EDGE}"/>']
    svg += [f'<circle cx="{FRAME + 6 + 18 * i}" cy="{BAR // 2}" r="5" fill="{EDGE}"/>' for i in range(3)]
    svg.append(f'<rect x="{FRAME + cursor[0] * CELL:.1f}" y="{BAR + cursor[1] * LINE + 2}" width="2" height="{LINE - 4}" '
               f'fill="{INK}"/>')
    svg.append(f'<g fill="{INK}" font-size="{FONT}" xml:space="preserve" '
               'font-family="ui-monospace, \'DejaVu Sans Mono\', Menlo, Consolas, \'Liberation Mono\', monospace">')
    for number, line in enumerate(cells_of(shown)):
        svg += drawn(without_times(line), number)
    return "\n".join([*svg, "</g>", "</svg>", ""])


if sys.argv[1:] not in ([], ["--check"]):
    sys.exit(__doc__)
if sys.argv[1:]:
    # A machine that is busy may show times of another magnitude.
    drawings = (picture(*photograph()) for _ in range(3))
    if not PICTURE.exists() or PICTURE.read_text() not in drawings:
        sys.exit(f"picture: {PICTURE.relative_to(ROOT)} is not how the screen looks; draw it with scripts/picture.py")
else:
    PICTURE.write_text(picture(*photograph()))
