// Watches one file on a thread of its own and says when it was changed, made or removed.
//
//     host::FileWatch watch(path, 500ms, [&] { phone.announceConfigChange(CFG_CHANGE_WIDESEEK); });
//
// The file is looked at once per period; of several changes within one period one is reported. The destructor ends the
// thread; no report is running or follows once it has returned.
#pragma once

#include "host/files/FileText.h"

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace host {

class FileWatch {
public:
    // onChange is called on the watch's thread, with none of its locks held. Throws std::system_error when the system
    // gives no thread.
    FileWatch(std::filesystem::path path, std::chrono::milliseconds period, std::function<void()> onChange);
    ~FileWatch();

    FileWatch(const FileWatch&) = delete;
    FileWatch& operator=(const FileWatch&) = delete;

private:
    void watch(std::optional<FileStamp> known);

    const std::filesystem::path m_path;
    const std::chrono::milliseconds m_period;
    const std::function<void()> m_onChange;

    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_ending = false; // guarded by m_mutex
    std::thread m_thread;
};

} // namespace host
