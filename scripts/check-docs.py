#!/usr/bin/env python3
"""Checks that README.md and docs/ tell the truth about what a reader can try: links lead somewhere, paths and scripts that
are named exist, commands of sh blocks that use ./run.sh succeed, and console blocks print what they show.

Blocks run as on a reader's machine, each page of documents in a folder and with a home of its own. For the console blocks
behind it, an xml block is wideseek.xml, and a block that begins with a file's name ("# names.sh") is that file. Times
differ from run to run and are not compared; behind a line "[...]" the comparison goes on with the next line that is shown.
What needs a terminal (a command that sets TERM) is left out."""
import os, re, shutil, subprocess, sys, tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
PAGES = [ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md"))]
FOLDERS = "app|bench|cmake|docs|examples|host|platform|sample|scripts|tests|tools"
MASKED = [(r"\d+(\.\d+)? ms", "- ms"), (r'"ms":[\d.]+', '"ms":-'), (r" +\d+\.\d$", " -"), (r"  +ms$", " ms")]
SECONDS = 60
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


def shell(command, folder):
    environment = {**os.environ, "HOME": str(folder), "NO_COLOR": "1"}
    return subprocess.run(["bash", "-c", command], cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=SECONDS)


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
                done = shell("set -e\n" + block, folder)
                if done.returncode != 0:
                    problems.append(f"{page.name}: this fails\n{block}{done.stdout}")


for page in PAGES:
    print(page.relative_to(ROOT), flush=True)
    text = page.read_text()
    check_links(page, text)
    check_paths(page, text)
    check_blocks(page, text)
for problem in problems:
    print(f"check-docs: {problem}", file=sys.stderr)
sys.exit(1 if problems else 0)
