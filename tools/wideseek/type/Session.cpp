#include "tools/wideseek/type/Session.h"

#include "app/Gui/Logic/Wideseek/modWideseek.h"
#include "tools/wideseek/Interrupt.h"
#include "tools/wideseek/PhoneArguments.h"
#include "tools/wideseek/Text.h"

#include <iostream>
#include <stdexcept>
#include <utility>

namespace wideseek {

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

// The first key has the sources read their files, and large ones take some seconds on a busy machine.
constexpr auto firstPageBound = std::chrono::seconds(15);
constexpr auto unnoticed = std::chrono::seconds(1);
constexpr auto firstContactsBound = std::chrono::minutes(10);

} // namespace

Session::Session(host::PhoneOptions options, PageHandler onPage)
    : m_onPage(std::move(onPage)), m_problems(sourceListOf(options.root)), m_phone(std::move(options)),
      m_screen([this](const WideseekListData& data) { takePage(data); }) {
    m_phone.setTrace(&m_trace);
    m_phone.watchSourceList();
    reportProblems();
}

Session::~Session() {
    Wideseek_ResetCallBack(&m_screen);
}

void Session::awaitContacts() {
    const auto isThere = [this] {
        const auto remote = m_phone.remoteDirectory();
        return interruptedBy() || !remote || remote->hasContacts || remote->refreshes > 0;
    };
    if (m_phone.kernel().serveMain(isThere, unnoticed)) {
        return;
    }
    if (const auto remote = m_phone.remoteDirectory(); remote && remote->isFirstFetch) {
        std::cerr << "wideseek: the contacts of the remote directory are being fetched for the first time ..."
                  << std::endl;
    }
    m_phone.kernel().serveMain(isThere, firstContactsBound);
}

Outcome Session::type(const std::string& key, int from, int count) {
    const std::size_t index = m_requests.size();
    m_totals.push_back(-1);
    m_requests.push_back({std::chrono::steady_clock::now(), 0});
    if (!Wideseek_SearchUnion(key, from, count, &m_screen)) {
        throw std::runtime_error("the search library did not take the key \"" + printable(key) + "\"");
    }
    const auto hasPage = [&] { return m_requests[index].pages > 0; };
    m_phone.kernel().serveMain([&] { return interruptedBy() || hasPage() || isSettled(); }, firstPageBound);
    reportProblems();
    if (hasPage()) {
        return Outcome::page;
    }
    if (interruptedBy()) {
        return Outcome::interrupted;
    }
    return isSettled() ? Outcome::noPage : Outcome::silence;
}

void Session::pause(std::chrono::milliseconds time) {
    m_phone.kernel().serveMain([] { return interruptedBy() != 0; }, time);
    reportProblems();
}

bool Session::settle() {
    const auto finished = [this] { return interruptedBy() || isSettled(); };
    m_phone.kernel().serveMain(finished, longestSettling(m_phone.options()));
    reportProblems();
    return isSettled();
}

// Asked in this order: whatever makes the trace idle has by then queued what follows from it, such as a page.
bool Session::isSettled() {
    return m_trace.isIdle() && m_phone.kernel().pending() == 0;
}

void Session::takePage(const WideseekListData& data) {
    const auto arrived = std::chrono::steady_clock::now();
    const std::size_t index = m_trace.requestOfPage(m_pages++).value_or(m_requests.size() - 1);
    Request& request = m_requests[index];
    m_totals[index] = data.iTotalCount;
    m_trace.answers().notePage(data.strKey);
    m_onPage({index, request.pages++ > 0, Milliseconds(arrived - request.handedOver).count(), data});
}

void Session::reportProblems() {
    m_problems.tellOf(m_phone);
    for (const auto& [source, problem] : m_trace.answers().takeProblems()) {
        m_problems.tell(problem, source + ": ");
    }
}

} // namespace wideseek
