#include "host/ldap/LdapModule.h"

#include "host/kernel/ActionRef.h"
#include "host/sources/Failure.h"
#include "host/sources/SourceNames.h"
#include "platform/TrackedMemory.h"

#include <algorithm>
#include <new>

namespace host {

struct LdapModule::Request {
    LdapQuery query;
    NS_TA::CTaskActionCallbackBase* callback = nullptr;
    std::shared_ptr<Processor> processor;
    MessageThread* thread = nullptr;
};

namespace {

constexpr std::string_view answerLost = "LDAP: an answer is lost: there is no memory for it";

// The answer as the receiver gets it; none when there is no memory for it.
ActionRef makeAction(const LdapQuery& query, LdapAnswer& answer) {
    auto* action = new (__FILE__, __LINE__) NS_TA::CLdapAction;
    if (action) {
        action->SetCreatFlag(true);
    }
    ActionRef held(action);
    if (action) {
        action->SetKey(query.key);
        action->SetResultCode(answer.succeeded ? 0 : 1);
        action->GetResultList() = std::move(answer.rows);
    }
    return held;
}

TraceEvent answerEvent(const LdapAnswer& answer) {
    TraceEvent event{.kind = TraceKind::sourceAnswered, .source = sourceName::ldap};
    const std::string* name = nullptr; // a person's rows stand together
    for (const NS_TA::LdapResultItem& row : answer.rows) {
        event.contacts += name && *name == row.strName ? 0U : 1U;
        name = &row.strName;
    }
    event.numbers = static_cast<std::size_t>(
        std::count_if(answer.rows.begin(), answer.rows.end(),
                      [](const NS_TA::LdapResultItem& row) { return !row.strNumber.empty(); }));
    event.failed = !answer.succeeded;
    return event;
}

} // namespace

bool LdapModule::search(LdapQuery query, NS_TA::CTaskActionCallbackBase& callback, MessageThread* thread) {
    auto request = std::make_shared<Request>(Request{std::move(query), &callback, Processor::of(callback), thread});
    const std::lock_guard order(m_order);
    giveUp(request->processor);
    {
        const std::lock_guard lock(m_mutex);
        ++m_queryCount;
        m_newest = request;
        m_waiting.push_back(std::move(request));
    }
    startNext();
    return m_directory != nullptr;
}

// With m_order held: takes back all that was asked for processor.
void LdapModule::giveUp(const std::shared_ptr<Processor>& processor) {
    // At most one of each, since every query of a processor begins here. This needs no memory.
    SharedRequest running;
    SharedRequest waiting;
    {
        const std::lock_guard lock(m_mutex);
        if (m_running && m_running->processor == processor) {
            running.swap(m_running);
        }
        const auto at = std::find_if(m_waiting.begin(), m_waiting.end(),
                                     [&](const SharedRequest& each) { return each->processor == processor; });
        if (at != m_waiting.end()) {
            waiting = *at;
            m_waiting.erase(at);
        }
    }
    if (running && m_directory) {
        m_directory->abandon();
    }
    for (const SharedRequest& given : {running, waiting}) {
        if (given) {
            m_reporter.trace({.kind = TraceKind::sourceAbandoned, .source = sourceName::ldap, .key = given->query.key});
        }
    }
    const std::size_t undelivered = m_kernel.withdrawToken(processor.get());
    for (std::size_t i = 0; i < undelivered; ++i) {
        m_reporter.trace({.kind = TraceKind::sourceAbandoned, .source = sourceName::ldap});
    }
}

// With m_order held: has the directory work the query that waits longest, unless it works one.
void LdapModule::startNext() {
    SharedRequest request;
    {
        const std::lock_guard lock(m_mutex);
        if (m_running || m_waiting.empty()) {
            return;
        }
        request = m_running = std::move(m_waiting.front());
        m_waiting.pop_front();
    }
    m_reporter.trace({.kind = TraceKind::sourceAsked, .source = sourceName::ldap, .key = request->query.key});
    try {
        if (!m_directory) {
            answered(request, {.succeeded = false, .rows = {}, .problem = "no LDAP directory is configured"});
            return;
        }
        m_directory->start(request->query, [this, weak = m_reporter.weak_from_this(), request](LdapAnswer answer) {
            if (const auto alive = weak.lock()) {
                answered(request, std::move(answer));
            }
        });
    } catch (const std::bad_alloc&) {
        answered(request, {.succeeded = false, .rows = {}, .problem = reasonOfCurrentException()});
    }
}

void LdapModule::answered(const SharedRequest& request, LdapAnswer answer) {
    const auto stands = [&] { return m_running == request; };
    {
        const std::lock_guard lock(m_mutex);
        if (!stands()) {
            return;
        }
    }
    if (!answer.problem.empty()) {
        m_reporter.tell(4, [&] { return "LDAP: " + answer.problem; });
    }
    const std::function<void()> deliver = delivery(request, std::move(answer));

    const std::lock_guard lock(m_mutex);
    if (!stands()) {
        return;
    }
    try {
        if (deliver) {
            request->processor->post(m_kernel, request->thread, request->processor.get(), {}, "LDAP answer", deliver);
        }
    } catch (const std::bad_alloc&) {
        m_reporter.report(2, answerLost);
    }
    m_running = nullptr;
    postNext();
}

// With m_mutex held: has the next query started where a directory's own thread does not hold it up.
void LdapModule::postNext() {
    if (m_waiting.empty()) {
        return;
    }
    try {
        m_kernel.post(m_kernel.findThread(Kernel::messageThread), {}, {}, "LDAP: next query",
                      [this, weak = m_reporter.weak_from_this()] {
                          if (const auto alive = weak.lock()) {
                              const std::lock_guard order(m_order);
                              startNext();
                          }
                      });
    } catch (const std::bad_alloc&) {
        m_waiting.clear();
        m_reporter.report(2, "LDAP: the queries that wait are lost: there is no memory to start them");
    }
}

std::function<void()> LdapModule::delivery(const SharedRequest& request, LdapAnswer answer) const noexcept try {
    TraceEvent event = answerEvent(answer);
    const ActionRef action = makeAction(request->query, answer);
    if (!action.get()) {
        m_reporter.report(2, answerLost);
        return nullptr;
    }
    return [weak = m_reporter.weak_from_this(), request, action, event, problem = std::move(answer.problem)]() mutable {
        if (const auto alive = weak.lock()) {
            event.key = request->query.key;
            event.problem = problem;
            alive->trace(event);
        }
        request->callback->OnTaskActionCallback(action.get());
    };
} catch (const std::bad_alloc&) {
    m_reporter.report(2, answerLost);
    return nullptr;
}

bool LdapModule::answerAgain(const std::string& key, LdapAnswer answer) {
    SharedRequest request;
    {
        const std::lock_guard lock(m_mutex);
        if (!m_newest) {
            return false;
        }
        request = std::make_shared<Request>(*m_newest);
    }
    request->query.key = key;
    const std::function<void()> deliver = delivery(request, std::move(answer));
    return deliver && request->processor->post(m_kernel, request->thread, nullptr, {}, "LDAP answer", deliver);
}

void LdapModule::forget(const std::shared_ptr<Processor>& processor) {
    const std::lock_guard order(m_order);
    giveUp(processor);
    startNext();
}

void LdapModule::setDirectory(std::shared_ptr<LdapDirectory> directory) {
    const std::lock_guard order(m_order);
    {
        const std::lock_guard lock(m_mutex);
        m_running = nullptr;
        m_waiting.clear();
    }
    if (m_directory) {
        m_directory->abandon();
    }
    m_directory.swap(directory);
}

bool LdapModule::isBusy() const {
    const std::lock_guard lock(m_mutex);
    return m_running || !m_waiting.empty();
}

std::uint64_t LdapModule::queryCount() const {
    const std::lock_guard lock(m_mutex);
    return m_queryCount;
}

} // namespace host
