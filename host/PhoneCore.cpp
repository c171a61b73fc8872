#include "host/PhoneCore.h"

#include "host/ConfigFile.h"

#include "platform/MsgQueueHelper.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace host {

namespace {

std::mutex currentMutex;

std::shared_ptr<PhoneCore>& currentSlot() {
    static std::shared_ptr<PhoneCore>& slot = *std::make_unique<std::shared_ptr<PhoneCore>>().release();
    return slot;
}

thread_local bool interrupting = false;

} // namespace

std::shared_ptr<PhoneCore> currentPhone() {
    const std::lock_guard lock(currentMutex);
    return currentSlot();
}

void setCurrentPhone(std::shared_ptr<PhoneCore> core) {
    const std::lock_guard lock(currentMutex);
    if (core && currentSlot()) {
        std::fputs("host::Phone: there is a phone already; one process has one at a time\n", stderr);
        std::abort();
    }
    currentSlot().swap(core);
}

PhoneCore::PhoneCore(PhoneOptions chosen)
    : options(std::move(chosen)), kernel(options.driver),
      m_configFile(std::make_unique<ConfigFile>(realPath("/config/data/phone.ini"),
                                                [this](const std::string& problem) { addProblem(problem); })) {
}

PhoneCore::~PhoneCore() = default;

std::filesystem::path PhoneCore::realPath(std::string_view path) const {
    return options.root.empty() ? std::filesystem::path(path)
                                : options.root / std::filesystem::path(path).relative_path();
}

void PhoneCore::addProblem(const std::string& problem) {
    if (problems.add(problem)) {
        report(4, problem);
    }
}

void PhoneCore::log(int module, int level, std::string_view line) {
    if (options.log) {
        options.log(module, level, line);
    }
}

void PhoneCore::trace(TraceEvent event) {
    if (TraceSink* sink = m_trace) {
        event.at = kernel.now();
        sink->onTrace(event);
    }
}

void PhoneCore::interrupt(std::string_view function) {
    std::shared_ptr<const std::function<void(std::string_view)>> interruption;
    {
        const std::lock_guard lock(m_mutex);
        interruption = m_interruption;
    }
    if (!interruption || interrupting) {
        return;
    }
    interrupting = true;
    (*interruption)(function);
    interrupting = false;
}

std::shared_ptr<ContactSource> PhoneCore::source(Source which) const {
    const std::lock_guard lock(m_mutex);
    return m_sources.at(static_cast<std::size_t>(which));
}

std::shared_ptr<RecentCalls> PhoneCore::recentCalls() const {
    const std::lock_guard lock(m_mutex);
    return m_recentCalls;
}

int PhoneCore::configInt(std::string_view key) {
    {
        const std::lock_guard lock(m_mutex);
        if (const auto set = m_config.find(key); set != m_config.end()) {
            return set->second;
        }
    }
    return m_configFile->integer(key).value_or(-1);
}

void PhoneCore::registerHandler(const MessageRegistration& registration) {
    const std::lock_guard lock(m_mutex);
    if (std::find(m_registrations.begin(), m_registrations.end(), registration) == m_registrations.end()) {
        m_registrations.push_back(registration);
    }
}

void PhoneCore::deliver(unsigned int messageId, long long parameter) {
    kernel.post(kernel.findThread(Kernel::messageThread), {}, {}, "phone message",
                [this, messageId, parameter] { workMessage(messageId, parameter); });
}

void PhoneCore::workMessage(unsigned int messageId, long long parameter) {
    std::vector<int (*)(ETL_MsgQueueHelper::msgObject&)> handlers;
    {
        const std::lock_guard lock(m_mutex);
        for (const MessageRegistration& registration : m_registrations) {
            const bool known = std::find(handlers.begin(), handlers.end(), registration.handler) != handlers.end();
            if (!known && registration.firstId <= messageId && messageId <= registration.lastId) {
                handlers.push_back(registration.handler);
            }
        }
    }
    for (const auto handler : handlers) {
        ETL_MsgQueueHelper::msgObject message{messageId, parameter};
        report(7, "message " + std::to_string(messageId) + ": a handler gives " + std::to_string(handler(message)));
    }
}

void PhoneCore::setSource(Source which, std::shared_ptr<ContactSource> contacts) {
    const std::lock_guard lock(m_mutex);
    m_sources.at(static_cast<std::size_t>(which)).swap(contacts);
}

void PhoneCore::setRecentCalls(std::shared_ptr<RecentCalls> calls) {
    const std::lock_guard lock(m_mutex);
    m_recentCalls.swap(calls);
}

void PhoneCore::setConfig(std::string_view key, int value) {
    const std::lock_guard lock(m_mutex);
    m_config.insert_or_assign(std::string(key), value);
}

void PhoneCore::setInterruption(std::function<void(std::string_view)> interruption) {
    auto shared =
        interruption ? std::make_shared<const std::function<void(std::string_view)>>(std::move(interruption)) : nullptr;
    const std::lock_guard lock(m_mutex);
    m_interruption.swap(shared);
}

} // namespace host
