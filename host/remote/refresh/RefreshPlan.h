// When the server of a remote directory is asked again: regularly while all is well, ever more rarely while it is not.
//
//     if (now >= plan.due()) {
//         refresh() ? plan.succeeded(now) : plan.failed(now, 0s);
//     }
//
// Times are passed in, so that it keeps to any clock. One thread.
#pragma once

#include <chrono>
#include <functional>

namespace host {

class RefreshPlan {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    // A number from 0 to less than 1. What is due comes up to an eighth later by it, so that many phones that were
    // started together do not come together. None: on the dot.
    using Spread = std::function<double()>;

    static constexpr std::chrono::seconds firstPause{10}; // after a failure; then twice as long each time
    static constexpr std::chrono::seconds longestPause{3600};
    static constexpr std::chrono::seconds firstRefusal{60}; // after a refused password; then four times as long
    static constexpr int refusalGrowth = 4;

    explicit RefreshPlan(std::chrono::seconds interval, Spread spread = {});

    // At first at once.
    TimePoint due() const { return m_due; }

    void succeeded(TimePoint now);
    void failed(TimePoint now, std::chrono::seconds atLeast);

    // The server refused the password. It may lock the account after a few of them.
    void refused(TimePoint now);

private:
    void wait(TimePoint now, std::chrono::seconds pause);

    const std::chrono::seconds m_interval;
    const Spread m_spread;
    TimePoint m_due{};
    std::chrono::seconds m_pause = firstPause;
    std::chrono::seconds m_refusal = firstRefusal;
};

} // namespace host
