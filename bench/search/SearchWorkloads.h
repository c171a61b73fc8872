// The search's own workloads, over scripted sources (ThisThread.h).
#pragma once

#include "bench/search/ThisThread.h"
#include "bench/search/Workload.h"

#include <list>
#include <string>

namespace bench {

// Which of a contact's forms a narrowing key is looked for in.
enum class Typed { digits, text };

// People who make this many rows, of whom `percent` in a hundred are left when the second of the two keys is typed
// behind the first, which all of them match or, as the source is scripted, are taken to match.
struct NarrowingPeople {
    NarrowingPeople(std::size_t rows, Typed typed, unsigned percent);

    People people;
    std::string first;
    std::string second;
};

class FullSearch : public Workload {
public:
    explicit FullSearch(std::shared_ptr<host::ContactSource> source) : m_search(std::move(source)) {}
    void run() override { m_search.searchAfresh("49"); } // in every main number
    std::size_t rows() const override { return m_search.rows(); }

private:
    SearchOnThisThread m_search;
};

class PageCut : public Workload {
public:
    PageCut(std::size_t rows, bool deep);
    void run() override { m_search.search("49", m_from); }
    std::size_t rows() const override { return m_search.rows(); }

private:
    SearchOnThisThread m_search;
    int m_from = 0;
};

class Narrow : public Workload {
public:
    // toPage: it is measured up to the page only.
    Narrow(std::size_t rows, Typed typed, unsigned percent, bool toPage);
    bool isUsedUp() const override { return true; }
    void prepare() override { m_search.searchAfresh(m_first); }
    void run() override;
    std::size_t rows() const override { return m_search.rows(); }

private:
    explicit Narrow(NarrowingPeople people);

    SearchOnThisThread m_search;
    std::string m_first;
    std::string m_second;
    bool m_isRunning = false;
};

// An answer of 1,000 rows; a fifth of them are among these people's rows already.
std::list<NS_TA::LdapResultItem> ldapAnswerFor(const People& people);

class LdapMerge : public Workload {
public:
    // withPage: somebody waits for the page, so one is cut behind the merge.
    LdapMerge(std::size_t rows, bool withPage);
    bool isUsedUp() const override { return true; }
    void prepare() override;
    void run() override { m_search.answerLdap(m_answer); }
    std::size_t rows() const override { return m_answer.GetResultList().size(); }

private:
    SearchOnThisThread m_search;
    NS_TA::CLdapAction m_answer;
    bool m_withPage;
};

} // namespace bench
