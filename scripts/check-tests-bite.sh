#!/usr/bin/env bash
# Shows that the tests notice faults: makes one fault at a time in a copy of the module, runs the tests on it, and prints
# which test caught it. Fails when a fault goes unnoticed. It takes some minutes, so it is run by hand.
#
#   scripts/check-tests-bite.sh            all faults
#   scripts/check-tests-bite.sh WORD...    those whose description contains one of the words
#
# The copy and its build stay in build/bite, which may be removed.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

source=$PWD
copy=$PWD/build/bite/tree
build=$PWD/build/bite/build
module=app/Gui/Logic/Wideseek
# What runs on the module. The tests of the host alone would only cost time.
filter=${WIDESEEK_BITE_FILTER:--LdapServer*:LdapModule*:LdapSettings*:SteppedKernel*:LiveKernel*:ContactIndex*:ContactFiles*:Files*:Threads.Type*}

# Description | file of the module | what sed does to it
faults=$(
    cat <<'END'
a page is sent although a newer request waits | WideseekAction.cpp | s/m_requestNext.uSerial == m_uSerial && strKey == m_strKey/strKey == m_strKey/
what is stopped is still current | WideseekAction.cpp | s/return !m_bStopped && m_requestNext/return m_requestNext/
a detach leaves the object for late answers | WideseekAction.cpp | s/if (m_pLastCallback == pCallback)/if (m_pLastCallback == nullptr)/
a detach leaves the object of the waiting request | WideseekAction.cpp | s/if (m_requestNext.pCallback == pCallback)/if (m_requestNext.pCallback == nullptr)/
a detach leaves the object of the request being worked | WideseekAction.cpp | s/if (m_pCallback == pCallback)/if (m_pCallback == nullptr)/
a request keeps the position of the one before | WideseekAction.cpp | s/m_iFromIndex = m_requestNext.iFromIndex;//
a request leaves no object for late answers | WideseekAction.cpp | s/m_pLastCallback = m_pCallback;//
a reset leaves the last key | WideseekAction.cpp | /::ResetKey/,/^}/s/m_strLastKey.clear();//
a reset does not reach a running search | WideseekAction.cpp | s/++m_uResets;//
a key is marked as searched whatever was reset | WideseekAction.cpp | s/if (m_uFilledAt == m_uResets)/if (m_uFilledAt <= m_uResets)/
every key narrows | WideseekAction.cpp | s/!strLastKey.empty() && strKey.compare/strKey.compare/
what one source found is forgotten by the next | WideseekActionMerge.cpp | s/MyAddFilter(\*place.itRow, true);/(void)place;/
a row is looked for beside the last one only | WideseekActionMerge.cpp | s/^    return m_mapFilter.lower_bound(item);/    return it;/
a cleared filter is looked at where it was | WideseekActionMerge.cpp | s/^    m_itFilter = m_mapFilter.end();//
the second number's row shows the first one | WideseekActionMerge.cpp | s/row.strNumber = \*arrNumber\[i\];/row.strNumber = *arrNumber[i == 1 ? 0 : i];/
a row forgets the contact's third number | WideseekActionMerge.cpp | s/arrNumber\[i == 2 ? 1 : 2\]/arrNumber[1]/
calls without name and number are offered | WideseekActionRecent.cpp | s/(pCall->strName.empty() && pCall->strNumber.empty())/pCall->strExtra == "-"/
a page has a row too many | WideseekActionResult.cpp | /::MyCopyResult/,/^}/s/iIndex < iEnd/iIndex <= iEnd/
a page's row keeps what a former page had there | WideseekActionResult.cpp | /::MyAppendRow/,/^}/s/row.strExtra2 = item.strExtra2;//
a narrowed page lacks its first row | WideseekActionNarrow.cpp | /::MyNarrowRows/,/^}/s/iFirst <= iIndex/iFirst < iIndex/
a total is one too small | WideseekActionResult.cpp | /::MyCopyResult/,/^}/s/iIndex + 1/iIndex/
narrowing leaves what it drops in the filter | WideseekActionNarrow.cpp | s/MyRemoveFilter(listDropped);//
a dropped row stays in the filter when most stay | WideseekActionMerge.cpp | s/^            MyRemoveFilter(\*place.itRow);/(void)place;/
a filter begun anew forgets what is left | WideseekActionMerge.cpp | s/^            MyAddFilter(\*place.itRow);/(void)place;/
a filter begun anew keeps what was dropped | WideseekActionMerge.cpp | /::MyRemoveFilter(const std::list/,/^}/s/MyClearFilter();//
rows of one name match alike | WideseekActionNarrow.cpp | s/return (a.strNumber == b.strNumber2 .*/return true ||/
contacts of one number match alike | WideseekActionNarrow.cpp | s/if (a.strName != b.strName)/if (a.strName.empty())/
narrowing does not note its key | WideseekActionNarrow.cpp | /::MySearchFromResult/,/^}/s/MyMarkSearched(strKey);//
a refused narrowing leaves the shorter key | WideseekActionNarrow.cpp | /::MySearchFromResult/,/^}/s/MyForgetSearched();//
narrowing goes through failed sources | WideseekActionNarrow.cpp | /::MyNarrowRows/,/^}/s/!= RESULT_STATE_DONE/== RESULT_STATE_SEARCHING/
the timer is armed at every check | WideseekActionResult.cpp | s/bSearching && !m_bTimerWaiting/bSearching/
the timer is armed for the first search only | WideseekActionSource.cpp | s/^    m_bTimerWaiting = false;//
the timer is never armed | WideseekActionResult.cpp | s/bSearching && !m_bTimerWaiting/bSearching \&\& m_bTimerWaiting/
the timer goes on | WideseekActionResult.cpp | /::MyDealTimeoutMessage/,/^}/s/m_timerCheck.KillTimer();//
the timer clears the recent calls away | WideseekActionResult.cpp | /::MyDealTimeoutMessage/,/^}/s/if (m_strKey.empty())/if (m_strKey.empty() \&\& !m_bTimerWaiting)/
late sources keep their place | WideseekActionResult.cpp | s/splice(m_listResultData.end(), listSearching)/splice(m_listResultData.begin(), listSearching)/
a page does not wait for the rows before it | WideseekActionResult.cpp | s/GetFromIndex()) + GetSearchCount()/GetFromIndex())/
a request gets a second page | WideseekActionResult.cpp | /::MySend/,/^}/s/    m_pCallback = nullptr;//
a late answer goes to nobody | WideseekActionResult.cpp | /::MyRestoreCallback/,/^}/s/m_pCallback = m_pLastCallback;//
a source without memory counts as searched | WideseekActionResult.cpp | s/^            ResetKey();//
a failed source is shown | WideseekActionSource.cpp | s/bFound ? RESULT_STATE_DONE : RESULT_STATE_FAILED/RESULT_STATE_DONE/
LDAP's former rows stay in the filter | WideseekActionSource.cpp | s/MyRemoveFilter(listDropped);//
an answer for another key is taken | WideseekActionSource.cpp | s/ || strConverted != m_strKey//
a failed answer is taken | WideseekActionSource.cpp | s/pAction->GetResultCode() != 0 || //
an overtaken search counts as searched | WideseekActionSource.cpp | /::MyReSearch(/,/^}/s/MyForgetSearched();//
a stopped search asks on | WideseekActionSource.cpp | s/if (MyIsStopped())/if (MyIsStopped() \&\& strKey.empty())/
a stop leaves the search running | WideseekController.cpp | s/pController->m_pSearchAction->Stop();//
a stop takes the controller away before the search ends | WideseekController.cpp | s/pController->m_pSearchAction->Stop();//; s/pController->MyFinal();/if (pController->m_pSearchAction != nullptr) { pController->m_pSearchAction->Stop(); } &/
a reload does not reach a running search | WideseekController.cpp | /const bool bRead/,/^}/s/    ResetKey();//
disabled sources come first | WideseekModel.cpp | s/PRIORITY_DISABLED = 255/PRIORITY_DISABLED = 0/
sources behind a disabled one take part | WideseekModel.cpp | /::GetEnableCfgList/,/^}/s/break;/continue;/
END
)

