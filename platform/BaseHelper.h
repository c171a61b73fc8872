// The phone's base helpers: the lock.
//
// A chCriticalSection is a recursive mutual exclusion: the thread that holds it may lock it again and unlocks it as
// often as it locked it. It is neither copied nor moved. Locking cannot fail.
//
// The macros name Clang's thread-safety attributes, so that the compiler checks which lock guards what
// (https://clang.llvm.org/docs/ThreadSafetyAnalysis.html); other compilers see nothing of them.
#pragma once

#if defined(__clang__)
#define CH_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define CH_THREAD_ATTRIBUTE(x)
#endif

#define CH_CAPABILITY(name) CH_THREAD_ATTRIBUTE(capability(name))
#define CH_SCOPED_CAPABILITY CH_THREAD_ATTRIBUTE(scoped_lockable)
#define CH_GUARDED_BY(lock) CH_THREAD_ATTRIBUTE(guarded_by(lock))
#define CH_ACQUIRE(...) CH_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define CH_RELEASE(...) CH_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define CH_REQUIRES(...) CH_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))

namespace ETL_BaseHelper {

class CH_CAPABILITY("lock") chCriticalSection {
public:
    chCriticalSection();
    ~chCriticalSection();

    chCriticalSection(const chCriticalSection&) = delete;
    chCriticalSection& operator=(const chCriticalSection&) = delete;

    // Any thread. Waits until no other thread holds the lock.
    void Lock() CH_ACQUIRE();

    // The thread that holds the lock, once for each Lock().
    void Unlock() CH_RELEASE();

private:
    void* m_pLock;
};

} // namespace ETL_BaseHelper
