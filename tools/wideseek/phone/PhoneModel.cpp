#include "tools/wideseek/phone/PhoneModel.h"

#include "host/text/Key.h"
#include "platform/CommonAPI.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace wideseek {

namespace {

// The library hands out recent calls by ten, whatever count it is asked for.
constexpr int recentCount = 10;

std::string searched(const std::string& key) {
    return CommonAPI_StringConvert(key, STRING_CONVERT_SEARCH_KEY);
}

} // namespace

void PhoneModel::setHeight(int lines) {
    m_height = std::max(1, lines);
    if (hasPage() && !m_followed) {
        const int selected = m_top + m_line;
        const int lowest = std::max(0, total() - pageHeight());
        place(selected, std::clamp(selected - std::min(m_line, pageHeight() - 1), 0, lowest));
        show();
    }
}

void PhoneModel::type(std::string_view character) {
    std::string digit;
    if (m_digits) {
        host::text::appendKeypadForm(character, digit);
    }
    if (m_typed.insert(digit.empty() ? character : digit)) {
        startOver();
    }
}

void PhoneModel::edit(LineEdit edit) {
    if (m_typed.apply(edit)) {
        startOver();
    }
}

void PhoneModel::clear() {
    m_typed.clear();
    startOver();
}

void PhoneModel::startOver() {
    m_top = 0;
    m_line = 0;
    m_asked.reset();
    m_known = Known::nothing;
    m_followed.reset();
}

std::string PhoneModel::typedNumber() const {
    return host::text::dialableNumber(key()).value_or("");
}

std::string PhoneModel::numberWithoutRows() const {
    return isSettled() && m_shown.empty() ? typedNumber() : std::string();
}

bool PhoneModel::isRecent() const {
    return searched(key()).empty();
}

void PhoneModel::moveBy(int rows) {
    m_followed.reset();
    const int selected = std::clamp(m_top + m_line + rows, 0, std::max(0, total() - 1));
    place(selected, std::clamp(m_top, selected - pageHeight() + 1, selected));
    show();
}

void PhoneModel::moveByPages(int pages) {
    m_followed.reset();
    const int by = pages * pageHeight();
    const int lowest = std::max(0, total() - pageHeight());
    place(m_top + m_line + by, std::clamp(m_top + by, 0, lowest));
    show();
}

void PhoneModel::moveToFirst() {
    m_followed.reset();
    place(0, 0);
    show();
}

void PhoneModel::moveToLast() {
    m_followed.reset();
    place(total() - 1, std::max(0, total() - pageHeight()));
    show();
}

std::optional<PhoneModel::Request> PhoneModel::takeRequest() {
    if (!m_asked) {
        return ask({key(), 0, isRecent() ? recentCount : pageHeight()});
    }
    if (!hasPage() || (m_known == Known::enough && hasAskedEnough())) {
        return std::nullopt;
    }
    m_known = Known::enough;
    return ask(windowWanted());
}

PhoneModel::Request PhoneModel::ask(Request request) {
    m_asked = std::move(request);
    m_waiting = true;
    return *m_asked;
}

bool PhoneModel::hasAskedEnough() const {
    if (!isRecent()) {
        return covers(m_asked->from, m_asked->count);
    }
    const auto missing = missingCall();
    return !missing || (m_waiting && m_asked->from <= *missing && *missing < m_asked->from + m_asked->count);
}

void PhoneModel::comeBack() {
    if (hasPage()) {
        m_known = Known::something;
        if (isRecent()) {
            m_page = {m_top, 0, total(), {}};
        }
    } else {
        m_asked.reset();
    }
}

bool PhoneModel::takePage(const WideseekListData& page) {
    if (!m_asked || page.iFromIndex != m_asked->from || page.iSearchCount != m_asked->count ||
        (page.strKey != key() && page.strKey != searched(key()))) {
        return false;
    }
    m_waiting = false;
    if (isRecent()) {
        takeCalls(page);
        return true;
    }
    const WideseekItemData* cursor = m_followed ? &m_followed->row : selected();
    const std::optional<WideseekItemData> kept = cursor ? std::optional(*cursor) : std::nullopt;
    // A page that is full may have been sent before all sources were asked: its total is not the last word.
    const bool mayBeCut = !hasPage() && page.iTotalCount >= m_asked->count;
    const int growth = hasPage() ? std::abs(page.iTotalCount - m_page.total) : 0;
    m_page = {page.iFromIndex, page.iSearchCount, page.iTotalCount, {page.listItem.begin(), page.listItem.end()}};
    m_known = mayBeCut || m_known == Known::something ? Known::something : Known::enough;
    if (kept) {
        follow(*kept, growth);
    } else {
        place(m_top + m_line, m_top);
    }
    show();
    return true;
}