run() { # the tests; prints the first one that failed
    # A broken search may wait for ever or take all memory.
    (ulimit -v 8000000 && timeout "$patience" "$build/wideseek_tests" --gtest_filter="$filter" --gtest_fail_fast) \
        >"$build/tests.log" 2>&1 && return 0
    local status=$? failed
    failed=$(sed -n 's/^\[  FAILED  \] \([^ ,]*\).*/\1/p' "$build/tests.log" | head -n 1)
    if [[ -z $failed ]]; then # it took the process down
        failed="$(sed -n 's/^\[ RUN      \] //p' "$build/tests.log" | tail -n 1), which ended with status $status"
    fi
    echo "$failed"
    return 1
}

restore() { cp "$source/$module"/*.cpp "$copy/$module/"; }

compile() {
    cmake --build "$build" -j "$(nproc)" --target wideseek_tests >"$build/build.log" 2>&1
}

scripts/install-deps.sh run test
mkdir -p "$copy" "$build"
# Only what differs is copied, so that only that is compiled.
git ls-files -z -co --exclude-standard | while IFS= read -r -d '' file; do
    if [[ -f $file ]] && ! cmp -s "$file" "$copy/$file"; then
        mkdir -p "$copy/$(dirname "$file")"
        cp "$file" "$copy/$file"
    fi
done
find "$copy" -type f -printf '%P\0' | while IFS= read -r -d '' file; do
    [[ -f $file ]] || rm "$copy/$file"
done
cmake -G Ninja -S "$copy" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 -DWIDESEEK_BENCH=OFF >"$build/build.log" 2>&1 &&
    compile || { tail -n 40 "$build/build.log" >&2; exit 1; }
patience=600 # seconds, until it is known how long the tests take
SECONDS=0
if ! first=$(run); then
    echo "Without a fault the tests fail already: $first (see $build/tests.log)" >&2
    exit 1
fi
patience=$((60 + 4 * SECONDS))

survivors=0
count=0
while IFS='|' read -r what file change; do
    what=${what% }
    file=${file// /}
    if (($#)) && ! grep -qF "$(printf '%s\n' "$@")" <<<"$what"; then
        continue
    fi
    count=$((count + 1))
    restore
    sed -i -e "${change# }" "$copy/$module/$file"
    if cmp -s "$source/$module/$file" "$copy/$module/$file"; then
        result="NOT APPLIED: $file has changed; write the fault anew"
        survivors=$((survivors + 1))
    elif ! compile; then
        result="DOES NOT COMPILE: see $build/build.log; write the fault anew"
        survivors=$((survivors + 1))
    elif caught=$(run); then
        result="NOT CAUGHT"
        survivors=$((survivors + 1))
    else
        result="caught by $caught"
    fi
    printf '%-58s - %s\n' "$what" "$result"
done <<<"$faults"
restore
echo "$((count - survivors)) of $count faults were caught"
((survivors == 0))
