#include "host/remote/RemoteContacts.h"

#include "host/contacts/ContactFile.h"
#include "host/formats/VCardReader.h"

#include <utility>

namespace host {

namespace {

ReadContacts readPart(std::string_view bytes, const std::string& place, ContactTable& table) {
    if (isVCard(bytes)) {
        return readVCards(bytes, place, [&](const Contact& each) { table.add(each); });
    }
    ContactFile read = readContacts(bytes, place, [&](const DirectorySearchData& each) { table.add(each); });
    return {std::move(read.problems), std::move(read.error)};
}

} // namespace

RemoteContacts readRemoteContacts(const RemoteCopy& copy, const std::string& url) {
    RemoteContacts contacts;
    const auto table = std::make_shared<ContactTable>();
    for (const auto& [path, part] : copy.parts) {
        const auto [problems, error] = readPart(part.text, path.empty() ? url : path, *table);
        contacts.problems.insert(contacts.problems.end(), problems.begin(), problems.end());
        if (copy.kind == RemoteCopy::Kind::file && !error.empty()) {
            contacts.error = error;
            return contacts;
        }
    }
    contacts.table = table;
    return contacts;
}

} // namespace host
