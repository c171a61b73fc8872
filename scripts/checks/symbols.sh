#!/usr/bin/env bash
# Checks what libWideseek.so shows and what it needs:
#  - its exported symbols are those listed in app/Gui/Logic/Wideseek/exports.txt (--update writes that list anew);
#  - it is linked with pugixml and the C++ runtime alone;
#  - what else it needs is declared in platform/.
set -euo pipefail
export LC_ALL=C
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

list=app/Gui/Logic/Wideseek/exports.txt
library=build/library/libWideseek.so
scripts/build.sh library Wideseek

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=no

complain() {
    printf 'check-symbols: %s\n' "$@" >&2
    failed=yes
}

# Symbols as a person reads them.
readable() {
    c++filt | sed -E 's/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g
                      s/\[abi:cxx11\]//g' | sort -u
}

defined_symbols() {
    nm -D --defined-only --format=posix "$@" | awk '{ sub(/@.*/, "", $1); print $1 }'
}

check_exports() {
    defined_symbols "$library" | readable >"$work/exported"
    if [[ ${1:-} == --update ]]; then
        {
            echo "# The symbols that libWideseek.so exports. Written by scripts/checks/symbols.sh --update."
            cat "$work/exported"
        } >"$list"
        return
    fi
    [[ -f $list ]] || { complain "$list is missing; scripts/checks/symbols.sh --update writes it" && return; }
    sed '/^#/d;/^$/d' "$list" | sort -u >"$work/listed"
    if ! diff -u --label "$list" --label "$library" "$work/listed" "$work/exported" >"$work/difference"; then
        grep '^[-+]' "$work/difference" >&2
        complain "the exported symbols above are missing (-) or not listed (+)" \
            "where that is meant, scripts/checks/symbols.sh --update writes the list anew"
    fi
}

check_linked_libraries() {
    local name
    for name in $(readelf -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'); do
        case $name in
        libpugixml.so.* | libstdc++.so.* | libm.so.* | libgcc_s.so.* | libc.so.* | ld-linux*) ;;
        *) complain "$library is linked with $name; only pugixml and the C++ runtime may be" ;;
        esac
    done
}

# True when each part of a symbol's qualified name is a word of one and the same header of platform/.
declared_in_platform() {
    local name=$1 header word
    name=${name#vtable for }
    name=${name#typeinfo for }
    name=${name#VTT for }
    [[ $name == operator* ]] && name="${name%%(*}(" || name=${name%%[(<]*}
    for header in platform/*.h; do
        if [[ $name == operator* ]]; then
            ! grep -qF "$name" "$header" || return 0
            continue
        fi
        for word in ${name//::/ }; do
            grep -qw -- "${word#\~}" "$header" || continue 2
        done
        return 0
    done
    return 1
}

check_needs() {
    local symbol
    scripts/checks/platform-symbols.sh "$library" | readable >"$work/asked"
    while IFS= read -r symbol; do
        declared_in_platform "$symbol" || complain "no header of platform/ declares, and no library gives: $symbol"
    done <"$work/asked"
    [[ -s $work/asked ]] || complain "$library asks nothing of the phone; is it the right library?"
}

check_exports "$@"
check_linked_libraries
check_needs
[[ $failed == no ]]
