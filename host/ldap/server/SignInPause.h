// How long no sign-in is tried after the server has refused one.
//
// Every key that is typed asks the directory. With a wrong password, a few keys in a row would lock the account on
// servers that count failures, so each refusal is followed by a pause, which is longer every time. Used by one thread.
#pragma once

#include "host/ldap/server/Waiter.h"

#include <chrono>

namespace host {

class SignInPause {
public:
    static constexpr std::chrono::minutes first{1};
    static constexpr std::chrono::minutes longest{60};
    static constexpr int growth = 4;

    // The server refused the sign-in. Gives the pause that begins.
    std::chrono::minutes refused(TimePoint now);

    // The server accepted the sign-in: the next pause is a first one again.
    void accepted() { *this = {}; }

    // What is left of the pause; zero: a sign-in may be tried.
    std::chrono::seconds left(TimePoint now) const;

private:
    std::chrono::minutes m_next = first;
    TimePoint m_end{};
};

} // namespace host
