// The search that one would write first: for each key it folds and scans every contact of every source, makes a row of
// each number of those that match, and asks an ordered set whether it has the row already. Nothing is kept between
// keys.
#pragma once

#include "bench/session/KeySearch.h"
#include "bench/session/Population.h"

#include <list>

namespace bench {

class PlainSearch : public KeySearch {
public:
    explicit PlainSearch(const Population& population) : m_population(population) {}

    bool isStateless() const override { return true; }
    Took type(const std::string& key) override;
    Page page() const override;

private:
    const Population& m_population;
    std::list<WideseekItemData> m_rows;
};

} // namespace bench
