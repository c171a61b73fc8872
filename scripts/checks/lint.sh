#!/usr/bin/env bash
# Runs clang-tidy, with the checks of .clang-tidy, on the sources that ship; arguments limit it to files whose paths match.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

mkdir -p build/clang
cmake --preset clang >build/clang/lint.log || { cat build/clang/lint.log >&2 && exit 1; }
(($#)) || set -- "^$PWD/(app|host|platform_check|tools)/"
if ! run-clang-tidy -quiet -p build/clang -j "$(nproc)" "$@" >build/clang/lint.log 2>&1; then
    sed -E 's/\x1b\[[0-9;]*m//g; /^[0-9]+ warnings? generated/d; /^clang-tidy|^Enabled checks|^ *$/d' build/clang/lint.log >&2
    echo "check-lint: clang-tidy complains of what is listed above" >&2
    exit 1
fi
