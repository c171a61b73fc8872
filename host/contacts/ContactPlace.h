// Where the contacts of a source stand: in the file NAME.csv, or instead of it in NAME.vcf, or in a folder NAME that
// holds .vcf files, as address book programs keep them.
//
//     std::string error;
//     if (const auto place = findContacts("config/contacts/local_directory.csv", error)) { read(*place); }
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace host {

enum class ContactForm { csv, vCard, folder };

struct ContactPlace {
    std::filesystem::path path;
    ContactForm form{};
};

// The one of the three that is there, given the name that the .csv has or would have (a name that ends otherwise stands
// for itself alone). Nothing, and the reason for people, when none is there or several are. Any thread.
std::optional<ContactPlace> findContacts(const std::filesystem::path& csv, std::string& error);

// Those that are there, for whoever wants to know before anything is read.
std::vector<ContactPlace> contactsAt(const std::filesystem::path& csv);

} // namespace host
