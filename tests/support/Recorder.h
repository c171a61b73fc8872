// What crosses the platform boundary, as text.
#pragma once

#include "host/Trace.h"

#include <string>

namespace test {

// A line per event: kind|source|key|contacts/numbers, and |problem when it failed.
struct Recorder : host::TraceSink {
    std::string seen;

    void onTrace(const host::TraceEvent& event) override {
        seen += std::to_string(static_cast<int>(event.kind)) + "|" + std::string(event.source) + "|" +
                std::string(event.key) + "|" + std::to_string(event.contacts) + "/" + std::to_string(event.numbers) +
                (event.failed ? "|" + std::string(event.problem) : "") + "\n";
    }
};

} // namespace test
