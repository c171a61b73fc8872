#!/usr/bin/env bash
# Measures the library and prints the tables of docs/performance.md: times, ratios, instructions, bytes. About
# twelve minutes on two cores; the machine should have nothing else to do.
#
#   scripts/bench.sh            everything
#   scripts/bench.sh --write    the same, and writes the tables and the plot into docs/performance.md and .svg
#   scripts/bench.sh --quick    a look, in about two minutes with building: fewer contacts, fewer keys
#
# What is measured is kept in build/bench.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

results=build/bench
programs=build/release
contacts=(1000 10000 100000)
counted=(1000 10000)
on_terminal=(1000 100000)
typed=200
least_time=0.02
write=()

for argument in "$@"; do
    case $argument in
    --quick) contacts=(1000 10000) counted=(1000) on_terminal=(1000) typed=20 least_time=0.005 ;;
    --write) write=(--write docs/performance.md docs/performance.svg) ;;
    *)
        sed -n '2,/^set/{/^#/s/^# \{0,1\}//p}' "$0" >&2
        exit 2
        ;;
    esac
done

step() {
    printf '%(%T)T  %s\n' -1 "$*" >&2
}

# The workloads that are compared, at these sizes.
compared_workloads() {
    local name against rest size
    while read -r name against rest; do
        [[ $name != *ToPage ]] || continue # whose end callgrind cannot be told
        for size in "$@"; do
            printf '%s\n' "$name/$size" "$against/$size"
        done
    done <"$results/pairs.txt" | sort -u
}

# Runs one workload once and prints its name and the instructions of what it measures.
count_instructions() {
    local name=$1 out
    out=$(mktemp)
    if ! valgrind --tool=callgrind --toggle-collect=measured_region --callgrind-out-file="$out" \
        "$programs/wideseek_bench" --benchmark_filter="^$name\$" --benchmark_min_time=0 >"$out.log" 2>&1; then
        cat "$out.log" >&2
        return 1
    fi
    printf '%s %s\n' "$name" "$(sed -n 's/^\(totals\|summary\): //p' "$out" | head -n 1)"
    rm -f "$out" "$out.log"
}
export -f count_instructions
export programs

mkdir -p "$results"
scripts/install-deps.sh run bench
scripts/build.sh release

step "single workloads, timed"
# In turns: whatever else the machine does for some seconds would otherwise meet one of two that are compared.
"$programs/wideseek_bench" --pairs >"$results/pairs.txt"
"$programs/wideseek_bench" --benchmark_filter="/($(IFS='|' && echo "${contacts[*]}"))(/|\$)" \
    --benchmark_min_time="$least_time" --benchmark_repetitions=5 --benchmark_enable_random_interleaving=true \
    --benchmark_out="$results/workloads.json" --benchmark_out_format=json \
    >/dev/null 2>"$results/workloads.log" || { cat "$results/workloads.log" >&2 && exit 1; }

step "single workloads, instructions counted"
# They are the same whatever else runs, so as many at a time as there are cores.
compared_workloads "${counted[@]}" | xargs -d '\n' -P "$(nproc)" -I{} bash -c 'count_instructions "$1"' _ {} |
    sort >"$results/instructions.txt"

step "typing sessions"
"$programs/wideseek_session_bench" --contacts "${contacts[@]}" --typed "$typed" --json "$results/sessions.json" \
    >"$results/sessions.txt"

step "keys on a terminal"
python3 scripts/bench/keys.py "$programs/wideseek" "$results/keys.json" "${on_terminal[@]}"

step "the library's size"
cmake "-DSTRIP=$(command -v strip)" "-DLIBRARY=$programs/libWideseek.so" -P cmake/PrintStrippedSize.cmake \
    >"$results/size.txt" 2>&1

python3 scripts/bench/report.py "$results" "${write[@]}"
step "done"
