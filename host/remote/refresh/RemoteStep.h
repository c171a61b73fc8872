// The steps of a refresh (RemoteConversation.h): each asks one thing, and its answer leads to the next step or to the
// end.
//
//     RemoteNext fetch(RemoteTask& task) {
//         return RemoteAsk{{.method = "GET", .url = task.start.url},
//                          [&task](const WebAddress& at, const HttpResponse& response) { return taken(task, response);
//                          }};
//     }
#pragma once

#include "host/remote/http/HttpTransport.h"
#include "host/remote/http/WebAddress.h"
#include "host/remote/refresh/RemoteCopy.h"

#include <chrono>
#include <functional>
#include <string>
#include <variant>

namespace host {

struct RemoteOutcome {
    enum class Kind {
        unchanged,
        changed,
        failed,
        refused, // the server does not take the password, and may be counting
        gone,    // nothing of the kind is at the address any more: what it leads to is to be found out again
    };

    Kind kind = Kind::failed;
    std::string problem{};              // for people: what happened, and what to do; empty unless it failed
    std::chrono::seconds retryAfter{0}; // what the server asks to be left alone for
};

struct RemoteAsk;
using RemoteNext = std::variant<RemoteAsk, RemoteOutcome>;

struct RemoteAsk {
    HttpRequest request;

    // Takes any answer but a redirect and a refused sign-in, and where it came from.
    std::function<RemoteNext(const WebAddress& at, const HttpResponse& response)> then;
};

// What all steps of a refresh share.
struct RemoteTask {
    WebAddress start; // as the settings name it
    RemoteCopy copy;  // the last one, which becomes the new one
};

// The steps that a refresh begins with. task outlives them.
RemoteNext fetchFile(RemoteTask& task);          // GET, if it has changed
RemoteNext findOut(RemoteTask& task);            // what the address leads to, and on with that
RemoteNext refreshAddressBook(RemoteTask& task); // what has changed in the one that was found

// A step's end when the server answers with a status that the step cannot use.
RemoteOutcome unusable(const HttpResponse& response, const std::string& wanted);

// A request of WebDAV.
HttpRequest davRequest(const std::string& method, const std::string& url, int depth, std::string body);

} // namespace host
