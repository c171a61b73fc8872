// Contacts in a table of separated values (CsvRows.h) as other programs write it: any separator, columns of any names
// (ColumnNames.h), several values in one cell between ":::".
#pragma once

#include "host/formats/ContactExport.h"

#include <string>
#include <string_view>

namespace host {

// Reads the table; text is UTF-8. The separator is the one that the first line has most of, or that a line "sep=;"
// ahead of it names. As readExport.
ReadExport readTable(std::string_view text, const std::string& file, const ExportOptions& options,
                     const TakeExported& take);

} // namespace host
