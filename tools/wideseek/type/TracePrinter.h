// The trace of a request as people and scripts read it.
#pragma once

#include "tools/wideseek/type/TraceLog.h"

#include <ostream>

namespace wideseek {

struct TracedRequest {
    std::size_t request = 0; // from 0
    std::string key;         // as typed
    int total = -1;          // rows in all, as its last page reported them; -1 without a page
    RequestTrace trace;
};

// A line that names the request, a line for each source, and a line on rows and times.
void printTrace(std::ostream& out, const TracedRequest& request);

// One JSON object on one line, {"trace": {...}}. Bytes that are not UTF-8 become U+FFFD.
void printTraceJson(std::ostream& out, const TracedRequest& request);

} // namespace wideseek
