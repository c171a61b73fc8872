#include "host/contacts/ContactFile.h"

#include "host/text/Key.h"

#include <array>
#include <utility>

namespace host {

namespace {

enum Column : std::size_t { nameColumn, number1Column, number2Column, number3Column, extraColumn };

constexpr std::array<CsvColumn, 5> columns{{{.name = "name"},
                                            {.name = "number1", .otherName = "number"},
                                            {.name = "number2"},
                                            {.name = "number3"},
                                            {.name = "extra"}}};

} // namespace

std::string readNumber(CsvReader& reader, std::size_t column) {
    const std::string_view number = reader.field(column);
    if (auto dialable = text::dialableNumber(number)) {
        return *std::move(dialable);
    }
    reader.addProblem(shown(number) +
                      " is not a number that can be dialled - use digits, *, # and a + in front; kept as it is");
    return std::string(number);
}

ContactFile readContacts(std::string_view bytes, const std::string& file,
                         const std::function<void(const DirectorySearchData& contact)>& take) {
    ContactFile result;
    CsvReader reader(bytes, file, columns);
    while (reader.next()) {
        const DirectorySearchData contact{std::string(reader.field(nameColumn)), readNumber(reader, number1Column),
                                          readNumber(reader, number2Column), readNumber(reader, number3Column),
                                          std::string(reader.field(extraColumn))};
        if (contact.strName.empty() && contact.strNumber1.empty() && contact.strNumber2.empty() &&
            contact.strNumber3.empty()) {
            reader.addProblem("has neither a name nor a number - add one; line skipped");
            continue;
        }
        take(contact);
    }
    result.problems = reader.problems();
    result.error = reader.error();
    return result;
}

} // namespace host
