#!/usr/bin/env -S python3 -B
"""Uses the phone's screen as a person does, in a real terminal (tmux): what is seen, and what is left behind."""
import os, re, shlex, signal, subprocess, time
from pathlib import Path

from checking import ROOT, TOOL, column_of, expect, finish, list_sources, run, write
from terminal import open_terminal, press, screen, see, tmux

LDAP_DELAY = 700
UP, DOWN, ENTER, ESCAPE = "Up", "Down", "Enter", "Escape"


def standing_out():
    """The bold and underlined texts of the screen, each with the number of its colour."""
    return re.findall(r"\x1b\[1;4m(?:\x1b\[(3\d)m)?([^\x1b]*)", tmux("capture-pane", "-p", "-e"))


def cursor_row(lines):
    return next(((i, line) for i, line in enumerate(lines) if line.startswith("> ")), None)


def see_before_ldap(pattern, what, *keys):
    """Types keys into the empty box and waits for pattern; again where the machine was too slow to beat LDAP."""
    for _ in range(8):
        press(ESCAPE)
        see(r"^ Search  +letters(.|\n)*Recent calls(.|\n)*1-16 of \d+ ", "the recent calls")
        time.sleep(0.12)  # a timer that a search before has armed would still let this one go on without LDAP
        press(*keys)
        lines = see(f"{pattern}|late page", what)
        if re.search(pattern, "\n".join(lines)):
            return lines
    finish(f"LDAP always came before {what}")


def press_behind_a_paste(key):
    """A long paste, and a key at once: the paste is much longer than what is worked in the time that a person waits."""
    (ROOT / "paste").write_text("530" * 40000)
    tmux("load-buffer", str(ROOT / "paste"), ";", "paste-buffer", ";", "send-keys", key)


def children_of(pid):
    return Path(f"/proc/{pid}/task/{pid}/children").read_text()


def start(*words, terminal=""):
    press(text=f"clear; {terminal} {shlex.join([TOOL, *words])}; echo \"left:$?\" `stty -g | cksum`\n")


LABELS = {"local_directory_search": "Near", "ldap_search": "Group", "remote_directory_search": "Far"}


def list_labelled_sources(last_priority=3):
    list_sources('<item id_name="calllog_search" enable="0" priority="1"/>',
                 *(f'<item id_name="{source}" display_name="{label}" enable="1" priority="{priority}"/>'
                   for (source, label), priority in zip(LABELS.items(), (1, 2, last_priority))))


list_labelled_sources()
write("data/phone.ini", f"[features]\nFeaturesRecentCallEnable=1\n[ldap]\ndelay_ms={LDAP_DELAY}\n")


def write_contacts(source, *rows):
    write(f"contacts/{source}_directory.csv", "\n".join(["name,number1,mobile,number3,extra,fax", *rows, ""]))


write_contacts("local", *(f"Local {i:02},5300{i:02},,,Leeds" for i in range(40)),
               "渡辺渡辺渡辺渡辺渡辺渡辺渡辺渡辺渡辺渡辺渡辺渡辺,886001,,,京都", "Plain,886002,,,x", "Be\x07ll\x1b[1m,886003,,,x", "Multi,771,772,773,desk,774")
write_contacts("ldap", *(f"Ldap {i:02},5301{i:02},,,Kyiv" for i in range(7)))
write_contacts("remote", *(f"Remote {i:02},5302{i:02},,,Rome" for i in range(40)))
write("contacts/call_log.csv", "\n".join(["time,direction,name,number,extra", "2026-01-02T10:00:00,out,Kim,771,then", *(
    f"2025-01-{i:02}T10:00:00,out,Old {i:02},99{i:02},ago" for i in range(1, 31)), ""]))

open_terminal(f"WIDESEEK_ROOT={ROOT}", "LC_ALL=C")
tmux("set", "-s", "set-clipboard", "on")
press(text="clear; echo state `stty -g | cksum`\n")
state = next(line for line in see(r"^state \d+", "the terminal's state") if line.startswith("state "))[6:]

# Without arguments: the phone with its recent calls. A key brings rows; LDAP's come later, above the cursor.
start("phone", f"--log={ROOT / 'log'}")
lines = see(r" Recent calls\n> Kim +771 +then(.|\n)* Old 16 +9916 +ago\n─+\n 1-16 of 31 ", "recent calls in every line")
expect(any(re.search("2abc +3def +4ghi +5jkl", line) for line in lines), f"no keypad: {lines}")
lines = see_before_ldap(r"1-17 of 80 +page in [\d.]+ ms .*LDAP …", "the first page while LDAP is asked", "5", "3")
expect(lines[0].startswith(" Search  53 ") and re.match("> Local 00 +530000 +Near +Leeds", cursor_row(lines)[1]),
       f"key or first row: {lines}")
