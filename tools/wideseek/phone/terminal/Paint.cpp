#include "tools/wideseek/phone/terminal/Paint.h"

#include "host/text/Utf8.h"
#include "tools/wideseek/Text.h"

#include <algorithm>
#include <cwchar>

namespace wideseek::paint {

namespace {

constexpr wchar_t replacement = L'\uFFFD';

// As many words from the front as fit; of one that is too long by itself, what fits. What stands before `least` is no
// word to end with.
std::wstring_view wholeWords(std::wstring_view text, int columns, std::size_t least) {
    const std::wstring_view part = front(text, columns);
    if (part.size() == text.size() || text[part.size()] == L' ') {
        return part;
    }
    const std::size_t blank = part.find_last_of(L' ');
    return blank == std::wstring_view::npos || blank <= least ? part : part.substr(0, blank);
}

} // namespace

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

std::wstring fitted(std::string_view text, int columns) {
    std::wstring result = wide(text);
    if (widthOf(result) > columns) {
        result = front(result, columns - 1);
        result += ellipsis;
    }
    result.append(static_cast<std::size_t>(std::max(0, columns - widthOf(result))), L' ');
    return result;
}

std::wstring tail(std::string_view text, int columns) {
    std::wstring result = wide(text);
    while (widthOf(result) > columns) {
        const std::size_t begin = result.front() == ellipsis ? 2 : 1;
        result = ellipsis + result.substr(begin);
    }
    return result;
}

std::vector<std::wstring> wrapped(std::string_view line, int columns, int indent) {
    std::vector<std::wstring> result;
    const std::wstring text = wide(line);
    std::wstring_view rest = text;
    do {
        const int margin = result.empty() ? 0 : indent;
        const std::wstring_view part = wholeWords(rest, columns - margin, static_cast<std::size_t>(indent - margin));
        result.emplace_back(static_cast<std::size_t>(margin), L' ').append(part);
        rest.remove_prefix(part.size());
        rest.remove_prefix(std::min(rest.find_first_not_of(L' '), rest.size()));
    } while (!rest.empty());
    return result;
}

void put(int line, int column, std::wstring_view text, attr_t attributes) {
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

attr_t colour(short foreground) {
    return static_cast<attr_t>(COLOR_PAIR(foreground));
}

} // namespace wideseek::paint
