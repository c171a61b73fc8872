// Rows of a search: what the sources offer made into rows, which rows a key matches, and which of them a page shows.
// Pure functions; any thread.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekBucket.h"
#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "platform/Ldap.h"

#include <algorithm>
#include <cstddef>
#include <list>
#include <string>

namespace NS_WS {

// Append a row for each number of a contact that is not empty, in the order of its numbers; each row holds the other
// two numbers as well. A contact without a name or without a number gives no row.
void AppendContact(std::list<ItemData>& listRow, DirectorySearchData& contact); // whose strings are taken
void AppendBuddy(std::list<ItemData>& listRow, const PresenceInfo& buddy);      // its first three phone numbers

// Appends the row of an LDAP answer, unless it has no number.
void AppendAnswer(std::list<ItemData>& listRow, const NS_TA::LdapResultItem& answer);

// The row of a call, named by its number where it has no name. Blank for a call without both.
ItemData RowOfCall(const GeneralDirItemData& call);

// Whether two rows of one source have the same name and the same numbers, in the orders in which a contact is made into
// rows. What matches one of them then matches the other.
inline bool IsSameContact(const ItemData& a, const ItemData& b) {
    if (a.strName != b.strName) {
        return false;
    }
    return (a.strNumber == b.strNumber2 && a.strNumber2 == b.strNumber && a.strNumber3 == b.strNumber3) ||
           (a.strNumber == b.strNumber3 && a.strNumber2 == b.strNumber2 && a.strNumber3 == b.strNumber) ||
           (a.strNumber == b.strNumber2 && a.strNumber2 == b.strNumber3 && a.strNumber3 == b.strNumber);
}

enum SearchMode {
    SEARCH_MODE_T9 = 1,   // digits: matched with the numbers, without "+", and with the keypad form of the name
    SEARCH_MODE_TEXT = 2, // text: matched with the name
};

// How a converted key is matched.
SearchMode SearchModeOf(const std::string& strKey);

// Whether a row matches a converted key. A mode that is none of the above matches nothing.
bool IsMatch(const ItemData& item, const std::string& strKey, int iSearchMode);

// The cut of a page. All rows are offered to it in their order; it counts those that are shown at all and says which of
// them the page holds:
//
//     CPageCut cut(iFirst, iEnd); // the page's first row, and the one behind its last
//     if (cut.Offer(row)) { ... append it }
//     cut.GetTotal();
class CPageCut {
public:
    CPageCut(int iFirst, int iEnd) : m_iFirst(iFirst), m_iEnd(iEnd) {}

    // True when the row is on the page. A blank row is not shown and not counted.
    bool Offer(const ItemData& item) {
        if (item.IsBlank()) {
            return false;
        }
        const int iIndex = m_iTotal++;
        return m_iFirst <= iIndex && iIndex < m_iEnd;
    }

    // How many rows come in front of the page from now on, and whether it holds none of all that come. Such rows need
    // not be offered: to count those that are shown will do.
    std::size_t GetLead() const { return static_cast<std::size_t>(std::max(m_iFirst - m_iTotal, 0)); }
    bool IsComplete() const { return m_iTotal >= m_iEnd; }
    void Count(std::size_t uShownRows) { m_iTotal += static_cast<int>(uShownRows); }

    // How many rows there are in all, of those offered or counted so far.
    int GetTotal() const { return m_iTotal; }

private:
    const int m_iFirst;
    const int m_iEnd;
    int m_iTotal = 0;
};

} // namespace NS_WS
