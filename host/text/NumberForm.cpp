#include "host/text/NumberForm.h"

#include "host/text/Fold.h"
#include "host/text/NameForm.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace host::text {

namespace {

// Shorter ones are extensions and service numbers, which begin with anything.
constexpr std::size_t leastNational = 6;

DiallingRules& rules() {
    static DiallingRules& set = *new DiallingRules; // outlives whoever searches at the end of the process
    return set;
}

bool isDigits(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char byte) { return byte >= '0' && byte <= '9'; });
}

std::string_view withoutPlus(std::string_view number) {
    const std::size_t begin = number.find_first_not_of('+');
    return begin == std::string_view::npos ? std::string_view()
                                           : number.substr(begin, number.find_last_not_of('+') - begin + 1);
}

std::string fromAbroad() {
    return rules().internationalPrefix + rules().countryCode;
}

} // namespace

void setDiallingRules(DiallingRules chosen) {
    rules() = std::move(chosen);
    knowsDialling = !rules().countryCode.empty();
}

std::string problemOf(const DiallingRules& chosen) {
    constexpr std::size_t longest = 8;
    for (const std::string* digits : {&chosen.countryCode, &chosen.trunkPrefix, &chosen.internationalPrefix}) {
        if (!isDigits(*digits) || digits->size() > longest) {
            return "\"" + *digits + "\" is no prefix; write up to " + std::to_string(longest) + " digits, such as 44";
        }
    }
    return {};
}

std::optional<std::string_view> nationalNumber(std::string_view number) {
    const std::string_view digits = withoutPlus(number);
    if (!knowsDialling || !isDigits(digits)) {
        return std::nullopt;
    }
    const DiallingRules& own = rules();
    const auto behind = [&](std::string_view prefix) -> std::optional<std::string_view> {
        const bool fits = digits.starts_with(prefix) && digits.size() >= prefix.size() + leastNational;
        return fits ? std::optional(digits.substr(prefix.size())) : std::nullopt;
    };
    if (const auto national = behind(fromAbroad())) {
        return national;
    }
    if (const auto national = behind(own.countryCode)) {
        return national;
    }
    const bool otherCountry = !own.internationalPrefix.empty() && digits.starts_with(own.internationalPrefix);
    if (own.trunkPrefix.empty() || otherCountry) {
        return std::nullopt;
    }
    return behind(own.trunkPrefix);
}

void appendNumberForms(std::string_view number, std::string& out) {
    if (const auto national = nationalNumber(number)) {
        out.append(rules().trunkPrefix).append(*national);
        out += formSeparator;
        out.append(fromAbroad()).append(*national);
    } else {
        appendFolded(withoutPlus(number), out);
    }
    out += formSeparator;
}

std::vector<std::string> equalKeys(const std::string& key) {
    std::vector<std::string> keys{key};
    const auto add = [&keys](std::string equal) {
        if (!equal.empty() && std::find(keys.begin(), keys.end(), equal) == keys.end()) {
            keys.push_back(std::move(equal));
        }
    };
    if (!knowsDialling) {
        return keys;
    }
    const DiallingRules& own = rules();
    for (const std::string& prefix : {fromAbroad(), own.countryCode, own.trunkPrefix}) {
        if (key.starts_with(prefix)) {
            const std::string rest = key.substr(prefix.size());
            add(own.countryCode + rest);
            add(own.trunkPrefix + rest);
            break;
        }
        if (prefix.starts_with(key)) {
            add(own.countryCode);
        }
    }
    return keys;
}

} // namespace host::text
