// What is wrong with a phone's source list, told at the start and whenever the file has changed.
//
//     SourceListNotes notes(sourceListOf(root));
//     for (const std::string& note : notes.take()) { ... }
#pragma once

#include "host/files/FileText.h"

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace wideseek {

class SourceListNotes {
public:
    explicit SourceListNotes(std::filesystem::path path) : m_path(std::move(path)) {}

    // The error or the warnings that `check` gives for the file, in its words; nothing when it has not changed since
    // this was asked last, which costs one look at the file's time.
    std::vector<std::string> take();

    // What it said last, which stands until the file changes.
    const std::vector<std::string>& standing() const { return m_notes; }

private:
    const std::filesystem::path m_path;
    bool m_told = false;
    std::vector<std::string> m_notes;
    std::optional<host::FileStamp> m_stamp; // of the file that was told of; none: it could not be read
};

} // namespace wideseek
