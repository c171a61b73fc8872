// What a check is made of, and what it may do while it runs.
#pragma once

#include "platform_check/PlatformCheck.h"

#include <functional>
#include <span>
#include <string>

namespace platform_check {

// The run of one check: it notes what it saw, and lets the phone work.
class Trial {
public:
    explicit Trial(const Phone& phone) : m_phone(phone) {}

    // Notes unless held that the rule is broken, and what was seen (a printf format). The first note counts. Gives
    // held. From the check's own thread.
    __attribute__((format(printf, 3, 4))) bool expect(bool held, const char* seen, ...);

    // What is checked is not there; says why.
    void skip(std::string reason) { m_skipped = std::move(reason); }

    // Lets the phone work for so long.
    void work(int milliseconds) const;

    // Lets the phone work until done() or until patience has run out. Gives the last done().
    bool workUntil(const std::function<bool()>& done) const;

    const Phone& phone() const { return m_phone; }
    const std::string& failure() const { return m_failure; }
    const std::string& skipped() const { return m_skipped; }

private:
    const Phone& m_phone;
    std::string m_failure;
    std::string m_skipped;
};

// One rule of the contract.
struct Check {
    const char* name;
    const char* function; // whose rule it is
    const char* header;
    const char* rule;   // in the words of the header
    const char* breaks; // which promise of the search rests on it
    void (*run)(Trial& trial);
};

class Group {
public:
    const char* name;
    std::span<const Check> checks;
};

} // namespace platform_check
