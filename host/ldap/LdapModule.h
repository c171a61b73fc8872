// The phone's LDAP module: queries of the one directory, for any number of callback objects.
//
// The directory works one query at a time. A newer query for the same callback object takes the place of the older one,
// whether that still waits, runs, or has been answered and not yet delivered; queries for other callback objects wait
// for their turn. Answers come on the directory's thread and are posted from there. All operations: any thread.
#pragma once

#include "host/kernel/Processor.h"
#include "host/kernel/Reporter.h"
#include "host/sources/LdapDirectory.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace host {

class LdapModule {
public:
    // The kernel and the reporter of the phone that this module is a part of.
    LdapModule(Kernel& kernel, Reporter& reporter) : m_kernel(kernel), m_reporter(reporter) {}

    // Starts a query as Ldap_SearchAsync says. False when there is no directory; the answer then says so. Throws
    // std::bad_alloc when there is no memory for the query; what was asked before is given up all the same.
    bool search(LdapQuery query, NS_TA::CTaskActionCallbackBase& callback, MessageThread* thread);

    // Delivers answer as the answer to key to whoever asked last, whatever that was and however often it has been
    // answered. False when nobody asked, or whoever did takes no more messages.
    bool answerAgain(const std::string& key, LdapAnswer answer);

    // Gives up what was asked for a callback object that takes no more messages.
    void forget(const std::shared_ptr<Processor>& processor);

    // What is asked from now on; null: every query fails. A running query is given up without an answer.
    void setDirectory(std::shared_ptr<LdapDirectory> directory);

    // True while a query waits or runs in the directory. Its answer is queued before this becomes false.
    bool isBusy() const;

    // How many queries were made so far.
    std::uint64_t queryCount() const;

private:
    struct Request;
    using SharedRequest = std::shared_ptr<Request>;

    void giveUp(const std::shared_ptr<Processor>& processor);
    void startNext();
    void postNext();
    void answered(const SharedRequest& request, LdapAnswer answer);

    // What hands answer to the callback object of request; none when there is no memory for it.
    std::function<void()> delivery(const SharedRequest& request, LdapAnswer answer) const noexcept;

    Kernel& m_kernel;
    Reporter& m_reporter;

    // Held while the directory is told to start or to give up, so that both reach it in the order in which they were
    // decided. Never taken where an answer comes in: a directory may wait for that.
    std::mutex m_order;
    std::shared_ptr<LdapDirectory> m_directory; // guarded by m_order

    mutable std::mutex m_mutex; // taken after m_order
    SharedRequest m_running;    // all guarded by m_mutex
    SharedRequest m_newest;
    std::deque<SharedRequest> m_waiting;
    std::uint64_t m_queryCount = 0;
};

} // namespace host
