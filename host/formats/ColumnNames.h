// What the columns of a table of contacts hold, told by their names, as mail services, office suites and address books
// write them in English, German, French and Spanish; and by whoever names a column's field.
//
//     const std::vector<ColumnMeaning> columns = meaningsOf({"Vorname", "Nachname", "Telefon geschäftlich"}, {});
#pragma once

#include "host/sources/Contact.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct ColumnMeaning {
    enum class Use {
        nothing,
        fullName,
        givenName,
        middleName,
        familyName,
        number,      // of this kind, or of the one that labelColumn tells
        numberLabel, // the kind of a number in another column
        fact,        // of this kind
        addressPart, // one line of it, or another part; those of one group make one address
        wholeAddress,
        extra,
    };

    Use use = Use::nothing;
    NumberKind kind = NumberKind::unknown;
    FactKind fact{};
    std::string group;                           // what tells several of the same kind from each other: "1", "home"
    std::optional<std::size_t> labelColumn = {}; // of a number
};

// The field that a person names for a column: name, first, middle, last, number, work, mobile, home, fax, other, extra,
// the name of a fact (nameOf a FactKind), or nothing. Empty for any other word.
std::optional<ColumnMeaning> meaningOfField(std::string_view field);

// All words that meaningOfField knows, for people.
std::string knownFields();

// By a column's name, folded (text/Fold.h), the meaning that is told and not guessed.
using ToldColumns = std::map<std::string, ColumnMeaning, std::less<>>;

// What each of the columns holds.
std::vector<ColumnMeaning> meaningsOf(const std::vector<std::string>& names, const ToldColumns& told);

} // namespace host
