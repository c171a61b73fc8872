#!/usr/bin/env bash
# Builds the library alone, installs it, moves what was installed, and builds the smallest phone against it outside the
# tree: once found by CMake, once by pkg-config. Both must search, and no header more than wanted may be installed.
set -euo pipefail

source=$PWD
export PKG_CONFIG_PATH
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The compiler and the sanitizers are those of the build that is being tested.
cached() {
    sed -n "s/^$1:[^=]*=//p" "$WIDESEEK_BUILD/CMakeCache.txt"
}
compiler=$(cached CMAKE_CXX_COMPILER)
sanitize=$(cached WIDESEEK_SANITIZE)
flags=${sanitize:+-fsanitize=${sanitize//;/,}}

quietly() {
    "$@" >"$work/log" 2>&1 || { cat "$work/log" >&2 && echo "consumer_check: failed: $*" >&2 && exit 1; }
}

library=$WIDESEEK_BUILD/library-alone
quietly cmake -G Ninja -S "$source" -B "$library" -DWIDESEEK_HOST=OFF -DCMAKE_BUILD_TYPE=Release \
    "-DCMAKE_CXX_COMPILER=$compiler" "-DWIDESEEK_SANITIZE=$sanitize"
quietly cmake --build "$library"
grep -o 'libWideseek.so.* bytes stripped' "$work/log" || echo "(not linked anew)"
quietly cmake --install "$library" --prefix "$work/staged"
mv "$work/staged" "$work/firmware"
prefix=$work/firmware

module=app/Gui/Logic/Wideseek
wanted=("$module"/{modWideseek,OxContainer,WideseekAction,WideseekBucket,WideseekCBData,WideseekCfgData}.h
    "$module"/{WideseekController,WideseekData,WideseekExport,WideseekFilterWalk,WideseekPage}.h
    "$module"/WideseekRequest.h platform/*.h)
diff <(printf '%s\n' "${wanted[@]}" | sort) <(cd "$prefix/include/wideseek" && find . -type f -printf '%P\n' | sort) || {
    echo "consumer_check: other headers are installed (>) than are wanted (<)" >&2
    exit 1
}
while IFS= read -r header; do
    quietly "$compiler" -std=c++17 -Wall -Wextra -Werror -fno-exceptions -I"$prefix/include/wideseek" -fsyntax-only \
        -x c++ -include "$header" /dev/null
done < <(find "$prefix/include" -name '*.h')

example=$work/example
cp -r "$source/examples/smallest_phone" "$example"
quietly cmake -G Ninja -S "$example" -B "$work/by-cmake" "-DCMAKE_PREFIX_PATH=$prefix" "-DCMAKE_CXX_COMPILER=$compiler" \
    "-DCMAKE_CXX_FLAGS=$flags"
quietly cmake --build "$work/by-cmake"
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name wideseek.pc)")
# Words of pkg-config are options of the compiler.
# shellcheck disable=SC2046
quietly "$compiler" -std=c++20 $flags -fno-exceptions -o "$work/by-pkg-config" "$example"/*.cpp \
    $(pkg-config --cflags --libs wideseek)

mkdir -p "$work/config/data"
echo '<root_wideseek><item id_name="local_directory_search" enable="1" priority="1"/>
      <item id_name="ldap_search" enable="1" priority="2"/></root_wideseek>' >"$work/config/data/wideseek.xml"
cd "$work"
LD_LIBRARY_PATH=$(dirname "$(find "$prefix" -name libWideseek.so)")
export LD_LIBRARY_PATH
for phone in by-cmake/smallest_phone ./by-pkg-config; do
    "$phone" 5 53 530 fox zz >pages
    diff - pages <<'PAGES' || { echo "consumer_check: $phone finds something else (>) than is there (<)" >&2 && exit 1; }
5: 2, Ann Lee 5301, Jed Fox 2202
53: 2, Ann Lee 5301, Jed Fox 2202
530: 1, Ann Lee 5301
fox: 1, Jed Fox 2202
zz: 0
PAGES
done
