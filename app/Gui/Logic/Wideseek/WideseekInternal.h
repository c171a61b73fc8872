// What the module's own files share: its log numbers, its allocations and its scoped lock. Not for callers.
#pragma once

#include "platform/BaseHelper.h"
#include "platform/TrackedMemory.h"

namespace NS_WS {

// Every log line of the module carries these.
constexpr int LOG_MODULE_WIDESEEK = 10;
constexpr int LOG_LEVEL_INFO = 6;

// What a search leaves in its result code when something it needs is missing, or when the page asked for is refused.
constexpr int RESULT_CODE_MISSING = 40;
constexpr int RESULT_CODE_RANGE = 72;

// The id of the source that answers later.
constexpr const char* SOURCE_ID_LDAP = "ldap_search";

// Ends an object that was made with the tracking operator new and gives its memory back. pObject may be null; where T
// is a base, its destructor is virtual and the base is the first one.
template <typename T> void TrackedDelete(T* pObject) noexcept {
    if (pObject != nullptr) {
        pObject->~T();
        ::operator delete(static_cast<void*>(pObject), "app/Gui/Logic/Wideseek", 0);
    }
}

// Holds a lock from its construction to its end.
class CH_SCOPED_CAPABILITY CLock {
public:
    explicit CLock(ETL_BaseHelper::chCriticalSection& csLock) CH_ACQUIRE(csLock) : m_csLock(csLock) { m_csLock.Lock(); }
    ~CLock() CH_RELEASE() { m_csLock.Unlock(); }

    CLock(const CLock&) = delete;
    CLock& operator=(const CLock&) = delete;

private:
    ETL_BaseHelper::chCriticalSection& m_csLock;
};

} // namespace NS_WS

// Makes an object with the tracking operator new: WS_NEW("app/Gui/Logic/Wideseek/WideseekModel") CWideseekModel.
// Null when there is no memory.
#define WS_NEW(file) new (file, __LINE__)
