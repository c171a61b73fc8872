#include "host/PhoneCore.h"

#include "platform/MsgQueueHelper.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <new>
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
    : options(std::move(chosen)), kernel(options.driver), ldap(kernel, *this),
      configFile(realPath("/config/data/phone.ini"), [this](const std::string& problem) { addProblem(problem); }) {
}

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
    try {
        if (options.log) {
            options.log(module, level, line);
        }
    } catch (const std::bad_alloc&) {
        // The line is lost: whoever logs goes on without it.
    }
}

void PhoneCore::trace(TraceEvent event) {
    TraceSink* sink = traceSink;
    if (!sink) {
        return;
    }
    event.at = kernel.now();
    try {
        sink->onTrace(event);
    } catch (const std::bad_alloc&) {
        // So is the event.
    }
}

void PhoneCore::interrupt(PlatformFunction function, PlatformCall::Moment moment) {
    const auto comeIn = interruption.get();
    if (!comeIn || interrupting) {
        return;
    }
    interrupting = true;
    (*comeIn)({function, moment});
    interrupting = false;
}

int PhoneCore::configInt(std::string_view key) {
    {
        const std::lock_guard lock(m_mutex);
        if (const auto set = m_config.find(key); set != m_config.end()) {
            return set->second;
        }
    }
    return configFile.integer(key).value_or(-1);
}

void PhoneCore::setConfig(std::string_view key, int value) {
    const std::lock_guard lock(m_mutex);
    m_config.insert_or_assign(std::string(key), value);
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

// One after another instead of a list of them, which there might be no memory for.
MessageHandler PhoneCore::nextHandler(unsigned int messageId, std::size_t& at) {
    const std::lock_guard lock(m_mutex);
    const auto begin = m_registrations.begin();
    for (; at < m_registrations.size(); ++at) {
        const auto registration = begin + static_cast<std::ptrdiff_t>(at);
        const auto isMeant = [&](const MessageRegistration& other) {
            return other.handler == registration->handler && other.firstId <= messageId && messageId <= other.lastId;
        };
        if (std::find_if(begin, registration + 1, isMeant) == registration) {
            ++at;
            return registration->handler;
        }
    }
    return nullptr;
}

void PhoneCore::workMessage(unsigned int messageId, long long parameter) {
    std::size_t at = 0;
    while (const MessageHandler handler = nextHandler(messageId, at)) {
        ETL_MsgQueueHelper::msgObject message{messageId, parameter};
        const int result = handler(message);
        tell(7, [&] { return "message " + std::to_string(messageId) + ": a handler gives " + std::to_string(result); });
    }
}

} // namespace host
