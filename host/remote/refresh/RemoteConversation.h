// One refresh of a remote directory as a conversation with its server: what to ask next, and what an answer means.
//
//     RemoteConversation refresh(options, lastCopy);
//     while (const HttpRequest* request = refresh.next()) {
//         refresh.take(transport.exchange(*request));
//     }
//     if (refresh.outcome().kind == RemoteOutcome::Kind::changed) { use(refresh.takeCopy()); }
//
// It does no input or output, knows no time, and ends after a bounded number of bytes. A redirect is followed a few
// times, and never from https to http; user and password go to the host that the settings name and to no other. What
// the address leads to is found out by asking (AddressBookFinder.h), and remembered in the copy. One thread.
#pragma once

#include "host/remote/http/HttpTransport.h"
#include "host/remote/http/WebAddress.h"
#include "host/remote/refresh/RemoteCopy.h"
#include "host/remote/refresh/RemoteOptions.h"
#include "host/remote/refresh/RemoteStep.h"

#include <cstddef>
#include <memory>
#include <string>

namespace host {

class RemoteConversation {
public:
    // options must be those of readRemoteOptions: of an address that can be used.
    RemoteConversation(const RemoteOptions& options, RemoteCopy last);

    // What to ask now; null when it is over. The same until its answer was taken.
    const HttpRequest* next();

    void take(HttpResponse response);

    // When it is over.
    const RemoteOutcome& outcome() const { return std::get<RemoteOutcome>(m_next); }

    // The directory's new copy, when it is over and has not failed.
    RemoteCopy takeCopy() { return std::move(m_task->copy); }

private:
    void admit();
    void redirect(const HttpResponse& response);
    void fail(const std::string& problem, RemoteOutcome::Kind kind = RemoteOutcome::Kind::failed);

    const RemoteOptions m_options;
    const std::unique_ptr<RemoteTask> m_task; // what the steps work on
    RemoteNext m_next;
    WebAddress m_at; // of the request
    std::size_t m_bytesLeft;
    std::size_t m_requests = 0;
    int m_redirects = 0; // of the request
};

} // namespace host
