// What is held of a remote directory: the cards or the file as the server sent them, and what lets the server say later
// that nothing has changed. And the file in which it waits for the next start.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace host {

struct RemoteCopy {
    enum class Kind { unknown, file, addressBook };

    // Something of the directory that is sent as a whole: a card, or the file.
    struct Part {
        std::string href; // as the server writes it
        std::string etag;
        std::string text;
    };

    Kind kind = Kind::unknown;
    std::string lastModified{}; // of the file; its etag is its part's
    std::string url{};          // where the address book was found
    bool synchronises = false;  // the address book's server reports changes since a token
    std::string syncToken{};    // the last one; empty: none, so all members are asked for

    std::map<std::string, Part> parts{}; // by their decoded path; the file is the one of no path
};

// Writes the copy of the directory `source` to a file that its owner alone can read: beside it first, so that whatever
// happens the file holds the one copy or the other. Makes the folder. False, and what to do, when it cannot be written.
// Any thread, one at a time for a file.
bool saveRemoteCopy(const std::filesystem::path& file, const std::string& source, const RemoteCopy& copy,
                    std::string& problem);

// The copy in the file; nothing when there is none, when it is of another source, and when it is damaged: it is fetched
// anew then. Any thread.
std::optional<RemoteCopy> loadRemoteCopy(const std::filesystem::path& file, const std::string& source);

} // namespace host
