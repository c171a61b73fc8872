#include "tools/wideseek/NextCommand.h"

#include "tools/wideseek/Text.h"

#include <algorithm>
#include <cerrno>

namespace wideseek {

namespace {

bool isPlain(char byte) {
    constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+./:,@%";
    return plain.find(byte) != std::string_view::npos;
}

std::string quoted(std::string_view word) {
    if (!word.empty() && std::all_of(word.begin(), word.end(), isPlain)) {
        return std::string(word);
    }
    std::string result = "'";
    for (const char byte : word) {
        result += byte == '\'' ? std::string(R"('\'')") : std::string(1, byte);
    }
    return result + "'";
}

} // namespace

std::string nextCommand(std::initializer_list<std::string_view> words) {
    std::string command = quoted(program_invocation_name);
    for (const std::string_view word : words) {
        command.append(" ").append(quoted(word));
    }
    return printable(command);
}

} // namespace wideseek
