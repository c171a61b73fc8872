#include "host/files/FileText.h"

#include "host/files/Descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <system_error>

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

// Not more than expected: a file that grows meanwhile has changed, and is read again.
std::optional<std::string> readBytes(int file, std::size_t expected, int& code) {
    std::string bytes(expected, '\0');
    std::size_t size = 0;
    while (size < expected) {
        const ssize_t count = read(file, bytes.data() + size, expected - size);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            code = errno;
            return std::nullopt;
        }
        if (count == 0) {
            break;
        }
        size += static_cast<std::size_t>(count);
    }
    bytes.resize(size);
    return bytes;
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

std::optional<FileText> readFile(const std::filesystem::path& path, std::string& error) {
    // Without O_NONBLOCK, opening a pipe would wait for its writer.
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (file.number() < 0 || fstat(file.number(), &status) != 0) {
        error = failure(path, errno);
        return std::nullopt;
    }
    const auto stamp = stampFrom(status, path, error);
    if (!stamp) {
        return std::nullopt;
    }
    const bool settled = isSettled(*stamp);
    int code = 0;
    auto bytes = readBytes(file.number(), static_cast<std::size_t>(stamp->size), code);
    if (!bytes) {
        error = failure(path, code);
        return std::nullopt;
    }
    return FileText{*std::move(bytes), *stamp, settled};
}

} // namespace host
