#!/usr/bin/env -S python3 -B
"""Runs the tool as a person or a script does, on a small phone of its own: what it prints, says and ends with."""
import json, os, resource, shlex, signal, socket, subprocess, time, unicodedata

from checking import ROOT, TOOL, column_of, expect, finish, list_sources, run, write

LDAP_DELAY = 300


def type_keys(*arguments, root=ROOT, **options):
    return run("type", "--root", root, *arguments, **options)


def lines(*arguments):
    return [json.loads(line) for line in type_keys("--json", *arguments).stdout.splitlines()]


def names(page):
    return [row["name"] for row in page["rows"]]


list_sources("local_directory_search", "ldap_search", "calllog_search", "remote_directory_search")
write("data/phone.ini", f"[features]\nFeaturesRecentCallEnable=1\n[ldap]\nmode=embedded\ndelay_ms={LDAP_DELAY}\n")
write("contacts/local_directory.csv",
      "name,number1,number2,extra\nJed,5301,5302,Leeds\n渡辺 53,53039,,Kyoto\n".encode() +
      b'"open,53\nBel\x07l 53\x1b[31m\xc2\x9b5m,5304,,x\nB\xffd,5305,,\n')
write("contacts/ldap_directory.csv", "name,number\nJed,5301\nLea,5309\n")
write("contacts/call_log.csv", "time,direction,name,number,extra\n2026-01-02T10:00:00,out,,770,then\n"
      "2026-01-03T10:00:00,out,Kim,771,now\n2026-01-04T10:00:00,in,Ann,772,\n")

# A first page and a late one. LDAP was asked second and comes last, as it missed the first page; its Jed is known.
first, late = lines("--count", "20", "53")
expect(list(first) == ["request", "key", "from", "count", "total", "late", "ms", "rows"], f"other JSON fields: {first}")
expect(first["rows"][0] == {"name": "Jed", "number": "5301", "extra1": "", "extra2": "Leeds", "extra": -1},
       f"a row: {first}")
expect(list(first.values())[:6] == [1, "53", 0, 20, 5, False], f"the first page: {first}")
expect(list(late.values())[:6] == [1, "53", 0, 20, 6, True], f"the late page: {late}")
expect(names(late) == names(first) + ["Lea"], f"rows of the late page: {late}")
expect(95 <= first["ms"] < late["ms"] >= LDAP_DELAY, f"times: first page {first['ms']}, late page {late['ms']} ms")
expect(names(first)[3:] == ["Bel\x07l 53\x1b[31m\x9b5m", "B\ufffdd"], f"bytes that are no text: {names(first)}")
expect(b"31m\\u009b5m" in type_keys("--json", "53").stdout, "JSON commands the terminal that it is read on")

# Narrowing, a repeat, brackets, a pasted number; each page belongs to its request, only the last one has a late page.
pages = lines("5", "53", "53", "[5/3]", "+5 (30)-1")
expect([(p["request"], p["key"], p["late"], p["total"]) for p in pages] == [
    (1, "5", False, 6), (2, "53", False, 5), (3, "53", False, 5), (4, "[5/3]", False, 0), (5, "+5 (30)-1", False, 2),
    (5, "5301", True, 2)], f"several keys: {pages}")
expect([names(p) for p in lines("--from", "1", "--count", "2", "53")] == [["Jed", "渡辺 53"]] * 2, "not rows 1 and 2")
for start, count, rows in (0, 0, 6), (5, 9, 1), (2**31 - 1, 2**31 - 1, 0):
    last = lines("--from", str(start), "--count", str(count), "53")[-1]
    expect((len(last["rows"]), last["total"]) == (rows, 6), f"from {start}, count {count}: {last}")
recent, = lines("--count", "1", "")
expect((names(recent), recent["total"], recent["count"]) == (["Kim", "770"], 2, 10), f"empty key: {recent}")

