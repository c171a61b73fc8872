#!/usr/bin/env -S python3 -B
"""Brings contacts into a phone as a person does: exports as other programs write them, into each kind of source."""
import json, resource, shutil
from pathlib import Path

from checking import ROOT, expect, finish, run

EXPORTS = Path(__file__).resolve().parents[2] / "sample" / "exports"
CONTACTS = ROOT / "phone/config/contacts"
CSV = CONTACTS / "local_directory.csv"


def bring(*arguments, root=ROOT / "phone", **options):
    return run("import", "--root", root, *arguments, **options)


def report_of(*arguments):
    ended = bring("--json", *arguments)
    return json.loads(ended.stdout), ended


def counts(report):
    return [[file[key] for key in ("added", "merged", "known", "numberless")] for file in report["files"]]


def rows(key):
    typed = run("type", "--root", ROOT / "phone", "--json", "--count", "0", key)
    expect(not typed.stderr, f"{key}: {typed.stderr}")
    return [(row["name"], row["number"], row["extra2"]) for row in json.loads(typed.stdout)["rows"]]


def export(content, name="export.csv"):
    (ROOT / name).write_bytes(content if isinstance(content, bytes) else content.encode())
    return ROOT / name


# A new phone with what other programs have written, and the same again: nothing new.
made = run("init", ROOT / "phone", "--from", *sorted(EXPORTS.iterdir()))
words = made.stdout.decode()
expect(made.returncode == 0 and not made.stderr and "9 contacts added, 1 extended" in words, f"init --from: {made}")
for line in ('cards.vcf:34: "A Card without a Number" has no number', "columns Anrede, Ablage;",
             'mail.csv:5: "Zoë Fairweather" is there already; new are birthday 1980-05-01, group Colleagues'):
    expect(line in words, f'init --from does not say "{line}": {words}')
expect(("Käthe Strauß", "+491713920011", "Beispiel GmbH, Einkauf") in rows("392001"), f"digits: {rows('392001')}")
expect(len(rows("Fairweather, Zoë")) == 4, f"not each number of a contact: {rows('zoe')}")
before = CSV.read_bytes()
report, ended = report_of(*sorted(EXPORTS.iterdir()))
expect(counts(report) == [[0, 0, 3, 1], [0, 0, 3, 0], [0, 0, 2, 0], [0, 0, 2, 0]] and ended.returncode == 0, f"{report}")
expect(CSV.read_bytes() == before, "what is there already is written again")

# What is in a contact file stays byte for byte, but for the line of a person of whom there is something new.
KEPT = (b'\xef\xbb\xbfName,Colour,number1\r\n# people\r\n"Lee, Bo",red,+44 20 7946 0041\r\nJos\xe9,blue,5\r\n'
        b'bad "line,6\r\n,,\r\nBo Lee,,7\r\nlast,,8')
NEW = "Vorname,Name,Telefon geschäftlich,Mobiltelefon,Firma\nBo,Lee,020 7946 0041,9,Ltd\n#1,Taxi,1,,\nBo,Lee,10,,\n"
CSV.write_bytes(KEPT)
dry = bring("--dry-run", export(NEW))
expect(CSV.read_bytes() == KEPT and b"2 contacts added, 1 extended if it were not" in dry.stdout, f"--dry-run: {dry}")
report, _ = report_of(export(NEW))
expect(counts(report) == [[2, 1, 0, 0]], f"merging: {report}")
expect(CSV.read_bytes() == KEPT.replace(b"number1\r", b"number1,mobile,organisation,work\r").replace(
    b'"Lee, Bo",red,+44 20 7946 0041\r', b'"Lee, Bo",red,+44 20 7946 0041,9,Ltd\r') +
    b'\r\n"#1 Taxi",,,,,1\r\nBo Lee,,,,,10\r\n', f"what is kept: {CSV.read_bytes()}")

# Nothing is lost when nothing can be written; nothing is left beside.
before = CSV.read_bytes()
full = bring(export("name,number\n" + "".join(f"n{i},{i}\n" for i in range(1000))), restore_signals=False,
             preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000)))
expect(full.returncode == 1 and b"cannot be written (File too large)" in full.stderr, f"no space: {full}")
expect(CSV.read_bytes() == before and not list(CONTACTS.glob(".*")), "a failed import leaves something behind")

