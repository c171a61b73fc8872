// A file that holds a password, and nobody but its owner may read.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace host {

// The first line of the file, without its line break. Nothing, and what to do, when there is none, or when anybody but
// the file's owner can read it. Any thread.
std::optional<std::string> readSecret(const std::filesystem::path& path, std::string& problem);

} // namespace host
