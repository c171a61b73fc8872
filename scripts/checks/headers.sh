#!/usr/bin/env bash
# Checks that every header compiles alone with GCC and Clang (those a phone compiles: also without exceptions), and that
# no part of the repository includes what it must not know.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

module=app/Gui/Logic/Wideseek
standard='<[a-z_0-9]+>'

# The headers of the module that others may know: those of its callers, and the records that it shares with the phone.
shared_records="$module/(WideseekData|OxContainer)"
for_callers="$module/(modWideseek|WideseekExport|WideseekData|OxContainer|WideseekCBData|WideseekCfgData|WideseekController)"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=no

# Says which includes in the sources below FOLDER are none of the allowed ones (an extended regular expression).
check_includes() {
    local folder=$1 allowed=$2
    [[ -d $folder ]] || return 0
    if grep -rnE '^ *# *include' --include='*.h' --include='*.cpp' "$folder" | grep -vE "include ($allowed)" >&2; then
        echo "check-headers: $folder may not include what is listed above (scripts/checks/headers.sh has the rules)" >&2
        failed=yes
    fi
}

check_includes platform "\"platform/[A-Za-z0-9]+\.h\"|$standard"
check_includes "$module" "\"(platform|$module)/[A-Za-z0-9]+\.h\"|<pugixml\.hpp>|$standard"
check_includes platform_check "\"((platform|platform_check)/[A-Za-z0-9]+|$shared_records)\.h\"|<unistd\.h>|$standard"
check_includes host "\"((host|platform)/[A-Za-z0-9/]+|$shared_records)\.h\"|<.*>"
check_includes tools "\"((tools|host|platform)/[A-Za-z0-9/]+|$for_callers)\.h\"|<.*>"

# The rooms of host/, each with those that it may include besides itself: only such as stand above it. host/ itself, the
# phone as a whole, is the room ".".
rooms='
text
kernel
sources       text
files         text
settings      text files
formats       text files sources
contacts/packed sources
contacts      text files sources formats contacts/packed
remote/http   text
remote/refresh files settings remote/http
remote        text sources files formats contacts remote/http remote/refresh
ldap/server   text files settings sources
ldap          kernel sources
.             text kernel sources files settings contacts remote/http remote/refresh remote ldap/server ldap
platform      text kernel sources .
'
known=' '
while read -r room others; do
    [[ -n $room ]] || continue
    for other in $others; do
        if [[ $known != *" $other "* ]]; then
            echo "check-headers: the table of rooms lets host/$room include host/$other, which stands below it" >&2
            failed=yes
        fi
    done
    known+="$room "
    # host/text/Fold.h is in the room text, host/Phone.h in the room "."
    allowed=$(for each in $room $others; do [[ $each == . ]] && echo host || echo "host/$each"; done | paste -sd '|')
    if find "host/$room" -maxdepth 1 -name '*.h' -print0 -o -maxdepth 1 -name '*.cpp' -print0 |
        xargs -0 grep -nE '^ *# *include "host/' | grep -vE "include \"($allowed)/[A-Za-z0-9]+\.h\"" >&2; then
        echo "check-headers: host/$room may include $allowed, not what is listed above; turn the include round, or" \
            "move what is needed to a room that both may include" >&2
        failed=yes
    fi
done <<<"$rooms"
while IFS= read -r folder; do
    room=${folder#host/}
    if [[ $known != *" ${room/#host/.} "* ]]; then
        echo "check-headers: $folder is no room of the table in scripts/checks/headers.sh; add it there" >&2
        failed=yes
    fi
done < <(find host -name '*.h' -printf '%h\n' | sort -u)

# Compiles one header as all there is of a source file. What the module has for itself may catch exceptions; what a phone
# compiles may not.
compile_alone() {
    local compiler=$1 header=$2 options=()
    [[ $header == host/* || $header == */WideseekInternal.h ]] || options=(-fno-exceptions)
    "$compiler" -std=c++20 -Wall -Wextra -Wpedantic -Werror "${options[@]}" -I. -fsyntax-only -include "$header" \
        -x c++ /dev/null || { echo "check-headers: $header does not compile alone with $compiler ${options[*]}" && exit 1; }
}
export -f compile_alone

for compiler in g++ clang++; do
    find platform platform_check app host -name '*.h' -print0 |
        xargs -0 -P "$(nproc)" -I{} bash -c 'compile_alone "$0" "$1"' "$compiler" {} >"$work/$compiler" 2>&1 || failed=yes
    cat "$work/$compiler" >&2
done
[[ $failed == no ]]
