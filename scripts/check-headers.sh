#!/usr/bin/env bash
# Checks that every header compiles alone with GCC and Clang (those a phone compiles: also without exceptions), and that
# no part of the repository includes what it must not know.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

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
        echo "check-headers: $folder may not include what is listed above (scripts/check-headers.sh has the rules)" >&2
        failed=yes
    fi
}

check_includes platform "\"platform/[A-Za-z0-9]+\.h\"|$standard"
check_includes "$module" "\"(platform|$module)/[A-Za-z0-9]+\.h\"|<pugixml\.hpp>|$standard"
check_includes host "\"((host|platform)/[A-Za-z0-9/]+|$shared_records)\.h\"|<.*>"
check_includes tools "\"((tools|host|platform)/[A-Za-z0-9/]+|$for_callers)\.h\"|<.*>"

# Compiles one header as all there is of a source file.
compile_alone() {
    local compiler=$1 header=$2 options=()
    [[ $header == host/* ]] || options=(-fno-exceptions)
    "$compiler" -std=c++20 -Wall -Wextra -Wpedantic -Werror "${options[@]}" -I. -fsyntax-only -include "$header" \
        -x c++ /dev/null || { echo "check-headers: $header does not compile alone with $compiler ${options[*]}" && exit 1; }
}
export -f compile_alone

for compiler in g++ clang++; do
    find platform app host -name '*.h' -print0 |
        xargs -0 -P "$(nproc)" -I{} bash -c 'compile_alone "$0" "$1"' "$compiler" {} >"$work/$compiler" 2>&1 || failed=yes
    cat "$work/$compiler" >&2
done
[[ $failed == no ]]
