"""Tables out of what scripts/bench.sh has measured, in Markdown.

    report.py RESULTS                          prints them
    report.py RESULTS --write DOCUMENT PLOT    also puts them between the document's markers and writes the plot
"""
import json
import os
import platform
import re
import sys
from pathlib import Path

import plot

SEARCHES = {"wideseek": "the library", "wideseek, all work": "the library, all work", "floor": "floor",
            "plain": "plain search", "fts5": "SQLite FTS5"}


def table(head, rows):
    """The first column is text, the others are numbers."""
    cells = [[str(cell) for cell in row] for row in [head, *rows]]
    widths = [max(len(row[i]) for row in cells) for i in range(len(head))]

    def line(row):
        return "| " + " | ".join(c.ljust(w) if i == 0 else c.rjust(w) for i, (c, w) in enumerate(zip(row, widths))) + " |"

    rule = "|" + "|".join("-" * (w + 2) if i == 0 else "-" * (w + 1) + ":" for i, w in enumerate(widths)) + "|"
    return "\n".join([line(cells[0]), rule, *map(line, cells[1:])])


def number(value):
    """Three digits that count, in groups of three."""
    if value >= 100:
        return f"{value:,.0f}"
    return f"{value:.1f}" if value >= 10 else f"{value:.2f}"


def time(microseconds):
    if microseconds >= 1e6:
        return number(microseconds / 1e6) + " s"
    return number(microseconds / 1e3) + " ms" if microseconds >= 1e3 else number(microseconds) + " µs"


def ratio(value, limit):
    if limit is None:
        return f"{value:.2f}"
    return f"{value:.2f} ({'within' if value <= limit else 'above'} {limit:.2f})"


def machine(data):
    cpuinfo = Path("/proc/cpuinfo").read_text() if os.path.exists("/proc/cpuinfo") else ""
    model = re.search(r"model name\s*: (.*)", cpuinfo)
    return (f"Measured on {model[1] if model else platform.machine()}, {os.cpu_count()} cores; "
            f"{'kept awake' if data['kept awake'] else 'free to sleep'}; {data['typed']} contacts typed.")


def sessions(data):
    rows = []
    for size in data["sizes"]:
        for search, label in SEARCHES.items():
            groups = size[search]
            everything, digit = groups["all"], groups["one digit"]
            rows.append([f"{size['contacts']:,} contacts, {size['rows']:,} rows: {label}", time(everything["median"]),
                         time(everything["percentile99"]), time(everything["total"]), time(digit["median"]),
                         time(digit["worst"])])
        empty = size["empty request"]
        rows.append([f"{size['contacts']:,} contacts: empty request", time(empty["median"]),
                     time(empty["percentile99"]), "", "", ""])
    empty = data["empty request after a pause"]
    rows.append(["empty request after a pause, the processors asleep", time(empty["median"]),
                 time(empty["percentile99"]), "", "", ""])
    return table(["", "median key", "99%", "total", "one digit, median", "one digit, slowest"], rows)


def targets(data):
    """What the sessions come to, the two hand-overs of an empty request left out of the median key."""
    rows = []
    for size in data["sizes"]:
        page, work, floor = size["wideseek"], size["wideseek, all work"], size["floor"]
        plain, fts5 = size["plain"], size["fts5"]
        key = page["all"]["median"] - size["empty request"]["median"]
        rows.append([f"{size['contacts']:,}", ratio(key / floor["all"]["median"], 3)])
        for part in page, work:
            rows[-1] += [ratio(part["all"]["total"] / plain["all"]["total"], 1 / 3),
                         ratio(part["all"]["total"] / fts5["all"]["total"], 0.1),
                         ratio(part["one digit"]["median"] / plain["one digit"]["median"], 1)]
    return table(["contacts", "median key / floor", "total / plain", "total / FTS5", "one digit / plain",
                  "all work: total / plain", "total / FTS5", "one digit / plain"], rows)


def bursts(data):
    """From the last key of many that come at once to its page, against the same key alone."""
    kinds = {"typed": "ten digits, the whole number", "erased": "nine digits erased, to the first one"}
    rows = []
    for size in data["sizes"]:
        for kind, label in kinds.items():
            burst, alone = size["bursts"][kind], size["bursts"][kind + " alone"]
            rows.append([f"{size['contacts']:,} contacts: {label}", time(burst["median"]), time(burst["worst"]),
                         time(alone["median"]), number(burst["median"] / alone["median"])])
    return table(["", "last key, median", "slowest", "the same key alone", "ratio"], rows)


