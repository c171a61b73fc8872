#include "tests/support/KeyedRows.h"

#include "platform/CommonAPI.h"

#include <algorithm>
#include <climits>
#include <set>
#include <string_view>
#include <utility>

namespace test {

namespace {

constexpr std::string_view mark = "k:";

// The row is of a search for key, or was found for a beginning of key and still matches it.
bool belongsTo(const WideseekItemData& row, const std::string& key) {
    if (!row.strName.starts_with(mark)) {
        return false;
    }
    const std::string_view foundFor = std::string_view(row.strName).substr(mark.size());
    // A row matches by its contact's other number too, which is its own with a zero more.
    const bool matches =
        CommonAPI_IsSearchByT9(key)
            ? (row.strNumber + "0 " + CommonUnits_ToKeyString(row.strName)).find(key) != std::string::npos
            : CommonAPI_StringMatch(row.strName, key, false, STRING_MATCH_CONTAINS) != 0;
    return !foundFor.empty() && key.starts_with(foundFor) && row.strNumber.starts_with(foundFor) && matches;
}

} // namespace

bool KeyedSource::search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) {
    for (char i = '1'; i <= '4'; ++i) {
        const std::string number = key + m_digit + i;
        hits.PushBack({std::string(mark) + key, number, number + "0", i == '3' ? number : "", ""});
    }
    const bool fails = failIn > 0 && --failIn == 0;
    error = fails ? "its turn to fail" : "";
    return !fails;
}

int KeyedCalls::outgoing(OxVector<GeneralDirItemData>& calls, int from, int count, std::string&) {
    constexpr int all = 3;
    for (int i = std::max(from, 0); i < all && i - from < count; ++i) {
        calls.PushBack(new GeneralDirItemData{"recent", std::to_string(i), ""});
    }
    return all;
}

std::string typedFor(const std::string& digits, int from, int count) {
    return std::string(static_cast<std::size_t>(from), ' ') + digits +
           std::string(static_cast<std::size_t>(count), ' ');
}

std::string judge(const WideseekListData& page) {
    const auto wrong = [&](const std::string& what) {
        return what + ": key \"" + page.strKey + "\", from " + std::to_string(page.iFromIndex) + ", count " +
               std::to_string(page.iSearchCount) + ", total " + std::to_string(page.iTotalCount) + ", " +
               std::to_string(page.listItem.size()) + " rows, the first " +
               (page.listItem.empty() ? "none" : page.listItem.front().strName + " " + page.listItem.front().strNumber);
    };
    const std::string typed = CommonAPI_TrimString(page.strKey, " ", TRIM_TYPE_BOTH_ENDS);
    const std::string key = CommonAPI_StringConvert(typed, STRING_CONVERT_SEARCH_KEY);
    // A late LDAP answer's page has the key without blanks.
    if (page.strKey != typed && page.strKey != typedFor(typed, page.iFromIndex, page.iSearchCount)) {
        return wrong("the position of another request");
    }
    const long long count = page.iSearchCount == 0 ? INT_MAX : page.iSearchCount;
    const long long rows = std::clamp<long long>(static_cast<long long>(page.iTotalCount) - page.iFromIndex, 0, count);
    if (rows != static_cast<long long>(page.listItem.size())) {
        return wrong("not the rows that its position and total name");
    }
    std::set<std::pair<std::string, std::string>> seen;
    for (const WideseekItemData& row : page.listItem) {
        if (key.empty() ? row.strName != "recent" : !belongsTo(row, key)) {
            return wrong("the row " + row.strName + " " + row.strNumber + " of another search");
        }
        if (!seen.emplace(row.strName, row.strNumber).second) {
            return wrong("the row " + row.strName + " " + row.strNumber + " twice");
        }
    }
    return {};
}

} // namespace test
