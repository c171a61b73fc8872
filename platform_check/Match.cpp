#include "platform_check/Match.h"

#include "platform/CommonAPI.h"

#include <algorithm>

namespace platform_check {

namespace {

bool matches(const std::string& text, const std::string& key) {
    return CommonAPI_StringMatch(text, key, false, STRING_MATCH_CONTAINS) != 0;
}

} // namespace

std::string keyOf(const std::string& typed) {
    return CommonAPI_StringConvert(typed, STRING_CONVERT_SEARCH_KEY);
}

std::vector<std::string> keysWhileTyping(const std::string& text) {
    constexpr std::size_t most = 12;
    std::vector<std::string> keys;
    for (std::size_t length = 1; length <= text.size() && keys.size() < most; ++length) {
        // Not in the middle of a character.
        if (length == text.size() || (static_cast<unsigned char>(text[length]) & 0xC0U) != 0x80U) {
            keys.push_back(keyOf(text.substr(0, length)));
        }
    }
    return keys;
}

bool isFound(const std::string& name, const std::vector<std::string>& numbers, const std::string& key) {
    if (!CommonAPI_IsSearchByT9(key)) {
        return matches(name, key);
    }
    return matches(CommonUnits_ToKeyString(name), key) ||
           std::any_of(numbers.begin(), numbers.end(), [&key](const std::string& number) {
               return matches(CommonAPI_TrimString(number, "+", TRIM_TYPE_BOTH_ENDS), key);
           });
}

} // namespace platform_check
