#include "host/files/FileWatch.h"

#include <new>
#include <system_error>
#include <utility>

namespace host {

namespace {

std::optional<FileStamp> look(const std::filesystem::path& path) {
    std::string error;
    return stampOf(path, error);
}

} // namespace

FileWatch::FileWatch(std::filesystem::path path, std::chrono::milliseconds period, std::function<void()> onChange)
    : m_path(std::move(path)), m_period(period), m_onChange(std::move(onChange)) {
    try {
        m_thread = std::thread([this, known = look(m_path)] { watch(known); });
    } catch (const std::system_error& failure) {
        throw std::system_error(failure.code(), m_path.string() + ": no thread to watch it can be started");
    }
}

void FileWatch::watch(std::optional<FileStamp> known) {
    std::unique_lock lock(m_mutex);
    while (!m_wake.wait_for(lock, m_period, [this] { return m_ending; })) {
        lock.unlock();
        try {
            if (const auto now = look(m_path); now != known) {
                m_onChange();
                known = now;
            }
        } catch (const std::bad_alloc&) {
            // It is told of in the next period.
        }
        lock.lock();
    }
}

FileWatch::~FileWatch() {
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_wake.notify_all();
    m_thread.join();
}

} // namespace host
