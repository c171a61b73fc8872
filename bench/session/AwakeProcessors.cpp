#include "bench/session/AwakeProcessors.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

namespace bench {

AwakeProcessors::AwakeProcessors() : m_request(::open("/dev/cpu_dma_latency", O_WRONLY | O_CLOEXEC)) {
    constexpr std::int32_t microsecondsToWake = 0;
    if (m_request.number() < 0 ||
        ::write(m_request.number(), &microsecondsToWake, sizeof microsecondsToWake) != sizeof microsecondsToWake) {
        m_problem = "/dev/cpu_dma_latency: " + std::generic_category().message(errno);
    }
}

} // namespace bench
