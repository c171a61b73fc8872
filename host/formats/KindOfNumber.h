// Which kind of number words tell: the types of a vCard's number, a label that a person has given to it, the name of a
// column.
//
//     KindsOfNumber kinds;
//     kinds.add("work");
//     kinds.add("fax");
//     kinds.kind(); // fax
#pragma once

#include "host/sources/Contact.h"

#include <string_view>

namespace host {

class KindsOfNumber {
public:
    // One word, in any case of its letters (ASCII). False when it is none that tells a kind.
    bool add(std::string_view word);

    // Of the words so far: a fax at work is a fax, a mobile telephone at work is a mobile one.
    NumberKind kind() const;

private:
    unsigned m_seen = 0; // a bit for each kind
};

// The kind that a text of several words tells, in English, German, French or Spanish: "Téléphone (bureau)".
NumberKind kindOfNumber(std::string_view label);

} // namespace host
