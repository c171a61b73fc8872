// What the module's own files share: its log numbers, its allocations and its scoped lock. Not for callers.
#pragma once

#include "platform/AppLog.h"
#include "platform/BaseHelper.h"
#include "platform/MsgQueueHelper.h"
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

// A result ends here, however many rows there are.
constexpr int MAX_INDEX = 0x00ffffff;

// The handle of the thread on which searches are done.
inline void* FindSearchThread() {
    return ETL_MsgQueueHelper::uCSystemShareHelpergetGlobalObject()->m_processLocal.GetLocalThreadByName(
        ETL_MsgQueueHelper::THREAD_CONTACT_SEARCH);
}

// Ends an object that was made with the tracking operator new and gives its memory back, in the name of this file and
// line. pObject may be null; where T is a base, its destructor is virtual and the base is the first one.
template <typename T> void TrackedDelete(T* pObject, const char* pszFile, int iLine) noexcept {
    if (pObject != nullptr) {
        pObject->~T();
        ::operator delete(static_cast<void*>(pObject), pszFile, iLine);
    }
}

// Runs what an exported function or a handler of messages does. No exception leaves the module: where work ends with
// one, for want of memory, the answer is valueOtherwise.
template <typename Value, typename Work> Value WithoutException(Value valueOtherwise, Work work) noexcept {
    try {
        return work();
    } catch (...) {
        return valueOtherwise;
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

// Holds the lock of the buckets from its construction to its end, and tells the log of both beforehand.
class CH_SCOPED_CAPABILITY CResultLock {
public:
    // The lines without their line feeds; literals.
    CResultLock(ETL_BaseHelper::chCriticalSection& csResult, const char* pszLock, const char* pszUnlock)
        CH_ACQUIRE(csResult)
        : m_csResult(csResult), m_pszUnlock(pszUnlock) {
        app_log(LOG_MODULE_WIDESEEK, LOG_LEVEL_INFO, "%s\n", pszLock);
        m_csResult.Lock();
    }
    ~CResultLock() CH_RELEASE() {
        app_log(LOG_MODULE_WIDESEEK, LOG_LEVEL_INFO, "%s\n", m_pszUnlock);
        m_csResult.Unlock();
    }

    CResultLock(const CResultLock&) = delete;
    CResultLock& operator=(const CResultLock&) = delete;

private:
    ETL_BaseHelper::chCriticalSection& m_csResult;
    const char* m_pszUnlock;
};

} // namespace NS_WS

// Makes an object with the tracking operator new: WS_NEW("app/Gui/Logic/Wideseek/WideseekModel") CWideseekModel.
// Null when there is no memory. WS_DELETE("app/Gui/Logic/Wideseek/WideseekModel", pModel) gives it back.
#define WS_NEW(file) new (file, __LINE__)
#define WS_DELETE(file, object) TrackedDelete(object, file, __LINE__)

// For a file that defines a class which derives from one of the phone's: that class's own type information names the
// base's, and a phone may be built without any (-fno-rtti). Nothing here looks at it, so it may be missing.
#define WS_OPTIONAL_TYPE_INFO(symbol) asm(".weak " symbol)
