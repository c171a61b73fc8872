// Commands that can be typed next, as they stand below a command's output.
//
//     std::cout << nextCommand({"phone", "--root", root}); // ./run.sh phone --root '/home/ann/my phone'
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace wideseek {

// The tool by the name that it was called by, and the words, quoted for a shell where they need it.
std::string nextCommand(std::initializer_list<std::string_view> words);

} // namespace wideseek
