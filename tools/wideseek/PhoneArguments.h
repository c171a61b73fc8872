// The arguments that name and set up the phone, the same for every subcommand that runs one.
#pragma once

#include "host/Phone.h"

#include <filesystem>
#include <optional>
#include <string>

namespace wideseek {

// The value that the command line gives to a flag without one.
inline constexpr const char* bareFlag = "true";

struct PhoneArguments {
    std::string root;             // empty: the default
    std::string log;              // empty: none; bareFlag: the standard error output; else a file
    std::optional<int> ldapDelay; // ms; none: what the phone's configuration says
};

// The root that --root asks for; the default one when it is empty.
std::filesystem::path phoneRootOf(const std::string& root);

// The source list of the phone with this root.
std::filesystem::path sourceListOf(const std::filesystem::path& root);

// The phone that arguments ask for, in the live driver. Throws std::runtime_error for a root that is no folder and for
// a log file that cannot be written.
host::PhoneOptions phoneOptionsOf(const PhoneArguments& arguments);

// How long is waited in the end for what is outstanding: ten seconds beyond the delay that the user has set for LDAP.
host::Duration longestSettling(const host::PhoneOptions& options);

} // namespace wideseek
