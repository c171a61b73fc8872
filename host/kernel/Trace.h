// What crosses the platform boundary, as a tool or test can follow it: which request asked which source for what, what
// the source offered, how long it took, and which pages were sent.
#pragma once

#include "host/kernel/Kernel.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace host {

enum class TraceKind {
    requestQueued,   // a task action was queued for execution
    requestStarted,  // its Exec begins
    requestFinished, // its Exec has returned
    sourceAsked,     // a source was called (LDAP: a query was started)
    sourceAnswered,  // it returned (LDAP: its answer reaches the search)
    sourceAbandoned, // an LDAP query was given up for a newer one
    pageSent,        // a task action was posted to a callback object
    timerSet,        // a thread timer was armed
    timerExpired,    // it expired
};

struct TraceEvent {
    TraceKind kind{};
    Duration at{};             // the kernel's time
    std::string_view source{}; // the source's name, such as "local directory", where there is one
    std::string_view key{};    // what it was asked for
    std::size_t contacts = 0;  // offered by it
    std::size_t numbers = 0;   // of them, the numbers that are not empty
    bool failed = false;
    std::string_view problem{}; // why, or what is to be known of the answer, for people
};

// Called on the thread that does what the event says; must not call back into the phone.
class TraceSink {
public:
    virtual ~TraceSink() = default;
    virtual void onTrace(const TraceEvent& event) = 0;
};

} // namespace host
