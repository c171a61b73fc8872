#include "platform/BaseHelper.h"

#include "host/kernel/HeldLocks.h"

#include <memory>
#include <mutex>

namespace host {

namespace {

thread_local std::size_t held = 0;

} // namespace

std::size_t heldLocks() {
    return held;
}

} // namespace host

namespace ETL_BaseHelper {

chCriticalSection::chCriticalSection() : m_pLock(std::make_unique<std::recursive_mutex>().release()) {
}

chCriticalSection::~chCriticalSection() {
    const std::unique_ptr<std::recursive_mutex> lock(static_cast<std::recursive_mutex*>(m_pLock));
}

void chCriticalSection::Lock() {
    static_cast<std::recursive_mutex*>(m_pLock)->lock();
    ++host::held;
}

void chCriticalSection::Unlock() {
    --host::held;
    static_cast<std::recursive_mutex*>(m_pLock)->unlock();
}

} // namespace ETL_BaseHelper
