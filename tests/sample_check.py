#!/usr/bin/env python3
"""Holds sample/ to what it promises: files in the documented form, every source on, contacts that overlap, and phone
numbers that can ring nobody because their ranges are reserved for fiction and examples."""
import csv, json, re, sys
import xml.etree.ElementTree as xml
from collections import defaultdict
from configparser import ConfigParser
from datetime import datetime
from pathlib import Path

CONFIG = Path(__file__).resolve().parent.parent / "sample" / "config"
# Who reserves them: NANPA, Ofcom, Bundesnetzagentur, ARCEP and ACMA; four digits are the company's extensions.
RESERVED = re.compile(r"""\d{4} | \+1[2-9]\d\d55501\d\d
    | (\+44|0)(207946\d|7700900|11[3-8]4960|1[2-6]14960|1632960)\d{3}
    | (\+49|0)((3023125|4066969|6990009|8999998|2214710)\d{3}|17139200\d\d)
    | \+33(19900|63998)\d{4} | \+61([2378]5550\d{4}|491570(006|110|15[6-9]))""", re.X)
SOURCES = {"local_directory_search", "calllog_search", "remote_directory_search", "ldap_search",
           "BroadSoft_directory_search", "Network_directory_search", "BroadSoft_UC_search"}
problems = []


def expect(holds, what):
    if not holds:
        problems.append(what)


def rows(name, columns):
    with open(CONFIG / "contacts" / name, encoding="utf-8", newline="") as file:
        header, *records = csv.reader(line for line in file if line.strip() and not line.startswith("#"))
    expect(header == columns.split(","), f"{name}: the first line names other columns than {columns}")
    for record in records:
        expect(len(record) == len(header), f"{name}: {record} has {len(record)} fields instead of {len(header)}")
    return [dict(zip(header, record)) for record in records]


def dialable(number):
    return re.sub(r"[ ./()-]", "", number)


items = xml.parse(CONFIG / "data" / "wideseek.xml").getroot().findall("item")
expect(sorted(item.get("id_name") for item in items) == sorted(SOURCES), "wideseek.xml: not each source once")
expect(all(i.get("enable") == "1" and 0 < int(i.get("priority")) < 255 for i in items), "wideseek.xml: a source is off")
settings = ConfigParser(interpolation=None)
settings.read(CONFIG / "data" / "phone.ini", encoding="utf-8")
expect(settings.get("ldap", "mode") == "embedded", "phone.ini: the sample must not need an LDAP server")

found = {}  # source -> [(name, numbers)]
for source, least in ("local", 50), ("broadsoft", 140), ("ldap", 80), ("remote", 110):
    records = rows(f"{source}_directory.csv", "name,number1,number2,number3,extra")
    found[source] = [(r["name"], [r[f"number{i}"] for i in (1, 2, 3) if r[f"number{i}"]]) for r in records]
    expect(len(records) >= least, f"{source}: {len(records)} contacts, fewer than {least}")
    expect(any(not numbers for _, numbers in found[source]), f"{source}: no name without number")
    expect(any(not name and numbers for name, numbers in found[source]), f"{source}: no number without name")
calls = rows("call_log.csv", "time,direction,name,number,extra")
times = [datetime.fromisoformat(call["time"]) for call in calls]
expect(len(calls) >= 120 and times == sorted(times, reverse=True), "call log: too few calls, or not newest first")
expect({call["direction"] for call in calls} == {"in", "out", "missed"}, "call log: not each direction, or another one")
expect(any(c["direction"] == "out" and not c["name"] for c in calls), "call log: no outgoing call without a name")
found["calls"] = [(call["name"], [call["number"]] if call["number"] else []) for call in calls]
buddies = json.loads((CONFIG / "contacts" / "presence_buddies.json").read_text(encoding="utf-8"))
found["buddies"] = [(b["name"], [a["value"] for a in b["attributes"] if a["type"] == 2]) for b in buddies]
expect(len({buddy["id"] for buddy in buddies}) == len(buddies) >= 20, "buddies: too few, or an id twice")
counts = {len(numbers) for _, numbers in found["buddies"]}
expect(0 in counts and max(counts) > 3, "buddies: none without a number, or none with more than three")

where, numbersOf = defaultdict(set), defaultdict(set)
for source, contacts in found.items():
    for name, numbers in contacts:
        for number in map(dialable, numbers):
            expect(RESERVED.fullmatch(number), f"{source}: {name} has {number}, which may be somebody's")
            where[name, number].add(source)
            numbersOf[name].add((source, number))
expect(sum(len(sources) > 1 for sources in where.values()) >= 60, "too few contacts that two sources share")
expect(sum(len(sources) > 2 for sources in where.values()) >= 20, "too few contacts that three sources share")
moved = [n for n, known in numbersOf.items() if n and any(s != t and a != b for s, a in known for t, b in known)]
expect(len(moved) >= 20, "too few people whom two sources know by different numbers")
sys.exit("\n".join(problems) or 0)
