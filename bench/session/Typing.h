// What people type: a contact's name on the keypad, the start of one of the contact's numbers, or the name as text.
#pragma once

#include "bench/session/Population.h"

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

enum class Way { keypad, number, text };

// The keys that follow each other while one contact is looked for, each a character longer than the one before.
struct Session {
    Way way{};
    std::vector<std::string> keys;
};

// Sessions of up to eight keys, one per way, for as many contacts from all sources; the same ones at every run.
std::vector<Session> makeSessions(const Population& population, std::size_t contacts);

// Keys that come faster than a person thinks, and of which the last one counts.
struct Burst {
    std::vector<std::string> typed;  // one of a contact's numbers, digit by digit
    std::vector<std::string> erased; // the same from behind, but for its first digit
};

// Bursts of up to ten keys each, for as many contacts from all sources; the same ones at every run.
std::vector<Burst> makeBursts(const Population& population, std::size_t contacts);

} // namespace bench
