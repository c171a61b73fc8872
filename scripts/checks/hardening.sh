#!/usr/bin/env bash
# Checks that what is shipped was built to withstand memory errors. It reads this from the binaries themselves, as a flag
# may be lost on its way to the compiler:
#  - what the loader has resolved is read-only from then on: full RELRO, and all of it bound at the start;
#  - functions with arrays look after their stack frame, and what writes formatted text knows the room there is
#    (libWideseek.so writes none, and shows nothing else of fortified calls);
#  - the tool runs at any address.
#
#   scripts/checks/hardening.sh           the release build, which it builds
#   scripts/checks/hardening.sh FOLDER    the binaries that lie in this folder, also those for another processor
set -euo pipefail
export LC_ALL=C
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

folder=${1:-build/release}
(($#)) || scripts/build.sh release Wideseek wideseek_host wideseek
failed=no

# Complains that BINARY lacks WHAT unless a line of TEXT matches PATTERN.
check() {
    local binary=$1 what=$2 text=$3 pattern=$4
    if ! grep -qE "$pattern" <<<"$text"; then
        printf 'check-hardening: %s lacks %s\n' "$binary" "$what" >&2
        failed=yes
    fi
}

for name in libWideseek.so libwideseek_host.so wideseek; do
    binary=$folder/$name
    [[ -f $binary ]] || { printf 'check-hardening: there is no %s\n' "$binary" >&2 && exit 1; }
    dynamic=$(readelf -dW "$binary")
    needed=$(readelf --dyn-syms -W "$binary" | awk '$7 == "UND" { sub(/@.*/, "", $8); print $8 }')
    check "$binary" "RELRO, by which its tables are read-only once they are filled (-z relro)" \
        "$(readelf -lW "$binary")" '^ *GNU_RELRO '
    check "$binary" "immediate binding, without which RELRO covers half of its tables (-z now)" "$dynamic" \
        'BIND_NOW|Flags:.* NOW'
    check "$binary" "the stack protector (-fstack-protector-strong)" "$needed" '^__stack_chk_fail$'
    if grep -qE 'printf(_chk)?$' <<<"$needed"; then
        check "$binary" "fortified calls (_FORTIFY_SOURCE)" "$needed" '_chk$'
    fi
done
check "$binary" "position independence: it is no PIE" "$dynamic" 'Flags:.* PIE'
[[ $failed == no ]]
