#!/usr/bin/env bash
# Builds the library alone, installs it, moves what was installed, and builds the smallest phone against it outside the
# tree: found by CMake, and by pkg-config in one command, without type information. Both must search, the phone must keep
# the rules of the contract, a caller under the undefined behaviour sanitizer must run on it, and no header more than
# wanted may be installed.
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
    "$module"/WideseekRequest.h platform/*.h platform_check/PlatformCheck.h)
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
read -ra options <<<"-std=c++17 $flags $(pkg-config --cflags --libs wideseek)"
quietly "$compiler" -fno-exceptions -fno-rtti -o "$work/by-pkg-config" "$example"/*.cpp "${options[@]}"

LD_LIBRARY_PATH=$(dirname "$(find "$prefix" -name libWideseek.so)")
export LD_LIBRARY_PATH
cd "$example"
for phone in "$work/by-cmake/smallest_phone" "$work/by-pkg-config"; do
    "$phone" 5 530 fox zz >"$work/pages"
    diff - "$work/pages" <<'PAGES' || { echo "consumer_check: $phone finds something else (>) than is there (<)" >&2 && exit 1; }
typed "5"
  asked: the local directory for "5"
  asked: LDAP for "5": it will answer that there is none
  page for "5": 2 of 2
    Ann Lee 5301
    Jed Fox 2202
typed "530"
  asked: LDAP for "530": it will answer that there is none
  page for "530": 1 of 1
    Ann Lee 5301
typed "fox"
  asked: the local directory for "fox"
  asked: LDAP for "fox": it will answer that there is none
  page for "fox": 1 of 1
    Jed Fox 2202
typed "zz"
  asked: the local directory for "zz"
  asked: LDAP for "zz": it will answer that there is none
  page for "zz": 0 of 0
PAGES
done

"$work/by-cmake/smallest_phone_check" >"$work/report" || { cat "$work/report" >&2 && exit 1; }
grep -q '^platform check: [6-9][0-9] held, 0 failed' "$work/report" || { cat "$work/report" >&2 && exit 1; }

# Such a caller looks at the type of every object that it is given. The phone's objects are those that CMake made.
cat >"$work/caller.cpp" <<'CALLER'
#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekCBData.h"
#include "app/Gui/Logic/Wideseek/WideseekController.h"
#include "app/Gui/Logic/Wideseek/modWideseek.h"

int main() {
    NS_WS::WideseekCfgListData list;
    const bool bListed = NS_WS::CWideseekController::GetInstance()->GetEnableCfgList(&list);
    NS_WS::CWideseekAction* pAction = Wideseek_CreateSearchAction();
    const bool bEmpty = pAction->GetResultData().listItem.empty();
    Wideseek_DestroySearchAction(pAction);
    NS_WS::CWideseekCBData* pPage = Wideseek_CreateSearchCBAction();
    const bool bPage = pPage->GetTypeId() == NS_WS::CWideseekCBData::TYPE_ID && pPage->GetTotalCount() == 0;
    Wideseek_DestroySearchCBAction(pPage);
    NS_WS::CWideseekController::ReleaseInstance();
    return bListed && bEmpty && bPage ? 0 : 1;
}
CALLER
quietly "$compiler" -fsanitize=undefined -fno-sanitize-recover=all -o "$work/caller" "$work/caller.cpp" \
    "$work"/by-cmake/CMakeFiles/smallest_phone.dir/{Messaging,Sources}.cpp.o "${options[@]}"
quietly "$work/caller"
