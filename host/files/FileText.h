// Reads a file, a piece at a time or whole, and tells cheaply whether it has changed since.
//
//     std::string error;
//     if (auto file = OpenFile::open(path, error)) {
//         read(TextWindow(*file));
//         if (file->error().empty()) ... // all of it was read
//     }
#pragma once

#include "host/files/Descriptor.h"
#include "host/files/TextWindow.h"

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

// A file that is read from its beginning to its end. Of any thread, but of one at a time.
class OpenFile final : public ByteSource {
public:
    // Nothing, and the reason for people, when it is not a readable file of at most largestFile bytes.
    static std::optional<OpenFile> open(const std::filesystem::path& path, std::string& error);

    // As it was when the file was opened, and isSettled then.
    const FileStamp& stamp() const { return m_stamp; }
    bool settled() const { return m_settled; }

    // Not more than stamp().size: a file that grows meanwhile has changed, and is read again.
    std::size_t read(char* to, std::size_t size) override;

    // Why the file could not be read to its end, for people; empty while it could be.
    const std::string& error() const { return m_error; }

private:
    OpenFile(std::filesystem::path path, Descriptor file, const FileStamp& stamp);

    std::filesystem::path m_path;
    Descriptor m_file;
    FileStamp m_stamp;
    bool m_settled = false;
    std::size_t m_left = 0; // bytes
    std::string m_error;
};

struct FileText {
    std::string bytes;
    FileStamp stamp;      // as it was before the bytes were read
    bool settled = false; // isSettled, before the bytes were read
};

// The file's bytes, all at once; nothing, and the reason for people, on failure. Any thread.
std::optional<FileText> readFile(const std::filesystem::path& path, std::string& error);

} // namespace host
