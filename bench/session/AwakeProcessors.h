// Keeps all processors from sleeping for as long as it lives, with Linux's power management quality of service
// (/dev/cpu_dma_latency).
//
// How long a processor takes to wake is a matter of the machine's settings, and on a virtual one of its neighbours. It
// can be longer than all that a key has to do, and differs from run to run. What is measured here is software.
#pragma once

#include "host/ldap/server/Waiter.h"

#include <string>

namespace bench {

class AwakeProcessors {
public:
    AwakeProcessors();

    // False when the system does not let it; problem then says why. Usually only root may.
    bool areKept() const { return m_problem.empty(); }
    const std::string& problem() const { return m_problem; }

private:
    host::Descriptor m_request; // the kernel honours it while it is open
    std::string m_problem;
};

} // namespace bench
