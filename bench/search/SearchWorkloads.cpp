#include "bench/search/SearchWorkloads.h"

#include "bench/People.h"

#include <utility>

namespace bench {

namespace {

std::shared_ptr<AllPeople> scripted(std::size_t rows) {
    return std::make_shared<AllPeople>(peopleOfRows(rows));
}

} // namespace

// Hardly another number has these digits, and no other name these letters. "0" is the digit of no letter.
NarrowingPeople::NarrowingPeople(std::size_t rows, Typed typed, unsigned percent)
    : people(peopleOfRows(rows)), first(typed == Typed::digits ? "99099" : "x"),
      second(typed == Typed::digits ? "990990" : "xa") {
    unsigned turn = 0;
    for (DirectorySearchData& person : people) {
        turn += percent;
        if (turn >= 100) {
            turn -= 100;
            if (typed == Typed::digits) {
                person.strNumber1.replace(1, 4, second);
            } else {
                person.strName.replace(0, person.strName.find(' '), "Xaver");
            }
        }
    }
}

PageCut::PageCut(std::size_t rows, bool deep) : m_search(scripted(rows)) {
    m_search.searchAfresh("49");
    m_from = deep ? static_cast<int>(m_search.rows()) - 10 : 0;
}

Narrow::Narrow(std::size_t rows, Typed typed, unsigned percent, bool toPage)
    : Narrow(NarrowingPeople(rows, typed, percent)) {
    if (toPage) {
        m_search.watchPages([this] {
            if (m_isRunning && onPage) {
                onPage();
            }
        });
    }
}

Narrow::Narrow(NarrowingPeople people)
    : m_search(std::make_shared<AllPeople>(std::move(people.people))), m_first(std::move(people.first)),
      m_second(std::move(people.second)) {
}

void Narrow::run() {
    m_isRunning = true;
    m_search.search(m_second);
    m_isRunning = false;
}

std::list<NS_TA::LdapResultItem> ldapAnswerFor(const People& people) {
    constexpr std::size_t count = 1000;
    const People strangers = makePeople(people.size() + count);
    std::list<NS_TA::LdapResultItem> answer;
    for (std::size_t i = 0; i < count; ++i) {
        const DirectorySearchData& person =
            i % 5 == 0 ? people[i * (people.size() / count)] : strangers[people.size() + i];
        answer.push_back({person.strName, person.strNumber1});
    }
    return answer;
}

LdapMerge::LdapMerge(std::size_t rows, bool withPage) : m_search(scripted(rows)), m_withPage(withPage) {
    m_answer.SetKey("49");
    m_answer.GetResultList() = ldapAnswerFor(peopleOfRows(rows));
}

void LdapMerge::prepare() {
    m_search.searchAfresh("49");
    if (!m_withPage) {
        m_search.detach();
    }
}

} // namespace bench
