#include "tools/wideseek/import/ImportTarget.h"

#include "host/contacts/CardFolder.h"
#include "host/contacts/ContactPlace.h"
#include "host/files/ReplacedFile.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>

namespace wideseek {

namespace {

constexpr const char* newCards = "imported.vcf"; // the file in a folder that new cards go to

void append(host::Contact& to, const host::Contact& from) {
    to.numbers.insert(to.numbers.end(), from.numbers.begin(), from.numbers.end());
    to.facts.insert(to.facts.end(), from.facts.begin(), from.facts.end());
    to.extra = to.extra.empty() ? from.extra : to.extra;
}

} // namespace

ImportTarget::ImportTarget(const std::filesystem::path& csv) {
    std::string error;
    const auto place = host::findContacts(csv, error);
    if (!place && !host::contactsAt(csv).empty()) {
        throw std::runtime_error(error);
    }
    if (!place) {
        open(csv, false);
    } else if (place->form != host::ContactForm::folder) {
        open(place->path, true);
    } else {
        const auto files = host::cardFilesIn(place->path, error);
        if (!files) {
            throw std::runtime_error(error);
        }
        for (const std::filesystem::path& file : *files) {
            m_appendTo = file.filename() == newCards ? m_files.size() : m_appendTo;
            open(file, true);
        }
        if (m_files.empty() || m_files[m_appendTo]->path().filename() != newCards) {
            m_appendTo = m_files.size();
            open(place->path / newCards, false);
        }
    }
}

void ImportTarget::open(const std::filesystem::path& path, bool mustBeThere) {
    std::string bytes;
    m_stamps.emplace_back();
    if (mustBeThere) {
        std::string error;
        auto text = host::readFile(path, error);
        if (!text) {
            throw std::runtime_error(error);
        }
        bytes = std::move(text->bytes);
        m_stamps.back() = text->stamp;
    }
    const std::size_t file = m_files.size();
    m_files.push_back(openTargetFile(path, std::move(bytes)));
    const auto& contacts = m_files.back()->contacts();
    for (std::size_t position = 0; position < contacts.size(); ++position) {
        m_index.add(contacts[position], m_people.size());
        m_people.push_back({contacts[position], {}, file, position});
    }
}

ImportTarget::Added ImportTarget::add(const host::Contact& contact) {
    const auto known = m_index.find(contact);
    if (!known) {
        m_index.add(contact, m_people.size());
        m_people.push_back({contact, {}, m_appendTo, std::nullopt});
        return {Outcome::added, {}};
    }
    Person& person = m_people[*known];
    host::Contact additions = newIn(contact, person.contact);
    if (!hasAnything(additions)) {
        return {Outcome::known, {}};
    }
    append(person.contact, additions);
    append(person.additions, additions);
    m_index.add(person.contact, *known);
    return {Outcome::merged, std::move(additions)};
}

void ImportTarget::write() {
    for (Person& person : m_people) {
        if (!person.position) {
            m_files[person.file]->append(std::move(person.contact));
        } else if (hasAnything(person.additions)) {
            m_files[person.file]->extend(*person.position, std::move(person.additions));
        }
    }
    m_people.clear();
    for (std::size_t file = 0; file < m_files.size(); ++file) {
        if (m_files[file]->isChanged()) {
            write(file);
        }
    }
}

void ImportTarget::write(std::size_t file) const {
    const std::filesystem::path& path = m_files[file]->path();
    std::string error;
    if (host::stampOf(path, error) != m_stamps[file]) {
        throw std::runtime_error(path.string() + ": was changed by another program meanwhile, and is as that left it; "
                                                 "import again");
    }
    if (!host::replaceFile(path, m_files[file]->bytes(), error)) {
        throw std::runtime_error(error);
    }
}

} // namespace wideseek
