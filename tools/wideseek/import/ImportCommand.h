// wideseek import: brings contacts that other programs have written into a phone's source.
#pragma once

#include <string>
#include <vector>

namespace wideseek {

struct ImportArguments {
    std::vector<std::string> files; // a folder stands for the vCard files in it
    std::string root;               // empty: none is named
    std::string into = "local_directory";
    std::vector<std::string> columns; // "COLUMN=FIELD"
    std::string encoding;             // empty: it is found
    bool dryRun = false;
    bool json = false;
};

// The words for --into: "local_directory, ...".
std::string knownTargets();

// Gives the exit code. What can be taken is taken although other files cannot be read; nothing is written after a wish
// to end (Interrupt.h). Throws std::runtime_error, with what to do, when the root is no folder.
int importContacts(const ImportArguments& arguments);

} // namespace wideseek
