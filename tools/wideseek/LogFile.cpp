#include "tools/wideseek/LogFile.h"

#include "tools/wideseek/Text.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <mutex>
#include <stdexcept>

namespace wideseek {

namespace {

// RFC 5424, section 6.2.1, from level 0 on.
constexpr std::array levels = {"emergency", "alert", "critical", "error", "warning", "notice", "info", "debug"};

class LogWriter {
public:
    explicit LogWriter(const std::string& file) : m_start(std::chrono::steady_clock::now()) {
        if (!file.empty()) {
            m_file.open(file, std::ios::app);
            if (!m_file) {
                throw std::runtime_error("the log file " + file + " cannot be written: " + std::strerror(errno));
            }
        }
    }

    void write(int module, int level, std::string_view line) {
        const auto time = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - m_start);
        const auto index = static_cast<std::size_t>(level);
        const std::string levelName = index < levels.size() ? levels[index] : std::to_string(level);
        const std::lock_guard lock(m_mutex);
        (m_file.is_open() ? m_file : std::cerr)
            << std::fixed << std::setprecision(3) << std::setw(10) << time.count() << " " << levelName << " module "
            << module << ": " << printable(line) << std::endl;
    }

private:
    const std::chrono::steady_clock::time_point m_start;
    std::mutex m_mutex;
    std::ofstream m_file; // guarded by m_mutex
};

} // namespace

host::LogSink openLog(const std::string& file) {
    return [writer = std::make_shared<LogWriter>(file)](int module, int level, std::string_view line) {
        writer->write(module, level, line);
    };
}

} // namespace wideseek
