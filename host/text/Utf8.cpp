#include "host/text/Utf8.h"

#include <utf8proc.h>

#include <algorithm>

namespace host::text {

Character firstOfOthers(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    constexpr std::size_t longest = 4;
    utf8proc_int32_t codePoint = -1;
    const auto size = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                       static_cast<utf8proc_ssize_t>(std::min(text.size(), longest)), &codePoint);
    return size > 0 ? Character{codePoint, static_cast<std::size_t>(size)} : Character{-1, 1};
}

Character lastCharacter(std::string_view text) {
    std::size_t size = 1;
    while (size < 4 && size < text.size() && isContinuation(text[text.size() - size])) {
        ++size;
    }
    const Character character = firstCharacter(text.substr(text.size() - std::min(size, text.size())));
    return character.size == size ? character : Character{-1, text.empty() ? 0U : 1U};
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        if (takeFirst(text).codePoint < 0) {
            return false;
        }
    }
    return true;
}

} // namespace host::text
