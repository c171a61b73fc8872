#!/usr/bin/env bash
# Compares the ABI with that of the last release, which is kept in abi/: what libWideseek.so offers to programs, and what
# it asks of the phone, with every type that both sides know. What is added to the first is welcome; any other change
# breaks what is installed somewhere. docs/versions.md says what to do then.
#
#   scripts/checks/abi.sh            compares
#   scripts/checks/abi.sh --update   keeps the ABI as it is now; part of a release
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

if [[ $(uname -m) != x86_64 ]]; then
    echo "check-abi: the ABI is kept for x86_64; compare it there" >&2
    exit 1
fi
scripts/build.sh dev Wideseek wideseek_host

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Of the workstation phone, which has what every phone has, what the library asks for: symbols, and the operations of the
# presence library, which are found by their places in its table.
asked=$(scripts/checks/platform-symbols.sh build/dev/libWideseek.so | paste -sd '|')
asked+='|_ZN23CPresenceContactManager.*'
cat abi/left_out.ini - >"$work/platform.ini" <<END
[suppress_function]
  symbol_name_not_regexp = ^($asked)\$
  drop = yes
[suppress_variable]
  symbol_name_not_regexp = ^($asked)\$
  drop = yes
END

# Writes the ABI of a library, in few words: without places, and types by what they are made of.
write_abi() {
    local library=$1 left_out=$2 file=$3
    abidw --suppressions "$left_out" --exported-interfaces-only --no-show-locs \
        --no-corpus-path --no-comp-dir-path --no-parameter-names --no-elf-needed --type-id-style hash \
        --out-file "$file" "$library"
}

write_abi build/dev/libWideseek.so abi/left_out.ini "$work/libWideseek.abi"
write_abi build/dev/libwideseek_host.so "$work/platform.ini" "$work/platform.abi"
g++ -std=c++20 -g -shared -fPIC -I. -o "$work/list_elements.so" abi/ListElements.cpp
write_abi "$work/list_elements.so" abi/left_out.ini "$work/list_elements.abi"
if [[ ${1:-} == --update ]]; then
    mv "$work"/{libWideseek,platform,list_elements}.abi abi/
    exit
fi

soname() {
    sed -n "s/.*soname='\([^']*\)'.*/\1/p" "$1" | head -n 1
}
if [[ $(soname "$work/libWideseek.abi") != "$(soname abi/libWideseek.abi)" ]]; then
    echo "$(soname "$work/libWideseek.abi") stands beside $(soname abi/libWideseek.abi) and breaks nothing."
    exit
fi

failed=no
compare() {
    local name=$1 what=$2
    shift 2
    if ! abidiff --suppressions abi/not_compared.ini "$@" "abi/$name.abi" "$work/$name.abi" >"$work/words"; then
        grep -v '^$' "$work/words" >&2
        printf 'check-abi: %s\n' "$what differs from the last release as listed above" >&2
        failed=yes
    fi
}
compare libWideseek "what libWideseek.so offers" --no-added-syms
compare list_elements "what the lists of both hold"
compare platform "what libWideseek.so asks of the phone"
if [[ $failed == yes ]]; then
    printf 'check-abi: %s\n' "a program or phone built for that release would break; leave what is there as it is and add" \
        "to it, or make this the next major version: docs/versions.md has the steps" >&2
    exit 1
fi
