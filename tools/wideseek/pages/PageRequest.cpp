#include "tools/wideseek/pages/PageRequest.h"

#include "host/text/Utf8.h"

#include <limits>
#include <stdexcept>
#include <string_view>

namespace wideseek {

namespace {

constexpr const char* example = R"(write one object on each line, such as {"id": 1, "key": "ann"})";

// An id is echoed by a function that calls itself for each level.
constexpr int deepest = 32;

class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// text with U+FFFD for each byte that is not UTF-8, so that the id beside such a byte can be read.
std::string repaired(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const host::text::Character character = host::text::firstCharacter(text);
        result += character.codePoint < 0 ? "\uFFFD" : text.substr(0, character.size);
        text.remove_prefix(character.size);
    }
    return result;
}

Json parsed(const std::string& text) {
    try {
        return Json::parse(text, [](int depth, Json::parse_event_t, const Json&) {
            if (depth > deepest) {
                throw Refusal("nested too deeply; an id may hold " + std::to_string(deepest - 1) + " levels");
            }
            return true;
        });
    } catch (const Json::parse_error& error) {
        throw Refusal("not JSON from byte " + std::to_string(error.byte) + " on; " + example);
    } catch (const Json::out_of_range&) {
        throw Refusal(std::string("a number in it is too large; ") + example);
    }
}

void readNumber(const std::string& name, const Json& value, int& number) {
    constexpr int largest = std::numeric_limits<int>::max();
    if (!value.is_number_integer() || value < 0 || value > largest) {
        throw Refusal("\"" + name + "\" must be a whole number from 0 to " + std::to_string(largest));
    }
    number = value.get<int>();
}

void readMember(const std::string& name, const Json& value, PageRequest& request) {
    if (name == "key") {
        if (!value.is_string()) {
            throw Refusal("\"key\" must be a string, also when it is a number: \"53\"");
        }
        request.key = value.get<std::string>();
    } else if (name == "from") {
        readNumber(name, value, request.from);
    } else if (name == "count") {
        readNumber(name, value, request.count);
    } else if (name != "id") {
        throw Refusal("\"" + name + "\" is not known; an object has id, key, from and count");
    }
}

void read(const Line& line, PageRequest& request) {
    if (line.tooLong) {
        throw Refusal("longer than " + std::to_string(LineReader::longest) + " bytes; " + example);
    }
    const Json object = parsed(repaired(line.text));
    if (!object.is_object()) {
        throw Refusal(std::string("not an object; ") + example);
    }
    request.id = object.value("id", Json());
    if (!host::text::isUtf8(line.text)) {
        throw Refusal("not UTF-8; convert what was typed to UTF-8");
    }
    if (!object.contains("key")) {
        throw Refusal(R"("key" is missing; write what was typed, or "" for the recent calls)");
    }
    for (const auto& [name, value] : object.items()) {
        readMember(name, value, request);
    }
}

} // namespace

PageRequest readRequest(const Line& line) {
    PageRequest request;
    try {
        read(line, request);
    } catch (const Refusal& refusal) {
        request.error = refusal.what();
    }
    return request;
}

} // namespace wideseek
