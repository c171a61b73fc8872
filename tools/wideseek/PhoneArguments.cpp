#include "tools/wideseek/PhoneArguments.h"

#include "tools/wideseek/Arguments.h"
#include "tools/wideseek/LogFile.h"
#include "tools/wideseek/Text.h"

#include <filesystem>
#include <iostream>
#include <stdexcept>

namespace wideseek {

namespace {

constexpr const char* sourceList = "config/data/wideseek.xml";

constexpr int longestLdapDelay = 60'000;

bool isFolder(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

std::filesystem::path defaultRoot() {
    return isFolder(WIDESEEK_SAMPLE_DIR) ? WIDESEEK_SAMPLE_DIR : "sample";
}

} // namespace

void addRootArgument(CLI::App& command, std::string& root) {
    command
        .add_option("--root", root,
                    "The phone's root folder, with config/data and config/contacts in it.\n"
                    "Default: the environment variable WIDESEEK_ROOT, else the sample phone")
        ->option_text("DIR")
        ->envname("WIDESEEK_ROOT")
        ->transform(asTyped());
}

std::filesystem::path phoneRootOf(const std::string& root) {
    return root.empty() ? defaultRoot() : std::filesystem::path(root);
}

std::filesystem::path sourceListOf(const std::filesystem::path& root) {
    return root / sourceList;
}

void addPhoneArguments(CLI::App& command, PhoneArguments& arguments) {
    addRootArgument(command, arguments.root);
    command
        .add_option("--ldap-delay", arguments.ldapDelay,
                    "Milliseconds after which the file answers that stands in for an LDAP server.\n"
                    "Default: what the phone's configuration says")
        ->option_text("MS")
        ->check(CLI::Range(0, longestLdapDelay));
    command
        .add_flag("--log", arguments.log,
                  "Write the phone's log, each line with its level and module, to the standard error\n"
                  "output; --log=FILE appends it to FILE")
        ->option_text("[=FILE]")
        ->transform(asTyped());
}

host::PhoneOptions phoneOptionsOf(const PhoneArguments& arguments) {
    host::PhoneOptions options;
    options.root = phoneRootOf(arguments.root);
    const std::string shown = printable(options.root.string());
    if (!isFolder(options.root)) {
        throw std::runtime_error(shown + ": no such folder; give a phone's root with --root");
    }
    std::error_code error;
    if (!std::filesystem::exists(sourceListOf(options.root), error)) {
        std::cerr << "wideseek: " << shown << " has no " << sourceList << ", so no source will be asked\n";
    }
    if (arguments.ldapDelay) {
        options.ldapDelay = std::chrono::milliseconds(*arguments.ldapDelay);
    }
    if (!arguments.log.empty()) {
        options.log = openLog(arguments.log == bareFlag ? std::string() : arguments.log);
    }
    return options;
}

} // namespace wideseek
