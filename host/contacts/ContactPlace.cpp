#include "host/contacts/ContactPlace.h"

#include "host/files/FileText.h"

#include <sys/stat.h>

namespace host {

namespace {

bool isThere(const std::filesystem::path& path, bool& isFolder) {
    struct stat status {};
    const bool found = stat(path.c_str(), &status) == 0;
    isFolder = found && S_ISDIR(status.st_mode);
    return found;
}

} // namespace

std::vector<ContactPlace> contactsAt(const std::filesystem::path& csv) {
    std::vector<ContactPlace> places;
    bool isFolder = false;
    if (csv.extension() != ".csv") {
        if (isThere(csv, isFolder)) {
            const bool isVCard = csv.extension() == ".vcf";
            places.push_back({csv, isFolder ? ContactForm::folder : isVCard ? ContactForm::vCard : ContactForm::csv});
        }
        return places;
    }
    std::filesystem::path other = csv;
    if (isThere(csv, isFolder)) {
        places.push_back({csv, ContactForm::csv});
    }
    if (isThere(other.replace_extension(".vcf"), isFolder)) {
        places.push_back({other, ContactForm::vCard});
    }
    if (isThere(other.replace_extension(), isFolder) && isFolder) {
        places.push_back({other, ContactForm::folder});
    }
    return places;
}

std::optional<ContactPlace> findContacts(const std::filesystem::path& csv, std::string& error) {
    std::vector<ContactPlace> places = contactsAt(csv);
    if (places.empty()) {
        stampOf(csv, error);
        return std::nullopt;
    }
    if (places.size() > 1) {
        error = places[0].path.string() + ": " + places[1].path.filename().string() +
                (places[1].form == ContactForm::folder ? "/" : "") + " is there as well; keep one of them";
        return std::nullopt;
    }
    return std::move(places.front());
}

} // namespace host
