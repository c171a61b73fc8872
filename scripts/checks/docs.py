#!/usr/bin/env python3
"""Checks that README.md and docs/ tell the truth about what a reader can try: links lead somewhere, paths and scripts that
are named exist, commands of sh blocks that use ./run.sh or scripts/build.sh succeed, programs are built before they are
named, presets and checks are there, and console blocks print what they show.

Blocks run as on a reader's machine, each page of documents in a folder and with a home of its own; those that build, in the
source tree. For the console blocks
behind it, an xml block is wideseek.xml, and a block that begins with a file's name ("# names.sh") is that file. Times
differ from run to run and are not compared; behind a line "[...]" the comparison goes on with the next line that is shown.
What needs a terminal (a command that sets TERM) is left out."""
import json, os, re, shutil, subprocess, sys, tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
PAGES = [*(ROOT / name for name in ("README.md", "CONTRIBUTING.md", "CHANGELOG.md")), *sorted((ROOT / "docs").glob("*.md"))]
FOLDERS = "abi|app|bench|cmake|docs|examples|host|platform|sample|scripts|tests|tools"
MASKED = [(r"\d+(\.\d+)? ms", "- ms"), (r'"ms":[\d.]+', '"ms":-'), (r" +\d+\.\d$", " -"), (r"  +ms$", " ms")]
SECONDS, BUILDING_SECONDS = 60, 1200
problems = []


def anchors(page):
    headings = re.findall(r"^#+ (.*)$", page.read_text(), re.M)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def check_links(page, text):
    for target in re.findall(r"\]\(([^)]+)\)", text):
        path, _, anchor = target.partition("#")
        file = page if not path else page.parent / path
        if "://" not in target and (not file.exists() or anchor and anchor not in anchors(file)):
            problems.append(f"{page.name}: the link to {target} leads nowhere")


def check_paths(page, text):
    for path in re.findall(rf"`((?:{FOLDERS})/[^` ]+)", text):
        if not re.search(r"[A-Z]{3}", Path(path).name) and not list(ROOT.glob(path.rstrip("/"))):
            if not list(ROOT.glob(path + ".*")):
                problems.append(f"{page.name}: there is no {path}")


def check_programs(page, text):
    """What a preset builds is named behind a command that builds it, or in the same line."""
    for match in re.finditer(r"build/(\w+)/wideseek\w*", text):
        before = text[:text.find("\n", match.end())]
        also = "run" if match[0] == "build/release/wideseek" else "test" if match[0].endswith("_tests") else "build"
        if not re.search(rf"(build\.sh|check\.sh|--preset) {match[1]}\b|\./{also}\.sh", before):
            problems.append(f"{page.name}: nothing that precedes {match[0]} builds it")


def check_names(page, text):
    """Presets and checks."""
    presets = {preset["name"] for preset in json.loads((ROOT / "CMakePresets.json").read_text())["configurePresets"]}
    checks = re.findall(r"^(?:checks|by_name)=\((.*)\)", (ROOT / "scripts/check.sh").read_text(), re.M)
    for words, known, what in ((r"(?:--preset|build\.sh) ([a-z]+)", presets, "preset"),
                               (r"check\.sh ([a-z]+)", " ".join(checks).split(), "check")):
        for name in set(re.findall(words, text)) - set(known):
            problems.append(f"{page.name}: there is no {what} {name}")


def shell(command, folder, seconds=SECONDS, home=None):
    environment = {**os.environ, "HOME": str(home or folder), "NO_COLOR": "1"}
    return subprocess.run(["bash", "-c", command], cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=seconds)


def masked(text):
    for pattern, shown in MASKED:
        text = re.sub(pattern, shown, text, flags=re.M)
    return text.strip()


def shows(shown, printed):
    if shown.startswith("[...]\n"):
        return printed.endswith(shown.removeprefix("[...]\n"))
    return shown == printed


def check_console(page, block, folder):
    for command, shown in re.findall(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", block, re.M):
        if command.startswith("TERM="):
            continue
        printed = masked(shell(command, folder).stdout)
        if not shows(masked(shown), printed):
            problems.append(f"{page.name}: {command}\nprints\n{printed}\nand not\n{masked(shown)}")


def try_block(page, block, *where, **home):
    done = shell("set -e\n" + block, *where, **home)
    if done.returncode != 0:
        problems.append(f"{page.name}: this fails\n{block}{done.stdout}")


def check_blocks(page, text):
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        (folder / "run.sh").write_text(f'#!/bin/sh\nexec "{ROOT}/run.sh" "$@"\n')
        (folder / "run.sh").chmod(0o755)
        shutil.copytree(ROOT / "sample", folder / "sample")
        (folder / "myphone").symlink_to("sample")
        for language, block in re.findall(r"^```(\w*)\n(.*?)^```", text, re.M | re.S):
            named = re.match(r"# ([a-z]+\.(?:sh|py))\n", block)
            if named or language == "xml":
                (folder / (named[1] if named else "wideseek.xml")).write_text(block)
            elif language == "console":
                check_console(page, block, folder)
            elif language == "sh" and "./run.sh" in block:
                if "./run.sh init" in block:
                    (folder / "myphone").unlink()
                try_block(page, block, folder)
            elif language == "sh" and "scripts/build.sh" in block:
                try_block(page, block, ROOT, BUILDING_SECONDS, home=folder)


for page in PAGES:
    print(page.relative_to(ROOT), flush=True)
    text = page.read_text()
    check_links(page, text)
    check_paths(page, text)
    check_programs(page, text)
    check_names(page, text)
    check_blocks(page, text)
for problem in problems:
    print(f"check-docs: {problem}", file=sys.stderr)
sys.exit(1 if problems else 0)