# Text for a terminal: names the file's faults once, columns straight however wide a character is, no control character.
text = type_keys("--trace", "5", "53")
out, err = text.stdout.decode(), text.stderr.decode()
expect(text.returncode == 0 and err.count("local_directory.csv:4: ") == 1, f"not told once: {err}")
expect("remote directory: " in err and "remote_directory.csv" in err, f"the missing file is not named: {err}")
rows = [line for line in out.splitlines() if line.endswith(("Leeds", "Kyoto"))]
columns = {column_of(line, " 530", 3) for line in rows}
expect(len(columns) == 1 and len(rows) >= 4, f"columns are not straight: {rows}")
expect(not [c for c in out if c != "\n" and unicodedata.category(c) == "Cc"], "a control character is printed")
traces = [trace["trace"] for trace in lines("--trace", "5", "53", "53") if "trace" in trace]
asked = [[(s["source"], s["contacts"], s["numbers"]) for s in trace["sources"]] for trace in traces]
expect(asked[0][:1] == [("local directory", 4, 5)] and len(asked[0]) == 4, f"trace of a full search: {asked[0]}")
expect(asked[1:] == [[("LDAP", 2, 2)], []], f"trace of narrowing and repeat: {asked[1:]}")
by_name = {source["source"]: source for source in traces[0]["sources"]}
expect(by_name["LDAP"]["abandoned"] and not by_name["LDAP"]["answered"], "the first LDAP query goes on")
remote = by_name["remote directory"]
expect(remote["failed"] and "remote_directory.csv" in remote["problem"], f"a failure without its reason: {remote}")
out = type_keys("--trace", "5", "53", "53").stdout.decode()
for words in "given up for a newer key", "failed", "no source was asked", "6 rows in all":
    expect(words in out, f'the trace does not say "{words}":\n{out}')

*_, repeat = lines("--trace", "--pause", "800", "53", "53")
expect(repeat["trace"]["sources"] == [], f"a source list that has not changed is read again: {repeat}")

# What is refused or wrong: exit code, and a word on what to do.
for arguments, code, words in [
    (["--from", "-1", "53"], 1, "refused"), (["--count", "-1", "--json", "53"], 1, "refused"), ([], 2, "KEY"),
    (["--colour", "5"], 2, "--help"), (["--count", "x", "5"], 2, "--count"), (["--pause", "-1", "5"], 2, "--pause"),
    (["--log=/dev/null/no", "5"], 1, "/dev/null/no")]:
    refused = type_keys(*arguments)
    expect(refused.returncode == code and words in refused.stderr.decode() and b"rows" not in refused.stdout,
           f"{arguments}: {refused}")
gone = type_keys("5", root=ROOT / "no")
expect(gone.returncode == 1 and b"no: no such folder; give a phone's root with --root" in gone.stderr, f"{gone}")
bare = type_keys("5", root=ROOT / "config")
expect(bare.returncode == 1 and b"wideseek.xml: error: not there" in bare.stderr and b"no source was asked" in bare.stderr,
       f"a root without a source list: {bare}")
with open("/dev/full", "w") as full:
    lost = type_keys("5", capture_output=False, stdout=full, stderr=subprocess.DEVNULL)
    expect(lost.returncode == 1, "a full disk goes unnoticed")
log = type_keys("--log", "5").stderr.decode()
expect(" info module 10: SearchUnion(strKey = 5)\n" in log, f"the log: {log}")

# A server that accepts and stays silent works on a thread of its own; its failure is waited for all the same.
with socket.create_server(("127.0.0.1", 0)) as silent:
    write("data/phone.ini", f"[ldap]\nmode=server\nurl=ldap://127.0.0.1:{silent.getsockname()[1]}\ntime_limit_ms=700\n")
    asked = type_keys("--trace", "--json", "5", "53")  # the second one asks LDAP alone
    ldap, = (s for s in json.loads(asked.stdout.splitlines()[-1])["trace"]["sources"] if s["source"] == "LDAP")
    told = "wideseek: LDAP: " in asked.stderr.decode()
    expect(asked.returncode == 0 and ldap["failed"] and ldap["problem"] and told, f"a silent server: {asked}")
write("data/phone.ini", f"[ldap]\nmode=embedded\ndelay_ms={LDAP_DELAY}\n")

