// The calls of the platform's functions at which another thread could come in, and what a test lets happen there in its
// place.
#pragma once

#include <functional>

namespace host {

enum class PlatformFunction {
    log,             // app_log
    searchDirectory, // Directory_LocalDirWideseek and the three others that take a key
    recentCalls,     // Directory_SearchCallLogRecentOutCall
    searchLdap,      // Ldap_SearchAsync
    listBuddies,     // GetListByGroupId
    buddyDetail,     // GetContactDetail
    execAction,      // TaskAction_ExecAction
    sendToThread,    // SendMessageToCallingThread
    setTimer,        // SetTimer
    registerHandler, // EtlMsgHandler_RegisterMsgHandle
};

struct PlatformCall {
    // answered: it has done its work and is about to return, which is told of the functions that answer (the
    // directories, recent calls, LDAP, the list of buddies, the execution of actions).
    enum class Moment { called, answered };

    PlatformFunction function{};
    Moment moment = Moment::called;

    bool operator==(const PlatformCall&) const = default;
};

// Runs on the calling thread, with no lock of the host held. It is not interrupted itself.
//
// What it does stands for what another thread does at this moment. Another thread would have to wait for the locks that
// the caller holds, so it looks at heldLocks() (HeldLocks.h) first.
using Interruption = std::function<void(PlatformCall call)>;

} // namespace host
