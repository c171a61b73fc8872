// Carries a request to a web server and its answer back (RFC 9110): one exchange at a time, and nothing of its own
// accord. It follows no redirect and remembers nothing; what to make of an answer is for whoever asks.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace host {

struct HttpRequest {
    std::string method;
    std::string url;
    std::vector<std::string> headers{}; // "Name: value"
    std::string body{};
    bool signIn = false;       // with the user and password that the transport has
    std::size_t mostBytes = 0; // a longer answer is given up
};

struct HttpResponse {
    int status = 0;                             // 0: no whole answer came; problem says why
    std::map<std::string, std::string> headers; // by their names in lower case; the last one of a name
    std::string body;
    std::string problem; // for people: what happened, and what to do

    // Empty when there is none of this name (in lower case).
    std::string header(const std::string& name) const {
        const auto found = headers.find(name);
        return found == headers.end() ? std::string() : found->second;
    }
};

class HttpTransport {
public:
    virtual ~HttpTransport() = default;

    // Waits for the answer, within time limits of the transport's own. One thread.
    virtual HttpResponse exchange(const HttpRequest& request) = 0;

    // Ends the exchange that is running, and every later one, at once and without an answer. Any thread.
    virtual void stop() = 0;
};

} // namespace host
