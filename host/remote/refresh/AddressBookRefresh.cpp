#include "host/remote/refresh/DavXml.h"
#include "host/remote/refresh/RemoteStep.h"

#include <algorithm>
#include <memory>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

namespace {

using Kind = RemoteOutcome::Kind;

constexpr std::size_t cardsPerRequest = 50;

std::string_view withoutSlash(std::string_view path) {
    return path.substr(0, path.find_last_not_of('/') + 1);
}

// A refresh of an address book, from the question what has changed to the last card. Its steps hold it shared.
class AddressBookRefresh : public std::enable_shared_from_this<AddressBookRefresh> {
public:
    explicit AddressBookRefresh(RemoteCopy& copy) : m_copy(copy) {}

    RemoteNext begin() { return m_copy.synchronises ? askForChanges() : askForMembers(); }

private:
    RemoteNext askForChanges();
    RemoteNext takeChanges(const WebAddress& at, const HttpResponse& response);
    RemoteNext askForMembers();
    RemoteNext takeMembers(const WebAddress& at, const HttpResponse& response);
    bool note(const WebAddress& at, const DavResource& resource);
    void removeUnlisted();
    RemoteNext askForCards();
    RemoteNext takeCards(const WebAddress& at, const HttpResponse& response);
    RemoteNext end();

    using Take = RemoteNext (AddressBookRefresh::*)(const WebAddress&, const HttpResponse&);
    RemoteNext ask(const std::string& method, int depth, std::string body, Take take) {
        return RemoteAsk{davRequest(method, m_copy.url, depth, std::move(body)),
                         [self = shared_from_this(), take](const WebAddress& at, const HttpResponse& response) {
                             return (*self.*take)(at, response);
                         }};
    }

    RemoteCopy& m_copy;
    bool m_changed = false;
    bool m_full = false;                                       // all members are asked for, not the changes alone
    bool m_missing = false;                                    // a card was asked for and not sent
    std::set<std::string> m_listed;                            // paths, when all members are asked for
    std::vector<std::pair<std::string, std::string>> m_wanted; // path and href of the cards to come, the next one last
};

RemoteNext AddressBookRefresh::askForChanges() {
    return ask("REPORT", 0, davBody::changesSince(m_copy.syncToken), &AddressBookRefresh::takeChanges);
}

RemoteNext AddressBookRefresh::takeChanges(const WebAddress& at, const HttpResponse& response) {
    const auto answer = response.status == 207 ? readMultistatus(response.body) : std::nullopt;
    if (!answer && !m_copy.syncToken.empty() && response.status / 100 == 4 && response.status != 404) {
        m_copy.syncToken.clear(); // too old for the server
        m_listed.clear();
        m_wanted.clear();
        return askForChanges();
    }
    if (response.status >= 500 && response.status != 501) {
        return unusable(response, "what has changed in the address book");
    }
    if (!answer || answer->syncToken.empty()) {
        return askForMembers();
    }
    bool isPart = false; // of the answer, the rest of which the new token brings (RFC 6578, section 3.6)
    for (const DavResource& each : answer->resources) {
        isPart = note(at, each) || isPart;
    }
    const std::string before = std::exchange(m_copy.syncToken, answer->syncToken);
    m_full = m_full || before.empty();
    if (isPart) {
        return before != m_copy.syncToken ? askForChanges() : askForMembers();
    }
    if (m_full) {
        removeUnlisted();
    }
    return askForCards();
}

// For a server that does not report changes, or not as it should.
RemoteNext AddressBookRefresh::askForMembers() {
    m_copy.synchronises = false;
    m_copy.syncToken.clear();
    m_listed.clear();
    m_wanted.clear();
    return ask("PROPFIND", 1, davBody::members(), &AddressBookRefresh::takeMembers);
}

RemoteNext AddressBookRefresh::takeMembers(const WebAddress& at, const HttpResponse& response) {
    const auto answer = response.status == 207 ? readMultistatus(response.body) : std::nullopt;
    if (!answer) {
        return unusable(response, "the address book");
    }
    for (const DavResource& each : answer->resources) {
        note(at, each);
    }
    removeUnlisted();
    return askForCards();
}

// Notes what has become of a member. True when the resource is the address book itself, of which more is to come.
bool AddressBookRefresh::note(const WebAddress& at, const DavResource& resource) {
    constexpr int insufficientStorage = 507;
    const auto address = resolve(at, resource.href);
    if (!address || address->origin != at.origin || resource.isCollection ||
        withoutSlash(address->path) == withoutSlash(at.path)) {
        return resource.status == insufficientStorage;
    }
    const std::string& path = address->path;
    const auto held = m_copy.parts.find(path);
    if (resource.status / 100 == 4) {
        m_changed = m_copy.parts.erase(path) != 0 || m_changed;
        return false;
    }
    m_listed.insert(path);
    if (held == m_copy.parts.end() || resource.etag.empty() || held->second.etag != resource.etag) {
        m_wanted.emplace_back(path, resource.href);
    }
    return false;
}

void AddressBookRefresh::removeUnlisted() {
    const std::size_t removed =
        std::erase_if(m_copy.parts, [this](const auto& part) { return !m_listed.contains(part.first); });
    m_changed = removed != 0 || m_changed;
}

RemoteNext AddressBookRefresh::askForCards() {
    if (m_wanted.empty()) {
        return end();
    }
    std::vector<std::string> hrefs;
    const std::size_t count = std::min(m_wanted.size(), cardsPerRequest);
    std::for_each(m_wanted.end() - static_cast<std::ptrdiff_t>(count), m_wanted.end(),
                  [&](const auto& each) { hrefs.push_back(each.second); });
    return ask("REPORT", 0, davBody::cards(hrefs), &AddressBookRefresh::takeCards);
}

RemoteNext AddressBookRefresh::takeCards(const WebAddress& at, const HttpResponse& response) {
    auto answer = response.status == 207 ? readMultistatus(response.body) : std::nullopt;
    if (!answer) {
        return unusable(response, "the cards of the address book");
    }
    std::set<std::string> asked;
    for (std::size_t left = std::min(m_wanted.size(), cardsPerRequest); left > 0; --left) {
        asked.insert(std::move(m_wanted.back().first));
        m_wanted.pop_back();
    }
    for (DavResource& each : answer->resources) {
        const auto address = resolve(at, each.href);
        if (address && asked.erase(address->path) != 0) {
            if (each.card.empty()) {
                m_copy.parts.erase(address->path);
            } else {
                m_copy.parts[address->path] = {each.href, each.etag, std::move(each.card)};
            }
            m_changed = true;
        }
    }
    m_missing = m_missing || !asked.empty();
    return askForCards();
}

RemoteNext AddressBookRefresh::end() {
    if (m_missing) {
        m_copy.syncToken.clear(); // no change since it would tell of them again
    }
    return RemoteOutcome{m_changed ? Kind::changed : Kind::unchanged};
}

} // namespace

RemoteNext refreshAddressBook(RemoteTask& task) {
    return std::make_shared<AddressBookRefresh>(task.copy)->begin();
}

} // namespace host
