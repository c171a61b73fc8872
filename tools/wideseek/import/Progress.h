// How far long work has come, on a terminal: one line of the standard error output that is written over, and gone in
// the end. Nothing where that is no terminal, nor for work that is over in a moment.
//
//     Progress progress("people.vcf");
//     for (...) { progress.step(); } // a contact more
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace wideseek {

class Progress {
public:
    explicit Progress(std::string what);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void step();

private:
    using Clock = std::chrono::steady_clock;

    void show();

    std::string m_what;
    bool m_terminal;
    std::size_t m_count = 0;
    Clock::time_point m_next;
    bool m_shown = false;
};

} // namespace wideseek
