// What the phone's search screen knows: the typed key, the rows that are shown, the row under the cursor. It paints
// nothing and calls no library; its owner hands on what it asks for and brings the pages.
//
//     model.type("5");
//     while (const auto request = model.takeRequest()) { /* Wideseek_SearchUnion */ }
//     model.takePage(page);    // then takeRequest again: it may need more rows
//     paint(model.rows(), model.line());
//
// The rows shown change all at once, when those for the wanted place are here; until then the old ones stay. A page
// that nobody waits for (a late one, or the first one after coming back to the screen) leaves the cursor on the same
// name and number in the same line of the screen, wherever that row stands by then. The library hands out recent calls
// by ten; they are asked for until they fill the screen, and shown as they come.
//
// One thread. Indices count from 0.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "tools/wideseek/phone/KeyLine.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wideseek {

class PhoneModel {
public:
    struct Request {
        std::string key;
        int from = 0;
        int count = 0;
    };

    // How many lines there are for rows; less than 1 counts as 1. Recent calls leave one of them to their heading. The
    // cursor stays on its row.
    void setHeight(int lines);

    // ---- the key; each change starts with the first row ----

    // Puts what was typed (one UTF-8 character) before the caret, as it is, or in digits entry as the keypad digit that
    // bears it. A key that is full stays.
    void type(std::string_view character);

    // A key that stays as it is, because the caret alone moves, does not start anew.
    void edit(LineEdit edit);

    void clear();

    // The same key anew, from the first row on.
    void startOver();

    // Digits entry on or off, for what is typed from now on.
    void switchEntry() { m_digits = !m_digits; }

    const std::string& key() const { return m_typed.text(); }
    const KeyLine& typed() const { return m_typed; }
    bool isDigitsEntry() const { return m_digits; }

    // What is typed, as it would be dialled; empty when it is no number.
    std::string typedNumber() const;

    // The same where nothing has been found, and nothing but the number is left to be dialled; else empty.
    std::string numberWithoutRows() const;

    // The key is one that offers the recent calls: empty, or nothing but blanks.
    bool isRecent() const;

    // ---- the cursor; without effect while the first page of the key is missing ----

    void moveBy(int rows);
    void moveByPages(int pages);
    void moveToFirst();
    void moveToLast();

    // ---- pages ----

    // What is to be asked for now, if anything; it is taken as asked.
    std::optional<Request> takeRequest();

    // The screen was away: what is on the way will not come, and rows may have changed.
    void comeBack();

    // False: the page answers an older request and is left alone.
    bool takePage(const WideseekListData& page);

    // The key has had a page.
    bool hasPage() const { return m_known != Known::nothing; }

    // More rows or a better total have been asked for, or will be.
    bool isAwaitingPage() const;

    // The rows shown are those of the key and the place asked for.
    bool isSettled() const;

    // ---- what is shown ----

    const std::vector<WideseekItemData>& rows() const { return m_shown; }
    const std::string& rowsKey() const { return m_shownKey; } // which key they match, as it is searched for
    int firstRow() const { return m_shownTop; }               // index of the first of rows()
    int total() const { return m_page.total; }
    int line() const { return m_line; } // of the cursor, in rows()

    // The row under the cursor; null when there is none, or not yet.
    const WideseekItemData* selected() const;

private:
    struct Window {
        int from = 0;
        int count = 0;
        int total = 0;
        std::vector<WideseekItemData> rows;
    };

    // Of the key's rows, so far.
    enum class Known {
        nothing,
        something, // there may be further or other rows, so they are asked for once more
        enough,
    };

    // The row under the cursor while it is looked for in the pages to come.
    struct Followed {
        WideseekItemData row;
        int reach = 0; // how far from its old place it may be
    };

    Request ask(Request request);
    bool hasAskedEnough() const;
    void takeCalls(const WideseekListData& page);
    std::optional<int> missingCall() const;
    int pageHeight() const;
    bool covers(int from, int count) const;
    Request windowWanted() const;
    std::optional<int> find(const WideseekItemData& row) const;
    void follow(const WideseekItemData& row, int growth);
    void place(int selected, int top);
    void show();

    KeyLine m_typed;
    bool m_digits = false;
    int m_height = 1;

    int m_top = 0; // the row wanted in the first line
    int m_line = 0;

    std::optional<Request> m_asked; // last, for the key
    bool m_waiting = false;         // for the page of it
    Window m_page;                  // as it came last; of an earlier key while nothing is known
    Known m_known = Known::nothing;
    std::optional<Followed> m_followed;

    std::vector<WideseekItemData> m_shown;
    std::string m_shownKey;
    int m_shownTop = 0;
};

} // namespace wideseek
