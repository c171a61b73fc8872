#!/usr/bin/env python3
"""Prints a header with its plain comments as doxygen takes them; doxygen calls it for each header.

The headers' comments are written for who reads the header, and plain: a comment in front of a declaration, or of several
that no blank line parts, or behind one; the header's own at its top, which is also that of a first class that has none. Comments with a blank line
behind them belong to nothing, and stay as they are. Every line stays the line that it is, so that warnings name the
header's own."""
import re, sys

COMMENT = re.compile(r"( *)//(?!/)( .*|)$")
TRAILING = re.compile(r"( *(?![} #]|(?:class|struct) \w+;).*?\S)( +)// (.*)$")


CLASS = re.compile(r"(class|struct) .*\{$")


def group_ends(lines, start):
    """Where the declarations that begin in line start end, when they are several one-line ones; else None."""
    end = start
    while end < len(lines) and re.match(r" *[^ /}~][^~]*[;}]( *//.*)?$", lines[end]):
        end += 1
    return end - 1 if end - start > 1 else None


def documented(lines, path):
    first_class = next((i for i, line in enumerate(lines) if CLASS.match(line)), 0)
    if first_class and not lines[first_class - 1]:
        lines[first_class - 1] = rf"/// \copydoc {path}"
    top = next(i for i, line in enumerate(lines) if not line.startswith("//"))
    out = ["///" + line[2:] for line in lines[:top]]
    i = top
    while i < len(lines):
        if lines[i] == "#pragma once" and i == top:
            out.append(r"/// \file")
        elif COMMENT.match(lines[i]):
            end = next(k for k in range(i, len(lines) + 1) if k == len(lines) or not COMMENT.match(lines[k]))
            if end == len(lines) or not lines[end].strip():
                out += lines[i:end]
            else:
                block = [COMMENT.sub(r"\1///\2", line) for line in lines[i:end]]
                last = group_ends(lines, end)
                if last is not None and "//" not in "".join(lines[end:last + 1]):
                    block[0] = "/**@{*/ " + block[0].strip()
                    lines[last] += " /**@}*/"
                out += block
            i = end
            continue
        elif TRAILING.match(lines[i]):
            code, blanks, _ = TRAILING.match(lines[i]).groups()
            column = len(code + blanks)
            out.append(TRAILING.sub(r"\1\2///< \3", lines[i]))
            while i + 1 < len(lines) and re.match(rf" {{{column}}}// ", lines[i + 1]):
                i += 1
                out.append(lines[i].replace("// ", "///< ", 1))
        else:
            out.append(lines[i])
        i += 1
    return out


with open(sys.argv[1], encoding="utf-8") as header:
    print("\n".join(documented(header.read().split("\n"), sys.argv[1])), end="")
