#include "host/ldap/server/LdapAnswers.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <utility>

namespace host {

namespace {

bool isOf(const LdapPerson& person, const NameAndNumber& row) {
    return person.name == row.name && std::any_of(person.numbers.begin(), person.numbers.end(),
                                                  [&](const ContactNumber& each) { return each.number == row.number; });
}

} // namespace

void LdapAnswers::add(std::vector<LdapPerson> people) {
    std::vector<LdapPerson> oldest; // let go of outside the lock
    const std::lock_guard lock(m_mutex);
    m_answers.push_front(std::move(people));
    if (m_answers.size() > kept) {
        oldest = std::move(m_answers.back());
        m_answers.pop_back();
    }
}

std::vector<bool> LdapAnswers::holds(std::span<const NameAndNumber> rows) const {
    const std::lock_guard lock(m_mutex);
    std::vector<bool> held(rows.size());
    std::transform(rows.begin(), rows.end(), held.begin(),
                   [this](const NameAndNumber& row) { return personOf(row) != nullptr; });
    return held;
}

std::optional<KnownContact> LdapAnswers::find(const NameAndNumber& row) const {
    const std::lock_guard lock(m_mutex);
    const LdapPerson* const person = personOf(row);
    return person != nullptr ? std::optional(KnownContact{person->numbers, person->facts}) : std::nullopt;
}

std::size_t LdapAnswers::size() const {
    const std::lock_guard lock(m_mutex);
    return std::transform_reduce(m_answers.begin(), m_answers.end(), std::size_t{0}, std::plus<>(),
                                 [](const std::vector<LdapPerson>& people) { return people.size(); });
}

// With the mutex held; null: nobody is.
const LdapPerson* LdapAnswers::personOf(const NameAndNumber& row) const {
    for (const std::vector<LdapPerson>& people : m_answers) {
        const auto found =
            std::find_if(people.begin(), people.end(), [&](const LdapPerson& person) { return isOf(person, row); });
        if (found != people.end()) {
            return &*found;
        }
    }
    return nullptr;
}

} // namespace host
