// What the checks print, also when the program comes to its end within one: by a crash, or by not coming back.
#pragma once

#include "platform_check/Check.h"

#include <array>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <string>
#include <thread>

namespace platform_check {

class Report {
public:
    explicit Report(const Phone& phone) : m_phone(phone) {}

    void group(const Group& group);
    void absentGroup(const char* name);
    void outcome(const Check& check, const Trial& trial);
    void sum();

    int failed() const { return m_failed; }

private:
    void print(const std::string& line) const;

    const Phone& m_phone;
    int m_held = 0;
    int m_failed = 0;
    int m_skipped = 0;
};

// The lines that a failed check gets.
std::string failureOf(const Check& check, const std::string& seen);

// Stands by while a check runs. What crashes the program, or keeps it from going on, is reported as a failure of that
// check. One at a time in a process.
class Guard {
public:
    explicit Guard(const Phone& phone);
    ~Guard();

    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

    void begin(const Check& check);

private:
    static constexpr std::array crashes = {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL};

    void watch();

    const Phone& m_phone;
    std::array<void (*)(int), crashes.size()> m_former{};

    std::mutex m_mutex;
    std::condition_variable m_changed;
    const Check* m_check = nullptr; // all guarded by m_mutex
    unsigned m_begun = 0;
    bool m_over = false;

    std::thread m_watch;
};

} // namespace platform_check
