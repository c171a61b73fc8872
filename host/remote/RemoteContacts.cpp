#include "host/remote/RemoteContacts.h"

#include "host/contacts/ContactFile.h"
#include "host/formats/VCardReader.h"

#include <utility>

namespace host {

RemoteContacts readRemoteContacts(const RemoteCopy& copy, const WebAddress& at, const std::function<void()>& goOn) {
    RemoteContacts contacts;
    const auto table = std::make_shared<ContactTable>();
    const TakeContact take = [&](const Contact& each) {
        goOn();
        table->add(each);
    };
    for (const auto& [path, part] : copy.parts) {
        const std::string place = path.empty() ? withoutQuery(at.url) : at.origin + path;
        const auto [problems, error] =
            isVCard(part.text) ? readVCards(part.text, place, take) : readContacts(part.text, place, take);
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
