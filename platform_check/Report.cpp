#include "platform_check/Report.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace platform_check {

namespace {

// Written when a crash comes: nothing can be made any more then.
std::string crashReport;

void endWithCrash(int) {
    // There is nobody left to tell that it could not be written.
    [[maybe_unused]] const auto written = write(STDOUT_FILENO, crashReport.data(), crashReport.size());
    _exit(EXIT_FAILURE);
}

void printTo(const Phone& phone, const std::string& line) {
    if (phone.print != nullptr) {
        phone.print(line.c_str());
    } else {
        std::printf("%s\n", line.c_str());
        std::fflush(stdout);
    }
}

} // namespace

std::string failureOf(const Check& check, const std::string& seen) {
    return std::string("  FAILED   ") + check.name + "\n    function  " + check.function + " (" + check.header +
           ")\n    rule      " + check.rule + "\n    seen      " + seen + "\n    breaks    " + check.breaks;
}

void Report::print(const std::string& line) const {
    std::size_t begin = 0;
    for (std::size_t end = line.find('\n'); end != std::string::npos; end = line.find('\n', begin)) {
        printTo(m_phone, line.substr(begin, end - begin));
        begin = end + 1;
    }
    printTo(m_phone, line.substr(begin));
}

void Report::group(const Group& group) {
    print(group.name);
}

void Report::absentGroup(const char* name) {
    print(std::string(name) + "\n  skipped  all: the group is not named");
}

void Report::outcome(const Check& check, const Trial& trial) {
    if (!trial.failure().empty()) {
        ++m_failed;
        print(failureOf(check, trial.failure()));
        return;
    }
    if (!trial.skipped().empty()) {
        ++m_skipped;
        print(std::string("  skipped  ") + check.name + ": " + trial.skipped());
    } else {
        ++m_held;
        print(std::string("  ok       ") + check.name);
    }
    if (m_phone.verbose) {
        print(std::string("    function  ") + check.function + " (" + check.header + ")\n    rule      " + check.rule);
    }
}

void Report::sum() {
    print("platform check: " + std::to_string(m_held) + " held, " + std::to_string(m_failed) + " failed, " +
          std::to_string(m_skipped) + " skipped");
}

Guard::Guard(const Phone& phone) : m_phone(phone), m_watch([this] { watch(); }) {
    for (std::size_t i = 0; i < crashes.size(); ++i) {
        m_former[i] = std::signal(crashes[i], endWithCrash);
    }
}

Guard::~Guard() {
    {
        const std::lock_guard lock(m_mutex);
        m_over = true;
    }
    m_changed.notify_one();
    m_watch.join();
    for (std::size_t i = 0; i < crashes.size(); ++i) {
        std::signal(crashes[i], m_former[i]);
    }
}

void Guard::begin(const Check& check) {
    crashReport = failureOf(check, "the program crashed") + "\nplatform check: not finished\n";
    {
        const std::lock_guard lock(m_mutex);
        m_check = &check;
        ++m_begun;
    }
    m_changed.notify_one();
}

void Guard::watch() {
    const std::chrono::milliseconds longest(3 * m_phone.patience);
    std::unique_lock lock(m_mutex);
    while (!m_over) {
        const unsigned begun = m_begun;
        const bool changed = m_changed.wait_for(lock, longest, [&] { return m_over || m_begun != begun; });
        if (!changed && m_check != nullptr) {
            printTo(m_phone, failureOf(*m_check, "nothing came back for " + std::to_string(longest.count()) + " ms") +
                                 "\nplatform check: not finished");
            std::_Exit(EXIT_FAILURE);
        }
    }
}

} // namespace platform_check
