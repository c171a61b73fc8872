#include "bench/session/PlainSearch.h"

#include "host/text/Key.h"
#include "host/text/NameForm.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace bench {

namespace {

bool contains(std::string_view text, std::string_view key) {
    return text.find(key) != std::string_view::npos;
}

struct Key {
    bool digits;
    std::vector<std::string> words;
};

bool matches(const DirectorySearchData& contact, const Key& key) {
    if (key.digits && (contains(contact.strNumber1, key.words[0]) || contains(contact.strNumber2, key.words[0]) ||
                       contains(contact.strNumber3, key.words[0]))) {
        return true;
    }
    std::string forms;
    if (key.digits) {
        host::text::appendKeypadForms(contact.strName, forms);
    } else {
        host::text::appendNameForms(contact.strName, forms);
    }
    return std::all_of(key.words.begin(), key.words.end(), [&](const auto& word) { return contains(forms, word); });
}

std::list<WideseekItemData> rowsOf(const Population& population, const std::string& typed) {
    const std::string converted = host::text::convertKey(typed);
    const bool digits = host::text::isKeypadKey(converted);
    const Key key{digits, digits ? std::vector{converted} : host::text::keyWords(converted)};
    std::list<WideseekItemData> rows;
    std::set<std::pair<std::string, std::string>> seen;
    for (const auto& contacts : population) {
        for (const DirectorySearchData& contact : contacts) {
            if (!matches(contact, key)) {
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
