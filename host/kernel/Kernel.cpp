#include "host/kernel/Kernel.h"

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <limits>
#include <map>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

namespace host {

namespace {

// Due time first, then order of posting.
using Order = std::pair<Duration, std::uint64_t>;

struct Message {
    Order order{};
    Target target;
    std::string label;
    std::function<void()> work;
};

using Queue = std::map<Order, Message>;

// How long serveMain sleeps at most before it asks again whether it is finished.
constexpr Duration servePoll = std::chrono::milliseconds(10);

// A year; sleeping until a later time point could overflow inside the library.
constexpr Duration longestSleep = std::chrono::hours(24 * 365);

Duration plus(Duration time, Duration by) {
    return by > Duration::max() - time ? Duration::max() : time + by;
}

[[noreturn]] void misuse(const char* what) {
    std::fprintf(stderr, "host::Kernel: %s\n", what);
    std::abort();
}

} // namespace

class MessageThread {
public:
    explicit MessageThread(std::string_view threadName) : name(threadName) {}

    const std::string name;

    // Everything below is guarded by Kernel::State::mutex.
    Queue queue;
    std::optional<Target> running; // of the message that is being worked or let go of
    std::condition_variable wake;
    std::thread thread;
};

namespace {

thread_local MessageThread* workedThread = nullptr; // whose message the calling thread works

} // namespace

struct Kernel::State {
    explicit State(Driver chosen) : driver(chosen), start(std::chrono::steady_clock::now()) {}

    const Driver driver;
    const std::chrono::steady_clock::time_point start;

    mutable std::mutex mutex;
    std::condition_variable ended; // a message has ended
    std::deque<MessageThread> threads;
    std::uint64_t lastSequence = 0;
    Duration steppedNow{};
    bool stopping = false;

    std::mutex stopMutex; // one stop at a time

    using Lock = std::unique_lock<std::mutex>;

    // All with the mutex held.
    Duration now() const {
        return driver == Driver::stepped
                   ? steppedNow
                   : std::chrono::duration_cast<Duration>(std::chrono::steady_clock::now() - start);
    }

    MessageThread* find(std::string_view name) {
        for (MessageThread& thread : threads) {
            if (thread.name == name) {
                return &thread;
            }
        }
        return nullptr;
    }

    bool isOwn(const MessageThread* thread) const {
        return std::any_of(threads.begin(), threads.end(), [&](const auto& own) { return &own == thread; });
    }

    bool isDue(const MessageThread& thread) const {
        return !thread.queue.empty() && thread.queue.begin()->first.first <= now();
    }

    // The thread whose first message comes first of all; null when nothing is queued.
    MessageThread* first() {
        MessageThread* best = nullptr;
        for (MessageThread& thread : threads) {
            if (!thread.queue.empty() && (!best || thread.queue.begin()->first < best->queue.begin()->first)) {
                best = &thread;
            }
        }
        return best;
    }

    void sleep(Lock& lock, std::condition_variable& wake, Duration until) const {
        wake.wait_until(lock, start + std::min(until, plus(now(), longestSleep)));
    }

    // Works the first message of thread, unlocked; the message counts as running until what it held is let go of.
    void run(Lock& lock, MessageThread& thread) {
        if (workedThread) {
            misuse("a message must not work other messages (step, advance or serveMain called from a handler)");
        }
        auto message = std::move(thread.queue.extract(thread.queue.begin()).mapped());
        thread.running = message.target;
        lock.unlock();

        workedThread = &thread;
        const auto end = [&] {
            message.work = nullptr;
            workedThread = nullptr;
            lock.lock();
            thread.running.reset();
            ended.notify_all();
        };
        try {
            message.work();
        } catch (...) {
            end();
            throw;
        }
        end();
    }

    void live(MessageThread& thread) {
        Lock lock(mutex);
        while (!stopping) {
            if (isDue(thread)) {
                run(lock, thread);
            } else {
                sleep(lock, thread.wake, thread.queue.empty() ? Duration::max() : thread.queue.begin()->first.first);
            }
        }
    }

