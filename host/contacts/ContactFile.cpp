#include "host/contacts/ContactFile.h"

#include "host/text/Key.h"

#include <array>
#include <utility>

namespace host {

namespace {

// The kinds of numbers and of facts follow each other as their enumerations do.
constexpr std::size_t nameColumn = 0;
constexpr std::size_t extraColumn = 1;
constexpr std::size_t firstNumberColumn = 2;
constexpr std::size_t numberColumns = std::size(knownNumberKinds) + 1;
constexpr std::size_t firstFactColumn = firstNumberColumn + numberColumns;

using Columns = std::array<CsvColumn, firstFactColumn + std::size(factKinds)>;

const Columns& columns() {
    static const Columns made = [] {
        Columns all{{{.name = "name"}, {.name = "extra"}, {.name = "number", .repeated = true}}};
        for (const NumberKind kind : knownNumberKinds) {
            all.at(contactColumnOf(kind)) = {.name = nameOf(kind), .repeated = true};
        }
        for (const FactKind kind : factKinds) {
            all.at(contactColumnOf(kind)) = {.name = nameOf(kind), .repeated = true};
        }
        return all;
    }();
    return made;
}

} // namespace

std::span<const CsvColumn> contactColumns() {
    return columns();
}

std::size_t contactNameColumn() {
    return nameColumn;
}

std::size_t contactExtraColumn() {
    return extraColumn;
}

std::size_t contactColumnOf(NumberKind kind) {
    return firstNumberColumn + static_cast<std::size_t>(kind);
}

std::size_t contactColumnOf(FactKind kind) {
    return firstFactColumn + static_cast<std::size_t>(kind);
}

std::string readNumber(CsvReader& reader, std::string_view number) {
    if (auto dialable = text::dialableNumber(number)) {
        return *std::move(dialable);
    }
    reader.addProblem(notDialable(number));
    return std::string(number);
}

std::optional<Contact> contactIn(CsvReader& reader) {
    Contact contact{std::string(reader.field(nameColumn)), {}, std::string(reader.field(extraColumn)), {}};
    for (std::size_t place = 0; place < reader.width(); ++place) {
        const std::size_t column = reader.columnAt(place);
        const std::string_view text = reader.fieldAt(place);
        if (column == CsvReader::none || column < firstNumberColumn || text.empty()) {
            continue;
        }
        if (column >= firstFactColumn) {
            contact.facts.push_back({static_cast<FactKind>(column - firstFactColumn), std::string(text)});
        } else if (std::string number = readNumber(reader, text); !number.empty()) {
            contact.numbers.push_back({std::move(number), static_cast<NumberKind>(column - firstNumberColumn)});
        }
    }
    if (contact.name.empty() && contact.numbers.empty()) {
        reader.addProblem("has neither a name nor a number - add one; line skipped");
        return std::nullopt;
    }
    return contact;
}

ReadContacts readContacts(TextWindow text, const std::string& file, const TakeContact& take) {
    CsvReader reader(std::move(text), file, columns());
    while (reader.next()) {
        if (const auto contact = contactIn(reader)) {
            take(*contact);
        }
    }
    return {reader.problems(), reader.error()};
}

} // namespace host
