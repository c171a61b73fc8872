#!/usr/bin/env bash
# Counts what keys cost on the 32-bit ARM phone: builds for it, runs wideseek_phone_bench in qemu, and prints a table of
# instructions per key, and the bytes that a row takes there. The counts are the same at every run.
#
#   scripts/bench-arm.sh [CONTACTS]       the default is 1000
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

contacts=${1:-1000}
triplet=arm-linux-gnueabihf
results=build/bench-arm

scripts/install-deps.sh run arm
scripts/arm-sysroot.sh
mkdir -p "$results"
{
    cmake --preset arm -B build/arm-bench -DWIDESEEK_BENCH=ON -DWIDESEEK_TESTS=OFF &&
        cmake --build build/arm-bench --target wideseek_phone_bench &&
        g++ -std=c++20 -O2 -fPIC -shared -o "$results/count.so" bench/emulator/InstructionCount.cpp
} >"$results/log" 2>&1 || { cat "$results/log" >&2 && exit 1; }

qemu-arm -plugin "$results/count.so" -d plugin -D "$results/counts.txt" -L "/usr/$triplet" \
    -E "LD_LIBRARY_PATH=build/arm-bench:build/arm-sysroot/usr/lib/$triplet" \
    build/arm-bench/wideseek_phone_bench "$contacts" >"$results/keys.txt"

# Each key lies between two counts.
paste - - <"$results/counts.txt" | paste "$results/keys.txt" - | awk -F '\t' -v contacts="$contacts" '
    BEGIN { print "| " contacts " contacts: key | rows | instructions |\n|---|---:|---:|" }
    $3 { print "| `" $1 "`" ($1 == last ? " again" : "") " | " $2 " | " $4 - $3 " |"; last = $1 }
    !$3 { print "| " $1 " | | " $2 " |" }'
