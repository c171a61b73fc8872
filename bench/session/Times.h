// Many times, put briefly.
#pragma once

#include "bench/session/KeySearch.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace bench {

struct Summary {
    std::size_t count = 0;
    double median = 0; // microseconds, as all that follow
    double percentile99 = 0;
    double worst = 0;
    double total = 0;
};

inline Summary summaryOf(std::vector<Nanoseconds> times) {
    if (times.empty()) {
        return {};
    }
    std::sort(times.begin(), times.end());
    const auto microseconds = [](Nanoseconds time) { return std::chrono::duration<double, std::micro>(time).count(); };
    return {times.size(), microseconds(times[times.size() / 2]), microseconds(times[(times.size() - 1) * 99 / 100]),
            microseconds(times.back()), microseconds(std::accumulate(times.begin(), times.end(), Nanoseconds(0)))};
}

} // namespace bench
