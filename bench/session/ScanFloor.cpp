#include "bench/session/ScanFloor.h"

#include "host/contacts/ContactMatch.h"
#include "host/text/Key.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <utility>

namespace bench {

namespace {

const char* find(std::string_view bytes, std::string_view key) {
    return static_cast<const char*>(memmem(bytes.data(), bytes.size(), key.data(), key.size()));
}

} // namespace

ScanFloor::ScanFloor(const Population& population) {
    std::set<std::pair<std::string, std::string>> seen;
    for (const auto& contacts : population) {
        for (const DirectorySearchData& contact : contacts) {
            for (const std::string* number : {&contact.strNumber1, &contact.strNumber2, &contact.strNumber3}) {
                if (!number->empty() && seen.emplace(contact.strName, *number).second) {
                    m_rows.push_back({contact.strName, *number});
                    host::appendNameForms(contact, m_names.bytes);
                    m_names.ends.push_back(m_names.bytes.size());
                    host::appendDigitForms(contact, m_digits.bytes);
                    m_digits.ends.push_back(m_digits.bytes.size());
                }
            }
        }
    }
    m_found.reserve(m_rows.size());
}

Took ScanFloor::type(const std::string& key) {
    return timeOfSearch([&] { search(key); });
}

void ScanFloor::search(const std::string& typed) {
    const std::string converted = host::text::convertKey(typed);
    const host::MatchKey key(converted);
    const bool isNew = m_lastKey.empty() || !converted.starts_with(m_lastKey);
    if (isNew) {
        m_found.clear();
        scan(key.digits ? m_digits : m_names, key.words.front());
    }
    if (isNew ? key.words.size() > 1 : converted != m_lastKey) {
        std::erase_if(m_found, [&key](const Found& found) {
            return !std::all_of(key.words.begin(), key.words.end(),
                                [&found](const std::string& word) { return find(found.form, word); });
        });
    }
    m_lastKey = converted;
}

void ScanFloor::scan(const Forms& forms, std::string_view key) {
    const std::string_view bytes = forms.bytes;
    std::size_t row = 0;
    std::size_t begin = 0;
    while (const char* found = find(bytes.substr(begin), key)) {
        const auto place = static_cast<std::size_t>(found - bytes.data());
        while (forms.ends[row] <= place) {
            begin = forms.ends[row++];
        }
        m_found.push_back({bytes.substr(begin, forms.ends[row] - begin), row});
        begin = forms.ends[row++];
    }
}

Page ScanFloor::page() const {
    Page page{m_found.size(), {}};
    for (std::size_t i = 0; i < m_found.size() && i < pageSize; ++i) {
        page.rows.push_back(m_rows[m_found[i].row]);
    }
    return page;
}

} // namespace bench
