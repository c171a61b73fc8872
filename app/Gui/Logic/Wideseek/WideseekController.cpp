#include "app/Gui/Logic/Wideseek/WideseekController.h"

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "app/Gui/Logic/Wideseek/WideseekInternal.h"
#include "app/Gui/Logic/Wideseek/WideseekModel.h"
#include "app/Gui/Logic/Wideseek/modWideseek.h"
#include "platform/AppLog.h"

#include <condition_variable>
#include <mutex>
#include <utility>

WS_OPTIONAL_TYPE_INFO("_ZTIN18ETL_MsgQueueHelper14chMsgProcesserE");

namespace NS_WS {

using ETL_MsgQueueHelper::CFG_CHANGE_WIDESEEK;
using ETL_MsgQueueHelper::MSG_CONFIG_CHANGED;

namespace {

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
    bool bListens = true;
    {
        const std::lock_guard lock(Uses().mutex);
        m_pController = bCreate ? MyGetInstance() : m_pInst;
        if (m_pController != nullptr) {
            ++m_pController->m_iUses;
            // Not while it is being made, which is itself such a use.
            bListens = !bCreate || std::exchange(m_pController->m_bListens, true);
        }
    }
    if (!bListens && !MyListen()) {
        const std::lock_guard lock(Uses().mutex);
        m_pController->m_bListens = false;
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
    return WithoutException<CWideseekController*>(nullptr, [] {
        const CUse use(true);
        return use.operator->();
    });
}

CWideseekController* CWideseekController::MyGetInstance() {
    if (m_pInst == nullptr) {
        // Set before MyInit, which comes back here.
        m_pInst = WS_NEW("app/Gui/Logic/Wideseek/WideseekController") CWideseekController;
        if (m_pInst != nullptr) {
            m_pInst->MyInit();
        }
        if (m_pInst != nullptr && (m_pInst->m_pModel == nullptr || m_pInst->m_pSearchAction == nullptr)) {
            // With a half of it there would be no search until the phone starts again. The next use tries anew.
            MyDestroy(std::exchange(m_pInst, nullptr));
        }
    }
    return m_pInst;
}

bool CWideseekController::MyListen() {
    return WithoutException(false, [] {
        EtlMsgHandler_RegisterMsgHandle(MSG_CONFIG_CHANGED, MSG_CONFIG_CHANGED, OnMessage);
        return true;
    });
}

void CWideseekController::MyDestroy(CWideseekController* pController) {
    if (pController != nullptr) {
        pController->MyFinal();
        WS_DELETE("app/Gui/Logic/Wideseek/WideseekController", pController);
    }
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
    MyDestroy(pController);
}

bool CWideseekController::LendEnableCfgList(WideseekCfgListData* pList) {
    const CUse use(false);
    return use && use->m_pModel != nullptr && use->m_pModel->GetEnableCfgList(pList);
}

CWideseekController::CWideseekController()
    : m_pSearchAction(nullptr), m_pModel(nullptr), m_iUses(0), m_bListens(false) {
}

CWideseekController::~CWideseekController() = default;

bool CWideseekController::MyInit() {
    if (m_pModel == nullptr) {
        m_pModel = WithoutException<CWideseekModel*>(
            nullptr, [] { return WS_NEW("app/Gui/Logic/Wideseek/WideseekController") CWideseekModel; });
    }
    if (m_pSearchAction == nullptr) {
        m_pSearchAction = Wideseek_CreateSearchAction();
    }
    return true;
}

bool CWideseekController::MyFinal() {
    Wideseek_DestroySearchAction(m_pSearchAction);
    m_pSearchAction = nullptr;
    WS_DELETE("app/Gui/Logic/Wideseek/WideseekController", m_pModel);
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
    CWideseekRequest request(pCallback);
    request.SetFromIndex(iFromIndex);
    request.SetSearchCount(iSearchCount);
    request.SetKey(strKey);
    const unsigned long long uSerial = m_pSearchAction->HandOver(std::move(request));
    if (WithoutException(0, [this] { return TaskAction_ExecAction(m_pSearchAction); }) != 0) {
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
    return m_pModel != nullptr && WithoutException(false, [&] { return m_pModel->GetEnableCfgList(pList); });
}

int CWideseekController::OnMessage(ETL_MsgQueueHelper::msgObject& msg) {
    if (msg.uMessageId != MSG_CONFIG_CHANGED || msg.llParam1 != CFG_CHANGE_WIDESEEK) {
        return 0;
    }
    return WithoutException(0, [&] {
        const CUse use(false);
        return use ? use->MyOnConfigureMessage(msg) : 0;
    });
}

int CWideseekController::MyOnConfigureMessage(ETL_MsgQueueHelper::msgObject& /*msg*/) {
    if (m_pModel == nullptr) {
        return 0;
    }
    ResetKey();
    app_log(LOG_MODULE_WIDESEEK, LOG_LEVEL_INFO, "Wideseek: begin to reload configure!\n");
    const bool bRead = WithoutException(false, [this] { return m_pModel->ReloadConfigure(); });
    // A search that began while the file was being read asked the sources of before.
    ResetKey();
    return bRead ? 1 : 0;
}

} // namespace NS_WS
