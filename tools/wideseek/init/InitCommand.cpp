#include "tools/wideseek/init/InitCommand.h"

#include "host/contacts/ContactPlace.h"
#include "tools/wideseek/ExitCode.h"
#include "tools/wideseek/NextCommand.h"
#include "tools/wideseek/PhoneArguments.h"
#include "tools/wideseek/Text.h"
#include "tools/wideseek/import/ImportCommand.h"
#include "tools/wideseek/init/PhoneFiles.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace wideseek {

namespace {

namespace fs = std::filesystem;

std::runtime_error cannotWrite(const fs::path& path, const std::error_code& error) {
    return std::runtime_error(printable(path.string()) + ": cannot be made (" + error.message() +
                              "); name a folder that you may write to and that has room");
}

void makeFolder(const fs::path& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) {
        throw cannotWrite(folder, error);
    }
}

// False: the file is there already, and stays as it is. One that cannot be written whole is taken away again, as the
// next attempt would take it for the user's own.
bool makeFile(const fs::path& path, std::string_view content) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "wxe"), &std::fclose);
    if (!file && errno == EEXIST) {
        return false;
    }
    const bool isWritten = file && std::fwrite(content.data(), 1, content.size(), file.get()) == content.size() &&
                           std::fflush(file.get()) == 0;
    if (!isWritten) {
        const std::error_code reason(errno, std::generic_category());
        if (file) {
            std::remove(path.c_str());
        }
        throw cannotWrite(path, reason);
    }
    return true;
}

void tell(const fs::path& file, bool isNew) {
    std::cout << "  " << printable(file.string()) << (isNew ? "" : "  (was there, is as it was)") << '\n';
}

// The contacts that are there, or are to be made.
void makeContacts(const fs::path& file, std::string_view content) {
    if (const auto places = host::contactsAt(file); !places.empty()) {
        for (const host::ContactPlace& place : places) {
            tell(place.path, false);
        }
    } else if (!content.empty()) {
        tell(file, makeFile(file, content));
    }
}

void requireReadable(const std::vector<std::string>& files) {
    for (const std::string& file : files) {
        std::error_code error;
        if (!fs::exists(file, error)) {
            throw std::runtime_error(printable(file) + ": not there; nothing was made. Check the file's name");
        }
    }
}

} // namespace

int makePhone(const InitArguments& arguments) {
    const fs::path root(arguments.folder);
    const std::string shown = printable(root.string());
    const fs::path list = sourceListOf(root);
    std::error_code error;
    if (fs::exists(list, error)) {
        throw std::runtime_error(shown + " holds a phone already, which is as it was; name another folder, or remove " +
                                 printable(list.string()) + " to have the list of its sources made anew");
    }
    requireReadable(arguments.from);
    const fs::path contacts = root / "config/contacts";
    const fs::path settings = list.parent_path() / "phone.ini";
    makeFolder(contacts);
    makeFolder(list.parent_path());
    std::cout << "A phone in " << shown << ":\n";
    for (const SourceFile& source : sourceFiles) {
        makeContacts(contacts / source.file, source.content);
    }
    tell(settings, makeFile(settings, newSettings));
    // Last, as it makes the folder a phone.
    makeFile(list, newSourceList([&](const char* file) { return !host::contactsAt(contacts / file).empty(); }));
    tell(list, true);
    int code = exitCode::success;
    if (arguments.from.empty()) {
        std::cout << "Put your contacts into " << printable((contacts / sourceFiles[0].file).string())
                  << ", or bring in what other programs have written:\n  "
                  << nextCommand({"import", "--root", arguments.folder}) << " FILE...\nThen search them:\n";
    } else {
        ImportArguments import;
        import.files = arguments.from;
        import.root = arguments.folder;
        code = importContacts(import);
        std::cout << "Search them:\n";
    }
    std::cout << "  " << nextCommand({"phone", "--root", arguments.folder}) << '\n';
    return code;
}

} // namespace wideseek