# While it runs: another source list is read, Ctrl-C ends it.
with subprocess.Popen([TOOL, "type", "--root", ROOT, "--json", "--pause", "1500", "5309", "5309", "5309"], text=True,
                      stdout=subprocess.PIPE, stderr=subprocess.PIPE) as running:
    before = [json.loads(running.stdout.readline())["total"] for _ in range(2)]
    list_sources("calllog_search", "nobody_search")
    after = json.loads(running.stdout.readline())["total"]
    running.send_signal(signal.SIGINT)
    start = time.monotonic()
    expect((before, after) == ([0, 1], 0), f"changed source list: {before} rows before, {after} after")
    expect(running.wait(10) == 130 and time.monotonic() - start < 5, "Ctrl-C does not end it at once")
    expect('warning: the phone has no source "nobody_search"' in running.stderr.read(), "the changed list's mistake")

# A signal ends it at once even where it cannot look for one, here while nobody reads what it prints.
with subprocess.Popen([TOOL, "type", "--root", ROOT, "--count", "0", *["5", "53"] * 2000], stdout=subprocess.PIPE,
                      stderr=subprocess.DEVNULL) as stuck:
    time.sleep(0.5)  # until the pipe is full; the signal would end it sooner otherwise
    stuck.send_signal(signal.SIGTERM)
    expect(stuck.wait(10) == 143, f"SIGTERM does not end a tool that waits for its reader: {stuck.returncode}")

# What is no file is not waited for, and what finds nothing anywhere fails.
list_sources("remote_directory_search")
alone = type_keys("5")
expect(alone.returncode == 1 and b"every source that was asked failed" in alone.stderr, f"all sources failed: {alone}")
(ROOT / "config/data/wideseek.xml").unlink()
os.mkfifo(ROOT / "config/data/wideseek.xml")
start = time.monotonic()
piped = type_keys("5").stderr
expect(b"error: is not a file; put a regular file there" in piped and time.monotonic() - start < 10, f"a pipe: {piped}")

# A new phone works at once, with the contacts that are put into it and the files that were there; nothing is lost.
made = ROOT / "Ann's phone"
(made / "config/contacts").mkdir(parents=True)
(made / "config/contacts/remote_directory.csv").write_text("name,number\nRemy,5301\n")
new = run("init", made)
expect(new.returncode == 0 and b"remote_directory.csv  (was there" in new.stdout, f"a new phone: {new}")
expect(shlex.split(new.stdout.decode().splitlines()[-1]) == [TOOL, "phone", "--root", str(made)], f"what to type next: {new}")
cramped = run("init", ROOT / "cramped", restore_signals=False,
              preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (500, 500)))  # not for the first file
expect(cramped.returncode == 1 and not list(ROOT.glob("cramped/*/*/*")), f"parts of files are left: {cramped}")
checked = run("check", "--root", made)
expect(checked.returncode == 0 and b"warning" not in checked.stdout, f"a new phone's source list: {checked}")
with open(made / "config/contacts/local_directory.csv", "a") as contacts:
    contacts.write("Zoë,53\n")
found = type_keys("--json", "53", root=made)
expect(names(json.loads(found.stdout)) == ["Zoë", "Remy"] and not found.stderr, f"on a new phone: {found}")
many = type_keys("--json", *["53"] * 16_000, root=made, timeout=15).stdout  # in time proportional to their number
expect(many.count(b"\n") == 16_000, "a page for each of many keys")
# However little memory there is, it ends with a word on it. 127: it could not even be loaded.
for megabytes in range(24, 64, 4):
    poor = type_keys("53", root=made, preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (megabytes << 20,) * 2))
    told = b"cannot be started: " in poor.stderr or b"memory" in poor.stderr or b"no thread" in poor.stderr
    expect(poor.returncode in (1 if told else 0, 127), f"{megabytes} MB of memory: {poor}")
again = run("init", made)
expect(again.returncode == 1 and b"holds a phone already" in again.stderr, f"made twice: {again}")
expect(run("init", "/dev/null/no").stderr.startswith(b"wideseek: /dev/null/no/config/contacts: cannot be made (Not a dir"),
       "a folder that cannot be made")

start = time.monotonic()
demo = run("demo")
expect(demo.returncode == 0 and not demo.stderr, f"the demonstration: {demo}")
expect(b"late page" in demo.stdout and b"empty key" in demo.stdout, f"the demonstration shows less: {demo.stdout}")
expect(time.monotonic() - start < 15, "the demonstration takes long")
finish()
