// What is made of a file, made again when the file changes.
//
// Every look at what it holds now asks the file system once whether the file is still the same. One thread at a time
// makes it anew; meanwhile the others are given what was made before, and wait only when there is nothing yet.
#pragma once

#include "host/files/FileText.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

// Told of each problem of a file ("file:line: reason") once, on the thread that reads the file, before anyone is given
// what was read. Must not ask for it.
using ProblemSink = std::function<void(std::string)>;

template <typename Content> class ReloadedFile {
public:
    struct Made {
        std::shared_ptr<const Content> content; // null: error says why
        std::vector<std::string> problems;
        std::string error;
    };
    using Make = std::function<Made(std::string_view bytes, const std::string& file)>;

    ReloadedFile(std::filesystem::path path, ProblemSink problemSink, Make make)
        : m_path(std::move(path)), m_problemSink(std::move(problemSink)), m_make(std::move(make)) {}

    // What the file holds now; null, and the reason for people, when there is no such file or it cannot be read. Any
    // thread.
    std::shared_ptr<const Content> current(std::string& error) {
        const auto stamp = stampOf(m_path, error);
        if (!stamp) {
            return nullptr;
        }
        std::shared_ptr<const Loaded> loaded = latest();
        if (!loaded || !loaded->isOf(*stamp)) {
            loaded = reload(*stamp, loaded != nullptr);
        }
        if (!loaded->made.content) {
            error = loaded->made.error;
        }
        return loaded->made.content;
    }

    // What was read last, also when the file has gone since; null when nothing was. For the many small questions that
    // belong to one search: the file system is not asked. Any thread.
    std::shared_ptr<const Content> lastRead() const {
        const std::shared_ptr<const Loaded> loaded = latest();
        return loaded ? loaded->made.content : nullptr;
    }

private:
    struct Loaded {
        Made made;
        std::optional<FileStamp> stamp; // of a file that nothing can have changed unseen

        bool isOf(const FileStamp& other) const { return stamp == other; }
    };

    std::shared_ptr<const Loaded> latest() const {
        const std::lock_guard lock(m_latestMutex);
        return m_latest;
    }

    std::shared_ptr<const Loaded> reload(const FileStamp& stamp, bool hasOlder) {
        std::unique_lock loading(m_loadMutex, std::defer_lock);
        if (!hasOlder) {
            loading.lock();
        } else if (!loading.try_lock()) {
            return latest();
        }
        if (auto loaded = latest(); loaded && loaded->isOf(stamp)) {
            return loaded;
        }
        auto loaded = load();
        report(loaded->made.problems);
        const std::lock_guard lock(m_latestMutex);
        m_latest = loaded;
        return loaded;
    }

    std::shared_ptr<const Loaded> load() const {
        auto loaded = std::make_shared<Loaded>();
        const auto text = readFile(m_path, loaded->made.error);
        if (text) {
            loaded->made = m_make(text->bytes, m_path.string());
            loaded->stamp = text->settled ? std::optional(text->stamp) : std::nullopt;
        }
        return loaded;
    }

    void report(const std::vector<std::string>& problems) {
        for (const std::string& problem : problems) {
            if (m_reported.size() < mostReported && m_reported.insert(problem).second && m_problemSink) {
                m_problemSink(problem);
            }
        }
    }

    // Over all readings of the file. Whoever has been told so often has seen that it needs mending.
    static constexpr std::size_t mostReported = 1000;

    const std::filesystem::path m_path;
    const ProblemSink m_problemSink;
    const Make m_make;

    std::mutex m_loadMutex;           // held while the file is read
    std::set<std::string> m_reported; // guarded by m_loadMutex

    mutable std::mutex m_latestMutex;       // a leaf, held to copy the pointer
    std::shared_ptr<const Loaded> m_latest; // guarded by m_latestMutex
};

} // namespace host
