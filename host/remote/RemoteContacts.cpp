#include "host/remote/RemoteContacts.h"

#include "host/contacts/ContactFile.h"

#include <utility>

namespace host {

RemoteContacts readRemoteContacts(const RemoteCopy& copy, const std::string& url) {
    RemoteContacts contacts;
    const auto table = std::make_shared<ContactTable>();
    for (const auto& [path, part] : copy.parts) {
        const std::string place = path.empty() ? url : path;
        ContactFile read = readContacts(part.text, place, [&](const DirectorySearchData& each) { table->add(each); });
        contacts.problems.insert(contacts.problems.end(), read.problems.begin(), read.problems.end());
        if (!read.error.empty()) {
            contacts.error = std::move(read.error);
            return contacts;
        }
    }
    contacts.table = table;
    return contacts;
}

} // namespace host
