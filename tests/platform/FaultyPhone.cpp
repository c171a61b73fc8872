// The workstation phone under the platform check, as it is or with one fault: its functions are defined here again and
// come before those of libwideseek_host.so, which they call.
//
//     wideseek_platform_tests                 the phone as it is; tells every rule
//     wideseek_platform_tests FAULT GROUP     the group of checks on a phone that has the fault
#include "host/Phone.h"
#include "host/kernel/Kernel.h"
#include "host/text/FieldMatch.h"
#include "host/text/Key.h"
#include "host/text/NameForm.h"
#include "platform/AppLog.h"
#include "platform/BaseHelper.h"
#include "platform/CommonAPI.h"
#include "platform/ConfigParser.h"
#include "platform/Directory.h"
#include "platform/Ldap.h"
#include "platform/Presence.h"
#include "platform/SystemFile.h"
#include "platform/TaskAction.h"
#include "platform/TrackedMemory.h"
#include "platform_check/PlatformCheck.h"

#include "app/Gui/Logic/Wideseek/WideseekData.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace {

using NS_TA::CTaskAction;
using NS_TA::CTaskActionCallbackBase;

std::string_view fault;
host::Phone* phone = nullptr;

bool has(std::string_view name) {
    return fault == name;
}

// The phone's own function of this symbol; an operation of an object takes that as its first parameter.
template <typename Function> Function* own(const char* symbol) {
    void* function = dlsym(RTLD_NEXT, symbol);
    if (function == nullptr) {
        std::fprintf(stderr, "the workstation phone has no %s\n", symbol);
        std::abort();
    }
    return reinterpret_cast<Function*>(function);
}

std::string_view upToBlank(std::string_view text) {
    return text.substr(0, text.find(' '));
}

} // namespace

// ---- log and memory ----

