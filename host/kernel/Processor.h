// The part of a message processor (platform/MsgQueueHelper.h) that outlives it: where its messages run, and whether it
// still takes any.
//
// Whoever answers later (a timer, a directory) holds this part and not the processor. Its address is the kernel's
// target object, so that withdrawing removes exactly the messages of one processor, also when another one is made at
// the same address afterwards.
#pragma once

#include "host/kernel/Kernel.h"
#include "platform/MsgQueueHelper.h"

#include <atomic>
#include <memory>
#include <mutex>

namespace host {

class Processor {
public:
    // The part of processor, which must be alive.
    static std::shared_ptr<Processor> of(const ETL_MsgQueueHelper::chMsgProcesser& processor);

    void setThread(void* thread) { m_thread = static_cast<MessageThread*>(thread); }
    MessageThread* thread() const { return m_thread; }

    // Queues work for this processor on thread (null: the main thread). False when it takes no messages any more or the
    // phone is going down; work is then let go of with no lock held. Any thread.
    bool post(Kernel& kernel, MessageThread* thread, const void* token, Duration delay, std::string_view label,
              const std::function<void()>& work);

    // No post succeeds afterwards. Any thread.
    void close();

private:
    std::atomic<MessageThread*> m_thread{nullptr};
    std::mutex m_mutex;
    bool m_closed = false; // guarded by m_mutex
};

} // namespace host
