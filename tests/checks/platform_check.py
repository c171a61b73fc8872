#!/usr/bin/env -S python3 -B
"""Runs the platform check on the workstation phone: it holds every rule, each in the words of its header; and with one
fault at a time in the phone, the check that is broken says so, before any other does."""
import os, re, subprocess
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from checking import expect, finish

PROGRAM = Path(os.environ["WIDESEEK_BUILD"]) / "wideseek_platform_tests"

FAULTS = {
    "log and memory": {
        "the log waits": "the log waits for nobody",
        "an absent setting is 0": "an absent setting is -1",
        "a folder has a path": "a folder has no path",
        "no memory ends the program": "no memory is null",
        "null cannot be given back": "null is given back without effect",
        "a lock cannot be taken twice": "a lock is recursive",
        "a lock locks nothing": "a lock keeps others out"},
    "strings": {
        "converting goes on": "converting twice changes nothing",
        "nothing is digits": "digits are keypad keys",
        "trimming leaves the end": "trimming takes both ends",
        "short keys match beginnings": "a longer key matches less",
        "s is on the wrong key": "letters become digits",
        "refused bounds are set": "negative bounds are refused",
        "bounds overflow": "bounds hold at the edges"},
    "messages": {"every name has a thread": "other names have no thread"},
    "timers": {
        "timers are early": "timers are never early",
        "killed timers expire": "killed timers never expire",
        "timers never say that they run": "a timer tells whether it runs",
        "a timer set for nobody goes on": "nobody to notify stops the timer"},
    "tasks": {
        "withdrawal does not wait": "withdrawal waits",
        "withdrawal removes nothing": "withdrawal removes",
        "the last release leaks": "the last release destroys",
        "half of an object is freed": "whole objects are freed",
        "messages come on the main thread": "messages come on their thread",
        "posting calls the receiver": "messages come on their thread",
        "order is lost": "order is kept",
        "queued twice is executed once": "queued actions hold their reference",
        "execution is not put off": "queued actions hold their reference"},
    "sources": {
        "a source drops a contact for short keys": "a longer key finds less",
        "a source finds too much": "contacts match their key",
        "recent calls always begin with the newest": "slices of the recent calls fit together"},
    "LDAP": {
        "no answer comes": "every query is answered",
        "answers have another key": "every query is answered",
        "answers come anywhere": "answers come on the thread",
        "a query is answered twice": "no query is answered twice"},
    "presence": {
        "buddies match everything": "buddies match their key",
        "strangers are buddies": "strangers have none"}}


def run(*arguments):
    return subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, errors="replace", timeout=60)


def words(text):
    return " ".join(re.sub(r"^ *// ?", "", text, flags=re.M).split())


def check_as_it_is():
    report = run()
    expect(report.returncode == 0 and "FAILED" not in report.stdout, "the phone as it is fails:\n" + report.stdout)
    expect("skipped  " not in report.stdout, "something is skipped on a complete phone:\n" + report.stdout)
    rules = re.findall(r"function  .* \((\w+\.h)\)\n    rule      (.*)", report.stdout)
    expect(len(rules) == report.stdout.count("\n  ok  "), "not every check tells its rule")
    for header, rule in rules:
        expect(words(rule) in words(Path("platform", header).read_text()), f"{header} does not say: {rule}")


def check_fault(group, fault, broken):
    report = run(fault, group)
    failed = re.findall(r"  FAILED   (.*)\n    function  .+\n    rule      .+\n    seen      .+\n    breaks    .+",
                        report.stdout)
    expect(report.returncode != 0 and failed[:1] == [broken],
           f"{fault}: first \"{broken}\" is to fail; exit status {report.returncode}, failed: {failed}")


check_as_it_is()
with ThreadPoolExecutor(6) as pool:  # they sleep most of the time
    # Asking for what each gave lets go of no exception.
    list(pool.map(check_fault, *zip(*((group, *each) for group, faults in FAULTS.items() for each in faults.items()))))
finish()
