// A contact file: comma-separated values (CsvReader.h) with the columns name; number, work, mobile, home, fax and
// other, each any number of times; extra; and those of what else there is to know (nameOf of a FactKind), any number of
// times.
#pragma once

#include "host/files/CsvReader.h"
#include "host/formats/ReadContacts.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace host {

// Reads contacts from the text of the file called `file` and hands them to take one by one, in the file's order. Names
// stay byte for byte, numbers are brought into the form that is dialled ("+49 (30) 12-34" becomes +49301234); one that
// is not a number is kept as it is, and reported. Any thread.
ReadContacts readContacts(TextWindow text, const std::string& file, const TakeContact& take);

// The columns of a contact file, and the contact in the reader's row; nothing, and a problem, when there is neither a
// name nor a number in it.
std::span<const CsvColumn> contactColumns();
std::optional<Contact> contactIn(CsvReader& reader);

// The column for a number of this kind, or for a fact: a position in contactColumns().
std::size_t contactNameColumn();
std::size_t contactExtraColumn();
std::size_t contactColumnOf(NumberKind kind);
std::size_t contactColumnOf(FactKind kind);

// A number in the form that is dialled. One that is none is given back as it is and added to the reader's problems.
std::string readNumber(CsvReader& reader, std::string_view number);

} // namespace host
