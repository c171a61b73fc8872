#include "host/text/Spellings.h"

#include "host/text/Utf8.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace host::text {

namespace {

constexpr std::size_t most = 16;

struct Respelled {
    std::string_view written;
    std::array<std::string_view, 3> others; // empty: no more
};

constexpr Respelled respelled[] = {
    {"ae", {"ä", "æ"}}, {"oe", {"ö", "ø", "œ"}}, {"ue", {"ü"}},      {"aa", {"å"}},
    {"ss", {"ß"}},      {"ä", {"ae", "a"}},      {"ö", {"oe", "o"}}, {"ü", {"ue", "u"}},
    {"å", {"aa", "a"}}, {"ø", {"oe", "o"}},      {"æ", {"ae"}},      {"œ", {"oe"}},
};

// Each of those that there are so far, with each of the ends behind it.
std::vector<std::string> continued(const std::vector<std::string>& begins, const std::vector<std::string_view>& ends) {
    std::vector<std::string> all;
    for (const std::string_view end : ends) {
        for (const std::string& begin : begins) {
            all.push_back(begin + std::string(end));
        }
    }
    return all;
}

} // namespace

std::vector<std::string> spellingsOf(std::string_view word) {
    std::vector<std::string> spellings(1);
    while (!word.empty()) {
        const auto* const known = std::find_if(std::begin(respelled), std::end(respelled),
                                               [&](const Respelled& each) { return word.starts_with(each.written); });
        const bool isKnown = known != std::end(respelled);
        const std::string_view written = word.substr(0, isKnown ? known->written.size() : firstCharacter(word).size);
        std::vector<std::string_view> ends{written};
        if (isKnown) {
            std::copy_if(known->others.begin(), known->others.end(), std::back_inserter(ends),
                         [](std::string_view other) { return !other.empty(); });
        }
        if (spellings.size() * ends.size() > most) {
            ends.resize(1);
        }
        spellings = continued(spellings, ends);
        word.remove_prefix(written.size());
    }
    return spellings;
}

} // namespace host::text
