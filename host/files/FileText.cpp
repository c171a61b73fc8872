#include "host/files/FileText.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

namespace host {

namespace {

std::string failure(const std::filesystem::path& path, int code) {
    if (code == ENOENT || code == ENOTDIR) {
        return path.string() + ": not there; put the file there or check the folder's name";
    }
    return path.string() + ": " + std::generic_category().message(code) + "; check that it may be read";
}

std::optional<FileStamp> stampFrom(const struct stat& status, const std::filesystem::path& path, std::string& error) {
    if (S_ISDIR(status.st_mode)) {
        error = path.string() + ": is a folder; put a file there";
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode)) {
        error = path.string() + ": is not a file; put a regular file there";
        return std::nullopt;
    }
    if (status.st_size > largestFile) {
        error = path.string() + ": is larger than " + std::to_string(largestFile >> 20U) + " MiB; split it";
        return std::nullopt;
    }
    return FileStamp{status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

} // namespace

// File systems keep the time of a change in steps of some milliseconds. A time to come says nothing.
bool isSettled(const FileStamp& stamp) {
    constexpr std::chrono::milliseconds step(50);
    const auto changed = std::chrono::seconds(stamp.seconds) + std::chrono::nanoseconds(stamp.nanoseconds);
    const auto age = std::chrono::system_clock::now().time_since_epoch() - changed;
    return age > step || age < std::chrono::seconds(0);
}

std::optional<FileStamp> stampOf(const std::filesystem::path& path, std::string& error) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        error = failure(path, errno);
        return std::nullopt;
    }
    return stampFrom(status, path, error);
}

OpenFile::OpenFile(std::filesystem::path path, Descriptor file, const FileStamp& stamp)
    : m_path(std::move(path)), m_file(std::move(file)), m_stamp(stamp), m_settled(isSettled(stamp)),
      m_left(static_cast<std::size_t>(stamp.size)) {
}

std::optional<OpenFile> OpenFile::open(const std::filesystem::path& path, std::string& error) {
    // Without O_NONBLOCK, opening a pipe would wait for its writer.
    Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (file.number() < 0 || fstat(file.number(), &status) != 0) {
        error = failure(path, errno);
        return std::nullopt;
    }
    const auto stamp = stampFrom(status, path, error);
    return stamp ? std::optional(OpenFile(path, std::move(file), *stamp)) : std::nullopt;
}

std::size_t OpenFile::read(char* to, std::size_t size) {
    const std::size_t most = std::min(size, m_left);
    ssize_t count = 0;
    do {
        count = most == 0 ? 0 : ::read(m_file.number(), to, most);
    } while (count < 0 && errno == EINTR);
    if (count < 0) {
        m_error = failure(m_path, errno);
    }
    m_left = count <= 0 ? 0 : m_left - static_cast<std::size_t>(count);
    return count <= 0 ? 0 : static_cast<std::size_t>(count);
}

std::optional<FileText> readFile(const std::filesystem::path& path, std::string& error) {
    auto file = OpenFile::open(path, error);
    if (!file) {
        return std::nullopt;
    }
    std::string bytes(static_cast<std::size_t>(file->stamp().size), '\0');
    std::size_t size = 0;
    while (const std::size_t count = file->read(bytes.data() + size, bytes.size() - size)) {
        size += count;
    }
    if (!file->error().empty()) {
        error = file->error();
        return std::nullopt;
    }
    bytes.resize(size);
    return FileText{std::move(bytes), file->stamp(), file->settled()};
}

} // namespace host
