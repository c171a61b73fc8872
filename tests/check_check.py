#!/usr/bin/env -S python3 -B
"""Runs the source list checker on small files: what it lists, what it warns of and where; and whether that is so."""
import json

from checking import ROOT, expect, finish, list_sources, run, write

KNOWN = ("local_directory_search", "calllog_search", "remote_directory_search", "ldap_search",
         "BroadSoft_directory_search", "Network_directory_search", "BroadSoft_UC_search")
FILE = ROOT / "config/data/wideseek.xml"


def item(id, priority="1", enable="1", label="L", name="item"):
    return f'<{name} id_name="{id}" display_name="{label}" enable="{enable}" priority="{priority}"/>'


def write_items(*lines, encoding="utf-8"):
    write("data/wideseek.xml", "\n".join(["<root_wideseek>", *lines, "</root_wideseek>"]).encode(encoding))


LOCAL, CALLS, REMOTE, LDAP = item(KNOWN[0]), item(KNOWN[1]), item(KNOWN[2], "300"), item(KNOWN[3], "4")
OFF = item(KNOWN[2], enable="0")
# lines of the file from line 2 on; asked, as indexes of KNOWN or as ids; "line code" of each warning, then of each note
TABLE = [
    ([LOCAL, CALLS, LDAP], [0, 1, 3], [], []),
    ([item(KNOWN[1], "2"), item(KNOWN[0], "-1"), item(KNOWN[3], "0x1")], [0, 3, 1], [], []),
    ([LOCAL, REMOTE], [0, 2], [], []),
    ([LOCAL, REMOTE, item(KNOWN[1], enable="0")], [0], ["3 never-asked"], []),
    ([LOCAL, item(KNOWN[1], "255"), OFF, item(KNOWN[3], "255")], [0, 1], ["5 never-asked"], []),
    ([LOCAL, item("foo")], [0, "foo"], ["3 unknown-id"], []),
    ([LOCAL, item("foo", enable="0")], [0], ["3 unknown-id"], []),
    ([item(KNOWN[0], "2"), LOCAL, item(KNOWN[0], enable="0")], [0, 0], ["2 repeated-id"], []),
    ([LOCAL, item("")], [0, ""], ["3 empty-id"], []),
    ([LOCAL, item(KNOWN[1], enable="yes"), item(KNOWN[3], "first"), item(KNOWN[2], "9999999999")], [3, 0],
     ["3 not-a-number", "4 not-a-number", "5 not-a-number", "5 never-asked"], []),
    ([item(KNOWN[1], name="source"), LOCAL, "<group>", CALLS, "</group>", item(KNOWN[3], name="sauce")], [0, 3],
     ["2 skipped-element", "4 misnamed-item", "5 skipped-element", "7 misnamed-item"], []),
    ([LOCAL, "<!-- no item -->", "", " text", REMOTE], [0], ["5 stray-text", "6 never-asked"], []),
    ([f'<item id_name="{KNOWN[0]}" enable="1" prio="2"/>', f'<item id_name="{KNOWN[1]}" display_name="C"/>'], [0],
     ["3 missing-enable"], ["2 missing-priority", "2 missing-label", "2 unread-attribute"]),
    ([OFF], [], ["1 nothing-asked"], []),
    ([item(KNOWN[5], "2"), item(KNOWN[4], "3")], [5, 4], [], ["3 same-directory"]),
]
for encoding in "utf-8-sig", "utf-16":
    for lines, asked, warnings, notes in TABLE:
        write_items(*lines, encoding=encoding)
        ended = run("check", FILE, "--json")
        report = json.loads(ended.stdout)
        told = [[f"{finding['line']} {finding['code']}" for finding in report[kind]] for kind in ("warnings", "notes")]
        expect([source["id"] for source in report["asked"]] == [KNOWN[i] if isinstance(i, int) else i for i in asked]
               and told == [warnings, notes] and ended.returncode == bool(warnings), f"{encoding} {lines}: {report}")

write_items(item(KNOWN[0], "2", label="Zoë"), item("Calllog_Search"))
text = run("check", "--root", ROOT).stdout.decode()
expect(text.splitlines()[1:3] == ["  1  L    Calllog_Search          line 3",
                                         "  2  Zoë  local_directory_search  line 2"] and
       f"{FILE}:3: warning: " in text and 'mean "calllog_search"?' in text, text)

# What the phone reads nothing from: the place, and the exit code.
for content, place in (("<root_wideseek>\n <item x=1/></root_wideseek>", ":2:10"), ("", ":1:1"),
                       ("<a><item/></a>", ":1:2"), ("<root_wideseek><itm/></root_wideseek>", ":1:2"), (None, "")):
    FILE.unlink() if content is None else FILE.write_text(content)
    ended = run("check", FILE)
    expect(ended.returncode == 2 and ended.stderr.decode().startswith(f"{FILE}{place}: error: "), f"{content}: {ended}")
    expect(json.loads(run("check", FILE, "--json").stdout)["error"]["message"], f"{content}: no error in JSON")

# However long a value is, what is said of it fits on some lines.
write_items(item("x" * 100_000, enable="y" * 100_000, priority="z" * 100_000), LOCAL)
long = json.loads(run("check", FILE, "--json").stdout)["warnings"]
expect(len(long) == 3 and all(len(warning["message"]) < 300 for warning in long), f"{[len(w['message']) for w in long]}")

# Fifty thousand items, side by side or one in the other, take no longer in proportion. None is a file that never ends.
for many in ("<item/>" * 50_000, "<item>" * 50_000 + "</item>" * 50_000):
    FILE.write_text(f"<root_wideseek>{many}</root_wideseek>")
    expect(run("check", FILE, timeout=10).returncode == 1, "fifty thousand items")
expect(b"is not a file" in run("check", "/dev/zero").stderr, "a device is read")

# The phone bears the checker out: every id that it knows is asked, and an unknown or repeated one holds the page back.
for ids, asked, pages in ((KNOWN, 7, 1), ((*KNOWN[:3], "foo"), 3, 0), ((KNOWN[0], KNOWN[0]), 2, 0),
                          (("foo", KNOWN[3]), 1, 1)):
    list_sources(*ids)
    typed = run("type", "--root", ROOT, "--trace", "--json", "zz").stdout
    lines = [json.loads(line) for line in typed.splitlines()]
    expect(len(lines[-1]["trace"]["sources"]) == asked and len(lines) - 1 == pages, f"{ids}: {lines}")

finish()
