#!/usr/bin/env bash
# Prints the symbols that a libWideseek.so asks of the phone, as the linker knows them: those that it needs and that no
# library which it is linked with gives.
#
#   scripts/checks/platform-symbols.sh LIBRARY
set -euo pipefail
export LC_ALL=C

names() {
    nm -D --format=posix "$@" | awk '{ sub(/@.*/, "", $1); print $1 }'
}

# Weak ones ("w") may be missing.
comm -23 <(nm -D --undefined-only --format=posix "$1" | awk '$2 == "U" { sub(/@.*/, "", $1); print $1 }' | sort -u) \
    <(ldd "$1" | grep -o '/[^ ]*' | while IFS= read -r file; do names --defined-only "$file"; done | sort -u)
