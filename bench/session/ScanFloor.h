// What no search of these rows can do without: looking for the key in the bytes that it may match.
//
// Every row that can be shown lies prepared in memory, without duplicates, in the forms that are searched. The first
// key is one memmem scan over all of them; a longer key looks through the rows that the key before it left. Of a row
// that matches, nothing but a view is kept.
#pragma once

#include "bench/session/KeySearch.h"
#include "bench/session/Population.h"

#include <string_view>
#include <vector>

namespace bench {

class ScanFloor : public KeySearch {
public:
    explicit ScanFloor(const Population& population);

    bool isStateless() const override { return false; }
    void begin() override { m_lastKey.clear(); }
    Took type(const std::string& key) override;
    Page page() const override;

private:
    // The forms of all rows one behind the other.
    struct Forms {
        std::string bytes;
        std::vector<std::size_t> ends; // of each row's
    };

    struct Found {
        std::string_view form;
        std::size_t row;
    };

    void search(const std::string& typed);
    void scan(const Forms& forms, std::string_view key);

    std::vector<Row> m_rows;
    Forms m_names;
    Forms m_digits;
    std::vector<Found> m_found;
    std::string m_lastKey; // whose rows are in m_found; empty: no key's
};

} // namespace bench
