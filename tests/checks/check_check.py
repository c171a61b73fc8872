#!/usr/bin/env -S python3 -B
"""Runs the checker on small source lists and phones: what it lists, what it warns of and where; and whether that is so."""
import http.server, json, os, threading
from itertools import zip_longest

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

# A whole phone: its settings, the file of each source, and its servers, of which one is there and one is not.
class Server(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        self.send_response(200)
        self.end_headers()
        self.wfile.write(b"BEGIN:VCARD\nVERSION:3.0\nFN:Ann\nTEL:2041\nEND:VCARD\n")

    def log_message(self, *_):
        pass


server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Server)
threading.Thread(target=server.serve_forever, daemon=True).start()
address = f"http://127.0.0.1:{server.server_port}/people.vcf"
os.environ["no_proxy"] = "127.0.0.1"
list_sources(KNOWN[0], KNOWN[1], KNOWN[2], KNOWN[3])
write("contacts/local_directory.csv", 'name,number\nAnn,2041\n"A; - B",12x\n')
write("contacts/presence_buddies.json", '[{"id": "x"}]')
write("data/phone.ini", f"""[features]
FeaturesRecentCalEnable=1
[remote_directory]
url={address}
[ldap]
mode=server
url=ldap://127.0.0.1:1
""")
FOUND = [("config/data/phone.ini", 2, "did you mean FeaturesRecentCallEnable?"),
         ("config/contacts/local_directory.csv", 3, "use digits"),
         ("config/contacts/presence_buddies.json", 0, "the entry is left out"),
         ("config/contacts/call_log.csv", 0, "put the file there")]
for options, servers, more in (([], ["failed 0", "answered 1"], [("ldap://127.0.0.1:1", 0, "check that the server runs")]),
                               (["--no-network"], ["unasked 0", "unasked 0"], [])):
    ended = run("check", "--root", ROOT, "--json", *options)
    report = json.loads(ended.stdout)
    outcomes = [f'{source["outcome"]} {source["entries"]}' for source in report["sources"]]
    expect(outcomes == ["answered 2", "absent 0", "absent 0", *servers, "answered 0"] and ended.returncode == 1,
           f"what was found out of each: {ended}")
    for (file, line, remedy), told in zip_longest(FOUND + more, report["findings"], fillvalue={}):
        expect(told and told["file"].endswith(file) and told["line"] == line and remedy in told["remedy"] and
               told["reason"], f"{file}: {told}")
text = run("check", "--root", ROOT, "--no-network").stdout.decode()
expect(f'{ROOT}/config/contacts/local_directory.csv:3: warning: "12x" is not a number that can be dialled; use' in text,
       text)
# The contacts of the server are there for the first key, and after the server has gone.
expect(b'"name":"Ann"' in run("type", "--root", ROOT, "--json", "2041").stdout, "the first fetch is not awaited")
server.shutdown()
server.server_close()
list_sources(KNOWN[2])
ended = run("type", "--root", ROOT, "--json", "2041", "--pause", "300", "20")
expect(b'"name":"Ann"' in ended.stdout and not ended.returncode, f"the last copy does not answer: {ended}")
expect(run("check", "--root", ROOT, FILE).returncode == 0, "of a list alone, more than the list is looked at")
write("data/phone.ini", "")
write("contacts/presence_buddies.json", "[]")
write("contacts/remote_directory.csv", "name,number\nAnn,2041\n")
write("contacts/local_directory.csv", "name,number\nAnn,2041\n")
ended = run("check", "--root", ROOT)
expect(ended.returncode == 0 and b"remote directory     1 entry\n" in ended.stdout, f"nothing is wrong: {ended}")
for file in (ROOT / "config").glob("*/*"):
    file.unlink()

# The phone bears the checker out: every id that it knows is asked, and an unknown or repeated one holds the page back.
for ids, asked, pages in ((KNOWN, 7, 1), ((*KNOWN[:3], "foo"), 3, 0), ((KNOWN[0], KNOWN[0]), 2, 0),
                          (("foo", KNOWN[3]), 1, 1)):
    list_sources(*ids)
    typed = run("type", "--root", ROOT, "--trace", "--json", "zz").stdout
    lines = [json.loads(line) for line in typed.splitlines()]
    expect(len(lines[-1]["trace"]["sources"]) == asked and len(lines) - 1 == pages, f"{ids}: {lines}")

finish()
