// A contact file's own search, and a scan of the same bytes. Sizes are numbers of contacts.
#pragma once

#include "bench/search/Workload.h"
#include "host/contacts/ContactIndex.h"

#include <string>

namespace bench {

class SourceSearch : public Workload {
public:
    SourceSearch(std::size_t contacts, std::string key);
    void run() override;
    std::size_t rows() const override { return m_hits; }

private:
    host::ContactIndex m_index;
    std::string m_key;
    std::size_t m_hits = 0;
};

// Finds every place of the key, or of its first word, in what the index is searched in, one contact's forms behind the
// other's.
class MemoryScan : public Workload {
public:
    MemoryScan(std::size_t contacts, const std::string& key);
    void run() override;
    std::size_t rows() const override { return m_places; }

private:
    std::string m_bytes;
    std::string m_word;
    std::size_t m_places = 0;
};

} // namespace bench
