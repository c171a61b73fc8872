#!/usr/bin/env -S python3 -B
"""Searches with the fuzzy finder of docs/tool.md, by the very lines that stand there, in a real terminal."""
import re
from pathlib import Path

from checking import ROOT, TOOL, finish
from terminal import open_terminal, press, see

SOURCES = Path(__file__).resolve().parents[2]
page = (SOURCES / "docs/tool.md").read_text()
found = re.search(r"^```sh\n(# found\.sh\n.*?)^```", page, re.M | re.S)
finder = re.search(r"^```\n(: \| fzf .*?)^```", page, re.M | re.S)
if not found or not finder:
    finish("docs/tool.md has no fuzzy finder")
(ROOT / "found.sh").write_text(found[1])
(ROOT / "finder.sh").write_text(finder[1])
(ROOT / "run.sh").write_text('#!/bin/sh\nexec "$WIDESEEK_TOOL" "$@"\n')
(ROOT / "run.sh").chmod(0o755)

open_terminal(f"WIDESEEK_ROOT={SOURCES / 'sample'}", f"WIDESEEK_TOOL={TOOL}", "FZF_DEFAULT_OPTS=")
press(text="clear; bash finder.sh\n")
see("^> Jürgen Müllenbeck(.|\n)*10/10", "the recent calls")
press(text="nez")
see("^  Consuelo Ibáñez(.|\n)*^> José Ángel Núñez Ledesma(.|\n)*2/2(.|\n)*^> nez", "what was typed, and both rows of it")
press("Up", "Enter")
see(r"^\+16175550116$", "the number that was chosen")
finish()
