// What a search holds of one source: its bucket, with one row per number. Plain data, but for the
// rows' places.
#pragma once

#include <cstddef>
#include <list>
#include <string>
#include <vector>

namespace NS_WS {

// One candidate row: a contact's name and the number that this row stands for.
struct ItemData {
    std::string strName;
    std::string strNumber;
    std::string strNumber2; // the same contact's other numbers
    std::string strNumber3;
    std::string strNameKey; // the name in keypad digits, matched by digit keys
    std::string strExtra1;  // passed through to the caller
    std::string strExtra2;
    int iExtra = -1;

    ItemData() = default;

    // A row of a name and a number alone.
    ItemData(const std::string& strTheName, const std::string& strTheNumber)
        : strName(strTheName), strNumber(strTheNumber) {}

    // By name, then by number, byte by byte; nothing else takes part. This order is the duplicate rule.
    bool operator<(const ItemData& other) const {
        const int iName = strName.compare(other.strName);
        return iName != 0 ? iName < 0 : strNumber < other.strNumber;
    }

    // Neither name nor number: such a row is never shown.
    bool IsBlank() const { return strName.empty() && strNumber.empty(); }
};

// How far a source has come with the key.
enum ResultState {
    RESULT_STATE_NONE = -1,
    RESULT_STATE_DONE = 0,      // answered; the rows are final. Only these buckets are shown
    RESULT_STATE_PENDING = 2,   // not asked yet
    RESULT_STATE_SEARCHING = 3, // asked, not answered
    RESULT_STATE_FAILED = 4,    // its rows are not shown
};

// Where the rows of a bucket lie, which its next narrowing walks along (WideseekRowWalk.h). Only walks look at them.
class CRowPlaces {
public:
    CRowPlaces() = default;
    CRowPlaces(const CRowPlaces&) = delete;
    CRowPlaces& operator=(const CRowPlaces&) = delete;

    // For whoever changes the list: nothing is known of it any more.
    void Forget() noexcept { m_vecPlace.clear(); }

private:
    friend class CRowWalk;
    std::vector<std::list<ItemData>::iterator> m_vecPlace; // of all rows in their order, or empty: not known
};

// The rows of one source, in the order in which it offered them.
struct ResultData {
    std::list<ItemData> listItem;
    std::string strType; // source id
    int iState = RESULT_STATE_NONE;
    CRowPlaces places;      // of listItem's rows; forgotten by whoever changes listItem
    std::size_t uBlank = 0; // how many of them are blank; no source of today offers such a row

    // How many rows are shown, if the state lets any be shown.
    std::size_t GetShown() const { return listItem.size() - uBlank; }
};

} // namespace NS_WS
