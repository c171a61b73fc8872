// How a phone is made (Phone.h).
#pragma once

#include "host/kernel/Kernel.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>

namespace host {

// Where log lines go: module, level, and the line without its line feed. Called on the thread that logs, with no lock
// of the host held.
using LogSink = std::function<void(int module, int level, std::string_view line)>;

struct PhoneOptions {
    std::filesystem::path root; // stands in for "/"; empty: the machine's own root
    Driver driver = Driver::live;
    std::optional<Duration> ldapDelay; // of the embedded LDAP directory, in place of the phone's configuration
    bool contactFiles = true;          // false: no source is set, for tests that set their own
    bool network = true;               // false: no server is asked; of the remote directory, its last copy answers
    LogSink log;                       // none: nothing is logged
};

} // namespace host
