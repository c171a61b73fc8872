#include "platform/MsgQueueHelper.h"

#include "host/PhoneCore.h"
#include "host/kernel/Processor.h"

namespace host {

namespace {

using SharedProcessor = std::shared_ptr<Processor>;

} // namespace

bool Processor::post(Kernel& kernel, MessageThread* thread, const void* token, Duration delay, std::string_view label,
                     const std::function<void()>& work) {
    const std::lock_guard lock(m_mutex);
    return !m_closed && kernel.post(thread, {this, token}, delay, label, work);
}

void Processor::close() {
    const std::lock_guard lock(m_mutex);
    m_closed = true;
}

} // namespace host

namespace ETL_MsgQueueHelper {

struct chProcesserAccess {
    static const host::SharedProcessor& stateOf(const chMsgProcesser& processor) {
        return *static_cast<const host::SharedProcessor*>(processor.m_pState);
    }
};

chMsgProcesser::chMsgProcesser()
    : m_pState(std::make_unique<host::SharedProcessor>(std::make_shared<host::Processor>()).release()) {
}

chMsgProcesser::~chMsgProcesser() {
    WithdrawMessages();
    const std::unique_ptr<host::SharedProcessor> state(static_cast<host::SharedProcessor*>(m_pState));
}

int chMsgProcesser::TryThreadMessage(msgObject&) {
    return 0;
}

void chMsgProcesser::WithdrawMessages() {
    const host::SharedProcessor& state = chProcesserAccess::stateOf(*this);
    state->close();
    if (const auto phone = host::currentPhone()) {
        phone->ldap.forget(state);
        phone->kernel.withdrawObject(state.get());
    }
}

void* chProcessLocal::GetLocalThreadByName(const char* pszName) {
    const auto phone = host::currentPhone();
    return phone && pszName ? phone->kernel.findThread(pszName) : nullptr;
}

chSystemShare* uCSystemShareHelpergetGlobalObject() {
    static chSystemShare share;
    return &share;
}

} // namespace ETL_MsgQueueHelper

std::shared_ptr<host::Processor> host::Processor::of(const ETL_MsgQueueHelper::chMsgProcesser& processor) {
    return ETL_MsgQueueHelper::chProcesserAccess::stateOf(processor);
}

void EtlMsgHandler_RegisterMsgHandle(unsigned int uFirstId, unsigned int uLastId,
                                     int (*pHandler)(ETL_MsgQueueHelper::msgObject& msg)) {
    const auto phone = host::currentPhone();
    if (phone && pHandler) {
        phone->interrupt(host::PlatformFunction::registerHandler);
        phone->registerHandler({uFirstId, uLastId, pHandler});
    }
}
