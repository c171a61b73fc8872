// Writes a file so that whoever reads it finds the old one whole or the new one whole, whenever that is and whatever
// goes wrong: the bytes are written beside it, brought to the disk and only then given its name.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace host {

// Makes bytes the content of the file, which keeps its permissions; a new one gets those that the user's umask leaves,
// or mode (of those) where that is given. A symbolic link stays, and the file that it leads to is replaced. False, and
// the reason for people, when that cannot be done; the file is then as it was, and nothing is left beside it. Any
// thread; two that replace the same file at a time both succeed, and one of the two contents stays.
bool replaceFile(const std::filesystem::path& path, std::string_view bytes, std::string& error);
bool replaceFile(const std::filesystem::path& path, std::string_view bytes, unsigned mode, std::string& error);

} // namespace host
