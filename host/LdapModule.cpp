#include "host/LdapModule.h"

#include "host/ActionRef.h"
#include "host/PhoneCore.h"
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

constexpr std::string_view sourceName = "LDAP";

// The answer as the receiver gets it; none when there is no memory for it.
ActionRef makeAction(const LdapQuery& query, LdapAnswer& answer) {
    auto* action = new (__FILE__, __LINE__) NS_TA::CLdapAction;
    if (action) {
        action->SetCreatFlag(true);
        action->SetKey(query.key);
        action->SetResultCode(answer.succeeded ? 0 : 1);
        action->GetResultList() = std::move(answer.rows);
    }
    return ActionRef(action);
}

TraceEvent answerEvent(const LdapAnswer& answer) {
    TraceEvent event{.kind = TraceKind::sourceAnswered, .source = sourceName};
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

bool LdapModule::search(const std::shared_ptr<PhoneCore>& phone, LdapQuery query,
                        NS_TA::CTaskActionCallbackBase& callback, MessageThread* thread) {
    auto request = std::make_shared<Request>(Request{std::move(query), &callback, Processor::of(callback), thread});
    const std::lock_guard order(m_order);
    giveUp(*phone, request->processor);
    {
        const std::lock_guard lock(m_mutex);
        ++m_queryCount;
        m_newest = request;
        m_waiting.push_back(std::move(request));
    }
    startNext(phone);
    return m_directory != nullptr;
}

// With m_order held: takes back all that was asked for processor.
void LdapModule::giveUp(PhoneCore& phone, const std::shared_ptr<Processor>& processor) {
    std::deque<SharedRequest> given;
    bool running = false;
    {
        const std::lock_guard lock(m_mutex);
        running = m_running && m_running->processor == processor;
        if (running) {
            given.push_back(std::exchange(m_running, nullptr));
        }
        std::erase_if(m_waiting, [&](const SharedRequest& waiting) {
            const bool same = waiting->processor == processor;
            if (same) {
                given.push_back(waiting);
            }
            return same;
        });
    }
    if (running && m_directory) {
        m_directory->abandon();
    }
    for (const SharedRequest& request : given) {
        phone.trace({.kind = TraceKind::sourceAbandoned, .source = sourceName, .key = request->query.key});
    }
    const std::size_t undelivered = phone.kernel.withdrawToken(processor.get());
    for (std::size_t i = 0; i < undelivered; ++i) {
        phone.trace({.kind = TraceKind::sourceAbandoned, .source = sourceName});
    }
}

// With m_order held: has the directory work the query that waits longest, unless it works one.
void LdapModule::startNext(const std::shared_ptr<PhoneCore>& phone) {
    SharedRequest request;
    {
        const std::lock_guard lock(m_mutex);
        if (m_running || m_waiting.empty()) {
            return;
        }
        request = m_running = std::move(m_waiting.front());
        m_waiting.pop_front();
    }
    phone->trace({.kind = TraceKind::sourceAsked, .source = sourceName, .key = request->query.key});
    if (!m_directory) {
        answered(phone, request, {.succeeded = false, .rows = {}, .problem = "no LDAP directory is configured"});
        return;
    }
    m_directory->start(request->query, [weak = std::weak_ptr(phone), request](LdapAnswer answer) {
        if (const auto alive = weak.lock()) {
            alive->ldap.answered(alive, request, std::move(answer));
        }
    });
}

void LdapModule::answered(const std::shared_ptr<PhoneCore>& phone, const SharedRequest& request, LdapAnswer answer) {
    const auto stands = [&] { return m_running == request; };
    {
        const std::lock_guard lock(m_mutex);
        if (!stands()) {
            return;
        }
    }
    if (!answer.problem.empty()) {
        phone->report(4, "LDAP: " + answer.problem);
    }
    const std::function<void()> deliver = delivery(phone, request, std::move(answer));

    const std::lock_guard lock(m_mutex);
    if (!stands()) {
        return;
    }
    if (deliver) {
        request->processor->post(phone->kernel, request->thread, request->processor.get(), {}, "LDAP answer", deliver);
    }
    m_running = nullptr;
    if (!m_waiting.empty()) {
        phone->kernel.post(phone->kernel.findThread(Kernel::messageThread), {}, {}, "LDAP: next query",
                           [weak = std::weak_ptr(phone)] {
                               if (const auto alive = weak.lock()) {
                                   const std::lock_guard order(alive->ldap.m_order);
                                   alive->ldap.startNext(alive);
                               }
                           });
    }
}

std::function<void()> LdapModule::delivery(const std::shared_ptr<PhoneCore>& phone, const SharedRequest& request,
                                           LdapAnswer answer) {
    TraceEvent event = answerEvent(answer);
    const ActionRef action = makeAction(request->query, answer);
    if (!action.get()) {
        phone->report(2, "LDAP: an answer is lost: no memory for it");
        return nullptr;
    }
    return [weak = std::weak_ptr(phone), request, action, event, problem = std::move(answer.problem)]() mutable {
        if (const auto alive = weak.lock()) {
            event.key = request->query.key;
            event.problem = problem;
            alive->trace(event);
        }
        request->callback->OnTaskActionCallback(action.get());
    };
}

bool LdapModule::answerAgain(const std::shared_ptr<PhoneCore>& phone, const std::string& key, LdapAnswer answer) {
    SharedRequest request;
    {
        const std::lock_guard lock(m_mutex);
        if (!m_newest) {
            return false;
        }
        request = std::make_shared<Request>(*m_newest);
    }
    request->query.key = key;
    const std::function<void()> deliver = delivery(phone, request, std::move(answer));
    return deliver && request->processor->post(phone->kernel, request->thread, nullptr, {}, "LDAP answer", deliver);
}

void LdapModule::forget(const std::shared_ptr<PhoneCore>& phone, const std::shared_ptr<Processor>& processor) {
    const std::lock_guard order(m_order);
    giveUp(*phone, processor);
    startNext(phone);
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
