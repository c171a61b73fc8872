#include "tools/wideseek/import/Progress.h"

#include "tools/wideseek/Text.h"

#include <unistd.h>

#include <iostream>

namespace wideseek {

namespace {

constexpr std::chrono::milliseconds period(200);
constexpr std::size_t stepsPerLook = 256; // at the clock
constexpr const char* eraseLine = "\r\x1b[K";

} // namespace

Progress::Progress(std::string what)
    : m_what(printable(what)), m_terminal(isatty(STDERR_FILENO) != 0), m_next(Clock::now() + period) {
}

Progress::~Progress() {
    if (m_shown) {
        std::cerr << eraseLine << std::flush;
    }
}

void Progress::step() {
    ++m_count;
    if (m_terminal && m_count % stepsPerLook == 0 && Clock::now() >= m_next) {
        show();
    }
}

void Progress::show() {
    std::cerr << eraseLine << m_what << ": " << m_count << " contacts ..." << std::flush;
    m_shown = true;
    m_next = Clock::now() + period;
}

} // namespace wideseek
