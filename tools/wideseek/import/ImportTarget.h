// The source of a phone that contacts are brought into: its people, who is one of them already, and the files that
// change.
//
//     ImportTarget target(root / "config/contacts/local_directory.csv");
//     target.add(contact);
//     target.write();
#pragma once

#include "host/files/FileText.h"
#include "host/sources/Contact.h"
#include "tools/wideseek/import/SamePerson.h"
#include "tools/wideseek/import/TargetFile.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

namespace wideseek {

class ImportTarget {
public:
    // The path of the source's .csv, in whose stead a .vcf or a folder may be there (host/contacts/ContactPlace.h);
    // none need be. Throws std::runtime_error, with what to do, when what is there cannot be read.
    explicit ImportTarget(const std::filesystem::path& csv);

    enum class Outcome {
        added,  // a new contact
        merged, // something new of a person who is there
        known,  // nothing new
    };
    struct Added {
        Outcome outcome{};
        host::Contact additions; // of one who is merged: what is new
    };

    // Takes a contact into account; nothing is written yet.
    Added add(const host::Contact& contact);

    // Where new contacts go.
    const std::filesystem::path& path() const { return m_files[m_appendTo]->path(); }

    // Writes the files that change, each of them whole or not at all (host/files/ReplacedFile.h). Throws
    // std::runtime_error, with what to do, when that fails, and when somebody else has changed one since it was read.
    void write();

private:
    struct Person {
        host::Contact contact;               // with what was added
        host::Contact additions;             // to one of a file
        std::size_t file = 0;                // in m_files
        std::optional<std::size_t> position; // in its file; none: new
    };

    void open(const std::filesystem::path& path, bool mustBeThere);
    void write(std::size_t file) const;

    std::vector<std::unique_ptr<TargetFile>> m_files;
    std::vector<std::optional<host::FileStamp>> m_stamps; // of each as it was read; none: it was not there
    std::size_t m_appendTo = 0;
    std::vector<Person> m_people;
    PersonIndex m_index;
};

} // namespace wideseek
