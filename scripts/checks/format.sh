#!/usr/bin/env bash
# Checks that the sources are as clang-format writes them; with --fix, makes them so.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

mapfile -t sources < <(find abi app bench examples host platform platform_check tests tools \( -name '*.h' -o -name '*.cpp' \) 2>/dev/null | sort)
if [[ ${1:-} == --fix ]]; then
    exec clang-format --style=file -i "${sources[@]}"
fi

differing=$(clang-format --style=file --dry-run "${sources[@]}" 2>&1 | sed -n 's/^\([^ ]*:[0-9]*\):[0-9]*: warning: .*/\1/p' | uniq)
if [[ -n $differing ]]; then
    printf '%s\n' "$differing" >&2
    echo "check-format: these lines are not as clang-format writes them; scripts/checks/format.sh --fix rewrites them" >&2
    exit 1
fi
