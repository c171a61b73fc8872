#include "bench/search/PlainWorkloads.h"

#include "platform/CommonAPI.h"

#include <benchmark/benchmark.h>

#include <utility>

namespace bench {

namespace {

Row makeRow(const std::string& name, const std::string& number) {
    Row row;
    row.strName = name;
    row.strNumber = number;
    return row;
}

bool isIn(const std::string& field, const std::string& key) {
    return CommonAPI_StringMatch(field, key, false, STRING_MATCH_CONTAINS) != 0;
}

bool isInNumber(const std::string& number, const std::string& key) {
    return isIn(CommonAPI_TrimString(number, "+", TRIM_TYPE_BOTH_ENDS), key);
}

bool isDigitMatch(const Row& row, const std::string& key) {
    return isInNumber(row.strNumber, key) || isInNumber(row.strNumber2, key) || isInNumber(row.strNumber3, key) ||
           isIn(row.strNameKey, key);
}

bool isTextMatch(const Row& row, const std::string& key) {
    return isIn(row.strName, key);
}

} // namespace

template <typename Seen> void RowList<Seen>::fill(host::ContactSource& source) {
    OxList<DirectorySearchData> hits;
    std::string error;
    source.search("49", hits, error);
    for (auto* node = hits.Begin(); node != hits.End(); node = node->pNext) {
        const DirectorySearchData& hit = node->value;
        const std::string nameKey = CommonUnits_ToKeyString(hit.strName);
        add(hit, nameKey, hit.strNumber1, hit.strNumber2, hit.strNumber3);
        add(hit, nameKey, hit.strNumber2, hit.strNumber1, hit.strNumber3);
        add(hit, nameKey, hit.strNumber3, hit.strNumber1, hit.strNumber2);
    }
}

template <typename Seen>
void RowList<Seen>::add(const DirectorySearchData& hit, const std::string& nameKey, const std::string& number,
                        const std::string& other1, const std::string& other2) {
    if (number.empty() || !seen.emplace(hit.strName, number).second) {
        return;
    }
    Row& row = rows.emplace_back();
    row.strName = hit.strName;
    row.strNumber = number;
    row.strNumber2 = other1;
    row.strNumber3 = other2;
    row.strNameKey = nameKey;
    row.strExtra2 = hit.strExtra;
}

template <typename Seen> void PlainRows<Seen>::run() {
    m_list.rows.clear();
    m_list.seen.clear();
    m_list.fill(*m_source);
}

template class PlainRows<OrderedSet>;
template class PlainRows<HashSet>;
template class PlainRows<RowMap>;

PlainWalk::PlainWalk(std::size_t rows) {
    AllPeople people(peopleOfRows(rows));
    m_list.fill(people);
}

void PlainWalk::run() {
    m_rows = 0;
    for (const Row& row : m_list.rows) {
        m_rows += row.strName.empty() && row.strNumber.empty() ? 0U : 1U;
    }
    benchmark::DoNotOptimize(m_rows);
}

PlainNarrow::PlainNarrow(std::size_t rows, Typed typed, unsigned percent, bool withSet)
    : PlainNarrow(NarrowingPeople(rows, typed, percent), typed, withSet) {
}

PlainNarrow::PlainNarrow(NarrowingPeople people, Typed typed, bool withSet)
    : m_source(std::move(people.people)), m_key(std::move(people.second)),
      m_isMatch(typed == Typed::digits ? isDigitMatch : isTextMatch), m_withSet(withSet) {
}

void PlainNarrow::prepare() {
    m_list.rows.clear();
    m_list.seen.clear();
    m_list.fill(m_source);
}

void PlainNarrow::run() {
    for (auto it = m_list.rows.begin(); it != m_list.rows.end();) {
        if (m_isMatch(*it, m_key)) {
            ++it;
            continue;
        }
        if (m_withSet) {
            m_list.seen.erase({it->strName, it->strNumber});
        }
        it = m_list.rows.erase(it);
    }
}

PlainMerge::PlainMerge(std::size_t rows) : m_source(peopleOfRows(rows)), m_answer(ldapAnswerFor(peopleOfRows(rows))) {
}

void PlainMerge::prepare() {
    m_list.rows.clear();
    m_list.seen.clear();
    m_merged.clear();
    m_list.fill(m_source);
}

void PlainMerge::run() {
    for (const NS_TA::LdapResultItem& item : m_answer) {
        if (!item.strNumber.empty() && m_list.seen.emplace(item.strName, item.strNumber).second) {
            m_merged.push_back(makeRow(item.strName, item.strNumber));
        }
    }
}

} // namespace bench
