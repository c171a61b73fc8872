#!/usr/bin/env -S python3 -B
"""Uses `wideseek pages` as another program does: request by request, all at once, wrongly, and leaving it alone."""
import json, signal, subprocess, time
from concurrent.futures import ThreadPoolExecutor
from itertools import product

from checking import ROOT, TOOL, expect, finish, list_sources, run, write

LDAP_DELAY = 600
FIELDS = ["id", "request", "key", "from", "count", "total", "late", "ms", "rows"]


class Pages:
    """The tool, with requests and replies one by one. The end of the with block is the end of its input."""

    def __init__(self, *arguments, **options):
        self.process = subprocess.Popen([TOOL, "pages", "--root", ROOT, *arguments], stdin=subprocess.PIPE,
                                        **{"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **options})

    def __enter__(self):
        return self

    def __exit__(self, *_):
        start = time.monotonic()
        if not self.process.stdout.closed and self.process.poll() is None:
            self.rest, self.err = self.process.communicate(timeout=60)
        self.code, self.seconds = self.process.returncode, time.monotonic() - start
        for end in self.process.stdin, self.process.stdout, self.process.stderr:
            end.close()

    def send(self, data):
        self.process.stdin.write(data if isinstance(data, bytes) else json.dumps(data).encode() + b"\n")
        self.process.stdin.flush()

    def next(self):
        return json.loads(self.process.stdout.readline())


def serve(data, *arguments):
    """All of data at once: exit code and replies."""
    done = run("pages", "--root", ROOT, *arguments, input=data)
    return done.returncode, [json.loads(line) for line in done.stdout.splitlines()]


def names(page):
    return [row["name"] for row in page["rows"]]


list_sources("local_directory_search", "ldap_search", "remote_directory_search")
write("data/phone.ini", f"[features]\nFeaturesRecentCallEnable=1\n[ldap]\nmode=embedded\ndelay_ms={LDAP_DELAY}\n")
write("contacts/local_directory.csv", "name,number\nJed,5301\nZoë,53020\n")
write("contacts/ldap_directory.csv", "name,number\nLea,5309\n")
write("contacts/call_log.csv", "time,direction,name,number\n2026-01-02T10:00:00,out,Kim,770\n")

# Pages as `type` has them, behind the caller's id, first and late ones; a missing file is told of on the other output.
with Pages() as pages:
    pages.send({"id": {"any": [1, "ë", None]}, "key": "+53", "from": 1, "count": 5})
    first, late = pages.next(), pages.next()
    expect(list(first) == list(late) == FIELDS, f"fields: {first}")
    expect(list(first.values())[:7] == [{"any": [1, "ë", None]}, 1, "+53", 1, 5, 2, False], f"first page: {first}")
    expect(list(late.values())[:7] == [first["id"], 1, "53", 1, 5, 3, True], f"late page: {late}")
    expect((names(first), names(late)) == (["Zoë"], ["Zoë", "Lea"]), f"rows: {first}, {late}")
    typed = run("type", "--root", ROOT, "--json", "--from", 1, "--count", 5, "+53").stdout.splitlines()
    typed = [{"id": first["id"], **json.loads(line)} for line in typed]
    expect([{**page, "ms": 0} for page in typed] == [{**page, "ms": 0} for page in (first, late)], f"not as type: {typed}")
    # A newer request ends what LDAP has to say about the older one, also when it comes in pieces and asks the same.
    pages.send({"key": "5"})
    begun = pages.next()
    pages.send(b'{"key": "5", "id')
    time.sleep(0.05)
    pages.send(b'": 3}\r\n')
    after = [pages.next(), pages.next()]
    expect([(page["id"], page["request"], page["late"]) for page in (begun, *after)] ==
           [(None, 2, False), (3, 3, False), (3, 3, True)], f"a newer request: {begun}, {after}")
    pages.send({"id": 4, "key": "", "count": 1})
    expect(names(recent := pages.next()) == ["Kim"], f"the empty key: {recent}")
    pages.send(b'{"id": "last", "key": "53"}')
expect(pages.code == 0 and [json.loads(line)["late"] for line in pages.rest.splitlines()] == [False, True],
       f"what is outstanding is waited for: {pages.rest}")
told = pages.err.decode()
expect(told.count("wideseek: ") == told.count("remote_directory.csv") == 1, f"the missing file: {told}")

# A reader who goes away and a signal end it wherever it is: idle, waiting for LDAP, or writing what nobody reads.
good = b'{"id": "good", "key": "2"}\n'
slow = ["--ldap-delay", "60000"]


def check_end(case):
    (state, requests, replies), (sign, code) = case
    with Pages(*slow) as pages:
        pages.send(requests)
        for _ in range(replies):
            pages.next()
        time.sleep(0.1)
        if sign:
            pages.process.send_signal(sign)
        else:
            pages.process.stdout.close()
        try:
            pages.process.wait(20)
        except subprocess.TimeoutExpired:
            pages.process.kill()
        err = pages.process.stderr.read()
    expect(pages.code == code and err.count(b"\n") <= 2, f"{state}, {sign}: ended with {pages.code}: {err}")


states = ("idle", b'{"key": ""}\n', 1), ("waiting", good, 1), ("writing", good * 2000, 1)
ends = ThreadPoolExecutor(9)  # beside what follows, as some take three seconds
ended = ends.map(check_end, product(states, ((None, 0), (signal.SIGINT, 130), (signal.SIGTERM, 143))))

# Bad input is answered with its id where there is one, and the next line is served.
for line, id, words in [
    (b"", None, "not JSON from byte 1 on"), (b"\x00\xff\xfe", None, "not JSON"), (b'["key"]', None, "not an object"),
    (b'{"key": "5", "id": 1', None, "not JSON"), (b'{"key": "\\ud800"}', None, "not JSON"),
    (b'{"id": 1}', 1, '"key" is missing'), (b'{"id": 1, "key": 53}', 1, '"key" must be a string'),
    (b'{"id": 1, "key": "5", "From": 0}', 1, '"From" is not known'),
    (b'{"key": "5", "id": [1], "from": -1}', [1], '"from" must'),
    (b'{"id": 1, "key": "5", "count": 2147483648}', 1, '"count" must'),
    (b'{"id": 1, "key": "5", "count": 1.0}', 1, '"count" must'),
    (b'{"id": 1, "key": "5", "count": null}', 1, '"count" must'),
    (b'{"id": 1, "key": "5", "from": 1e999}', None, "too large"), (b'{"id": 1, "key": "M\xfcller"}', 1, "not UTF-8"),
    (b'{"id":' + b"[" * 30000 + b"]" * 30000 + b', "key": "5"}', None, "nested too deeply"),
    (b'{"id": 1, "key": "' + b"5" * 300000 + b'"}', None, "longer than 65536 bytes")]:
    code, replies = serve(line + b"\n" + good, "--abandon")
    expect(code == 1 and [list(reply.values())[:2] for reply in replies] == [[id, 1], ["good", 2]] and
           list(replies[0]) == ["id", "request", "error"] and words in replies[0]["error"], f"{line[:60]}: {code} {replies}")

# However many come at once: each is answered, only the newest has its pages for certain.
code, replies = serve(b"".join(b'{"id": %d, "key": "%d"}\n' % (i, 5 + 48 * (i % 2)) for i in range(30000)))
expect(code == 0 and {reply["id"] for reply in replies} == set(range(30000)), f"{code}, {len(replies)} replies")
overtaken = [reply["id"] for reply in replies if reply.get("abandoned") is True]
expect(len(overtaken) == len(set(overtaken)) == 30000 - len({reply["id"] for reply in replies if "rows" in reply}),
       "a request was abandoned and has a page")
newest = [(reply["id"], reply["late"]) for reply in replies[-2:]]
expect(newest == [(29999, False), (29999, True)], f"the newest: {newest}")

# The end of input, with a search that takes long; a time limit ends what never answers.
code, replies = serve(good, "--abandon", *slow)
expect(code == 0 and replies == [{"id": "good", "request": 1, "abandoned": True}], f"abandoned at the end: {code} {replies}")
with Pages("--abandon", *slow) as pages:
    pages.send(good)
    pages.next()
expect(pages.code == 0 and pages.rest == b"" and pages.seconds < 3, f"the end is held up: {pages.code}, {pages.seconds} s")

with open("/dev/full", "w") as full:
    lost = run("pages", "--root", ROOT, input=good, capture_output=False, stdout=full, stderr=subprocess.PIPE)
    expect(lost.returncode == 1 and b"could not be written: No space" in lost.stderr, f"a full disk: {lost}")

list(ended)

# While it runs, another source list is read; one of its sources never answers, so there is no page, which is told.
with Pages() as pages:
    pages.send({"id": 1, "key": "5301"})
    before = [pages.next()["total"] for _ in range(2)]
    list_sources("remote_directory_search", "nobody_search")
    for _ in range(200):  # the file is looked at twice a second
        time.sleep(0.05)
        pages.send({"id": 2, "key": "5301"})
        after = pages.next()
        if "error" in after:
            break
expect(before == [1, 1] and after["id"] == 2 and "no page" in after.get("error", ""), f"changed source list: {before}, {after}")
expect(pages.code == 1 and b'warning: the phone has no source "nobody_search"' in pages.err, f"its mistake: {pages.err}")
list_sources("remote_directory_search")
alone = run("pages", "--root", ROOT, input=good)
expect(alone.returncode == 1 and b"every source that was asked failed" in alone.stderr, f"all sources failed: {alone}")
for arguments, code, words in (["--colour"], 2, "--help"), (["5"], 2, "--help"), (["--root", "/no"], 1, "no such"):
    refused = run("pages", *arguments, input=b"")
    expect(refused.returncode == code and words in refused.stderr.decode(), f"{arguments}: {refused}")
finish()
