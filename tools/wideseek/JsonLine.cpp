#include "tools/wideseek/JsonLine.h"

#include "host/text/Utf8.h"
#include "tools/wideseek/Text.h"

#include <array>
#include <cstdio>
#include <string>
#include <string_view>

namespace wideseek {

namespace {

// None of the characters that are not harmless is beyond U+FFFF.
void printEscaped(std::ostream& out, std::int32_t codePoint) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "\\u%04x", static_cast<unsigned>(codePoint));
    out << text.data();
}

} // namespace

void printJsonLine(std::ostream& out, const Json& object) {
    const std::string text = object.dump(-1, ' ', false, Json::error_handler_t::replace);
    std::string_view harmless = std::string_view(text).substr(0, 0);
    for (std::string_view rest = text; !rest.empty();) {
        const host::text::Character character = host::text::takeFirst(rest);
        if (isHarmless(character.codePoint)) {
            harmless = {harmless.data(), harmless.size() + character.size};
        } else {
            out << harmless;
            printEscaped(out, character.codePoint);
            harmless = rest.substr(0, 0);
        }
    }
    out << harmless << '\n';
}

} // namespace wideseek
