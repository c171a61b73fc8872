#include "host/ldap/EmbeddedLdap.h"

#include "host/sources/Failure.h"

#include <utility>

namespace host {

namespace {

MessageThread* threadOf(Kernel& kernel) {
    MessageThread* thread = kernel.findThread(EmbeddedLdap::threadName);
    return thread ? thread : kernel.addThread(EmbeddedLdap::threadName);
}

} // namespace

EmbeddedLdap::EmbeddedLdap(Kernel& kernel, std::shared_ptr<ContactSource> contacts, Duration delay)
    : m_kernel(kernel), m_contacts(std::move(contacts)), m_delay(delay), m_thread(threadOf(kernel)) {
}

EmbeddedLdap::~EmbeddedLdap() {
    abandon();
}

void EmbeddedLdap::start(LdapQuery query, Done done) {
    m_kernel.post(m_thread, {.object = nullptr, .token = this}, m_delay, "LDAP directory",
                  [this, query = std::move(query), done = std::move(done)] {
                      LdapAnswer given;
                      try {
                          given = answer(query);
                      } catch (...) {
                          given = {.succeeded = false, .rows = {}, .problem = reasonOfCurrentException()};
                      }
                      done(std::move(given));
                  });
}

void EmbeddedLdap::abandon() {
    m_kernel.withdrawTokenAndWait(this);
}

LdapAnswer EmbeddedLdap::answer(const LdapQuery& query) {
    OxList<DirectorySearchData> hits;
    LdapAnswer answer;
    answer.succeeded = m_contacts->search(query.key, hits, answer.problem);
    int people = 0;
    for (const auto* node = hits.Begin(); node != hits.End() && people < query.maxCount; node = node->pNext, ++people) {
        const DirectorySearchData& person = node->value;
        for (const std::string* number : {&person.strNumber1, &person.strNumber2, &person.strNumber3}) {
            if (!number->empty()) {
                answer.rows.push_back({person.strName, *number});
            }
        }
    }
    return answer;
}

} // namespace host
