#include "bench/session/PlainSearch.h"

#include "host/text/Fold.h"
#include "host/text/Key.h"

#include <set>
#include <utility>

namespace bench {

namespace {

bool contains(std::string_view text, std::string_view key) {
    return text.find(key) != std::string_view::npos;
}

bool matches(const DirectorySearchData& contact, const std::string& key, bool digits) {
    if (digits &&
        (contains(contact.strNumber1, key) || contains(contact.strNumber2, key) || contains(contact.strNumber3, key))) {
        return true;
    }
    std::string form;
    if (digits) {
        host::text::appendKeypadForm(contact.strName, form);
    } else {
        host::text::appendFolded(contact.strName, form);
    }
    return contains(form, key);
}

std::list<WideseekItemData> rowsOf(const Population& population, const std::string& typed) {
    const std::string key = host::text::convertKey(typed);
    const bool digits = host::text::isKeypadKey(key);
    const std::string foldedKey = host::text::folded(key);
    std::list<WideseekItemData> rows;
    std::set<std::pair<std::string, std::string>> seen;
    for (const auto& contacts : population) {
        for (const DirectorySearchData& contact : contacts) {
            if (!matches(contact, foldedKey, digits)) {
                continue;
            }
            for (const std::string* number : {&contact.strNumber1, &contact.strNumber2, &contact.strNumber3}) {
                if (!number->empty() && seen.emplace(contact.strName, *number).second) {
                    rows.push_back({contact.strName, *number, "", contact.strExtra});
                }
            }
        }
    }
    return rows;
}

} // namespace

Took PlainSearch::type(const std::string& key) {
    return timeOfSearch([&] { m_rows = rowsOf(m_population, key); });
}

Page PlainSearch::page() const {
    Page page{m_rows.size(), {}};
    for (const WideseekItemData& row : m_rows) {
        if (page.rows.size() == pageSize) {
            break;
        }
        page.rows.push_back({row.strName, row.strNumber});
    }
    return page;
}

} // namespace bench
