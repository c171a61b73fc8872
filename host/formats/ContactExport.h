// Contacts as other programs write them out, for bringing them in: vCards, tables of any separator and encoding, or
// LDIF. Which of these it is, is told by the bytes.
//
//     const ReadExport read = readExport(bytes, "contacts.csv", {}, [](const Contact& contact, std::size_t line)
//     {...});
#pragma once

#include "host/formats/ColumnNames.h"
#include "host/formats/ReadContacts.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct ExportOptions {
    std::string charset; // as iconv knows it; empty: it is found (Charset.h)
    ToldColumns columns; // of a table: what is told of them
};

struct ReadExport {
    std::string form;                       // for people: "vCard", "LDIF", "CSV separated by ;"
    std::string charset;                    // that the bytes were read in
    std::vector<std::string> unusedColumns; // of a table: those with something in them that was not taken
    ReadContacts contacts;
};

// The contact, and the line at which it begins.
using TakeExported = std::function<void(const Contact& contact, std::size_t line)>;

// Reads the bytes of the file called `file`. Contacts have a name or a number or both. Any thread; what take throws
// ends the reading.
ReadExport readExport(std::string_view bytes, const std::string& file, const ExportOptions& options,
                      const TakeExported& take);

} // namespace host
