#include "host/remote/RemoteWorker.h"

#include "host/files/Descriptor.h"

#include <utility>

namespace host {

RemoteWorker::RemoteWorker(std::shared_ptr<RemoteDirectory> directory)
    : m_directory(std::move(directory)), m_thread([this] { run(); }) {
}

RemoteWorker::~RemoteWorker() {
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_directory->stop();
    m_wake.notify_all();
    m_thread.join();
}

void RemoteWorker::run() {
    blockBrokenPipe(); // libcurl's TLS writes to sockets that the server may have closed
    std::unique_lock lock(m_mutex);
    while (!m_ending) {
        lock.unlock();
        const auto due = m_directory->work(std::chrono::steady_clock::now());
        lock.lock();
        m_wake.wait_until(lock, due, [this] { return m_ending; });
    }
}

} // namespace host
