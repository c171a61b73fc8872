#include "platform_check/PlatformCheck.h"

#include "platform_check/Report.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <string_view>
#include <thread>

namespace platform_check {

namespace {

// By name, because naming a group itself would link it.
constexpr std::array groupNames = {"log and memory", "strings", "messages and threads", "timers", "tasks", "sources",
                                   "LDAP",           "presence"};

bool isNamed(std::initializer_list<const Group*> groups, std::string_view name) {
    return std::any_of(groups.begin(), groups.end(), [name](const Group* group) { return group->name == name; });
}

} // namespace

bool Trial::expect(bool held, const char* seen, ...) {
    if (!held && m_failure.empty()) {
        std::array<char, 512> text{};
        va_list values;
        va_start(values, seen);
        std::vsnprintf(text.data(), text.size(), seen, values);
        va_end(values);
        m_failure = text.data();
    }
    return held;
}

void Trial::work(int milliseconds) const {
    if (m_phone.work != nullptr) {
        m_phone.work(milliseconds);
    } else {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    }
}

bool Trial::workUntil(const std::function<bool()>& done) const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(m_phone.patience);
    while (!done()) {
        if (std::chrono::steady_clock::now() >= end) {
            return false;
        }
        work(1);
    }
    return true;
}

int run(std::initializer_list<const Group*> groups, const Phone& phone) {
    Report report(phone);
    {
        Guard guard(phone);
        for (const Group* group : groups) {
            report.group(*group);
            for (const Check& check : group->checks) {
                guard.begin(check);
                Trial trial(phone);
                check.run(trial);
                report.outcome(check, trial);
            }
        }
    }
    for (const char* name : groupNames) {
        if (!isNamed(groups, name)) {
            report.absentGroup(name);
        }
    }
    report.sum();
    return std::min(report.failed(), 100);
}

} // namespace platform_check
