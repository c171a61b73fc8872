// Files of tests.
#pragma once

#include <filesystem>
#include <fstream>
#include <string_view>

namespace test {

// Writes the file, and the folders that it lies in.
inline void writeFile(const std::filesystem::path& path, std::string_view text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

} // namespace test
