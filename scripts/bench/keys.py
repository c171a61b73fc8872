"""What the tool adds to a key: from its bytes on the terminal to the last byte of the painted page, beyond the time that
the library takes for the page, which the phone's screen tells. Types on `wideseek phone` in a pseudo terminal.

    keys.py TOOL RESULT.json CONTACTS...    times in microseconds
"""
import fcntl
import json
import os
import pty
import re
import select
import statistics
import struct
import sys
import tempfile
import termios
import time
from pathlib import Path

FIRST_NAMES = ["Anna", "Ben", "Carla", "David", "Emma", "Felix", "Greta", "Hugo", "Ines", "Jonas", "Klara", "Leo"]
LAST_NAMES = ["Arden", "Barlow", "Corbin", "Dray", "Ellwood", "Farrow", "Gale", "Harrow", "Ivers", "Jessop", "Kerr"]
TYPED = ["5550", "26", "4327", "9012"]
ROUNDS = 3
REDRAW, ESCAPE, LEAVE = b"\x0c", b"\x1b", b"\x03"
QUIET = 0.25  # seconds without a byte, after which nothing more is painted for a key
PATIENCE = 60


def write_phone(root, contacts):
    for folder in "data", "contacts":
        (root / "config" / folder).mkdir(parents=True)
    (root / "config/data/wideseek.xml").write_text(
        '<root_wideseek><item id_name="local_directory_search" enable="1" priority="1"/></root_wideseek>')
    with open(root / "config/contacts/local_directory.csv", "w") as file:
        file.write("name,number1,number2,number3,extra\n")
        for i in range(contacts):
            first, last = FIRST_NAMES[i % len(FIRST_NAMES)], LAST_NAMES[i % len(LAST_NAMES)]
            file.write(f"{first} {last} {i},555{i:07},,,desk\n")


class Phone:
    def __init__(self, tool, root):
        self.pid, self.terminal = pty.fork()
        if self.pid == 0:
            os.execve(tool, [tool, "phone"],
                      {**os.environ, "WIDESEEK_ROOT": str(root), "TERM": "xterm", "LC_ALL": "C.UTF-8"})
        fcntl.ioctl(self.terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 80, 0, 0))

    def press(self, keys):
        """Gives what is painted for the keys, and when the last of it came after them."""
        painted, last = b"", 0
        begin = time.perf_counter()
        os.write(self.terminal, keys)
        while select.select([self.terminal], [], [], QUIET)[0]:
            painted += os.read(self.terminal, 1 << 16)
            last = time.perf_counter() - begin
        return re.sub(rb"\x1b[\[(][0-9;?]*[A-Za-z]|\x1b[=>]", b" ", painted).decode(errors="replace"), last * 1e6

    def page_time(self):
        """What the screen tells of the library's time; None while it waits for a page."""
        told = re.search(r"page in +([\d.]+) ms", self.press(REDRAW)[0])
        return told and float(told[1]) * 1e3

    def start(self):
        end = time.monotonic() + PATIENCE
        while "Search" not in self.press(REDRAW)[0]:
            if time.monotonic() > end:
                raise SystemExit("keys.py: the phone's screen has not come; run the tool by hand to see why")
        self.press(b"5")  # reads the contacts
        while self.page_time() is None:
            pass
        self.press(ESCAPE)

    def leave(self):
        os.write(self.terminal, LEAVE)
        try:
            while os.read(self.terminal, 1 << 16):
                pass
        except OSError:
            pass  # it has left
        os.waitpid(self.pid, 0)


def measure(tool, contacts):
    with tempfile.TemporaryDirectory() as folder:
        write_phone(Path(folder), contacts)
        phone = Phone(tool, folder)
        phone.start()
        beyond = []
        for word in TYPED * ROUNDS:
            for key in word:
                painted = phone.press(key.encode())[1]
                library = phone.page_time()
                if library is not None:
                    beyond.append(painted - library)
            phone.press(ESCAPE)
        phone.leave()
    beyond.sort()
    return {"contacts": contacts, "keys": len(beyond), "median": statistics.median(beyond),
            "percentile99": beyond[(len(beyond) - 1) * 99 // 100], "worst": beyond[-1]}


def main():
    tool, result, *sizes = sys.argv[1:]
    measured = [measure(os.path.abspath(tool), int(contacts)) for contacts in sizes]
    Path(result).write_text(json.dumps(measured, indent=2) + "\n")


main()
