#include "host/remote/refresh/RefreshPlan.h"

#include <algorithm>
#include <utility>

namespace host {

RefreshPlan::RefreshPlan(std::chrono::seconds interval, Spread spread)
    : m_interval(interval), m_spread(std::move(spread)) {
}

void RefreshPlan::succeeded(TimePoint now) {
    m_pause = firstPause;
    m_refusal = firstRefusal;
    wait(now, m_interval);
}

void RefreshPlan::failed(TimePoint now, std::chrono::seconds atLeast) {
    wait(now, std::max(m_pause, atLeast));
    m_pause = std::min(m_pause * 2, longestPause);
}

void RefreshPlan::refused(TimePoint now) {
    wait(now, m_refusal);
    m_refusal = std::min(m_refusal * refusalGrowth, longestPause);
}

void RefreshPlan::wait(TimePoint now, std::chrono::seconds pause) {
    const double later = m_spread ? m_spread() / 8 : 0;
    m_due = now + pause + std::chrono::duration_cast<TimePoint::duration>(std::chrono::duration<double>(pause) * later);
}

} // namespace host