    // True when a message that matches is worked by somebody else than the caller.
    template <typename Matches> bool isRunningElsewhere(const Matches& matches) const {
        return driver == Driver::live && std::any_of(threads.begin(), threads.end(), [&](const MessageThread& thread) {
                   return &thread != workedThread && thread.running && matches(*thread.running);
               });
    }

    // Needs no memory, so that what is killed or destroyed can always be withdrawn.
    template <typename Matches> Queue take(const Matches& matches) {
        Queue taken;
        for (MessageThread& thread : threads) {
            for (auto at = thread.queue.begin(); at != thread.queue.end();) {
                const auto message = at++;
                if (matches(message->second.target)) {
                    taken.insert(thread.queue.extract(message));
                }
            }
        }
        return taken;
    }

    template <typename Matches> std::size_t withdraw(const Matches& matches, bool wait) {
        Queue taken; // outlives the lock
        Lock lock(mutex);
        taken = take(matches);
        ended.wait(lock, [&] { return !wait || !isRunningElsewhere(matches); });
        lock.unlock();
        return taken.size();
    }

    bool serveLive(const std::function<bool()>& finished, Duration until) {
        Lock lock(mutex);
        MessageThread& main = threads.front();
        for (;;) {
            lock.unlock();
            if (finished()) {
                return true;
            }
            lock.lock();
            if (stopping || now() >= until) {
                return false;
            }
            if (isDue(main)) {
                run(lock, main);
                continue;
            }
            const Duration next = main.queue.empty() ? Duration::max() : main.queue.begin()->first.first;
            sleep(lock, main.wake, std::min({next, until, plus(now(), servePoll)}));
        }
    }

