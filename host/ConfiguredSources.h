// The sources of a phone that its settings describe (config/data/phone.ini), made when the phone is. Mistakes in the
// settings become problems of the phone, and what they are about is not there then.
#pragma once

#include "host/PhoneCore.h"
#include "host/files/Problems.h"
#include "host/files/ReloadedFile.h"
#include "host/sources/LdapDirectory.h"
#include "host/text/NumberForm.h"

#include <memory>
#include <set>
#include <string>

namespace host {

class FileDirectory;
class RemoteDirectory;
class ServerLdapDirectory;

// What adds to the phone's problems for as long as there is a phone.
ProblemSink problemSink(const std::shared_ptr<PhoneCore>& core);

// Reports the settings that nobody knows, and gives the sections that some of them were probably meant for.
std::set<std::string> reportUnknownSettings(PhoneCore& core);

// Says that a server is not asked, since a setting of its section is misspelt.
void reportDoubt(PhoneCore& core, const std::string& who);

// How the section [dialling] says that numbers are dialled; as they are when it cannot be used.
text::DiallingRules configuredDialling(PhoneCore& core);

struct ConfiguredLdap {
    std::shared_ptr<LdapDirectory> directory{};    // null: none that can be used
    std::shared_ptr<FileDirectory> file{};         // what it answers from; null: no file
    std::shared_ptr<ServerLdapDirectory> server{}; // what it is; null: no server
};

// The directory of the section [ldap].
ConfiguredLdap configuredLdap(const std::shared_ptr<PhoneCore>& core);

struct ConfiguredRemote {
    bool isWanted = false;                        // there is a section [remote_directory] about a server
    std::shared_ptr<RemoteDirectory> directory{}; // null: none that can be used
};

ConfiguredRemote configuredRemote(const std::shared_ptr<PhoneCore>& core);

} // namespace host
