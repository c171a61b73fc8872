// Where the parts of a phone say what they do. A part that is called back later also learns from it whether its phone
// is still there:
//
//     directory.start(query, [this, weak = m_reporter.weak_from_this()](LdapAnswer answer) {
//         if (const auto alive = weak.lock()) {
//             answered(std::move(answer)); // the phone and all its parts are there meanwhile
//         }
//     });
#pragma once

#include "host/kernel/Trace.h"

#include <memory>
#include <string_view>

namespace host {

class Reporter : public std::enable_shared_from_this<Reporter> {
public:
    virtual ~Reporter() = default;

    // One line for the phone's log, without its line feed; level as in RFC 5424. Never throws: what there is no memory
    // for is lost. Any thread.
    virtual void report(int level, std::string_view line) = 0;

    // The line that words() gives; nothing when there is no memory for it. Any thread.
    template <typename Words> void tell(int level, const Words& words) noexcept {
        try {
            report(level, words());
        } catch (...) {
            // A report must not become a second failure.
        }
    }

    // Completes event with the time and hands it to whoever follows the trace. Never throws. Any thread.
    virtual void trace(TraceEvent event) = 0;
};

} // namespace host
