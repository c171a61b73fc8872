// The phone's threads, and its own messages.
#include "platform/MsgQueueHelper.h"
#include "platform_check/Check.h"

#include <atomic>
#include <thread>

namespace platform_check {

namespace {

using namespace ETL_MsgQueueHelper;

void* threadOf(const char* name) {
    return uCSystemShareHelpergetGlobalObject()->m_processLocal.GetLocalThreadByName(name);
}

void shareIsThere(Trial& trial) {
    trial.expect(uCSystemShareHelpergetGlobalObject() != nullptr, "it is null");
}

void searchThreadIsThere(Trial& trial) {
    void* thread = threadOf(THREAD_CONTACT_SEARCH);
    trial.expect(thread != nullptr, "there is no thread \"%s\"", THREAD_CONTACT_SEARCH);
    trial.expect(threadOf(THREAD_CONTACT_SEARCH) == thread, "asked twice, it gave two handles");
}

void otherNamesHaveNoThread(Trial& trial) {
    trial.expect(threadOf("ThreadPlatformCheckNoSuchName") == nullptr, "a name that no thread has gave a handle");
}

class Receiver : public chMsgProcesser {
public:
    using chMsgProcesser::WithdrawMessages;
};

void baseLeavesMessages(Trial& trial) {
    Receiver receiver;
    msgObject message{MSG_THREAD_TIMER, 0};
    const int result = receiver.TryThreadMessage(message);
    trial.expect(result == 0, "the base answered %d", result);
}

void withdrawingNothingReturns(Trial&) {
    Receiver receiver;
    receiver.WithdrawMessages();
    receiver.WithdrawMessages();
}

// What the handler of the phone's messages saw.
std::atomic<int> handled;
std::atomic<long long> handledParam;
std::atomic<unsigned int> handledId;
std::atomic<std::thread::id> handledOn;

int handle(msgObject& message) {
    handledId = message.uMessageId;
    handledParam = message.llParam1;
    handledOn = std::this_thread::get_id();
    ++handled;
    return 1;
}

constexpr long long param = 0x7FFF0001LL; // of no part of any configuration

// Registers handle, twice, and has one message sent. False when that cannot be checked.
bool sendOne(Trial& trial) {
    if (trial.phone().sendMessage == nullptr) {
        trial.skip("Phone::sendMessage is not set");
        return false;
    }
    EtlMsgHandler_RegisterMsgHandle(MSG_CONFIG_CHANGED, MSG_CONFIG_CHANGED, handle);
    EtlMsgHandler_RegisterMsgHandle(MSG_CONFIG_CHANGED, MSG_CONFIG_CHANGED, handle);
    handled = 0;
    trial.phone().sendMessage(MSG_CONFIG_CHANGED, param);
    return trial.expect(trial.workUntil([] { return handled > 0; }), "the handler of a message was not called");
}

void handlersAreCalled(Trial& trial) {
    if (sendOne(trial)) {
        trial.expect(handledId == MSG_CONFIG_CHANGED && handledParam == param,
                     "the handler got message %#x with parameter %lld", handledId.load(), handledParam.load());
    }
}

void handlersAreCalledOnce(Trial& trial) {
    if (sendOne(trial)) {
        trial.work(20);
        trial.expect(handled == 1, "a handler that was registered twice was called %d times", handled.load());
    }
}

constexpr Check checks[] = {
    {"what is shared is there", "uCSystemShareHelpergetGlobalObject", "MsgQueueHelper.h", "Never null. Any thread.",
     "there is a thread to search on", shareIsThere},
    {"the search thread is there", "chProcessLocal::GetLocalThreadByName", "MsgQueueHelper.h",
     "Handles stay valid as long as the phone runs.", "LDAP answers and timers come on the thread that searches",
     searchThreadIsThere},
    {"other names have no thread", "chProcessLocal::GetLocalThreadByName", "MsgQueueHelper.h",
     "null when there is none of this name", "a phone without the search thread is noticed", otherNamesHaveNoThread},
    {"the base leaves messages to their handlers", "chMsgProcesser::TryThreadMessage", "MsgQueueHelper.h",
     "The base's answer is 0.", "the timer of a search reaches the search", baseLeavesMessages},
    {"withdrawing nothing returns", "chMsgProcesser::WithdrawMessages", "MsgQueueHelper.h",
     "Does what WithdrawMessages does, for objects that need it no earlier.", "a screen may close at any time",
     withdrawingNothingReturns},
    {"handlers are called", "EtlMsgHandler_RegisterMsgHandle", "MsgQueueHelper.h",
     "Has pHandler called for every phone message with an id from uFirstId to uLastId, both included",
     "a changed source list is read", handlersAreCalled},
    {"handlers are called once", "EtlMsgHandler_RegisterMsgHandle", "MsgQueueHelper.h",
     "Registering the same handler for the same ids again changes nothing.",
     "a changed source list is read once, however often the search was started", handlersAreCalledOnce},
};

} // namespace

constexpr Group messages = {"messages and threads", checks};

} // namespace platform_check
