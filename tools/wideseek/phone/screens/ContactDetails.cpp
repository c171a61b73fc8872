#include "tools/wideseek/phone/screens/ContactDetails.h"

#include "tools/wideseek/phone/EnabledSources.h"
#include "tools/wideseek/phone/screens/RowSources.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace wideseek {

namespace {

// All that there is to know of a row that no source holds.
host::KnownContact knownOf(const WideseekItemData& row) {
    host::KnownContact known{{{row.strNumber}}, {}};
    for (const std::string* extra : {&row.strExtra2, &row.strExtra1}) {
        if (!extra->empty()) {
            known.facts.push_back({"Extra", *extra});
        }
    }
    if (row.iExtra != -1) {
        known.facts.push_back({"Extra", std::to_string(row.iExtra)});
    }
    return known;
}

auto placeOf(std::vector<host::ContactNumber>& numbers, const std::string& number) {
    return std::find_if(numbers.begin(), numbers.end(),
                        [&](const host::ContactNumber& each) { return each.number == number; });
}

// A number is of the kind that the first source gives it which knows one.
void addNumbers(std::vector<host::ContactNumber>& numbers, const std::vector<host::ContactNumber>& more) {
    for (const host::ContactNumber& number : more) {
        const auto known = placeOf(numbers, number.number);
        if (known == numbers.end()) {
            numbers.push_back(number);
        } else if (known->kind == host::NumberKind::unknown) {
            known->kind = number.kind;
        }
    }
}

} // namespace

ContactDetails detailsOf(const WideseekItemData& row, bool recentCall, const host::Phone& phone) {
    ContactDetails details;
    details.name = row.strName == row.strNumber ? std::string() : row.strName;
    const std::vector<EnabledSource> sources = enabledSources();
    for (const EnabledSource& source : sources) {
        const host::ContactLookup* lookup = phone.lookup(source.name);
        if (auto known = lookup ? lookup->find({details.name, row.strNumber}) : std::nullopt) {
            details.sources.push_back({source.label, std::move(*known)});
        }
    }
    if (details.sources.empty()) {
        const EnabledSource* server = serverAmong(sources, phone);
        details.sources.push_back({recentCall ? "Recent calls" : server ? server->label : "", knownOf(row)});
    }
    for (const ContactDetails::Source& source : details.sources) {
        addNumbers(details.numbers, source.known.numbers);
    }
    addNumbers(details.numbers, {{row.strNumber}});
    details.chosen = static_cast<std::size_t>(placeOf(details.numbers, row.strNumber) - details.numbers.begin());
    return details;
}

} // namespace wideseek