    bool serveStepped(const std::function<bool()>& finished, Duration until) {
        for (;;) {
            if (finished()) {
                return true;
            }
            Lock lock(mutex);
            MessageThread* thread = first();
            const Duration due = thread ? thread->queue.begin()->first.first : Duration::max();
            if (!thread || due > until || stopping) {
                steppedNow = std::max(steppedNow, until);
                return false;
            }
            steppedNow = std::max(steppedNow, due);
            run(lock, *thread);
        }
    }
};

Kernel::Kernel(std::unique_ptr<State> state) : m_state(std::move(state)) {
}

// Where a thread cannot be started, the destructor ends those that run.
Kernel::Kernel(Driver driver) : Kernel(std::make_unique<State>(driver)) {
    addThread(mainThread);
    addThread(messageThread);
    addThread(searchThread);
}

Kernel::~Kernel() {
    stop();
}

Driver Kernel::driver() const {
    return m_state->driver;
}

MessageThread* Kernel::addThread(std::string_view name) {
    const State::Lock lock(m_state->mutex);
    MessageThread& thread = m_state->threads.emplace_back(name);
    const bool callersOwn = m_state->threads.size() == 1;
    if (m_state->driver == Driver::live && !callersOwn && !m_state->stopping) {
        try {
            thread.thread = std::thread([state = m_state.get(), &thread] { state->live(thread); });
        } catch (const std::system_error& failure) {
            m_state->threads.pop_back();
            throw std::system_error(failure.code(), "a thread of the phone cannot be started");
        }
    }
    return &thread;
}

MessageThread* Kernel::findThread(std::string_view name) const {
    const State::Lock lock(m_state->mutex);
    return m_state->find(name);
}

MessageThread* Kernel::currentThread() const {
    const State::Lock lock(m_state->mutex);
    return m_state->isOwn(workedThread) ? workedThread : nullptr;
}

Duration Kernel::now() const {
    const State::Lock lock(m_state->mutex);
    return m_state->now();
}

bool Kernel::post(MessageThread* thread, Target target, Duration delay, std::string_view label,
                  std::function<void()> work) {
    const State::Lock lock(m_state->mutex);
    MessageThread* receiver = thread ? thread : &m_state->threads.front();
    if (m_state->stopping || !m_state->isOwn(receiver)) {
        return false;
    }
    const Order order{plus(m_state->now(), std::max(delay, Duration::zero())), ++m_state->lastSequence};
    receiver->queue.emplace(order, Message{order, target, std::string(label), std::move(work)});
    receiver->wake.notify_all();
    return true;
}

void Kernel::withdrawObject(const void* object) {
    if (object) {
        m_state->withdraw([object](const Target& target) { return target.object == object; }, true);
    }
}

std::size_t Kernel::withdrawToken(const void* token) {
    return token ? m_state->withdraw([token](const Target& target) { return target.token == token; }, false) : 0;
}

void Kernel::withdrawTokenAndWait(const void* token) {
    if (token) {
        m_state->withdraw([token](const Target& target) { return target.token == token; }, true);
    }
}

bool Kernel::serveMain(const std::function<bool()>& finished, Duration atMost) {
    const Duration until = plus(now(), std::max(atMost, Duration::zero()));
    return m_state->driver == Driver::live ? m_state->serveLive(finished, until)
                                           : m_state->serveStepped(finished, until);
}

void Kernel::stop() {
    if (currentThread()) {
        misuse("stop called from a message; it would wait for itself");
    }
    const std::lock_guard once(m_state->stopMutex);
    State::Lock lock(m_state->mutex);
    m_state->stopping = true;
    for (MessageThread& thread : m_state->threads) {
        thread.wake.notify_all();
    }
    lock.unlock();
    for (MessageThread& thread : m_state->threads) {
        if (thread.thread.joinable()) {
            thread.thread.join();
        }
    }
    lock.lock();
    const auto all = [](const Target&) { return true; };
    m_state->ended.wait(lock, [&] { return !m_state->isRunningElsewhere(all); });
    auto queued = m_state->take(all);
    lock.unlock();
    queued.clear();
}

std::size_t Kernel::pending() const {
    const State::Lock lock(m_state->mutex);
    std::size_t count = 0;
    for (const MessageThread& thread : m_state->threads) {
        count += thread.queue.size() + (thread.running ? 1U : 0U);
    }
    return count;
}

std::vector<ReadyMessage> Kernel::ready() const {
    const State::Lock lock(m_state->mutex);
    std::vector<ReadyMessage> found;
    for (const MessageThread& thread : m_state->threads) {
        if (m_state->isDue(thread)) {
            const Message& message = thread.queue.begin()->second;
            found.push_back({message.order.second, message.order.first, thread.name, message.label});
        }
    }
    std::sort(found.begin(), found.end(), [](const ReadyMessage& a, const ReadyMessage& b) {
        return std::pair(a.due, a.sequence) < std::pair(b.due, b.sequence);
    });
    return found;
}

bool Kernel::step() {
    State::Lock lock(m_state->mutex);
    MessageThread* thread = m_state->first();
    if (!thread || !m_state->isDue(*thread)) {
        return false;
    }
    m_state->run(lock, *thread);
    return true;
}

bool Kernel::step(std::uint64_t sequence) {
    State::Lock lock(m_state->mutex);
    for (MessageThread& thread : m_state->threads) {
        if (m_state->isDue(thread) && thread.queue.begin()->first.second == sequence) {
            m_state->run(lock, thread);
            return true;
        }
    }
    return false;
}

Duration Kernel::nextDue() const {
    const State::Lock lock(m_state->mutex);
    const MessageThread* thread = m_state->first();
    return thread ? thread->queue.begin()->first.first : Duration::max();
}

void Kernel::advance(Duration by) {
    serveMain([] { return false; }, by);
}

void Kernel::moveTime(Duration by) {
    const State::Lock lock(m_state->mutex);
    m_state->steppedNow = plus(m_state->steppedNow, by);
}

} // namespace host
