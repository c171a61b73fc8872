// A folder of vCard files, as address book programs keep them: which files are in it, and whether one has changed.
//
//     CardFolder folder(path);
//     const auto stamp = folder.stamp(error);
//     for (const auto& file : cardFilesIn(path, error)) { ... }
//
// A file that is put there, replaced or removed is noticed at the next look, as the folder itself changes with it. To
// notice one that is written in its place all must be looked at; that is done so often that it takes a twentieth of the
// time, which with few files is at every look.
#pragma once

#include "host/files/FileText.h"

#include <chrono>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace host {

// The .vcf files of the folder in the order of their names; those whose names begin with a dot are left out, as
// programs write such beside what they replace. Nothing, and the reason for people, when the folder cannot be read or
// holds too many. Any thread.
std::optional<std::vector<std::filesystem::path>> cardFilesIn(const std::filesystem::path& folder, std::string& error);

// A stamp of the folder with all of its files; nothing, and the reason, as above, or when they are larger together than
// a file may be (largestFile). Any thread.
std::optional<FileStamp> stampOfCards(const std::filesystem::path& folder, std::string& error);

class CardFolder {
public:
    explicit CardFolder(std::filesystem::path path) : m_path(std::move(path)) {}

    const std::filesystem::path& path() const { return m_path; }

    // stampOfCards, or what it was shortly before. Any thread.
    std::optional<FileStamp> stamp(std::string& error);

private:
    using Clock = std::chrono::steady_clock;

    const std::filesystem::path m_path;
    std::mutex m_mutex;             // held while the files are looked at; guards what follows
    std::optional<FileStamp> m_own; // of the folder itself, at the last look at its files
    std::optional<FileStamp> m_all;
    Clock::time_point m_next; // not before this the next one
};

} // namespace host
