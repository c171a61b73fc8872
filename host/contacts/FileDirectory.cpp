#include "host/contacts/FileDirectory.h"

#include "host/contacts/ContactFile.h"

#include <utility>

namespace host {

namespace {

ReloadedFile<ContactIndex>::Made makeIndex(std::string_view bytes, const std::string& file) {
    const auto index = std::make_shared<ContactIndex>();
    index->reserve(bytes.size());
    ContactFile read = readContacts(bytes, file, [&](const DirectorySearchData& contact) { index->add(contact); });
    if (!read.error.empty()) {
        return {nullptr, std::move(read.problems), std::move(read.error)};
    }
    return {index, std::move(read.problems), {}};
}

} // namespace

FileDirectory::FileDirectory(std::filesystem::path path, ProblemSink problemSink)
    : m_file(std::move(path), std::move(problemSink), makeIndex) {
}

bool FileDirectory::search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) {
    const auto contacts = m_file.current(error);
    if (!contacts) {
        return false;
    }
    contacts->appendMatches(key, hits);
    return true;
}

} // namespace host
