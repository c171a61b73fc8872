"""What the checks in Python share: a phone's folder of their own, the tool, and the report at the end."""
import atexit, os, subprocess, sys, tempfile, unicodedata
from pathlib import Path

TOOL = os.environ.get("WIDESEEK_TOOL")
folder = tempfile.TemporaryDirectory()
atexit.register(folder.cleanup)
ROOT = Path(folder.name)
problems = []


def expect(holds, what):
    if not holds:
        problems.append(what)


def finish(*more):
    """Ends the check, which fails when something was not as expected."""
    sys.exit("\n".join([*problems, *more]) or 0)


def write(file, content):
    path = ROOT / "config" / file
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content if isinstance(content, bytes) else content.encode())


def list_sources(*items):
    """Writes the source list; a source that stands there by its id alone takes part."""
    elements = (item if item.startswith("<") else f'<item id_name="{item}" enable="1" priority="{i}"/>'
                for i, item in enumerate(items, 1))
    write("data/wideseek.xml", f"<root_wideseek>{''.join(elements)}</root_wideseek>")


def run(*arguments, **options):
    return subprocess.run([TOOL, *map(str, arguments)], **{"capture_output": True, "timeout": 60, **options})


def column_of(line, text, start=0):
    """Where text stands on a terminal: wide characters take two columns."""
    return sum(1 + (unicodedata.east_asian_width(c) in "WF") for c in line[:line.index(text, start)])
