#include "host/remote/refresh/RemoteStep.h"

namespace host {

namespace {

using Kind = RemoteOutcome::Kind;

// What asks people to sign in, or tells them of an error, instead of what was asked for.
bool isWebPage(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
    return begin != std::string::npos && text[begin] == '<';
}

RemoteNext taken(RemoteTask& task, const HttpResponse& response) {
    RemoteCopy& copy = task.copy;
    if (response.status == 304 && !copy.parts.empty()) {
        return RemoteOutcome{Kind::unchanged};
    }
    if (response.status != 200) {
        return unusable(response, "the file");
    }
    if (response.body.empty()) {
        return RemoteOutcome{Kind::failed, "the file is empty; check [remote_directory] url and the server"};
    }
    if (isWebPage(response.body)) {
        return RemoteOutcome{Kind::failed, "a web page comes in place of contacts, perhaps one to sign in on; check "
                                           "[remote_directory] url, user and password_file"};
    }
    const auto held = copy.parts.find("");
    const bool same =
        copy.kind == RemoteCopy::Kind::file && held != copy.parts.end() && held->second.text == response.body;
    copy = {.kind = RemoteCopy::Kind::file, .lastModified = response.header("last-modified")};
    copy.parts[""] = {task.start.url, response.header("etag"), response.body};
    return RemoteOutcome{same ? Kind::unchanged : Kind::changed};
}

} // namespace

RemoteNext fetchFile(RemoteTask& task) {
    HttpRequest request{.method = "GET", .url = task.start.url, .headers = {"Accept: text/vcard, text/csv, */*"}};
    const auto held = task.copy.parts.find("");
    if (task.copy.kind == RemoteCopy::Kind::file && held != task.copy.parts.end()) {
        if (!held->second.etag.empty()) {
            request.headers.push_back("If-None-Match: " + held->second.etag);
        }
        if (!task.copy.lastModified.empty()) {
            request.headers.push_back("If-Modified-Since: " + task.copy.lastModified);
        }
    }
    return RemoteAsk{std::move(request),
                     [&task](const WebAddress&, const HttpResponse& response) { return taken(task, response); }};
}

} // namespace host
