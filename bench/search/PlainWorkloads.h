// What the search is measured against: plain loops over the same rows in the same list type. Of the duplicate rule they
// keep what a set of names and numbers knows.
#pragma once

#include "bench/search/SearchWorkloads.h"

#include <map>
#include <set>
#include <unordered_set>
#include <utility>

namespace bench {

using Row = NS_WS::CWideseekAction::ItemData;
using Identity = std::pair<std::string, std::string>; // name and number

struct IdentityHash {
    std::size_t operator()(const Identity& identity) const {
        return std::hash<std::string>()(identity.first) * 31 + std::hash<std::string>()(identity.second);
    }
};

using OrderedSet = std::set<Identity>;
using HashSet = std::unordered_set<Identity, IdentityHash>;

// What the search has to ask: a map of whole rows, of which name and number are looked at.
struct RowMap {
    std::map<Row, int> rows;

    auto emplace(const std::string& name, const std::string& number) { return rows.try_emplace(Row(name, number), 1); }
    void clear() { rows.clear(); }
};

// The rows that the search makes of a source's hits.
template <typename Seen> struct RowList {
    std::list<Row> rows;
    Seen seen;

    // Asks the source for everybody.
    void fill(host::ContactSource& source);

    void add(const DirectorySearchData& hit, const std::string& nameKey, const std::string& number,
             const std::string& other1, const std::string& other2);
};

// Clears the rows of the run before and makes them anew, as a full search does.
template <typename Seen> class PlainRows : public Workload {
public:
    explicit PlainRows(std::shared_ptr<host::ContactSource> source) : m_source(std::move(source)) {}
    void run() override;
    std::size_t rows() const override { return m_list.rows.size(); }

private:
    std::shared_ptr<host::ContactSource> m_source;
    RowList<Seen> m_list;
};

// Walks all rows and counts those that are not blank.
class PlainWalk : public Workload {
public:
    explicit PlainWalk(std::size_t rows);
    void run() override;
    std::size_t rows() const override { return m_rows; }

private:
    RowList<OrderedSet> m_list;
    std::size_t m_rows = 0;
};

// Calls the phone's match function for each field of a row until one matches, and unlinks the row when none does.
class PlainNarrow : public Workload {
public:
    // withSet: takes unlinked rows out of the ordered set too.
    PlainNarrow(std::size_t rows, Typed typed, unsigned percent, bool withSet);
    bool isUsedUp() const override { return true; }
    void prepare() override;
    void run() override;
    std::size_t rows() const override { return m_list.rows.size(); }

private:
    PlainNarrow(NarrowingPeople people, Typed typed, bool withSet);

    AllPeople m_source;
    std::string m_key;
    bool (*m_isMatch)(const Row& row, const std::string& key);
    bool m_withSet;
    RowList<OrderedSet> m_list;
};

// Asks the ordered set for each row of the LDAP answer and appends it when it is new.
class PlainMerge : public Workload {
public:
    explicit PlainMerge(std::size_t rows);
    bool isUsedUp() const override { return true; }
    void prepare() override;
    void run() override;
    std::size_t rows() const override { return m_answer.size(); }

private:
    AllPeople m_source;
    std::list<NS_TA::LdapResultItem> m_answer;
    RowList<OrderedSet> m_list;
    std::list<Row> m_merged;
};

} // namespace bench