moves = "NPage", "NPage", "NPage", DOWN, DOWN, DOWN, UP
before = cursor_row(see_before_ldap(r"52-68 of 80", "a further page", "5", "3", *moves))
expect(before and "Remote 13" in before[1], f"the row under the cursor: {before}")
lines = see(r"59-75 of 87 .*late page after \d{3,}\.\d ms", "LDAP's rows")
expect(cursor_row(lines) == before, f"a late page has moved {before} to {cursor_row(lines)}")
expect("LDAP …" not in "\n".join(lines), "the sign stays when LDAP has answered")

# Dialled, it is a recent call.
press(ENTER)
see(r"Would dial 530213 \(Remote 13\)", "what would be dialled")
press(ESCAPE)
see("> Remote 13 +530213(.|\n)*1-16 of 32 ", "the call among the recent ones")
press("C-End", "NPage")
see(r" Recent calls\n  Old 16 .*(.|\n)*\n> Old 01 +9901 +ago\n─+\n 17-32 of 32 ", "a full last screen of recent calls")

# No key is lost or served out of order, however fast: the third row is dialled; without a row, what was typed.
press("5", "3", "BSpace", "3", "0", DOWN, DOWN, ENTER)
see(r"Would dial 530002 \(Local 02\)", "the third row dialled")
press(ESCAPE)
pasted = "0918273645" * 6
press(text=pasted + "\n")
lines = see(f"Would dial {pasted}", "the pasted number dialled")
expect("no rows" in "\n".join(lines), f"rows for a number that nobody has: {lines}")
press(ESCAPE, "F2")
press(text="pläin")
see("^ Search  75246 .*digits(.|\n)*> Plain +886002", "letters typed as digits")
expect(standing_out() == [("35", "Plain")], f"found, as the screen shows it: {standing_out()}")
press("F2", ESCAPE)
press(text="渡ä")
see("^ Search  渡ä .*letters(.|\n)*(Nothing so far|No contact matches)", "letters typed as letters")

# What is typed is a line to be edited, and any of its characters may come from the numeric keypad, in either mode.
press(ESCAPE)
press(text="3x")
press("Home")
press(text="5")
press("End", "BSpace")
see("^ Search  53 ", "a key typed from both ends")
press("C-a", "DC", "C-e", "C-u")
press(text="\x1bOu\x1bOs\x1bOp0\x1bOp2\x1bOM")
see(r"Would dial 530002 \(Local 02\)(.|\n)*F4 Copy", "a number typed and dialled on the numeric keypad")
press("F4")
see("Handed 530002 to", "the number copied")
expect(tmux("show-buffer") == "530002", f"the clipboard holds {tmux('show-buffer')!r}")

# A paste is text, whatever is in it.
tmux("set-buffer", "\tLocal 03\n", ";", "paste-buffer", "-p")
see("^ Search  530002 Local 03 (.|\n)*(Nothing so far|No contact matches)", "a paste behind the key, which dials nobody")
press("C-a", "C-Right", "C-k")
see("^ Search  530002 +F5 dials it +letters(.|\n)*> Local 02", "all behind the first word erased")
press("C-Left", "S-F7", "C-k")  # the second one is no key here
see("^ Search  +letters", "all erased")
tmux("set-buffer", "local 0\x1b[21~\n3", ";", "paste-buffer", "-p")
see("^ Search  local 0 3 ", "a paste with a key in it, which leaves nothing")

# A click chooses a row, a second one dials; the wheel moves on. Columns and lines are sent as characters (X11).
press(ESCAPE, "5", "3", "0", "0")
see("> Local 00", "rows to point at")
click = "\x1b[M {0}{1}\x1b[M#{0}{1}".format
press(text=click("#", chr(33 + 5)))
see("> Local 02", "the row clicked at")
press(text="\x1b[Ma##")
see("> Local 05", "the row three further, by the wheel")
press(text=2 * click("#", chr(33 + 4)))
see(r"Would dial 530001 \(Local 01\)", "the row that was clicked at twice")
press("F5")
see(r"Would dial 5300$", "the number as it is typed")
press(ESCAPE)

