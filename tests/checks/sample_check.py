#!/usr/bin/env -S python3 -B
"""Holds sample/ to what it promises: every source on, contacts that overlap, and phone numbers, also in its exports, that can
ring nobody because their ranges are reserved for fiction and examples."""
import csv, json, re
import xml.etree.ElementTree as xml
from collections import defaultdict
from pathlib import Path

from checking import ROOT, expect, finish, run

SAMPLE = Path(__file__).resolve().parents[2] / "sample"
CONFIG = SAMPLE / "config"
# Who reserves them: NANPA, Ofcom, Bundesnetzagentur, ARCEP and ACMA; four digits are the company's extensions.
RESERVED = re.compile(r"""\d{4} | \+1[2-9]\d\d55501\d\d
    | (\+44|0)(207946\d|7700900|11[3-8]4960|1[2-6]14960|1632960)\d{3}
    | (\+49|0)((3023125|4066969|6990009|8999998|2214710)\d{3}|17139200\d\d)
    | \+33(19900|63998)\d{4} | \+61([2378]5550\d{4}|491570(006|110|15[6-9]))""", re.X)


def rows(name):
    with open(CONFIG / "contacts" / name, encoding="utf-8", newline="") as file:
        return list(csv.DictReader(line for line in file if line.strip() and not line.startswith("#")))


items = xml.parse(CONFIG / "data/wideseek.xml").getroot().findall("item")
expect(len({item.get("id_name") for item in items if item.get("enable") == "1"}) == 7, "not each source once and on")
expect("\nmode=embedded\n" in (CONFIG / "data/phone.ini").read_text(), "the sample must not need an LDAP server")
buddies = json.loads((CONFIG / "contacts/presence_buddies.json").read_text(encoding="utf-8"))
found = [("buddies", b["name"], a["value"]) for b in buddies for a in b["attributes"] if a["type"] == 2]
found += [("calls", call["name"], call["number"]) for call in rows("call_log.csv")]
for source in "local", "broadsoft", "ldap", "remote":
    found += [(source, r["name"], r[f"number{i}"]) for r in rows(f"{source}_directory.csv") for i in (1, 2, 3)]
run("init", ROOT / "phone", "--from", *(SAMPLE / "exports").iterdir())
with open(ROOT / "phone/config/contacts/local_directory.csv", encoding="utf-8", newline="") as file:
    exported = [row for row in csv.reader(file) if row[1:] and not row[0].startswith("#")]
found += [("exports", row[0], field) for row in exported for field in row if re.fullmatch(r"\+?\d{4,}", field)]
expect(len(exported) > 9, f"too few exported contacts: {exported}")
sources = defaultdict(set)
for source, name, number in found:
    plain = re.sub(r"[ ./()-]", "", number)
    expect(not plain or RESERVED.fullmatch(plain), f"{source}: {name} has {number}, which may be somebody's")
    sources[name, plain].add(source)
expect(sum(len(each) > 1 for each in sources.values()) >= 60, "too few contacts that two sources share")
expect(sum(len(each) > 2 for each in sources.values()) >= 20, "too few contacts that three sources share")
finish()
