// The transport over libcurl: http and https, certificates always verified, no redirect followed, no cookie kept.
#pragma once

#include "host/remote/http/HttpTransport.h"

#include <chrono>
#include <memory>
#include <string>

namespace host {

struct CurlSettings {
    std::string user;
    std::string password;
    std::string caFile;                             // trusted certificates (PEM); empty: the system's
    std::chrono::milliseconds networkTimeout{5000}; // for a connection to be made
    std::chrono::milliseconds timeLimit{60'000};    // for an answer to be complete
};

// Keeps its connection between exchanges. User and password go with a request that says so and with no other one.
// Throws std::runtime_error when libcurl has no memory to begin with. Any thread.
std::unique_ptr<HttpTransport> makeCurlTransport(CurlSettings settings);

} // namespace host