# Other screens come and go; the cursor is where it was, though LDAP has answered meanwhile.
before = cursor_row(see_before_ldap(r"64-80 of 80 .*LDAP …", "the last page", "5", "3", "0", "C-End"))
press("F3")
see(r"> Number +530239\n\n +Far\n +Numbers +530239\n +Extra +Rome(.|\n)*Near +40 found(.|\n)*"
    r"Group +(still being asked|7 found)(.|\n)*Far +40 found", "the details")
see("Group +7 found", "LDAP's answer among the details")
press("F1")
expect(cursor_row(see(r"71-87 of 87", "the rows after the details")) == before, f"not where it was: {before}")
press("F1")
see("Backspace +erases", "the help")
press(ESCAPE)
see(r"71-87 of 87", "the rows after the help")

# A contact's numbers are chosen from and dialled among its details.
press(ESCAPE)
press(text="multi")
see("> Multi +771 +Near +desk", "a contact with several numbers")
press("F3", DOWN, DOWN, UP)
see(r"Enter dials 772(.|\n)* +Number +771\n> +772 \(mobile\)\n +773\n +774 \(fax\)", "the number chosen")
press(ENTER)
see(r"> Multi(.|\n)*Would dial 772 \(Multi\)", "the number dialled, and the rows again")
press("F3")
see("> Number +771\n", "the details again")
press(text=click("#", chr(33 + 5)))
see(r"Enter dials 773(.|\n)*> +773\n", "the number clicked at")
press(text=2 * click("#", chr(33 + 4)))
see(r"Would dial 772", "the number that was clicked at twice")

# However much is typed at once, it is searched for once, or not often; keys behind it wait for its rows.
press(ESCAPE)
press(text="5" * 200 + "\x15" + "530" + "\x1b[B" * 2 + "\n")
see(r"Would dial 530002 \(Local 02\)", "the third row of the last key")
asked = re.findall(r"strKey = (5*)\)", (ROOT / "log").read_text())
expect(sum(len(key) > 2 for key in asked) < 20, f"searched for {len(asked)} times: {asked}")

# What is wrong is told for as long as it is so, whatever is typed.
far = ROOT / "config/contacts/remote_directory.csv"
far.rename(ROOT / "far")
press(ESCAPE)
see("Recent calls", "the recent calls")
press("5", "3", "0", DOWN)
see(r"^  Local 00(.|\n)*Problem: Far failed: config/contacts/remote.* F3\n", "a source that failed")
press(ENTER)
see(r"Problem: F3(.|\n)*Would dial 530001", "that there is a problem, beside what would be dialled")
tmux("resize-window", "-x", "40", "-y", "12")
press(DOWN)
see(r"Problem: F3( LDAP …)?\n +Near  Leeds", "that there is a problem, and where the row is from, at 40 columns")
press("F3", "End")
see(r"─ (\d+)-(\d+) of \2\n(.|\n)*Far +failed", "the end of the details")
press("Home")
see(r"─ 1-9 of \d+\n  Name", "their beginning")
press(ESCAPE)
tmux("resize-window", "-x", "80", "-y", "24")
press("F3")
lines = see(r"Number(.|\n)*Problem: Far failed(.|\n)*Near\n(.|\n)*Far +failed after [\d.]+ ms", "what is wrong, and why")
(ROOT / "far").rename(far)
list_labelled_sources(last_priority=255)
press(ESCAPE, ESCAPE, "5", "3", "0")
see(r"Problem: config/data/wideseek.xml:1: warning: .* F3\n", "that the source list leaves a source out")
list_labelled_sources()
for _ in range(200):  # the phone looks twice a second
    press(ESCAPE)
    see("Recent calls", "the recent calls")
    press("5", "3", "0", "C-End")
    if " of 80 " in "\n".join(see(r"\d-(40|80|87) of \1 ", "the last rows")):
        break
see(r"71-87 of 87 .*\n\nF1", "nothing wrong any more")

