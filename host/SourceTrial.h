// What asking a source for nobody's sake brings, for whoever checks a phone (Phone::tryOut).
#pragma once

#include <cstddef>
#include <string>

namespace host {

struct SourceTrial {
    enum class Outcome {
        answered,
        failed,
        absent,  // it has no file
        unasked, // a server, and this phone asks none
        givenUp,
    };

    Outcome outcome = Outcome::failed;
    bool isServer = false;
    std::size_t contacts = 0; // that it has; of an LDAP server, 0
    std::string problem{};    // "place: what is wrong; what to do"; empty: nothing, or the phone's problems say it
};

} // namespace host
