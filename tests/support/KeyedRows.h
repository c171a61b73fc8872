// Sources whose rows carry the key that they were found for, and the judge of the pages that they end up on: a row of
// another search, or a key beside another request's position, convicts itself.
//
// A row's name is "k:" and the key that the source was asked for; its numbers begin with that key. A request's position
// is part of what is typed: as many blanks in front of the key as its from index, as many behind it as its count.
#pragma once

#include "host/ContactSource.h"
#include "host/Phone.h"

#include <atomic>
#include <string>

namespace test {

// Offers four contacts for any key. Any thread.
class KeyedSource : public host::ContactSource {
public:
    explicit KeyedSource(char digit) : m_digit(digit) {} // a digit of its own, so that no two sources offer the same

    std::atomic<int> failIn{0}; // calls until the one that fails, having offered its rows all the same

    bool search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) override;

private:
    const char m_digit;
};

// Always the same three calls, named "recent". Any thread.
class KeyedCalls : public host::RecentCalls {
public:
    int outgoing(OxVector<GeneralDirItemData>& calls, int from, int count, std::string& error) override;
};

// What is typed to search for digits at this position.
std::string typedFor(const std::string& digits, int from, int count);

// What is wrong with the page, or nothing.
std::string judge(const WideseekListData& page);

} // namespace test
