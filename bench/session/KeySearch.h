// A way to answer typed keys, timed: the phone's search and what it is measured against.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;
using Nanoseconds = std::chrono::nanoseconds;

inline constexpr int pageSize = 10;

struct Row {
    std::string name;
    std::string number;

    bool operator==(const Row&) const = default;
};

// The first page and how many rows there are in all.
struct Page {
    std::size_t total = 0;
    std::vector<Row> rows;
};

struct Took {
    Nanoseconds page{}; // from the key to its page
    Nanoseconds work{}; // from the key to the end of all work for it
};

class KeySearch {
public:
    virtual ~KeySearch() = default;

    // False: what a key costs depends on the keys typed before.
    virtual bool isStateless() const = 0;

    // An empty search box: what was typed before does not count. Not timed.
    virtual void begin() {}

    // Answers a typed key.
    virtual Took type(const std::string& key) = 0;

    // The page of the last key.
    virtual Page page() const = 0;
};

// For a search whose work ends with its page.
template <typename Search> Took timeOfSearch(const Search& search) {
    const auto start = Clock::now();
    search();
    const Nanoseconds time = Clock::now() - start;
    return {time, time};
}

} // namespace bench
