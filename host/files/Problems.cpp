#include "host/files/Problems.h"

#include "host/text/Utf8.h"

namespace host {

namespace {

constexpr std::size_t longestShown = 80;   // bytes
constexpr std::size_t longestReason = 600; // bytes

std::string shortened(std::string_view text, std::size_t longest) {
    if (text.size() <= longest) {
        return std::string(text);
    }
    std::size_t end = longest;
    while (end > 0 && text::isContinuation(text[end])) {
        --end;
    }
    return std::string(text.substr(0, end)) + "\u2026";
}

} // namespace

std::string shown(std::string_view text) {
    return "\"" + shortened(text, longestShown) + "\"";
}

std::string notDialable(std::string_view number) {
    return shown(number) + " is not a number that can be dialled - use digits, *, # and a + in front; kept as it is";
}

void Problems::add(std::string_view place, std::string_view reason) {
    if (m_list.size() < most) {
        m_list.push_back((m_file + ":").append(place).append(": ") + shortened(reason, longestReason));
    } else if (m_list.size() == most) {
        m_list.push_back(m_file + ": has more problems than these " + std::to_string(most) +
                         "; mend them, and the next ones are listed");
    }
}

} // namespace host
