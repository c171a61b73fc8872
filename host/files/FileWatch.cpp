#include "host/files/FileWatch.h"

#include "host/files/FileText.h"

#include <new>

namespace host {

namespace {

std::optional<FileStamp> look(const std::filesystem::path& path) {
    std::string error;
    return stampOf(path, error);
}

} // namespace

FileWatch::FileWatch(std::filesystem::path path, std::chrono::milliseconds period, std::function<void()> onChange)
    : m_thread([this, known = look(path), path = std::move(path), period, onChange = std::move(onChange)]() mutable {
          std::unique_lock lock(m_mutex);
          while (!m_wake.wait_for(lock, period, [this] { return m_ending; })) {
              lock.unlock();
              try {
                  if (const auto now = look(path); now != known) {
                      onChange();
                      known = now;
                  }
              } catch (const std::bad_alloc&) {
                  // It is told of in the next period.
              }
              lock.lock();
          }
      }) {
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
