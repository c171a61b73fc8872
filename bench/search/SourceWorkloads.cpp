#include "bench/search/SourceWorkloads.h"

#include "bench/People.h"
#include "host/contacts/ContactMatch.h"

#include <cstring>
#include <utility>

namespace bench {

SourceSearch::SourceSearch(std::size_t contacts, std::string key)
    : m_index(makePeople(contacts)), m_key(std::move(key)) {
}

void SourceSearch::run() {
    OxList<DirectorySearchData> hits;
    m_index.appendMatches(m_key, hits);
    m_hits = hits.Count();
}

MemoryScan::MemoryScan(std::size_t contacts, const std::string& key) {
    const host::MatchKey made(key);
    m_word = made.words.front();
    for (const DirectorySearchData& person : makePeople(contacts)) {
        if (made.digits) {
            host::appendDigitForms(person, m_bytes);
        } else {
            host::appendNameForms(person, m_bytes);
        }
    }
}

void MemoryScan::run() {
    m_places = 0;
    const char* at = m_bytes.data();
    const char* const end = at + m_bytes.size();
    while (const void* found = memmem(at, static_cast<std::size_t>(end - at), m_word.data(), m_word.size())) {
        ++m_places;
        at = static_cast<const char*>(found) + 1;
    }
}

} // namespace bench
