// A contact file: comma-separated values (CsvReader.h) with the columns name, number1 (or number), number2, number3,
// extra.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "host/files/CsvReader.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct ContactFile {
    std::vector<std::string> problems; // "file:line: reason", of lines that are skipped or doubtful
    std::string error;                 // why there are no contacts at all; else empty
};

// Reads contacts from the bytes of the file called `file` and hands them to take one by one, in the file's order. Names
// stay byte for byte, numbers are brought into the form that is dialled ("+49 (30) 12-34" becomes +49301234); one that
// is not a number is kept as it is, and reported. Any thread.
ContactFile readContacts(std::string_view bytes, const std::string& file,
                         const std::function<void(const DirectorySearchData& contact)>& take);

// A number in the form that is dialled. One that is none is given back as it is and added to the reader's problems.
std::string readNumber(CsvReader& reader, std::size_t column);

} // namespace host
