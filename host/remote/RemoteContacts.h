// The contacts of a remote directory's copy, in the form that is searched.
#pragma once

#include "host/contacts/ContactTable.h"
#include "host/remote/http/WebAddress.h"
#include "host/remote/refresh/RemoteCopy.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace host {

struct RemoteContacts {
    std::shared_ptr<const ContactTable> table; // null: error says why
    std::vector<std::string> problems;         // "place:line: reason", of what is left out or doubtful
    std::string error;
};

// at: where the directory is, which is what problems name. goOn is called for each contact, and may throw to end the
// reading. Any thread.
RemoteContacts readRemoteContacts(const RemoteCopy& copy, const WebAddress& at, const std::function<void()>& goOn);

} // namespace host
