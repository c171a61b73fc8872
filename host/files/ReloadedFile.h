// What is made of a file, made again when the file changes.
//
// Every look at what it holds now asks the file system once whether the file is still the same. One thread at a time
// makes it anew; meanwhile the others are given what was made before, and wait only when there is nothing yet.
//
//     ReloadedFile<Table> table(path, sink, makeTable);
//     const auto now = table.current(error);
//
// Reloaded is the same of anything that has a stamp and can be read, such as a folder of files.
#pragma once

#include "host/files/FileText.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace host {

// Told of each problem of a file ("file:line: reason") once, on the thread that reads the file, before anyone is given
// what was read. Must not ask for it.
using ProblemSink = std::function<void(std::string)>;

// What was made of the bytes of a file.
template <typename Content> struct MadeOfFile {
    std::shared_ptr<const Content> content; // null: error says why
    std::vector<std::string> problems;
    std::string error;
};

template <typename Content> class Reloaded {
public:
    using Made = MadeOfFile<Content>;

    struct Loaded {
        Made made;
        std::optional<FileStamp> stamp; // of what nothing can have changed unseen; none: read it again at the next look
    };

    // The stamp as it is now; nothing, and the reason for people, when there is nothing to read.
    using Look = std::function<std::optional<FileStamp>(std::string& error)>;
    using Load = std::function<Loaded()>;

    // look is called on any thread, load on one at a time.
    Reloaded(ProblemSink problemSink, Look look, Load load)
        : m_problemSink(std::move(problemSink)), m_look(std::move(look)), m_load(std::move(load)) {}

    // What is there now; null, and the reason for people, when there is nothing or it cannot be read. Any thread.
    std::shared_ptr<const Content> current(std::string& error) {
        const auto stamp = m_look(error);
        if (!stamp) {
            return nullptr;
        }
        std::shared_ptr<const Loaded> loaded = latest();
        if (!loaded || loaded->stamp != stamp) {
            loaded = reload(*stamp, loaded != nullptr);
        }
        if (!loaded->made.content) {
            error = loaded->made.error;
        }
        return loaded->made.content;
    }

    // What was read last, also when it has gone since; null when nothing was. For the many small questions that belong
    // to one search: the file system is not asked. Any thread.
    std::shared_ptr<const Content> lastRead() const {
        const std::shared_ptr<const Loaded> loaded = latest();
        return loaded ? loaded->made.content : nullptr;
    }

private:
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
        if (auto loaded = latest(); loaded && loaded->stamp == stamp) {
            return loaded;
        }
        auto loaded = std::make_shared<const Loaded>(m_load());
        report(loaded->made.problems);
        const std::lock_guard lock(m_latestMutex);
        m_latest = loaded;
        return loaded;
    }

    void report(const std::vector<std::string>& problems) {
        for (const std::string& problem : problems) {
            if (m_reported.size() < mostReported && m_reported.insert(problem).second && m_problemSink) {
                m_problemSink(problem);
            }
        }
    }

    // Over all readings. Whoever has been told so often has seen that it needs mending.
    static constexpr std::size_t mostReported = 1000;

    const ProblemSink m_problemSink;
    const Look m_look;
    const Load m_load;

    std::mutex m_loadMutex;           // held while it is read
    std::set<std::string> m_reported; // guarded by m_loadMutex

    mutable std::mutex m_latestMutex;       // a leaf, held to copy the pointer
    std::shared_ptr<const Loaded> m_latest; // guarded by m_latestMutex
};

template <typename Content> class ReloadedFile : public Reloaded<Content> {
public:
    using Made = MadeOfFile<Content>;
    using Make = std::function<Made(TextWindow text, const std::string& file)>;

    ReloadedFile(std::filesystem::path path, ProblemSink problemSink, Make make)
        : Reloaded<Content>(
              std::move(problemSink), [path](std::string& error) { return stampOf(path, error); },
              [path, make = std::move(make)] { return load(path, make); }) {}

    // Reads the file once, a piece at a time.
    static typename Reloaded<Content>::Loaded load(const std::filesystem::path& path, const Make& make) {
        typename Reloaded<Content>::Loaded loaded;
        auto source = OpenFile::open(path, loaded.made.error);
        if (!source) {
            return loaded;
        }
        loaded.made = make(TextWindow(*source), path.string());
        if (!source->error().empty()) {
            loaded.made = {nullptr, {}, source->error()};
        } else if (source->settled()) {
            loaded.stamp = source->stamp();
        }
        return loaded;
    }
};

} // namespace host
