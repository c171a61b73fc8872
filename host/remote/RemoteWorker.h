// The thread that keeps a remote directory's copy new. It runs beside the phone's kernel, as it waits for the network.
#pragma once

#include "host/remote/RemoteDirectory.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace host {

class RemoteWorker {
public:
    explicit RemoteWorker(std::shared_ptr<RemoteDirectory> directory);

    // Waits for the thread, which ends at once, also in the midst of an exchange. The directory answers still.
    ~RemoteWorker();

    RemoteWorker(const RemoteWorker&) = delete;
    RemoteWorker& operator=(const RemoteWorker&) = delete;

private:
    void run();

    const std::shared_ptr<RemoteDirectory> m_directory;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_ending = false; // guarded by m_mutex
    std::thread m_thread;
};

} // namespace host
