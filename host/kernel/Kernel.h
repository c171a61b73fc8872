// The workstation phone's messages: named threads, their queues, and the two drivers that work them.
//
// Everything that happens on the phone is a message: when it is due, in which order it was posted, on which thread it
// runs, for which object, and what it does. One implementation of queues serves both drivers, so that what the tests
// prove is what the tool runs; only "what time is it", "wait" and "start a thread" differ:
//
//   live     every named thread is a real thread; time is the steady clock. The main thread is the caller's own, which
//            works its queue while it is in serveMain.
//   stepped  there are no threads; time stands still until a test moves it. Whoever calls step or advance works the
//            messages, in order or in whatever order it chooses.
//
// A message holds what it needs alive; what it holds is let go of outside the kernel's lock. The lock is a leaf:
// nothing is called with it held. A message must not work other messages: no step, advance or serveMain from a handler.
#pragma once

#include "platform/MsgQueueHelper.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

using Duration = std::chrono::microseconds;

enum class Driver { live, stepped };

class MessageThread; // a named thread and its queue; its address is the handle that the phone's functions pass around

// Whom a message is for. Withdrawing either of the two removes it.
struct Target {
    const void* object = nullptr; // the receiver
    const void* token = nullptr;  // the timer or query that it comes from
};

// A message as a test sees it that chooses which one runs next.
struct ReadyMessage {
    std::uint64_t sequence = 0; // order of posting, unique
    Duration due{};
    std::string thread;
    std::string label;
};

class Kernel {
public:
    static constexpr std::string_view mainThread = "ThreadMain";
    static constexpr std::string_view messageThread = "ThreadMessage";
    static constexpr std::string_view searchThread = ETL_MsgQueueHelper::THREAD_CONTACT_SEARCH;

    // Starts with the three threads above.
    explicit Kernel(Driver driver);

    // Stops as stop() does.
    ~Kernel();

    Kernel(const Kernel&) = delete;
    Kernel& operator=(const Kernel&) = delete;

    Driver driver() const;

    // Adds a named thread, started at once by the live driver. Not for a name that is there already. Throws
    // std::system_error, with nothing added, when the system gives no thread.
    MessageThread* addThread(std::string_view name);

    // Null when there is none of this name. Any thread.
    MessageThread* findThread(std::string_view name) const;

    // The thread whose message is being worked by the caller, or null.
    MessageThread* currentThread() const;

    // Time since the kernel was made. Any thread.
    Duration now() const;

    // Queues work for thread (null: the main thread), due delay from now. False, and work is let go of, when the kernel
    // has been stopped. Throws std::bad_alloc, with nothing queued, without memory. Any thread.
    bool post(MessageThread* thread, Target target, Duration delay, std::string_view label, std::function<void()> work);

    // Removes the queued messages whose object is `object` and, unless the caller itself is working it, waits until a
    // running one has ended. Whoever calls sees to it that no more are posted meanwhile. Any thread; not with a lock
    // held that the receiver's handlers take.
    void withdrawObject(const void* object);

    // Removes the queued messages whose token is `token` and gives their number; withdrawTokenAndWait also waits as
    // above.
    std::size_t withdrawToken(const void* token);
    void withdrawTokenAndWait(const void* token);

    // Live: works the main thread's queue on the calling thread until finished() is true (asked after every message and
    // at the latest every 10 ms) or the time is up. True when finished() was. Stepped: works all threads' messages in
    // order, moving time on as needed, under the same conditions.
    bool serveMain(const std::function<bool()>& finished, Duration atMost);

    // No further message is taken; the live threads end after the one that they are working; what is queued is let go
    // of. Waits for the threads, so not from a message. Stopping twice is harmless.
    void stop();

    // How many messages are queued or running, whatever their due time. Any thread.
    std::size_t pending() const;

    // ---- the stepped driver only ----

    // The messages that may run next: of every thread the first of those that are due, in order of due time and
    // posting.
    std::vector<ReadyMessage> ready() const;

    // Runs the next message that is due, or the one of this sequence (false when there is none such).
    bool step();
    bool step(std::uint64_t sequence);

    // When the next message is due; Duration::max() when nothing is queued.
    Duration nextDue() const;

    // Runs everything that comes due within this time, moving time on from message to message, and ends at now + by.
    void advance(Duration by);

    // Moves time without running anything.
    void moveTime(Duration by);

private:
    struct State;

    explicit Kernel(std::unique_ptr<State> state);

    std::unique_ptr<State> m_state;
};

} // namespace host
