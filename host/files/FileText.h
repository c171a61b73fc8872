// Reads a file whole, and tells cheaply whether it has changed since.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace host {

// What changes when a file is written or replaced.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t seconds = 0; // of the last change
    std::int64_t nanoseconds = 0;

    bool operator==(const FileStamp&) const = default;
};

// Larger files are refused, so that positions in what is made of them fit 32 bits.
inline constexpr std::int64_t largestFile = 256LL << 20U;

// The stamp of the file there; nothing, and the reason for people, when it is not a readable file of at most
// largestFile bytes. Any thread.
std::optional<FileStamp> stampOf(const std::filesystem::path& path, std::string& error);

// False: the file was changed so shortly before that its next change might leave the stamp as it is.
bool isSettled(const FileStamp& stamp);

struct FileText {
    std::string bytes;
    FileStamp stamp;      // as it was before the bytes were read
    bool settled = false; // isSettled, before the bytes were read
};

// The file's bytes; nothing, and the reason for people, on failure. Any thread.
std::optional<FileText> readFile(const std::filesystem::path& path, std::string& error);

} // namespace host