# Any size; names are cut by their width, and cannot command the terminal.
tmux("resize-window", "-x", "40", "-y", "12")
lines = see(r"\d-87 of 87(.|\n)*F1 Help +F2 Digits +F3 Details +F10", "40x12")
expect(len(lines) == 12 and "Remote 39" in cursor_row(lines)[1] and "2abc3def" in lines[1], f"40x12: {lines}")
tmux("resize-window", "-x", "200", "-y", "24")
lines = see(r"2abc  3def(.|\n)*\d-87 of 87 +page in", "200x24")
expect(re.search(r"^  Remote 38 +530238 +Far +Rome$", "\n".join(lines), re.M), f"200x24: {lines}")
expect(column_of(cursor_row(lines)[1], "Rome") < 100, f"columns far apart: {lines}")
tmux("resize-window", "-x", "40", "-y", "12")
press(ESCAPE, "8", "8", "6", "0")
lines = see("> 渡辺.*…(.|\n)*1-3 of 3 ", "rows of any script at 40x12")
expect([line for line in lines if "Near" in line] == ["  Near  京都"], f"sources at 40x12: {lines}")
columns = {column_of(line, "88600") for line in lines if "88600" in line}
expect(len(columns) == 1, f"numbers not below each other: {lines}")
expect(any("Be\ufffdll\ufffd[1m" in line for line in lines), f"control characters: {lines}")
tmux("resize-window", "-x", "30", "-y", "8")
see("needs 40x12", "that it is too small")
tmux("resize-window", "-x", "80", "-y", "24")
see("^> 渡辺(.|\n)*1-3 of 3 ", "the rows after it was small")

# However it ends, the terminal is as it was.
for how, code in (lambda: press_behind_a_paste("F10"), 0), (lambda: press_behind_a_paste("C-c"), 0), (
        lambda: os.kill(int(children_of(tmux("display", "-p", "#{pane_pid}").strip())), signal.SIGTERM), 143):
    how()
    lines = see(r"^left:\d+ ", "the shell again")
    expect(f"left:{code} {state}" in lines, f"exit code {code}, terminal {state}: {lines}")
    start("phone")
    see("> Remote 13|> Kim", "the phone again")
press("F10")
see(r"^left:0", "the shell again")
# A search that takes long is told of, here that of a source which never answers.
list_sources("local_directory_search", "nobody_search")
start("phone")
see("> Remote 13|> Local|> Kim|> 5", "the phone again")
press("5", "3", "0", "0", "0", "1")
see("Searching …", "that it is still being searched")
press(ENTER)
see("Nothing is dialled before", "that the search takes long")
press("F10")
see(r"^left:0", "the shell again")
list_labelled_sources()
# Terminals that are known, and some that are known by what they are named after; each key has several forms.
forms = (("OP", "OH", "OF"), ("[11~", "[1~", "[4~"), ("[[A", "[7~", "[8~"), ("OP", "[H", "[F"))
for i, terminal in enumerate(("linux", "vt100", "alacritty", "foot", "xterm-kitty", "xterm-ghostty", "xterm-direct",
                              "screen", "tmux", "tmux-x NO_COLOR=1")):
    help_key, home, end = ("\x1b" + form for form in forms[i % len(forms)])
    start("phone", terminal=f"TERM={terminal}")
    see("> Remote 13|> Local|> Kim|> 5", f"the phone on {terminal}")
    press(text=help_key)
    see("Backspace +erases", f"the help on {terminal}")
    press(ESCAPE)
    press(text=f"\x1bOs{home}\x1bOu{end}\x1bOp")
    see(r"^ Search  530 (.|\n)*1-\d+ of 8", f"digits of the numeric keypad on {terminal}")
    if terminal.startswith(("xterm", "tmux")):
        expected = {""} if "NO_COLOR" in terminal else {"35"}
        expect({colour for colour, _ in standing_out()} == expected, f"colours on {terminal}: {standing_out()}")
    if terminal not in ("linux", "vt100"):
        tells_digits = terminal.startswith(("alacritty", "foot", "xterm"))
        press(text="\x1b[<0;9;6M\x1b[<0;9;6m" if tells_digits else click("#", chr(33 + 5)))
        see("> Local 02", f"the row clicked at on {terminal}")
    press("F10")
    see(r"^left:0", f"the shell after {terminal}")
start("phone", terminal="TERM=dumb")
see('"dumb".*shows no full screen; set TERM(.|\n)*left:1', "what to do about a dumb terminal")
start("phone", terminal="TERM=no-such-type")
see('"no-such-type".*is not known here(.|\n)*set TERM(.|\n)*left:1', "what to do about an unknown terminal")
nowhere = run("phone", stdin=subprocess.DEVNULL)
expect(nowhere.returncode == 1 and b"needs a terminal" in nowhere.stderr, f"without a terminal: {nowhere}")
finish()
