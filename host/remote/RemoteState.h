// How a remote directory does, for whoever waits for it or tells of it.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace host {

struct RemoteState {
    using Time = std::chrono::system_clock::time_point;

    bool isFirstFetch = false; // there is no copy from before
    bool hasContacts = false;
    std::size_t contacts = 0;
    Time confirmed{};          // when the server said last that they are so
    std::size_t refreshes = 0; // how many have ended since the start, well or not
    std::string problem;       // of the last one; empty: it went well, or there was none
};

} // namespace host
