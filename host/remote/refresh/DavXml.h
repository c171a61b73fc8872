// The XML that is spoken with an address book server: WebDAV (RFC 4918), CardDAV (RFC 6352), and collection
// synchronisation (RFC 6578). All functions are pure; any thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace host {

// The bodies of requests.
namespace davBody {

// PROPFIND: what stands at an address, and where address books are.
std::string whatIsThere();

// PROPFIND: the members of an address book, with what tells a changed one.
std::string members();

// REPORT: what has changed in an address book since the token was given; an empty one: all members.
std::string changesSince(const std::string& syncToken);

// REPORT: the cards of these members.
std::string cards(const std::vector<std::string>& hrefs);

} // namespace davBody

// What a server tells of one resource. Properties that it has not, or does not tell, are empty.
struct DavResource {
    std::string href; // as the server writes it
    int status = 200; // of the resource as a whole: 404 says that it has gone
    bool isCollection = false;
    bool isAddressBook = false;
    bool synchronises = false; // it reports changes since a token
    std::string name;          // for people
    std::string etag;
    std::string card;
    std::vector<std::string> principals; // who is signed in
    std::vector<std::string> homes;      // where somebody's address books are
};

struct Multistatus {
    std::vector<DavResource> resources;
    std::string syncToken;
};

// Nothing when the text is no multistatus.
std::optional<Multistatus> readMultistatus(const std::string& text);

// True when the text of an error says that the token is not known any more.
bool refusesSyncToken(const std::string& text);

} // namespace host
