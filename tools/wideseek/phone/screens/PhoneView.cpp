#include "tools/wideseek/phone/screens/PhoneView.h"

#include "tools/wideseek/Text.h"
#include "tools/wideseek/phone/screens/PhoneFrame.h"
#include "tools/wideseek/phone/terminal/Paint.h"

#include <algorithm>
#include <array>

namespace wideseek {

namespace {

using paint::fitted;
using paint::put;
using paint::putRight;
using paint::wide;
using paint::widthOf;

// From this height on, lines set the rows off.
constexpr int roomyHeight = 18;

// From this width on, nothing need be abbreviated.
constexpr int wideWidth = 60;

constexpr int linesAbove = 2; // the key, the keypad
constexpr int linesBelow = 3; // status, message, keys

bool isRoomy() {
    return LINES >= roomyHeight;
}

bool isBrief() {
    return COLS < wideWidth;
}

int firstListLine() {
    return linesAbove + (isRoomy() ? 1 : 0);
}

void putKeypad(int line) {
    constexpr std::array<const char*, 8> letters = {"abc", "def", "ghi", "jkl", "mno", "pqrs", "tuv", "wxyz"};
    const int gap = COLS >= wideWidth ? 2 : COLS >= 44 ? 1 : 0;
    int column = 1;
    for (std::size_t i = 0; i < letters.size(); ++i) {
        put(line, column, std::wstring(1, static_cast<wchar_t>(L'2' + static_cast<wchar_t>(i))), A_BOLD);
        put(line, column + 1, wide(letters[i]));
        column += 1 + static_cast<int>(displayWidth(letters[i])) + gap;
    }
}

// Ahead of the kind of entry, where there is room beside the key: Enter takes a row, and a number may be meant itself.
// Gives the column where it begins.
int putNumberKey(const PhoneModel& model, int end, int keyWidth) {
    constexpr std::string_view key = "F5";
    constexpr std::string_view meaning = " dials it  ";
    const int begin = end - static_cast<int>(key.size() + meaning.size());
    if (model.rows().empty() || model.typedNumber().empty() || begin <= keyWidth) {
        return end;
    }
    put(0, begin, wide(key), A_BOLD);
    put(0, begin + static_cast<int>(key.size()), wide(meaning), A_DIM);
    return begin;
}

// Gives the caret's column.
int putKey(const PhoneModel& model) {
    const std::string_view entry = model.isDigitsEntry() ? "digits 123" : "letters abc";
    const std::wstring label = wide(" Search  ");
    const int column = widthOf(label);
    const int keyWidth = widthOf(wide(model.key()));
    const int end = COLS - static_cast<int>(entry.size()) - 1;
    const int room = putNumberKey(model, end, column + keyWidth + 2) - column - 2;
    const std::wstring before = paint::tail(model.typed().beforeCaret(), room);
    const std::wstring behind = wide(model.typed().behindCaret());
    const int caret = column + widthOf(before);
    put(0, 0, label);
    put(0, column, before, A_BOLD);
    put(0, caret, paint::front(behind, room - widthOf(before)), A_BOLD);
    putRight(0, std::string(entry) + " ", A_DIM);
    return caret;
}

std::string emptyText(const PhoneModel& model, const PhoneStatus& status) {
    if (!model.hasPage()) {
        return "";
    }
    if (model.isRecent()) {
        return "No recent calls. Type a number or a name.";
    }
    const std::string number = model.numberWithoutRows();
    return (status.ldapAsked ? "Nothing so far; LDAP is still being asked." : "No contact matches.") +
           (number.empty() ? "" : " Enter dials " + number + ".");
}

bool hasHeading(const PhoneModel& model) {
    return model.rowsKey().empty() && !model.rows().empty();
}

void putRows(const PhoneModel& model, const PhoneStatus& status, RowStyle& style) {
    int line = firstListLine();
    if (model.rows().empty()) {
        for (const std::wstring& part : paint::wrapped(emptyText(model, status), COLS - 3, 0)) {
            put(line++, 2, part, A_DIM);
        }
        return;
    }
    const int heading = hasHeading(model) ? 1 : 0;
    if (heading > 0) {
        put(line, 1, L"Recent calls", A_BOLD);
    }
    paintRows(model, style, line + heading, linesOnScreen() - heading);
}

std::string positionText(const PhoneModel& model) {
    if (model.rows().empty()) {
        return "no rows";
    }
    return std::to_string(model.firstRow() + 1) + "-" +
           std::to_string(model.firstRow() + static_cast<int>(model.rows().size())) + " of " +
           std::to_string(model.total());
}

std::string timesText(const PhoneStatus& status) {
    std::string text;
    if (status.pageTime) {
        text += (isBrief() ? "  " : "   page in ") + withOneDecimal(*status.pageTime) + " ms";
    }
    if (status.lateTime) {
        text += (isBrief() ? "+" : ", late page after ") + withOneDecimal(*status.lateTime) + " ms";
    }
    return text;
}

// Of the row under the cursor, where there is no room for it beside: its source and what that adds.
std::string textOfRow(const PhoneModel& model, const RowStyle& style) {
    const WideseekItemData* row = model.selected();
    if (COLS >= RowColumns::widthForSource || !row) {
        return {};
    }
    const auto line = static_cast<std::size_t>(model.line());
    const std::string source = line < style.sources.size() ? style.sources[line] : std::string();
    return source + (source.empty() || extraOf(*row).empty() ? "" : "  ") + extraOf(*row);
}

// What is wrong now is told in full where there is a line for it, and is never out of sight.
bool tellsStanding(const PhoneModel& model, const PhoneStatus& status, const RowStyle& style) {
    return status.message.empty() && textOfRow(model, style).empty();
}

void putStatus(const PhoneModel& model, const PhoneStatus& status, const RowStyle& style) {
    const int line = LINES - linesBelow;
    const std::string position = " " + positionText(model);
    const std::string times = timesText(status);
    const std::string ldap = status.ldapAsked && !model.isRecent() ? "LDAP \u2026 " : "";
    const bool apart = !status.standing.empty() && !tellsStanding(model, status, style);
    const std::string sign = apart ? "Problem: F3 " : "";
    const auto signsWidth = static_cast<int>(displayWidth(ldap) + displayWidth(sign));
    put(line, 0, wide(position));
    if (static_cast<int>(displayWidth(position) + displayWidth(times)) + signsWidth < COLS) {
        put(line, static_cast<int>(displayWidth(position)), wide(times));
    }
    putRight(line, ldap, A_DIM);
    put(line, COLS - signsWidth, wide(sign), A_BOLD | paint::colour(COLOR_RED));
}

void putMessage(const PhoneModel& model, const PhoneStatus& status, const RowStyle& style) {
    const int line = LINES - linesBelow + 1;
    const attr_t problem = A_BOLD | paint::colour(COLOR_RED);
    if (!status.message.empty()) {
        put(line, 1, fitted(status.message, COLS - 2),
            status.message.starts_with(problemPrefix) ? problem : attr_t(A_BOLD));
    } else if (!tellsStanding(model, status, style)) {
        put(line, 2, fitted(textOfRow(model, style), COLS - 3), A_DIM);
    } else if (!status.standing.empty()) {
        const std::string more = " F3 ";
        put(line, 1, fitted(std::string(problemPrefix) + status.standing, COLS - 2 - static_cast<int>(more.size())),
            problem);
        putRight(line, more, A_BOLD);
    }
}

} // namespace

int linesOnScreen() {
    return std::max(1, LINES - linesAbove - linesBelow - (isRoomy() ? 2 : 0));
}

int rowOnLine(const PhoneModel& model, int line) {
    return line - firstListLine() - (hasHeading(model) ? 1 : 0);
}

void paintSearch(const PhoneModel& model, const PhoneStatus& status, RowStyle& style) {
    erase();
    if (!paintTooSmall()) {
        const int cursor = putKey(model);
        putKeypad(1);
        putRows(model, status, style);
        putStatus(model, status, style);
        putMessage(model, status, style);
        if (isRoomy()) {
            paint::putRule(linesAbove);
            paint::putRule(LINES - linesBelow - 1);
        }
        paintLabels({{"F1", "Help"},
                     {"F2", model.isDigitsEntry() ? "Letters" : "Digits"},
                     {"F3", "Details"},
                     {"F4", "Copy", false},
                     {"Enter", "Dial", false},
                     {"Esc", "Clear", false},
                     {"F10", "Leave"}});
        move(0, cursor);
        curs_set(1);
    }
    sendPainted();
}

} // namespace wideseek
