#include "host/contacts/FileDirectory.h"

#include "host/contacts/ContactFile.h"
#include "host/formats/VCardReader.h"

#include <iterator>
#include <utility>

namespace host {

namespace {

using Read = ReadContacts (*)(std::string_view bytes, const std::string& file, const TakeContact& take);

ReadContacts readCards(std::string_view bytes, const std::string& file, const TakeContact& take) {
    return readVCards(bytes, file, take);
}

MadeOfFile<ContactTable> makeTable(std::string_view bytes, const std::string& file, Read readFrom) {
    const auto table = std::make_shared<ContactTable>();
    table->reserve(bytes.size());
    ReadContacts read = readFrom(bytes, file, [&](const Contact& contact) { table->add(contact); });
    return {read.error.empty() ? table : nullptr, std::move(read.problems), std::move(read.error)};
}

// What cannot be read of the folder costs its own contacts.
Reloaded<ContactTable>::Loaded loadFolder(const std::filesystem::path& folder) {
    Reloaded<ContactTable>::Loaded loaded;
    const auto stamp = stampOfCards(folder, loaded.made.error);
    const auto files = stamp ? cardFilesIn(folder, loaded.made.error) : std::nullopt;
    if (!files) {
        return loaded;
    }
    if (isSettled(*stamp)) {
        loaded.stamp = stamp;
    }
    const auto table = std::make_shared<ContactTable>();
    table->reserve(static_cast<std::size_t>(stamp->size));
    for (const std::filesystem::path& file : *files) {
        ReadContacts read;
        if (const auto text = readFile(file, read.error)) {
            read = readVCards(text->bytes, file.string(), [&](const Contact& contact) { table->add(contact); });
        }
        if (!read.error.empty()) {
            read.problems.push_back(std::move(read.error));
        }
        std::move(read.problems.begin(), read.problems.end(), std::back_inserter(loaded.made.problems));
    }
    loaded.made.content = table;
    return loaded;
}

} // namespace

FileDirectory::FileDirectory(const std::filesystem::path& path, ProblemSink problemSink)
    : m_path(path), m_folder(path.extension() == ".csv" ? std::filesystem::path(path).replace_extension() : path),
      m_contacts(
          std::move(problemSink), [this](std::string& error) { return look(error); }, [this] { return load(); }) {
}

std::optional<FileStamp> FileDirectory::look(std::string& error) {
    const auto place = findContacts(m_path, error);
    if (!place) {
        return std::nullopt;
    }
    return place->form == ContactForm::folder ? m_folder.stamp(error) : stampOf(place->path, error);
}

Reloaded<ContactTable>::Loaded FileDirectory::load() const {
    Reloaded<ContactTable>::Loaded loaded;
    const auto place = findContacts(m_path, loaded.made.error);
    if (!place) {
        return loaded;
    }
    if (place->form == ContactForm::folder) {
        return loadFolder(place->path);
    }
    const Read readFrom = place->form == ContactForm::vCard ? readCards : readContacts;
    return ReloadedFile<ContactTable>::load(place->path, [readFrom](std::string_view bytes, const std::string& file) {
        return makeTable(bytes, file, readFrom);
    });
}

bool FileDirectory::search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) {
    const auto contacts = m_contacts.current(error);
    if (!contacts) {
        return false;
    }
    contacts->index().appendMatches(key, hits);
    return true;
}

std::vector<bool> FileDirectory::holds(std::span<const NameAndNumber> rows) const {
    const auto contacts = m_contacts.lastRead();
    return contacts ? contacts->holds(rows) : std::vector<bool>(rows.size());
}

std::optional<KnownContact> FileDirectory::find(const NameAndNumber& row) const {
    const auto contacts = m_contacts.lastRead();
    return contacts ? contacts->known(row) : std::nullopt;
}

} // namespace host
