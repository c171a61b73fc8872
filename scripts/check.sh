#!/usr/bin/env bash
# The one command that checks everything. Each check may be run alone.
#
#   scripts/check.sh             all checks, run and reported by ctest
#   scripts/check.sh NAME        one check, with its own words
#   scripts/check.sh NAME NAME.. these checks, run and reported by ctest
#
#   format     sources are as clang-format writes them          (checks/format.sh)
#   headers    headers stand alone; nobody includes across      (checks/headers.sh)
#   symbols    libWideseek.so shows and needs what it should    (checks/symbols.sh)
#   abi        what is installed goes on working                (checks/abi.sh)
#   hardening  memory errors meet guards in what is shipped     (checks/hardening.sh)
#   docs       what the documents name and show is so, and the reference can be made  (checks/docs.py, picture.py)
#   lint       clang-tidy                                       (checks/lint.sh)
#   tests      all tests, built by GCC                          (test.sh)
#   clang      all tests, built by Clang with its thread safety analysis
#   asan       all tests, with AddressSanitizer, LeakSanitizer and UndefinedBehaviorSanitizer
#   tsan       all tests that have threads, with ThreadSanitizer
#   fuzz       each fuzz target for a few seconds
#   run        everything builds for release, run.sh shows its demonstration, and has nothing to do the second time; a
#              short typing session finds what other searches find
#
# By name only, as they take long:
#
#   packages   the Debian packages are clean, can be installed, used and removed      (checks/packages.sh)
#   arm        everything builds for the 32-bit ARM phone; in qemu, all tests but those with a server; the smallest phone is
#              cross-built and runs                           (checks/arm-consumer.sh)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

checks=(format headers symbols abi hardening docs lint tests clang asan tsan fuzz run)
by_name=(packages arm)

# Builds a preset and runs its tests, but those that match a pattern. ThreadSanitizer cannot work where addresses are
# randomised as far as newer kernels do it, hence no randomisation where that may be switched off.
test_preset() {
    local as_is=()
    setarch -R true 2>/dev/null && as_is=(setarch -R)
    # The checks that run the tool or build against the library say nothing new here; ./test.sh runs them.
    "${as_is[@]}" scripts/build.sh "$1" wideseek_test_programs
    "${as_is[@]}" ctest --preset "$1" -E "_check\$${2:+|$2}"
}

# All targets run at the same time, each with a share of the processors.
check_fuzz() {
    local target name failed=no
    declare -A running
    : "${WIDESEEK_FUZZ_SECONDS:=20}"
    scripts/build.sh asan wideseek_fuzz_targets
    for target in tests/fuzz/*_fuzz.cpp; do
        name=$(basename "$target" .cpp)
        mkdir -p "build/fuzz/$name"
        "build/asan/$name" -max_total_time="$WIDESEEK_FUZZ_SECONDS" -timeout=60 -verbosity=0 -print_final_stats=1 \
            -artifact_prefix="build/fuzz/$name-" "build/fuzz/$name" "tests/fuzz/corpus/${name%_fuzz}" \
            >"build/fuzz/$name.log" 2>&1 &
        running[$name]=$!
    done
    for name in "${!running[@]}"; do
        if wait "${running[$name]}"; then
            echo "$name: $(sed -n 's/^stat::number_of_executed_units: *//p' "build/fuzz/$name.log") inputs"
        else
            cat "build/fuzz/$name.log" >&2
            echo "check: $name fails; build/asan/$name FILE runs an input alone, those that fail are build/fuzz/$name-*" >&2
            failed=yes
        fi
    done
    [[ $failed == no ]]
}

check_run() {
    local words
    scripts/install-deps.sh run bench
    scripts/build.sh release
    ./run.sh </dev/null
    words=$(./run.sh 2>&1 >/dev/null </dev/null)
    if [[ -n $words ]]; then
        printf 'run.sh has nothing to do the second time, yet it says:\n%s\n' "$words" >&2
        return 1
    fi
    build/release/wideseek_session_bench --contacts 1000 --typed 5
}

check_arm() {
    scripts/install-deps.sh arm
    scripts/arm-sysroot.sh
    scripts/build.sh arm
    grep 'bytes stripped' build/arm/build.log || true
    ctest --preset arm
    scripts/checks/arm-consumer.sh
}

run_check() {
    case $1 in
    format | headers | symbols | abi | hardening | lint | packages) "scripts/checks/$1.sh" ;;
    docs)
        ./run.sh --version >/dev/null # builds
        scripts/checks/docs.py
        scripts/build.sh library reference
        scripts/picture.py --check
        ;;
    tests) ./test.sh ;;
    clang | asan) test_preset "$1" ;;
    # What has one thread only stays out; where it plays two, its order of locks looks like theirs.
    tsan) test_preset "$1" '^(Orders|Oracle|Random)' ;;
    fuzz) check_fuzz ;;
    run) check_run ;;
    arm) check_arm ;;
    esac
}

for name in "$@"; do
    if [[ " ${checks[*]} ${by_name[*]} " != *" $name "* ]]; then
        printf 'check: there is no check "%s"; the checks are: %s\n' "$name" "${checks[*]} ${by_name[*]}" >&2
        exit 2
    fi
done

scripts/install-deps.sh run test check
if (($# == 1)); then
    run_check "$1"
else
    (($#)) || set -- "${checks[@]}"
    cmake -G Ninja -S scripts/checks -B build/checks "-DWIDESEEK_CHECKS=$(IFS=';' && echo "$*")" >/dev/null
    exec ctest --test-dir build/checks --output-on-failure --no-tests=error
fi
