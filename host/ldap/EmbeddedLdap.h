// The LDAP directory for a phone without a server: contacts that answer after a set delay.
//
// It works on a thread of the kernel's own ("ThreadLdap"), with which the delay passes as any other time of the phone.
// People and keys match as in the other directories; a person with several numbers gives several rows.
#pragma once

#include "host/kernel/Kernel.h"
#include "host/sources/ContactSource.h"
#include "host/sources/LdapDirectory.h"

#include <memory>

namespace host {

class EmbeddedLdap final : public LdapDirectory {
public:
    static constexpr std::string_view threadName = "ThreadLdap";

    // The kernel must outlive the directory. Adds the thread to it if it is not there yet.
    EmbeddedLdap(Kernel& kernel, std::shared_ptr<ContactSource> contacts, Duration delay);
    ~EmbeddedLdap() override;

    void start(LdapQuery query, Done done) override;

    // Waits for an answer that is being given on the directory's thread.
    void abandon() override;

private:
    LdapAnswer answer(const LdapQuery& query);

    Kernel& m_kernel;
    const std::shared_ptr<ContactSource> m_contacts;
    const Duration m_delay;
    MessageThread* const m_thread;
};

} // namespace host
