#include "host/contacts/CardFolder.h"

#include "host/text/Fold.h"

#include <sys/stat.h>

#include <algorithm>
#include <functional>
#include <string_view>
#include <system_error>
#include <tuple>

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t mostFiles = 100'000;
constexpr int shareOfTime = 20; // one part of so many

bool isCardFile(const fs::path& file) {
    std::string extension = file.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(), text::lowerAscii);
    return extension == ".vcf" && !file.filename().string().starts_with('.');
}

std::optional<FileStamp> ownStamp(const fs::path& folder) {
    struct stat status {};
    if (stat(folder.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return FileStamp{status.st_dev, status.st_ino, 0, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

// What tells a file with this stamp from another one. The order of the files does not matter.
std::uint64_t markOf(const fs::path& file, const FileStamp& stamp) {
    std::uint64_t mark = std::hash<std::string>()(file.filename().string());
    for (const std::uint64_t part :
         {stamp.device, stamp.inode, static_cast<std::uint64_t>(stamp.size), static_cast<std::uint64_t>(stamp.seconds),
          static_cast<std::uint64_t>(stamp.nanoseconds)}) {
        mark = (mark ^ part) * 0x9E3779B97F4A7C15U; // Fibonacci hashing
        mark ^= mark >> 32U;
    }
    return mark;
}

} // namespace

std::optional<std::vector<fs::path>> cardFilesIn(const fs::path& folder, std::string& error) {
    std::vector<fs::path> files;
    std::error_code code;
    for (fs::directory_iterator entry(folder, code); !code && entry != fs::directory_iterator();
         entry.increment(code)) {
        if (isCardFile(entry->path())) {
            files.push_back(entry->path());
        }
        if (files.size() > mostFiles) {
            error = folder.string() + ": holds more than " + std::to_string(mostFiles) +
                    " vCard files; put their cards into fewer files";
            return std::nullopt;
        }
    }
    if (code) {
        error = folder.string() + ": " + code.message() + "; check that it may be read";
        return std::nullopt;
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::optional<FileStamp> stampOfCards(const fs::path& folder, std::string& error) {
    const auto own = ownStamp(folder);
    const auto files = cardFilesIn(folder, error);
    if (!own || !files) {
        return std::nullopt;
    }
    FileStamp all = *own;
    std::string ignored; // a file that cannot be read is reported when it is read
    for (const fs::path& file : *files) {
        if (const auto stamp = stampOf(file, ignored)) {
            all.inode += markOf(file, *stamp);
            all.size += stamp->size;
            std::tie(all.seconds, all.nanoseconds) =
                std::max(std::pair(all.seconds, all.nanoseconds), std::pair(stamp->seconds, stamp->nanoseconds));
        }
    }
    if (all.size > largestFile) {
        error = folder.string() + ": its vCard files are larger than " + std::to_string(largestFile >> 20U) +
                " MiB together; put fewer there";
        return std::nullopt;
    }
    return all;
}

std::optional<FileStamp> CardFolder::stamp(std::string& error) {
    const auto own = ownStamp(m_path);
    const std::lock_guard lock(m_mutex);
    const auto begin = Clock::now();
    if (m_all && own == m_own && begin < m_next) {
        return m_all;
    }
    m_own = own;
    m_all = stampOfCards(m_path, error);
    const auto end = Clock::now();
    m_next = end + (end - begin) * shareOfTime;
    return m_all;
}

} // namespace host
