#include "host/contacts/FileDirectory.h"

#include "host/contacts/ContactFile.h"

#include <utility>

namespace host {

namespace {

ReloadedFile<ContactTable>::Made makeTable(std::string_view bytes, const std::string& file) {
    const auto table = std::make_shared<ContactTable>();
    table->reserve(bytes.size());
    ContactFile read = readContacts(bytes, file, [&](const DirectorySearchData& contact) { table->add(contact); });
    if (!read.error.empty()) {
        return {nullptr, std::move(read.problems), std::move(read.error)};
    }
    return {table, std::move(read.problems), {}};
}

} // namespace

FileDirectory::FileDirectory(std::filesystem::path path, ProblemSink problemSink)
    : m_file(std::move(path), std::move(problemSink), makeTable) {
}

bool FileDirectory::search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) {
    const auto contacts = m_file.current(error);
    if (!contacts) {
        return false;
    }
    if (!key.empty()) {
        contacts->index().appendMatches(key, hits);
    }
    return true;
}

std::vector<bool> FileDirectory::holds(std::span<const NameAndNumber> rows) const {
    const auto contacts = m_file.lastRead();
    return contacts ? contacts->holds(rows) : std::vector<bool>(rows.size());
}

std::optional<KnownContact> FileDirectory::find(const NameAndNumber& row) const {
    const auto contacts = m_file.lastRead();
    const auto position = contacts ? contacts->find({&row, 1}).front() : std::nullopt;
    return position ? std::optional(knownContactOf(contacts->at(*position))) : std::nullopt;
}

} // namespace host
