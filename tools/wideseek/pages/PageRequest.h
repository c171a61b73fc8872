// A request for pages, as another program writes it on a line: {"id": 7, "key": "ann", "from": 0, "count": 10}.
#pragma once

#include "tools/wideseek/JsonLine.h"
#include "tools/wideseek/pages/LineReader.h"

#include <string>

namespace wideseek {

struct PageRequest {
    Json id; // whatever the caller likes; null without one
    std::string key;
    int from = 0;
    int count = 10;
    std::string error; // why it is refused, and what to write instead; empty: it is not
};

// Reads a line of any bytes. A line that is refused has its id where that can be read, and an error. Throws
// std::bad_alloc alone.
PageRequest readRequest(const Line& line);

} // namespace wideseek