void app_log(int, int, const char*, ...) {
    if (has("the log waits")) {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
}

int configParser_GetConfigInt(const char*) {
    return has("an absent setting is 0") ? 0 : -1;
}

std::string SystemFile_GetRealPath(const std::string& strPath) {
    return strPath == "/" && !has("a folder has a path") ? "" : strPath;
}

void* operator new(std::size_t uSize, const char*, int) noexcept {
    void* block = std::malloc(uSize + 1);
    if (block == nullptr && has("no memory ends the program")) {
        std::abort();
    }
    return block;
}

void operator delete(void* pBlock, const char*, int) noexcept {
    if (pBlock == nullptr && has("null cannot be given back")) {
        std::abort();
    }
    std::free(pBlock);
}

namespace ETL_BaseHelper {

void chCriticalSection::Lock() {
    static std::mutex once;
    if (has("a lock cannot be taken twice")) {
        once.lock();
    } else if (!has("a lock locks nothing")) {
        static_cast<std::recursive_mutex*>(m_pLock)->lock();
    }
}

void chCriticalSection::Unlock() {
    if (!has("a lock locks nothing")) {
        static_cast<std::recursive_mutex*>(m_pLock)->unlock();
    }
}

} // namespace ETL_BaseHelper

// ---- strings ----

std::string CommonAPI_StringConvert(const std::string& strText, StringConvertType) {
    const std::string key = host::text::convertKey(strText);
    return has("converting goes on") && key.size() > 1 ? key.substr(1) : key;
}

bool CommonAPI_IsSearchByT9(const std::string& strKey) {
    return host::text::isKeypadKey(strKey) || (has("nothing is digits") && strKey.empty());
}

std::string CommonAPI_TrimString(const std::string& strText, const std::string& strChars, TrimType) {
    const std::size_t first = std::min(strText.find_first_not_of(strChars), strText.size());
    const std::size_t last = has("trimming leaves the end") ? strText.size() : strText.find_last_not_of(strChars) + 1;
    return strText.substr(first, last - first);
}

int CommonAPI_StringMatch(const std::string& strText, const std::string& strKey, bool, StringMatchType) {
    if (has("short keys match beginnings") && strKey.size() == 1 && !strText.empty()) {
        return host::text::isIn(strText.substr(0, 1), strKey) ? 1 : 0;
    }
    return host::text::isIn(strText, strKey) ? 1 : 0;
}

std::string CommonUnits_ToKeyString(const std::string& strName) {
    std::string forms;
    host::text::appendKeypadForms(strName, forms);
    return has("s is on the wrong key") && upToBlank(strName) == "5" ? "5" + forms : forms;
}

int CommonAPI_GetFromAndToIndex(int* piFirst, int* piEnd, int iFromIndex, int iSearchCount, int iMaxIndex) {
    const bool possible =
        piFirst != nullptr && piEnd != nullptr && iFromIndex >= 0 && iSearchCount >= 0 && iMaxIndex >= 0;
    if (!possible) {
        if (has("refused bounds are set") && piFirst != nullptr) {
            *piFirst = 0;
        }
        return 0;
    }
    const auto sum = static_cast<int>(static_cast<unsigned>(iFromIndex) + static_cast<unsigned>(iSearchCount));
    const bool all = iSearchCount == 0 || (sum < 0 && !has("bounds overflow"));
    *piFirst = std::min(iFromIndex, iMaxIndex);
    *piEnd = all ? iMaxIndex : std::min(sum, iMaxIndex);
    return 1;
}

// ---- messages and timers ----

namespace ETL_MsgQueueHelper {

void* chProcessLocal::GetLocalThreadByName(const char* pszName) {
    const std::string_view name = has("every name has a thread") ? THREAD_CONTACT_SEARCH : pszName;
    return phone->kernel().findThread(name);
}

bool chThreadTimer::SetTimer(long long llPeriod, void* pUserData, chMsgProcesser* pProcesser,
                             int (chMsgProcesser::*pHandler)(msgObject& msg)) {
    static const auto set = own<bool(chThreadTimer*, long long, void*, chMsgProcesser*, decltype(pHandler))>(
        "_ZN18ETL_MsgQueueHelper13chThreadTimer8SetTimerExPvPNS_14chMsgProcesserEMS2_FiRNS_9msgObjectEE");
    if (has("a timer set for nobody goes on") && pProcesser == nullptr) {
        return false;
    }
    return set(this, has("timers are early") ? llPeriod / 10 : llPeriod, pUserData, pProcesser, pHandler);
}

void chThreadTimer::KillTimer() {
    static const auto kill = own<void(chThreadTimer*)>("_ZN18ETL_MsgQueueHelper13chThreadTimer9KillTimerEv");
    if (!has("killed timers expire")) {
        kill(this);
    }
}

bool chThreadTimer::IsTimerRuning() const {
    static const auto isRunning =
        own<bool(const chThreadTimer*)>("_ZNK18ETL_MsgQueueHelper13chThreadTimer13IsTimerRuningEv");
    return !has("timers never say that they run") && isRunning(this);
}

void chMsgProcesser::WithdrawMessages() {
    static const auto withdraw =
        own<void(chMsgProcesser*)>("_ZN18ETL_MsgQueueHelper14chMsgProcesser16WithdrawMessagesEv");
    const bool oneRuns = phone->kernel().pending() == 1; // and nothing is queued
    if (!has("withdrawal removes nothing") && !(has("withdrawal does not wait") && oneRuns)) {
        withdraw(this);
    }
}

} // namespace ETL_MsgQueueHelper

// ---- tasks ----

namespace NS_TA {

void chObject::Release() {
    if (--m_iReferences == 0 && m_bCreated && !has("the last release leaks")) {
        void* block = has("half of an object is freed") ? this : dynamic_cast<void*>(this);
        this->~chObject();
        ::operator delete(block, __FILE__, __LINE__);
    }
}

void CTaskActionCallbackBase::SetCallBackThread(void* pThread) {
    static const auto set =
        own<void(CTaskActionCallbackBase*, void*)>("_ZN5NS_TA23CTaskActionCallbackBase17SetCallBackThreadEPv");
    set(this, has("messages come on the main thread") ? nullptr : pThread);
}

void CTaskActionCallbackBase::SendMessageToCallingThread(CTaskAction* pAction) {
    static const auto send = own<void(CTaskActionCallbackBase*, CTaskAction*)>(
        "_ZN5NS_TA23CTaskActionCallbackBase26SendMessageToCallingThreadEPNS_11CTaskActionE");
    static CTaskAction* delayed = nullptr;
    if (has("posting calls the receiver")) {
        OnTaskActionCallback(pAction);
    } else if (has("order is lost") && pAction->GetTypeId() == 1) {
        pAction->AddRef();
        delayed = pAction;
    } else {
        send(this, pAction);
    }
    if (delayed != nullptr && pAction->GetTypeId() == 2) {
        send(this, delayed);
        std::exchange(delayed, nullptr)->Release();
    }
}

} // namespace NS_TA

int TaskAction_ExecAction(CTaskAction* pAction) {
    static const auto execute = own<int(CTaskAction*)>("_Z21TaskAction_ExecActionPN5NS_TA11CTaskActionE");
    static CTaskAction* last = nullptr;
    if (has("queued twice is executed once") && std::exchange(last, pAction) == pAction) {
        return 1;
    }
    if (has("execution is not put off") && pAction != nullptr) {
        return pAction->Exec() ? 1 : 0;
    }
    return execute(pAction);
}

// ---- sources ----

bool Directory_LocalDirWideseek(WideseekItemListData* pData) {
    static const auto search =
        own<bool(WideseekItemListData*)>("_Z26Directory_LocalDirWideseekP20WideseekItemListData");
    const bool answered = search(pData);
    const auto* first = pData->listResult.Begin();
    if (has("a source drops a contact for short keys") && pData->strKey.size() == 2 && pData->listResult.Count() > 0) {
        pData->listResult.Clear();
    } else if (has("a source finds too much") && pData->listResult.Count() > 0) {
        pData->listResult.PushBack({first->value.strName + "~", "", "", "", ""});
        pData->listResult.PushBack({"Q", "1", "", "", ""});
    }
    return answered;
}

int Directory_SearchCallLogRecentOutCall(OxVector<GeneralDirItemData>& vecItem, int iFromIndex, int iSearchCount) {
    static const auto search = own<int(OxVector<GeneralDirItemData>&, int, int)>(
        "_Z36Directory_SearchCallLogRecentOutCallR8OxVectorI18GeneralDirItemDataEii");
    return search(vecItem, has("recent calls always begin with the newest") ? 0 : iFromIndex, iSearchCount);
}

// ---- LDAP ----

int Ldap_SearchAsync(const std::string& strKey, int iFromIndex, int iMaxCount, CTaskActionCallbackBase* pCallback,
                     void* pThread) {
    using Search = int(const std::string&, int, int, CTaskActionCallbackBase*, void*);
    static const auto search = own<Search>("_Z16Ldap_SearchAsyncRKNSt7__cxx1112basic_stringIcSt11char_"
                                           "traitsIcESaIcEEEiiPN5NS_TA23CTaskActionCallbackBaseEPv");
    if (has("no answer comes") && strKey.empty()) {
        return 0;
    }
    const int started = search(has("answers have another key") ? strKey + " " : strKey, iFromIndex, iMaxCount,
                               pCallback, has("answers come anywhere") ? nullptr : pThread);
    if (has("a query is answered twice")) {
        phone->answerLdapAgain(strKey, {.succeeded = true, .rows = {}, .problem = {}});
    }
    return started;
}

// ---- presence ----

namespace {

class Manager final : public CPresenceContactManager {
public:
    bool GetListByGroupId(ContactBuddyListData* pList, int&, int, const std::string& strKey, AttrType) override {
        if (strKey.empty() || host::text::isIn("Ann", strKey) || has("buddies match everything")) {
            pList->listContactId.push_back(1);
        }
        return true;
    }

    int GetContactDetail(PresenceInfo& info, PresenceType, int) override {
        info.strName = "Ann";
        return info.iContactId == 1 || has("strangers are buddies") ? 1 : 0;
    }
};

int checkPhone(std::string_view group) {
    namespace check = platform_check;
    const std::map<std::string_view, const check::Group*> groups = {{"log and memory", &check::logAndMemory},
                                                                    {"strings", &check::strings},
                                                                    {"messages", &check::messages},
                                                                    {"timers", &check::timers},
                                                                    {"tasks", &check::tasks},
                                                                    {"sources", &check::sources},
                                                                    {"LDAP", &check::ldap},
                                                                    {"presence", &check::presence}};
    check::Phone access;
    access.work = [](int milliseconds) {
        phone->kernel().serveMain([] { return false; }, std::chrono::milliseconds(milliseconds));
    };
    access.sendMessage = [](unsigned int, long long param1) { phone->announceConfigChange(param1); };
    if (group.empty()) {
        access.verbose = true;
        return check::runAll(access);
    }
    access.patience = 1000; // a fault may be that something never comes
    return check::run({groups.at(group)}, access);
}

} // namespace

int main(int argc, char** argv) {
    host::Phone made({.root = WIDESEEK_SOURCE_DIR "/sample", .ldapDelay = std::chrono::milliseconds(5), .log = {}});
    Manager manager;
    phone = &made;
    made.setPresence(&manager);
    fault = argc > 1 ? argv[1] : "";
    const int failed = checkPhone(argc > 2 ? argv[2] : "");
    // A phone with a fault may be unable to end in order.
    std::fflush(stdout);
    std::_Exit(failed);
}
