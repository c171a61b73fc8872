#include "host/ldap/server/SignInPause.h"

#include <algorithm>

namespace host {

std::chrono::minutes SignInPause::refused(TimePoint now) {
    const std::chrono::minutes pause = m_next;
    m_end = now + pause;
    m_next = std::min(pause * growth, longest);
    return pause;
}

std::chrono::seconds SignInPause::left(TimePoint now) const {
    return std::max(std::chrono::ceil<std::chrono::seconds>(m_end - now), std::chrono::seconds::zero());
}

} // namespace host
