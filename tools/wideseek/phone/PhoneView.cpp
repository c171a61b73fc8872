#include "tools/wideseek/phone/PhoneView.h"

#include "host/text/MatchedPart.h"
#include "host/text/Utf8.h"
#include "tools/wideseek/Text.h"
#include "tools/wideseek/phone/Curses.h"

#include <algorithm>
#include <array>
#include <cwchar>

namespace wideseek {

namespace {

constexpr int leastWidth = 40;
constexpr int leastHeight = 12;

// From this height on, lines set the rows off.
constexpr int roomyHeight = 18;

// From this width on, nothing need be abbreviated.
constexpr int wideWidth = 60;

constexpr int linesAbove = 2; // the key, the keypad
constexpr int linesBelow = 3; // status, message, keys

constexpr wchar_t ellipsis = L'\u2026';
constexpr wchar_t replacement = L'\uFFFD';

bool isRoomy() {
    return LINES >= roomyHeight;
}

int firstListLine() {
    return linesAbove + (isRoomy() ? 1 : 0);
}

// Harmless text in the terminal's characters.
std::wstring wide(std::string_view text) {
    const std::string harmless = printable(text);
    std::wstring result;
    for (std::string_view rest = harmless; !rest.empty();) {
        const auto character = static_cast<wchar_t>(host::text::takeFirst(rest).codePoint);
        result += wcwidth(character) < 0 ? replacement : character;
    }
    return result;
}

int widthOf(std::wstring_view text) {
    int width = 0;
    for (const wchar_t character : text) {
        width += wcwidth(character);
    }
    return width;
}

// As many characters from the front as fit.
std::wstring_view front(std::wstring_view text, int columns) {
    std::size_t length = 0;
    for (int left = columns; length < text.size(); ++length) {
        left -= wcwidth(text[length]);
        if (left < 0) {
            break;
        }
    }
    return text.substr(0, length);
}

// Exactly this many columns: filled with blanks, or cut with an ellipsis.
std::wstring fitted(std::string_view text, int columns) {
    std::wstring result = wide(text);
    if (widthOf(result) > columns) {
        result = front(result, columns - 1);
        result += ellipsis;
    }
    result.append(static_cast<std::size_t>(std::max(0, columns - widthOf(result))), L' ');
    return result;
}

// The lines, each on as many lines of this width as it needs.
std::vector<std::wstring> wrapped(const std::vector<std::string>& lines, int columns) {
    std::vector<std::wstring> result;
    for (const std::string& line : lines) {
        const std::wstring text = wide(line);
        std::wstring_view rest = text;
        do {
            const std::wstring_view part = front(rest, columns);
            result.emplace_back(part);
            rest.remove_prefix(part.size());
        } while (!rest.empty());
    }
    return result;
}

// The end of a text that grows at its end, in at most this many columns.
std::wstring tail(std::string_view text, int columns) {
    std::wstring result = wide(text);
    while (widthOf(result) > columns) {
        const std::size_t begin = result.front() == ellipsis ? 2 : 1;
        result = ellipsis + result.substr(begin);
    }
    return result;
}

void put(int line, int column, std::wstring_view text, attr_t attributes = A_NORMAL) {
    if (line < 0 || line >= LINES || column >= COLS) {
        return;
    }
    const std::wstring_view seen = front(text, COLS - column);
    attrset(static_cast<int>(attributes));
    mvaddnwstr(line, column, seen.data(), static_cast<int>(seen.size()));
    attrset(A_NORMAL);
}

void putRight(int line, std::string_view text, attr_t attributes) {
    const std::wstring shown = wide(text);
    put(line, std::max(0, COLS - widthOf(shown)), shown, attributes);
}

void putRule(int line) {
    put(line, 0, std::wstring(static_cast<std::size_t>(COLS), L'\u2500'), A_DIM);
}

bool paintTooSmall() {
    if (COLS >= leastWidth && LINES >= leastHeight) {
        return false;
    }
    curs_set(0);
    put(0, 0, wide("The window is too small:"));
    put(1, 0, wide("it has " + std::to_string(COLS) + "x" + std::to_string(LINES) + ","));
    put(2, 0, wide("the phone needs " + std::to_string(leastWidth) + "x" + std::to_string(leastHeight) + "."));
    return true;
}

struct Label {
    const char* key;
    std::string meaning;
    bool always = true; // else where there is room
};

void putLabels(const std::vector<Label>& labels) {
    int width = -2;
    for (const Label& label : labels) {
        width += 3 + static_cast<int>(displayWidth(label.key) + displayWidth(label.meaning));
    }
    int column = 0;
    for (const Label& label : labels) {
        if (label.always || width <= COLS) {
            const std::wstring key = wide(label.key);
            const std::wstring meaning = wide(label.meaning);
            put(LINES - 1, column, key, A_BOLD);
            put(LINES - 1, column + widthOf(key) + 1, meaning);
            column += widthOf(key) + widthOf(meaning) + (width <= COLS ? 3 : 2);
        }
    }
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

// Gives the caret's column.
int putKey(const PhoneModel& model) {
    const std::string_view entry = model.isDigitsEntry() ? "digits 123" : "letters abc";
    const std::wstring label = wide(" Search  ");
    const int column = widthOf(label);
    const int room = COLS - column - static_cast<int>(entry.size()) - 3;
    const std::wstring before = tail(model.typed().beforeCaret(), room);
    const std::wstring behind = wide(model.typed().behindCaret());
    const int caret = column + widthOf(before);
    put(0, 0, label);
    put(0, column, before, A_BOLD);
    put(0, caret, front(behind, room - widthOf(before)), A_BOLD);
    putRight(0, std::string(entry) + " ", A_DIM);
    return caret;
}

const std::string& extraOf(const WideseekItemData& row) {
    return row.strExtra2.empty() ? row.strExtra1 : row.strExtra2;
}

struct Columns {
    int name;
    int number;
    int extra;
};

constexpr int firstColumn = 2; // behind the cursor's sign

Columns columnsOfRows() {
    const int number = std::clamp(COLS / 4, 14, 20);
    const int extra = COLS >= wideWidth ? COLS * 3 / 10 : COLS / 6;
    return {COLS - firstColumn - number - extra - 2, number, extra};
}

// Never the only sign, as terminals and people do without it.
attr_t colour(short foreground) {
    return static_cast<attr_t>(COLOR_PAIR(foreground));
}

// Makes the parts of a cell stand out that the key has found, as far as they are seen.
void putParts(int line, int column, int columns, std::string_view text, const std::vector<host::text::Part>& parts,
              attr_t attributes) {
    const bool cut = widthOf(wide(text)) > columns;
    for (const host::text::Part& part : parts) {
        const int before = widthOf(wide(text.substr(0, part.begin)));
        const std::wstring found = wide(text.substr(part.begin, part.size));
        put(line, column + before, front(found, columns - (cut ? 1 : 0) - before),
            attributes | A_BOLD | A_UNDERLINE | colour(COLOR_MAGENTA));
    }
}

void putRow(int line, const WideseekItemData& row, const std::string& key, bool underCursor) {
    const Columns columns = columnsOfRows();
    const int numberColumn = firstColumn + columns.name + 1;
    const attr_t attributes = underCursor ? A_REVERSE : A_NORMAL;
    put(line, 0,
        (underCursor ? L"> " : L"  ") + fitted(row.strName, columns.name) + L' ' +
            fitted(row.strNumber, columns.number) + L' ' + fitted(extraOf(row), columns.extra),
        attributes);
    putParts(line, firstColumn, columns.name, row.strName, host::text::matchedInName(row.strName, key), attributes);
    putParts(line, numberColumn, columns.number, row.strNumber, host::text::matchedInNumber(row.strNumber, key),
             attributes);
}

std::string emptyText(const PhoneModel& model, const PhoneStatus& status) {
    if (!model.hasPage()) {
        return "";
    }
    if (model.isRecent()) {
        return "No recent calls. Type a number or a name.";
    }
    return status.ldapAsked ? "Nothing so far; LDAP is still being asked." : "No contact matches.";
}

void putRows(const PhoneModel& model, const PhoneStatus& status) {
    int line = firstListLine();
    const std::vector<WideseekItemData>& rows = model.rows();
    if (rows.empty()) {
        put(line, 2, wide(emptyText(model, status)), A_DIM);
        return;
    }
    const int last = line + rowsOnScreen();
    const int cursorLine = line + model.line();
    for (auto row = rows.begin(); row != rows.end() && line < last; ++row, ++line) {
        putRow(line, *row, model.rowsKey(), line == cursorLine);
    }
}

std::string positionText(const PhoneModel& model) {
    if (model.rows().empty()) {
        return "no rows";
    }
    return std::to_string(model.firstRow() + 1) + "-" +
           std::to_string(model.firstRow() + static_cast<int>(model.rows().size())) + " of " +
           std::to_string(model.total());
}

void putStatus(const PhoneModel& model, const PhoneStatus& status) {
    const int line = LINES - linesBelow;
    const bool brief = COLS < wideWidth;
    std::string text = (model.isRecent() ? " Recent calls " : " ") + positionText(model);
    if (status.pageTime) {
        text += (brief ? "  " : "   page in ") + withOneDecimal(*status.pageTime) + " ms";
    }
    if (status.lateTime) {
        text += (brief ? "+" : ", late page after ") + withOneDecimal(*status.lateTime) + " ms";
    }
    put(line, 0, wide(text));
    if (status.ldapAsked && !model.isRecent()) {
        putRight(line, "LDAP \u2026 ", A_DIM);
    }
    const WideseekItemData* row = model.selected();
    if (!status.message.empty()) {
        const attr_t kind = status.message.starts_with(problemPrefix) ? colour(COLOR_RED) : A_NORMAL;
        put(line + 1, 1, fitted(status.message, COLS - 2), A_BOLD | kind);
    } else if (brief && row) {
        put(line + 1, 2, fitted(extraOf(*row), COLS - 3), A_DIM); // its column holds a few letters only
    }
}

void send() {
    wnoutrefresh(stdscr);
    doupdate();
}

} // namespace

int rowsOnScreen() {
    return std::max(1, LINES - linesAbove - linesBelow - (isRoomy() ? 2 : 0));
}

int rowOnLine(int line) {
    return line - firstListLine();
}

void paintSearch(const PhoneModel& model, const PhoneStatus& status) {
    erase();
    if (!paintTooSmall()) {
        const int cursor = putKey(model);
        putKeypad(1);
        putRows(model, status);
        putStatus(model, status);
        if (isRoomy()) {
            putRule(linesAbove);
            putRule(LINES - linesBelow - 1);
        }
        putLabels({{"F1", "Help"},
                   {"F2", model.isDigitsEntry() ? "Letters" : "Digits"},
                   {"F3", "Details"},
                   {"F4", "Copy", false},
                   {"Enter", "Dial", false},
                   {"Esc", "Clear", false},
                   {"F10", "Leave"}});
        move(0, cursor);
        curs_set(1);
    }
    send();
}

void paintText(TextScreen& text) {
    erase();
    if (!paintTooSmall()) {
        curs_set(0);
        put(0, 1, fitted(text.title, COLS - 2), A_BOLD);
        putRule(1);
        const std::vector<std::wstring> lines = wrapped(text.lines, COLS - 2);
        const auto size = static_cast<int>(lines.size());
        const int room = LINES - 3;
        text.top = std::clamp(text.top, 0, std::max(0, size - room));
        const int end = std::min(size, text.top + room);
        for (int i = text.top; i < end; ++i) {
            put(2 + i - text.top, 1, lines[static_cast<std::size_t>(i)]);
        }
        putLabels({{"Esc", "Back"}, {"Up/Down", "Scroll", size > room}, {"F10", "Leave"}});
    }
    send();
}

void repaint() {
    clearok(curscr, TRUE);
}

} // namespace wideseek
