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
filter=${WIDESEEK_BITE_FILTER:--LdapServer*:LdapModule*:LdapSettings*:SteppedKernel*:LiveKernel*:ContactIndex*:ContactFiles*:Files*:Formats*:Threads.Type*}

# Description | file of the module | what sed does to it
faults=$(
    cat <<'END'
a page is sent although a newer request waits | WideseekActionRequest.cpp | s/m_uSerialNext == m_uSerial && strKey == m_strKey/strKey == m_strKey/
what is stopped is still current | WideseekActionRequest.cpp | s/return !m_bStopped && m_uSerialNext/return m_uSerialNext/
a detach leaves the object for late answers | WideseekActionRequest.cpp | s/if (m_pLastCallback == pCallback)/if (m_pLastCallback == nullptr)/
a detach leaves the object of the waiting request | WideseekActionRequest.cpp | s/if (m_requestNext.GetCallback() == pCallback)/if (m_requestNext.GetCallback() == nullptr)/
a detach leaves the object of the request being worked | WideseekActionRequest.cpp | s/if (m_pCallback == pCallback)/if (m_pCallback == nullptr)/
a detach takes late answers from who asked before | WideseekActionRequest.cpp | /::Detach/,/^}/s/m_requestNext.ForgetCallback();/& m_pLastCallback = nullptr;/
a request that was refused gets a page | WideseekController.cpp | s/    m_pSearchAction->TakeBack(uSerial);/    (void)uSerial;/
a request keeps the position of the one before | WideseekActionRequest.cpp | s/m_page.SetPosition(m_requestNext.GetFromIndex()/m_page.SetPosition(m_page.GetFromIndex()/
a request leaves no object for late answers | WideseekActionRequest.cpp | s/m_pLastCallback = m_pCallback;//
a reset leaves the last key | WideseekActionRequest.cpp | /::ResetKey/,/^}/s/m_strLastKey.clear();//
a reset does not reach a running search | WideseekActionRequest.cpp | s/++m_uResets;//
a key is marked as searched whatever was reset | WideseekActionRequest.cpp | s/if (m_uFilledAt == m_uResets)/if (m_uFilledAt <= m_uResets)/
a late answer goes to nobody | WideseekActionRequest.cpp | /::MyRestoreCallback/,/^}/s/m_pCallback = m_pLastCallback;//
every key narrows | WideseekAction.cpp | s/!strLastKey.empty() && strKey.compare/strKey.compare/
an overtaken search counts as searched | WideseekAction.cpp | /::MyReSearch(/,/^}/s/MyForgetSearched();//
a stopped search asks on | WideseekAction.cpp | /::MyReSearch(/,/^}/s/if (MyIsStopped())/if (MyIsStopped() \&\& strKey.empty())/
the timer is armed for the first search only | WideseekAction.cpp | s/^    m_bTimerWaiting = false;//
the timer is armed at every check | WideseekAction.cpp | s/bSearching && !m_bTimerWaiting/bSearching/
the timer is never armed | WideseekAction.cpp | s/bSearching && !m_bTimerWaiting/bSearching \&\& m_bTimerWaiting/
the timer goes on | WideseekAction.cpp | /::MyKillTimer/,/^}/s/m_timerCheck.KillTimer();//
an expiry acts on a timer armed since | WideseekAction.cpp | s/if (uArmings != MyArmings())/if (uArmings > MyArmings())/
the timer clears the recent calls away | WideseekAction.cpp | /::MyDealTimeout()/,/^}/s/if (m_strKey.empty())/if (m_strKey.empty() \&\& !m_bTimerWaiting)/
late sources keep their place | WideseekAction.cpp | s/splice(m_listResultData.end(), listSearching)/splice(m_listResultData.begin(), listSearching)/
a page does not wait for the rows before it | WideseekAction.cpp | s/GetFromIndex()) + GetSearchCount()/GetFromIndex())/
an answer for another key is taken | WideseekAction.cpp | s/ || strConverted != m_strKey//
a failed answer is taken | WideseekAction.cpp | s/pAction->GetResultCode() != 0 || //
what was given up keeps its key | WideseekAction.cpp | /::MyGiveUp/,/^}/s/ResetKey();//
what was given up keeps its timer | WideseekAction.cpp | /::MyGiveUp/,/^}/s/MyKillTimer();//
an answer that there is no memory for is taken by half | WideseekAction.cpp | /::OnTaskActionCallback(/,/^}/s/MyGiveUp();//
a row that there is no memory for is left out of its page | WideseekPage.cpp | /::Append/,/^}/s/Assign(.*/try { WideseekItemData row; Assign(row, item); m_pageNext.listItem.push_back(row); } catch (...) {}/
what one source found is forgotten by the next | WideseekActionSource.cpp | /::MyMergeRows/,/^}/s/MyAddFilter(\*place.itRow);/(void)place;/
what was noted for the next source is lost | WideseekAction.cpp | /::MyReSearch(/,/^}/s/MyFinishMerge(/MyCheckResult(/
what was noted of an answer is lost | WideseekAction.cpp | /::OnTaskActionCallbackLdap/,/^}/s/MyFinishMerge(/MyCheckResult(/
a contact's number is noted twice | WideseekFilterWalk.cpp | s/!(\*m_vecNoted.back().itRow < item)/item < *m_vecNoted.back().itRow/
the rows in front of a page count twice | WideseekActionPage.cpp | s/bucket.GetShown() - uInFront/bucket.GetShown()/
LDAP's former rows stay in the filter | WideseekActionSource.cpp | /::MyReSearchLdap/,/^}/s/MyForgetRows(listDropped);//
a dropped row stays in the filter when most stay | WideseekActionSource.cpp | s/^            MyRemoveFilter(\*place.itRow);/(void)place;/
a filter begun anew forgets what is left | WideseekActionSource.cpp | /::MyForgetRows/,/^}/s/MyAddFilter(\*place.itRow);/(void)place;/
a filter begun anew keeps what was dropped | WideseekActionSource.cpp | /::MyForgetRows/,/^}/s/m_walk.Clear();//
a source without memory counts as searched | WideseekActionSource.cpp | s/^            ResetKey();//
a failed source is shown | WideseekActionSource.cpp | s/bFound ? RESULT_STATE_DONE : RESULT_STATE_FAILED/RESULT_STATE_DONE/
a row is looked for beside the last one only | WideseekFilterWalk.cpp | s/^    return m_mapFilter.lower_bound(item);/    return it;/
a cleared filter is looked at where it was | WideseekFilterWalk.cpp | /::Clear/,/^}/s/m_itPlace = m_mapFilter.end();//
the second number's row shows the first one | WideseekRows.cpp | s/row.strNumber = \*arrNumber\[i\];/row.strNumber = *arrNumber[i == 1 ? 0 : i];/
a row forgets the contact's third number | WideseekRows.cpp | s/arrNumber\[i == 2 ? 1 : 2\]/arrNumber[1]/
calls without name and number are offered | WideseekActionRecent.cpp | s/!row.IsBlank()/row.strExtra2 != "-"/
a page has a row too many | WideseekRows.h | s/iIndex < m_iEnd/iIndex <= m_iEnd/
a total is one too small | WideseekRows.h | s/return m_iTotal;/return m_iTotal - 1;/
a narrowed page lacks its first row | WideseekActionNarrow.cpp | /::MyNarrowRows/,/^}/s/CPageCut cut(iFirst, /CPageCut cut(iFirst + 1, /
rows of one name match alike | WideseekRows.h | s/return (a.strNumber == b.strNumber2 .*/return true ||/
contacts of one number match alike | WideseekRows.h | s/if (a.strName != b.strName)/if (a.strName.empty())/
a page's row keeps what a former page had there | WideseekPage.cpp | s/row.strExtra2 = item.strExtra2;//
narrowing leaves what it drops in the filter | WideseekActionNarrow.cpp | s/MyForgetRows(listDropped);//
narrowing does not note its key | WideseekActionNarrow.cpp | /::MySearchFromResult/,/^}/s/MyMarkSearched(strKey);//
a refused narrowing leaves the shorter key | WideseekActionNarrow.cpp | /::MySearchFromResult/,/^}/s/MyForgetSearched();//
a refused narrowing that asked nobody forgets its rows' key | WideseekActionNarrow.cpp | s/if (MyFindResultByType(SOURCE_ID_LDAP) != nullptr)/if (!strKey.empty())/
narrowing goes through failed sources | WideseekActionNarrow.cpp | /::MyNarrowRows/,/^}/s/!= RESULT_STATE_DONE/== RESULT_STATE_SEARCHING/
a request gets a second page | WideseekActionPage.cpp | /::MySend/,/^}/s/    m_pCallback = nullptr;//
a stop leaves the search running | WideseekController.cpp | s/pController->m_pSearchAction->Stop();//
a stop takes the controller away before the search ends | WideseekController.cpp | s/pController->m_pSearchAction->Stop();//; s/^    MyDestroy(pController);/if (pController->m_pSearchAction != nullptr) { pController->m_pSearchAction->Stop(); } &/
a reload does not reach a running search | WideseekController.cpp | /const bool bRead/,/^}/s/    ResetKey();//
a half of the controller is kept | WideseekController.cpp | s/ (m_pInst->m_pModel == nullptr || m_pInst->m_pSearchAction == nullptr)/ m_pInst->m_pModel == nullptr \&\& false/
the handler is registered with a lock held | WideseekController.cpp | s/            ++m_pController->m_iUses;/& if (bCreate) { MyListen(); }/
a list that there is no memory for is read as empty | WideseekModel.cpp | s/    const bool bRead = ReadItems(listItem);/bool bRead = false; try { bRead = ReadItems(listItem); } catch (...) { listItem.clear(); }/
disabled sources come first | WideseekModel.cpp | s/PRIORITY_DISABLED = 255/PRIORITY_DISABLED = 0/
sources behind a disabled one take part | WideseekModel.cpp | /::GetEnableCfgList/,/^}/s/break;/continue;/
END
)

run() { # the tests; prints the first one that failed
    # A broken search may wait for ever or take all memory.
    (ulimit -v 8000000 && timeout "$patience" "$build/wideseek_tests" --gtest_filter="$filter" --gtest_fail_fast &&
        timeout "$patience" "$build/wideseek_memory_tests" --gtest_fail_fast) >"$build/tests.log" 2>&1 && return 0
    local status=$? failed
    failed=$(sed -n 's/^\[  FAILED  \] \([^ ,]*\).*/\1/p' "$build/tests.log" | head -n 1)
    if [[ -z $failed ]]; then # it took the process down
        failed="$(sed -n 's/^\[ RUN      \] //p' "$build/tests.log" | tail -n 1), which ended with status $status"
    fi
    echo "$failed"
    return 1
}

# What the last fault has left alone is not compiled again.
restore() {
    local file
    for file in "$source/$module"/*.{h,cpp}; do
        cmp -s "$file" "$copy/$module/${file##*/}" || cp "$file" "$copy/$module/"
    done
}

compile() {
    cmake --build "$build" -j "$(nproc)" --target wideseek_tests wideseek_memory_tests >"$build/build.log" 2>&1
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
