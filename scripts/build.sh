#!/usr/bin/env bash
# Configures and builds one preset, quietly: one line when there is something to build, the compiler's words when it
# fails, nothing otherwise.
#
#   scripts/build.sh PRESET [TARGET...]
set -euo pipefail
cd "$(dirname "$0")/.."

preset=$1
shift
build=build/$preset
mkdir -p "$build"

# Two runs at the same time take turns.
exec 9>"$build/.lock"
flock 9

fail() {
    printf 'build: %s\n' "$@" >&2
    exit 1
}

# A tree that was moved or copied brings a cache that names its old place.
if [[ -f $build/CMakeCache.txt ]] && ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" "$build/CMakeCache.txt"; then
    rm -rf "$build/CMakeCache.txt" "$build/CMakeFiles" "$build/build.ninja"
fi

log=$build/build.log
announced=no
if [[ ! -f $build/build.ninja ]]; then
    echo "Building (preset $preset, the first time; about a minute) ..." >&2
    announced=yes
fi
# CMake is to see packages that were installed after it last looked.
if [[ ! -f $build/build.ninja || CMakePresets.json -nt $build/build.ninja || /var/lib/dpkg/status -nt $build/build.ninja ]]; then
    if ! cmake --preset "$preset" >"$log" 2>&1; then
        cat "$log" >&2
        fail "CMake could not set up the build in $build; its words are above" \
            "scripts/install-deps.sh installs what is missing; remove $build to begin anew"
    fi
fi

announce_first_step() {
    local line
    while IFS= read -r line; do
        if [[ $announced == no && $line == \[*\]\ @(Building|Linking)* ]]; then
            echo "Building what has changed (preset $preset) ..." >&2
            announced=yes
        fi
    done
}

if ! cmake --build "$build" -j "$(nproc)" ${1:+--target "$@"} 2>&1 | tee "$log" | announce_first_step; then
    # From the first error on, without the steps that went well.
    { sed -n '/^FAILED:\|Error/,$p' "$log" | grep . || tail -n 20 "$log"; } | grep -v '^\[[0-9]*/' | head -n 200 >&2 || true
    fail "the build in $build failed; the whole log is $log" \
        "after a change of compilers or packages, remove $build and run again"
fi
