#include "host/contacts/FileDirectory.h"

#include "host/contacts/ContactFile.h"
#include "host/formats/VCardReader.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace host {

namespace {

namespace fs = std::filesystem;

using Read = ReadContacts (*)(TextWindow text, const std::string& file, const TakeContact& take);

ReadContacts readCards(TextWindow text, const std::string& file, const TakeContact& take) {
    return readVCards(std::move(text), file, take);
}

MadeOfFile<ContactTable> makeTable(TextWindow text, const std::string& file, Read readFrom) {
    const auto table = std::make_shared<ContactTable>();
    ReadContacts read = readFrom(std::move(text), file, [&](const Contact& contact) { table->add(contact); });
    return {read.error.empty() ? table : nullptr, std::move(read.problems), std::move(read.error)};
}

// Reads one file of a folder into the table. False: it could not be read to its end.
bool addCards(const fs::path& file, ContactTable& table, std::vector<std::string>& problems) {
    ReadContacts read;
    auto source = OpenFile::open(file, read.error);
    if (source) {
        read = readVCards(TextWindow(*source), file.string(), [&](const Contact& contact) { table.add(contact); });
    }
    if (source && !source->error().empty()) {
        read = {{}, source->error()};
    }
    std::move(read.problems.begin(), read.problems.end(), std::back_inserter(problems));
    if (!read.error.empty()) {
        problems.push_back(std::move(read.error));
    }
    return !source || source->error().empty();
}

// What cannot be read of the folder costs its own contacts, and all of them.
MadeOfFile<ContactTable> makeTable(std::vector<fs::path> files) {
    std::vector<std::string> ofOthers;
    while (true) {
        const auto table = std::make_shared<ContactTable>();
        std::vector<std::string> problems = ofOthers;
        const auto half = std::find_if(files.begin(), files.end(), [&](const fs::path& file) {
            const std::size_t before = table->index().size();
            return !addCards(file, *table, problems) && table->index().size() > before;
        });
        if (half == files.end()) {
            return {table, std::move(problems), {}};
        }
        ofOthers.push_back(std::move(problems.back()));
        files.erase(half);
    }
}

Reloaded<ContactTable>::Loaded loadFolder(const fs::path& folder) {
    Reloaded<ContactTable>::Loaded loaded;
    const auto stamp = stampOfCards(folder, loaded.made.error);
    auto files = stamp ? cardFilesIn(folder, loaded.made.error) : std::nullopt;
    if (!files) {
        return loaded;
    }
    if (isSettled(*stamp)) {
        loaded.stamp = stamp;
    }
    loaded.made = makeTable(*std::move(files));
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
    return ReloadedFile<ContactTable>::load(place->path, [readFrom](TextWindow text, const std::string& file) {
        return makeTable(std::move(text), file, readFrom);
    });
}

bool FileDirectory::search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) {
    const auto contacts = m_contacts.current(error);
    if (!contacts) {
        return false;
    }
    if (!key.empty()) {
        contacts->index().appendMatches(key, hits);
    }
    return true;
}

std::vector<bool> FileDirectory::holds(std::span<const NameAndNumber> rows) const {
    const auto contacts = m_contacts.lastRead();
    return contacts ? contacts->holds(rows) : std::vector<bool>(rows.size());
}

std::size_t FileDirectory::size() const {
    const auto contacts = m_contacts.lastRead();
    return contacts ? contacts->index().size() : 0;
}

std::optional<KnownContact> FileDirectory::find(const NameAndNumber& row) const {
    const auto contacts = m_contacts.lastRead();
    return contacts ? contacts->known(row) : std::nullopt;
}

} // namespace host
