// The first functions that a port has: the log, the settings, the path of a file, memory and locks.
#include "platform/AppLog.h"
#include "platform/BaseHelper.h"
#include "platform/ConfigParser.h"
#include "platform/SystemFile.h"
#include "platform/TrackedMemory.h"
#include "platform_check/Check.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace platform_check {

namespace {

using Clock = std::chrono::steady_clock;

long long millisecondsSince(Clock::time_point begin) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin).count();
}

// Many lines at once, among them one longer than any buffer.
void logDoesNotWait(Trial& trial) {
    const std::string longLine(20000, 'x');
    const auto begin = Clock::now();
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 2; ++writer) {
        writers.emplace_back([&longLine] {
            app_log(10, 7, "%s\n", longLine.c_str());
            for (int line = 0; line < 10; ++line) {
                app_log(10, 7, "platform check: line %d of %s\n", line, "ten");
            }
        });
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
    const long long taken = millisecondsSince(begin);
    trial.expect(taken < 2000, "22 lines from two threads took %lld ms", taken);
}

void absentKeyIsMinusOne(Trial& trial) {
    const int value = configParser_GetConfigInt("PlatformCheckNoSuchKey");
    trial.expect(value == -1, "a key that no configuration has gave %d", value);
}

void folderHasNoPath(Trial& trial) {
    const std::string path = SystemFile_GetRealPath("/");
    trial.expect(path.empty(), "the folder \"/\" gave the path \"%s\"", path.c_str());
}

void absentFileHasPath(Trial& trial) {
    const std::string path = SystemFile_GetRealPath("/platform-check-no-such-file");
    trial.expect(!path.empty(), "a file that is not there gave an empty path");
}

void memoryIsGivenAndTakenBack(Trial& trial) {
    constexpr std::size_t sizes[] = {0, 1, 7, 64, 4096, 100000};
    std::vector<void*> blocks;
    for (int turn = 0; turn < 50; ++turn) {
        for (const std::size_t size : sizes) {
            void* block = ::operator new(size, __FILE__, __LINE__);
            if (!trial.expect(block != nullptr, "%zu bytes gave null", size) ||
                !trial.expect(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t) == 0,
                              "a block of %zu bytes is not aligned for every object", size) ||
                !trial.expect(std::find(blocks.begin(), blocks.end(), block) == blocks.end(),
                              "a block was handed out twice")) {
                return;
            }
            std::memset(block, turn, size);
            blocks.push_back(block);
        }
    }
    for (void* block : blocks) {
        ::operator delete(block, __FILE__, __LINE__);
    }
}

void noMemoryIsNull(Trial& trial) {
    const volatile std::size_t tooMuch = std::numeric_limits<std::size_t>::max() - 4096; // a compiler would warn of it
    void* block = ::operator new(tooMuch, __FILE__, __LINE__);
    trial.expect(block == nullptr, "%zu bytes, which no phone has, gave a block", std::size_t(tooMuch));
}

void deleteIgnoresNull(Trial&) {
    ::operator delete(nullptr, __FILE__, __LINE__);
}

using ETL_BaseHelper::chCriticalSection;

// The compiler's analysis knows no lock that is taken more than once.
CH_THREAD_ATTRIBUTE(no_thread_safety_analysis) void lockTimes(chCriticalSection& lock, int times) {
    for (int time = 0; time < times; ++time) {
        lock.Lock();
    }
}

CH_THREAD_ATTRIBUTE(no_thread_safety_analysis) void unlockTimes(chCriticalSection& lock, int times) {
    for (int time = 0; time < times; ++time) {
        lock.Unlock();
    }
}

void lockIsRecursive(Trial&) {
    chCriticalSection lock;
    lockTimes(lock, 3);
    unlockTimes(lock, 3);
}

// Each thread counts in two steps that another one may come between.
void lockExcludes(Trial& trial) {
    constexpr int turns = 200;
    chCriticalSection lock;
    std::atomic<int> inside = 0;
    std::atomic<int> overlaps = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 3; ++thread) {
        threads.emplace_back([&] {
            for (int turn = 0; turn < turns; ++turn) {
                lockTimes(lock, 2);
                unlockTimes(lock, 1); // held still
                overlaps += ++inside > 1 ? 1 : 0;
                std::this_thread::yield();
                --inside;
                unlockTimes(lock, 1);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    trial.expect(overlaps == 0, "two threads held one lock at the same time, %d times", overlaps.load());
}

constexpr Check checks[] = {
    {"the log waits for nobody", "app_log", "AppLog.h",
     "Never fails and never throws: a line that there is no memory for is lost. Never waits for a reader.",
     "a key is answered at once: the search logs with its locks held", logDoesNotWait},
    {"an absent setting is -1", "configParser_GetConfigInt", "ConfigParser.h",
     "-1 for a key that is absent or whose value is no integer",
     "an empty key offers the recent calls only where that is switched on", absentKeyIsMinusOne},
    {"a folder has no path", "SystemFile_GetRealPath", "SystemFile.h", "Empty for what is there and is no regular file",
     "reading the source list comes to an end whatever stands in its place", folderHasNoPath},
    {"an absent file has a path", "SystemFile_GetRealPath", "SystemFile.h",
     "where nothing is there, the path at which a file would be", "a source list that appears later is found",
     absentFileHasPath},
    {"memory is given and taken back", "operator new(size, file, line)", "TrackedMemory.h",
     "A block from this operator new is given back with the operator delete of the same form",
     "pages, buckets and the search itself live in these blocks", memoryIsGivenAndTakenBack},
    {"no memory is null", "operator new(size, file, line)", "TrackedMemory.h", "Null when there is no memory.",
     "a search that runs out of memory gives up its own work and nothing else", noMemoryIsNull},
    {"null is given back without effect", "operator delete(block, file, line)", "TrackedMemory.h",
     "Does nothing for null.", "what was never made is given back like what was", deleteIgnoresNull},
    {"a lock is recursive", "chCriticalSection::Lock", "BaseHelper.h",
     "the thread that holds it may lock it again and unlocks it as often as it locked it",
     "a search that comes back to its own lock goes on", lockIsRecursive},
    {"a lock keeps others out", "chCriticalSection::Lock", "BaseHelper.h",
     "Waits until no other thread holds the lock.", "requests and pages change hands between threads whole",
     lockExcludes},
};

} // namespace

constexpr Group logAndMemory = {"log and memory", checks};

} // namespace platform_check