// Recent calls come by ten: a page that adjoins those that are here joins them.
void PhoneModel::takeCalls(const WideseekListData& page) {
    const std::vector<WideseekItemData> rows(page.listItem.begin(), page.listItem.end());
    const int end = page.iFromIndex + page.iSearchCount;
    const int before = m_page.from - page.iFromIndex;
    const bool same = hasPage() && page.iTotalCount == m_page.total;
    if (same && page.iFromIndex == m_page.from + m_page.count) {
        m_page.rows.insert(m_page.rows.end(), rows.begin(), rows.end());
        m_page.count += page.iSearchCount;
    } else if (same && before > 0 && end >= m_page.from && before <= static_cast<int>(rows.size())) {
        m_page.rows.insert(m_page.rows.begin(), rows.begin(), rows.begin() + before);
        m_page.from = page.iFromIndex;
        m_page.count += before;
    } else {
        m_page = {page.iFromIndex, page.iSearchCount, page.iTotalCount, rows};
    }
    m_known = Known::enough;
    place(m_top + m_line, m_top);
    show();
}

bool PhoneModel::isAwaitingPage() const {
    return m_known != Known::enough || !m_asked || m_waiting || (isRecent() && missingCall());
}

bool PhoneModel::isSettled() const {
    return hasPage() && !m_followed && covers(m_page.from, m_page.count);
}

const WideseekItemData* PhoneModel::selected() const {
    const auto line = static_cast<std::size_t>(m_line);
    return isSettled() && line < m_shown.size() ? &m_shown[line] : nullptr;
}

int PhoneModel::pageHeight() const {
    return isRecent() ? std::max(1, m_height - 1) : m_height;
}

// Recent calls are shown as they come, as far as the cursor at least; all others wait for a full screen.
bool PhoneModel::covers(int from, int count) const {
    const int end = isRecent() ? m_top + m_line + 1 : m_top + pageHeight();
    return from <= m_top && std::min(end, total()) <= from + count;
}

// A page before and a page behind the one that is shown, so that the next step of the cursor need not wait.
PhoneModel::Request PhoneModel::windowWanted() const {
    if (isRecent()) {
        return {key(), missingCall().value_or(m_top), recentCount};
    }
    const int before = pageHeight() + (m_followed ? m_followed->reach : 0);
    return {key(), std::max(0, m_top - before), pageHeight() + 2 * before};
}

// The first of the recent calls wanted on the screen that is not here.
std::optional<int> PhoneModel::missingCall() const {
    const int behind = m_page.from + m_page.count;
    const int missing = m_page.from <= m_top && m_top < behind ? behind : m_top;
    return missing < std::min(m_top + pageHeight(), total()) ? std::optional(missing) : std::nullopt;
}

// The index of row in the page; of several, the one nearest to the cursor.
std::optional<int> PhoneModel::find(const WideseekItemData& row) const {
    std::optional<int> nearest;
    const auto distance = [&](int index) { return std::abs(index - m_top - m_line); };
    for (int i = 0; i < static_cast<int>(m_page.rows.size()); ++i) {
        const WideseekItemData& other = m_page.rows[static_cast<std::size_t>(i)];
        const int index = m_page.from + i;
        if (other.strName == row.strName && other.strNumber == row.strNumber &&
            (!nearest || distance(index) < distance(*nearest))) {
            nearest = index;
        }
    }
    return nearest;
}

void PhoneModel::follow(const WideseekItemData& row, int growth) {
    const bool searching = m_followed.has_value();
    const std::optional<int> index = find(row);
    m_followed.reset();
    if (index) {
        place(*index, std::max(0, *index - m_line));
        if (!covers(m_page.from, m_page.count)) {
            m_followed = Followed{row};
        }
    } else if (!searching) {
        m_followed = Followed{row, growth};
        m_known = Known::something;
    } else {
        place(m_top + m_line, m_top);
    }
}

// Puts the cursor on a row, as far as there is one, and top into the first line, as far as that leaves none blank
// below.
void PhoneModel::place(int selected, int top) {
    if (!hasPage()) {
        return;
    }
    const int row = std::clamp(selected, 0, std::max(0, total() - 1));
    m_top = std::clamp(top, 0, std::min(row, std::max(0, total() - pageHeight())));
    m_line = row - m_top;
}

void PhoneModel::show() {
    if (!isSettled()) {
        return;
    }
    const auto size = static_cast<std::ptrdiff_t>(m_page.rows.size());
    const auto begin = std::min<std::ptrdiff_t>(m_top - m_page.from, size);
    const auto end = std::min<std::ptrdiff_t>(begin + pageHeight(), size);
    m_shown.assign(m_page.rows.begin() + begin, m_page.rows.begin() + end);
    m_shownKey = searched(key());
    m_shownTop = m_top;
}

} // namespace wideseek
