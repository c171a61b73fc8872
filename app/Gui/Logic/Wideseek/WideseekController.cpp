#include "app/Gui/Logic/Wideseek/WideseekController.h"

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "app/Gui/Logic/Wideseek/WideseekModel.h"
#include "app/Gui/Logic/Wideseek/modWideseek.h"
#include "platform/AppLog.h"

#include <condition_variable>
#include <mutex>

namespace NS_WS {

namespace {

constexpr unsigned int MSG_CONFIG_CHANGED = 0x10007;
constexpr long long CFG_CHANGE_WIDESEEK = 52;

// Who uses the controller. The lock is recursive because making the controller makes the action, which asks the
// controller for its sources.
struct UseRecord {
    std::recursive_mutex mutex;
    std::condition_variable_any cvUnused;
};

UseRecord& Uses() {
    static UseRecord record;
    return record;
}

} // namespace

CWideseekController* CWideseekController::m_pInst = nullptr;

CWideseekController::CUse::CUse(bool bCreate) : m_pController(nullptr) {
    const std::lock_guard lock(Uses().mutex);
    m_pController = bCreate ? MyGetInstance() : m_pInst;
    if (m_pController != nullptr) {
        ++m_pController->m_iUses;
    }
}

CWideseekController::CUse::~CUse() {
    if (m_pController != nullptr) {
        const std::lock_guard lock(Uses().mutex);
        if (--m_pController->m_iUses == 0) {
            Uses().cvUnused.notify_all();
        }
    }
}

CWideseekController* CWideseekController::GetInstance() {
    const std::lock_guard lock(Uses().mutex);
    return MyGetInstance();
}

CWideseekController* CWideseekController::MyGetInstance() {
    if (m_pInst == nullptr) {
        // Set before MyInit, which comes back here.
        m_pInst = WS_NEW("app/Gui/Logic/Wideseek/WideseekController") CWideseekController;
        if (m_pInst != nullptr) {
            m_pInst->MyInit();
        }
    }
    return m_pInst;
}

void CWideseekController::ReleaseInstance() {
    CWideseekController* pController = nullptr;
    {
        std::unique_lock lock(Uses().mutex);
        pController = m_pInst;
        if (pController == nullptr) {
            return;
        }
        // Before another controller can come up: a detach that finds the next one would leave this one sending.
        if (pController->m_pSearchAction != nullptr) {
            pController->m_pSearchAction->Stop();
        }
        m_pInst = nullptr;
        Uses().cvUnused.wait(lock, [pController] { return pController->m_iUses == 0; });
    }
    pController->MyFinal();
    TrackedDelete(pController);
}

bool CWideseekController::LendEnableCfgList(WideseekCfgListData* pList) {
    const CUse use(false);
    return use && use->GetEnableCfgList(pList);
}

CWideseekController::CWideseekController() : m_pSearchAction(nullptr), m_pModel(nullptr), m_iUses(0) {
}

CWideseekController::~CWideseekController() = default;

bool CWideseekController::MyInit() {
    if (m_pModel == nullptr) {
        m_pModel = WS_NEW("app/Gui/Logic/Wideseek/WideseekController") CWideseekModel;
    }
    if (m_pSearchAction == nullptr) {
        m_pSearchAction = Wideseek_CreateSearchAction();
    }
    EtlMsgHandler_RegisterMsgHandle(MSG_CONFIG_CHANGED, MSG_CONFIG_CHANGED, OnMessage);
    return true;
}

bool CWideseekController::MyFinal() {
    Wideseek_DestroySearchAction(m_pSearchAction);
    m_pSearchAction = nullptr;
    TrackedDelete(m_pModel);
    m_pModel = nullptr;
    return true;
}

bool CWideseekController::PreInit() {
    return true;
}

bool CWideseekController::SearchUnion(const std::string& strKey, int iFromIndex, int iSearchCount,
                                      NS_TA::CTaskActionCallbackBase* pCallback) {
    app_log(LOG_MODULE_WIDESEEK, LOG_LEVEL_INFO, "SearchUnion(strKey = %s)\n", strKey.c_str());
    if (m_pSearchAction == nullptr) {
        return false;
    }
    unsigned long long uSerial = 0;
    {
        const CWideseekAction::CHandOver handOver(*m_pSearchAction, pCallback);
        m_pSearchAction->SetFromIndex(iFromIndex);
        m_pSearchAction->SetSearchCount(iSearchCount);
        m_pSearchAction->SetKey(strKey);
        uSerial = handOver.GetSerial();
    }
    if (TaskAction_ExecAction(m_pSearchAction) != 0) {
        return true;
    }
    m_pSearchAction->TakeBack(uSerial);
    return false;
}

void CWideseekController::ResetKey() {
    if (m_pSearchAction != nullptr) {
        m_pSearchAction->ResetKey();
    }
}

void CWideseekController::ResetCallback(NS_TA::CTaskActionCallbackBase* pCallback) {
    if (m_pSearchAction != nullptr && pCallback != nullptr) {
        m_pSearchAction->Detach(pCallback);
    }
}

bool CWideseekController::GetEnableCfgList(WideseekCfgListData* pList) const {
    return m_pModel != nullptr && m_pModel->GetEnableCfgList(pList);
}

int CWideseekController::OnMessage(ETL_MsgQueueHelper::msgObject& msg) {
    if (msg.uMessageId != MSG_CONFIG_CHANGED || msg.llParam1 != CFG_CHANGE_WIDESEEK) {
        return 0;
    }
    const CUse use(false);
    return use ? use->MyOnConfigureMessage(msg) : 0;
}

int CWideseekController::MyOnConfigureMessage(ETL_MsgQueueHelper::msgObject& /*msg*/) {
    if (m_pModel == nullptr) {
        return 0;
    }
    ResetKey();
    app_log(LOG_MODULE_WIDESEEK, LOG_LEVEL_INFO, "Wideseek: begin to reload configure!\n");
    const bool bRead = m_pModel->ReloadConfigure();
    // A search that began while the file was being read asked the sources of before.
    ResetKey();
    return bRead ? 1 : 0;
}

} // namespace NS_WS
