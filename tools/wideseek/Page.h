// A page of rows as it arrived, and as scripts read it.
//
//     printJsonLine(std::cout, jsonOf(page));
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "tools/wideseek/JsonLine.h"

#include <cstddef>

namespace wideseek {

struct Page {
    std::size_t request = 0;   // from 0
    bool late = false;         // its request has had a page before
    double milliseconds = 0.0; // from just before the request was handed over
    WideseekListData data;
};

// An object with "request" (from 1), "key", "from", "count", "total", "late", "ms" and "rows", each row with "name",
// "number", "extra1", "extra2" and "extra". Its texts are the page's bytes.
Json jsonOf(const Page& page);

} // namespace wideseek
