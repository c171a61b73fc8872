#include "host/SourceTrial.h"

#include "host/Phone.h"
#include "host/PhoneCore.h"
#include "host/contacts/ContactPlace.h"
#include "host/contacts/FileDirectory.h"
#include "host/contacts/PresenceFile.h"
#include "host/ldap/server/ServerLdap.h"
#include "host/remote/RemoteDirectory.h"
#include "host/sources/Failure.h"
#include "host/sources/SourceNames.h"

#include <future>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

namespace host {

namespace {

using Outcome = SourceTrial::Outcome;
using GiveUp = std::function<bool()>;

constexpr std::chrono::milliseconds lookingPeriod(10);

// Nobody has this name, and it is looked for as any other one.
constexpr const char* nobody = "wideseek check";

// An empty key has the source read its contacts.
SourceTrial tryContacts(ContactSource* source, const ContactLookup* contacts) {
    SourceTrial trial;
    if (source == nullptr || contacts == nullptr) {
        return trial;
    }
    OxList<DirectorySearchData> hits;
    try {
        trial.outcome = source->search("", hits, trial.problem) ? Outcome::answered : Outcome::failed;
        trial.contacts = contacts->size();
    } catch (...) {
        trial.problem = reasonOfCurrentException();
    }
    return trial;
}

SourceTrial tryServer(LdapDirectory& server, const GiveUp& giveUp) {
    const auto answer = std::make_shared<std::promise<LdapAnswer>>();
    std::future<LdapAnswer> coming = answer->get_future();
    server.start({nobody, 1}, [answer](LdapAnswer given) { answer->set_value(std::move(given)); });
    while (coming.wait_for(lookingPeriod) != std::future_status::ready) {
        if (giveUp()) {
            server.abandon();
            return {Outcome::givenUp, true};
        }
    }
    LdapAnswer given = coming.get();
    return {given.succeeded ? Outcome::answered : Outcome::failed, true, 0, std::move(given.problem)};
}

SourceTrial tryRemote(const RemoteDirectory& remote, const GiveUp& giveUp) {
    while (remote.state().refreshes == 0) {
        if (giveUp()) {
            return {Outcome::givenUp, true};
        }
        std::this_thread::sleep_for(lookingPeriod);
    }
    RemoteState state = remote.state();
    const bool answered = state.problem.empty();
    return {answered ? Outcome::answered : Outcome::failed, true, state.contacts, std::move(state.problem)};
}

std::optional<Source> sourceOf(std::string_view name) {
    constexpr std::pair<std::string_view, Source> sources[] = {
        {sourceName::localDirectory, Source::localDirectory},
        {sourceName::callLog, Source::callLog},
        {sourceName::remoteDirectory, Source::remoteDirectory},
        {sourceName::broadSoftDirectory, Source::broadSoftDirectory}};
    for (const auto& [known, source] : sources) {
        if (known == name) {
            return source;
        }
    }
    return std::nullopt;
}

} // namespace

SourceTrial Phone::tryOut(std::string_view name, const GiveUp& giveUp) {
    if (name == sourceName::remoteDirectory && m_remote) {
        return m_remoteWorker ? tryRemote(*m_remote, giveUp) : SourceTrial{Outcome::unasked, true};
    }
    if (name == sourceName::ldap && m_ldapServer) {
        return m_core->options.network ? tryServer(*m_ldapServer, giveUp) : SourceTrial{Outcome::unasked, true};
    }
    const auto place = m_places.find(name);
    if (place != m_places.end() && contactsAt(place->second).empty()) {
        SourceTrial trial{Outcome::absent};
        findContacts(place->second, trial.problem);
        return trial;
    }
    if (name == sourceName::presence) {
        ContactBuddyListData buddies;
        int state = 1;
        const bool listed = m_presence && m_presence->GetListByGroupId(&buddies, state, 0, "", {});
        return {listed ? Outcome::answered : Outcome::failed, false, buddies.listContactId.size()};
    }
    if (name == sourceName::ldap) {
        return tryContacts(m_ldapFile.get(), m_ldapFile.get());
    }
    const auto source = sourceOf(name);
    return source ? tryContacts(m_core->source(*source).get().get(), lookup(name)) : SourceTrial();
}

} // namespace host