def terminal(measured):
    return table(["", "median, ms", "99%", "slowest"], [
        [f"{size['contacts']:,} contacts", ratio(size["median"] / 1e3, 2), time(size["percentile99"]), time(size["worst"])]
        for size in measured])


def caller(data):
    calls = {"hand over": "`Wideseek_SearchUnion`", "reset": "`Wideseek_ResetKey`", "detach": "`Wideseek_ResetCallBack`"}
    moments = {"search": f"during a full search of {data['caller']['rows']:,} rows", "rest": "at rest"}
    rows = []
    for moment, words in moments.items():
        for call, label in calls.items():
            times = data["caller"][moment][call]
            rows.append([f"{label} {words}", *(time(times[part]) for part in ("median", "percentile99", "worst"))])
    return table(["", "median", "99%", "slowest"], rows)


def memory(data, size):
    use = data["memory"]
    return table([f"{use['rows']:,} rows held", ""], [
        ["bytes per row", number(use["bytes held"])],
        ["a row with its characters, its list node and its filter node", number(use["bytes of row"])],
        ["ratio", ratio(use["bytes held"] / use["bytes of row"], 1.3)],
        ["bytes per row at the peak of a full search, its hits included", number(use["bytes at peak"])],
        ["allocations per row in a full search, by the library", number(use["allocations"])],
        ["allocations per row in a full search, by the sources", number(use["allocations of sources"])],
        ["allocations in all when a key looks at every row and all stay", number(use["allocations narrowing"])],
        ["allocations in all for the same key again", number(use["allocations repeating"])],
        ["`libWideseek.so`, stripped, bytes", size]])


def workloads(results):
    measured = json.loads((results / "workloads.json").read_text())["benchmarks"]
    measured.sort(key=lambda entry: (entry["family_index"], entry["per_family_instance_index"]))
    times = {entry["run_name"]: entry for entry in measured if entry.get("aggregate_name") == "median"}
    counted = dict(line.rsplit(" ", 1) for line in (results / "instructions.txt").read_text().splitlines())
    units = {"ns": 1e-3, "us": 1, "ms": 1e3, "s": 1e6}

    def took(name):
        return times[name]["cpu_time"] * units[times[name]["time_unit"]]

    def instructions(name):
        return int(counted.get(name) or 0)

    rows, compared = [], set()
    for pair in (results / "pairs.txt").read_text().splitlines():
        workload, against, limit = pair.split()
        limit = None if limit == "-" else float(limit)
        compared |= {workload, against}
        for name in (name for name in times if name.partition("/")[0] == workload):
            other = name.replace(workload, against, 1)
            row = [f"{name} against {against}", time(took(name)), time(took(other)),
                   ratio(took(name) / took(other), limit)]
            mine, its = instructions(name), instructions(other)
            rows.append(row + ([f"{mine:,}", f"{its:,}", ratio(mine / its, limit)] if mine and its else ["", "", ""]))
    rows += [[name, time(took(name)), *[""] * 5] for name in times if name.partition("/")[0] not in compared]
    return table(["workload", "time", "against", "ratio", "instructions", "against", "ratio"], rows)


def put_into(document, sections):
    text = document.read_text()
    for name, content in sections.items():
        begin, end = f"<!-- begin {name} -->\n", f"<!-- end {name} -->\n"
        if begin not in text or end not in text:
            sys.exit(f"{document}: the markers \"{begin.strip()}\" and \"{end.strip()}\" are missing; put them in")
        before, rest = text.split(begin, 1)
        text = before + begin + content + "\n" + end + rest.split(end, 1)[1]
    document.write_text(text)


def main():
    results = Path(sys.argv[1])
    data = json.loads((results / "sessions.json").read_text())
    size = re.search(r"(\d+) bytes", (results / "size.txt").read_text())[1]
    keys = json.loads((results / "keys.json").read_text())
    sections = {"machine": machine(data), "targets": targets(data), "sessions": sessions(data), "bursts": bursts(data),
                "caller": caller(data), "terminal": terminal(keys), "workloads": workloads(results),
                "memory": memory(data, size)}
    print("\n\n".join(sections.values()))
    if sys.argv[2:3] == ["--write"]:
        put_into(Path(sys.argv[3]), sections)
        Path(sys.argv[4]).write_text(plot.draw(data))


main()
