// A file that contacts are brought into: those that are in it, and the same bytes with more in them. What is not
// touched stays byte for byte, also what nobody understands.
//
//     const auto file = openTargetFile(path, bytes);
//     file->extend(0, additions);
//     file->append(contact);
//     const std::string now = file->bytes();
#pragma once

#include "host/sources/Contact.h"

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace wideseek {

class TargetFile {
public:
    explicit TargetFile(std::filesystem::path path) : m_path(std::move(path)) {}
    virtual ~TargetFile() = default;
    TargetFile(const TargetFile&) = delete;
    TargetFile& operator=(const TargetFile&) = delete;

    const std::filesystem::path& path() const { return m_path; }

    // In the order of the file.
    const std::vector<host::Contact>& contacts() const { return m_contacts; }

    // Adds to a contact of the file (a position in contacts(); once for each), and behind them all.
    void extend(std::size_t contact, host::Contact additions) { m_extended.emplace(contact, std::move(additions)); }
    void append(host::Contact contact) { m_appended.push_back(std::move(contact)); }

    bool isChanged() const { return !m_extended.empty() || !m_appended.empty(); }

    // The file as it is to be now.
    virtual std::string bytes() const = 0;

protected:
    std::vector<host::Contact> m_contacts;
    std::map<std::size_t, host::Contact> m_extended;
    std::vector<host::Contact> m_appended;

private:
    std::filesystem::path m_path;
};

// The file with these bytes, a contact file or, by its name, a vCard file; empty bytes for a new one. Throws
// std::runtime_error, with what to do, when it cannot be read as such.
std::unique_ptr<TargetFile> openTargetFile(const std::filesystem::path& path, std::string bytes);

} // namespace wideseek