# A vCard file takes contacts too, and a folder of them; several places at a time are an error.
CARD = "BEGIN:VCARD\r\nVERSION:2.1\r\nN:Lee;Bo\r\nTEL:+442079460041\r\nX-ODD:\xe9\r\nEND:VCARD\r\n".encode("latin-1")
(CONTACTS / "local_directory.vcf").write_bytes(CARD)
both = bring(export(NEW))
expect(both.returncode == 1 and b"local_directory.vcf is there as well; keep one" in both.stderr, f"two places: {both}")
CSV.unlink()
for place in CONTACTS / "local_directory.vcf", CONTACTS / "local_directory/bo.vcf":
    report, _ = report_of(export(NEW))
    expect(counts(report) == [[2, 1, 0, 0]], f"into {place}: {report}")
    grown = place.read_bytes()
    expect(grown.startswith(CARD.removesuffix(b"END:VCARD\r\n") + b"TEL;cell:9\r\nORG:Ltd\r\nEND:VCARD\r\n"), f"{grown}")
    expect(sorted(rows("lee")) == [("Bo Lee", "+442079460041", "Ltd"), ("Bo Lee", "10", ""), ("Bo Lee", "9", "Ltd")],
           f"from {place}: {rows('lee')}")
    expect(counts(report_of(export(NEW))[0]) == [[0, 0, 3, 0]], f"again into {place}")
    place.unlink()
    (CONTACTS / "local_directory").mkdir(exist_ok=True)
    (CONTACTS / "local_directory/bo.vcf").write_bytes(CARD)
shutil.rmtree(CONTACTS / "local_directory")

# Whatever is in it, what was brought in is read again as it was: the same export brings nothing new. A link stays a link.
(ROOT / "elsewhere").write_text("name\n")
(ROOT / "elsewhere").chmod(0o640)
CSV.symlink_to(ROOT / "elsewhere")
ODD = export('name,work,other,organisation,department,email,address,note,web,nickname,group\n'
             '"A;B, ""C"" \\ #D",1,+44*5#,"Ü;,\\n Ltd","Lost, ""&"" Found",a@example.com,"1, Long; Street",'
             f'"{"Žluťoučký kůň; " * 40}",https://example.com/?a=b;c:d,#Al," x, y "\n#x,2,,,,,,,,,\n" , ",3,,,,,,,,,\n')
for place in CSV, CONTACTS / "local_directory.vcf":
    expect(counts(report_of(ODD)[0]) == [[3, 0, 0, 0]], f"odd contacts into {place}")
    expect(counts(report_of(ODD)[0]) == [[0, 0, 3, 0]], f"odd contacts again: {bring(ODD).stdout.decode()}")
    expect(len(rows("")) == 0 and len(rows("44*5#")) == 2, f"odd contacts from {place}: {rows('44*5#')}")
    if place == CSV:
        expect(place.is_symlink() and (ROOT / "elsewhere").stat().st_mode & 0o777 == 0o640, "the link, or its permissions")
        place.unlink()
        (CONTACTS / "local_directory.vcf").write_bytes(b"")
(CONTACTS / "local_directory.vcf").unlink()

# Another source, columns that are told, an encoding that is told; a file that cannot be read costs itself alone.
odd = export("Wer;Nummer A;Ort\nЖанна;5;Ухта\n".encode("cp1251"))
report, ended = report_of("--into", "remote_directory_search", "--map", "wer=name", "--map", "Nummer A=home",
                          "--encoding", "windows-1251", odd, ROOT / "none.csv", export("Who,What\nA,b\n", "who.csv"))
expect(counts(report) == [[1, 0, 0, 0], [0] * 4, [0] * 4] and ended.returncode == 1, f"{report}")
expect(report["into"].endswith("remote_directory.csv") and "enable=" in report["hint"], f"a source that is off: {report}")
expect([bool(file["error"]) for file in report["files"]] == [False, True, True], f"files that cannot be read: {report}")
expect("Жанна,5" in (CONTACTS / "remote_directory.csv").read_text("utf-8"), "an encoding that is told")
for arguments, words in (["--into", "call_log", odd], "--into call_log"), (["--map", "a=b", odd], "--map a=b"), (
        ["--encoding", "klingon", odd], "--encoding klingon"), ([], "FILE"):
    refused = bring(*arguments)
    expect(refused.returncode == 2 and words in refused.stderr.decode(), f"{arguments}: {refused}")
rootless = run("import", odd)
expect(rootless.returncode == 2 and b"--root" in rootless.stderr, f"no phone is named: {rootless}")
gone = run("init", ROOT / "other", "--from", ROOT / "none.csv")
expect(gone.returncode == 1 and not (ROOT / "other").exists(), f"init --from nothing: {gone}")
finish()
