#include "tools/wideseek/pages/LineWriter.h"

#include <cerrno>
#include <poll.h>
#include <sstream>
#include <string>
#include <string_view>
#include <unistd.h>

namespace wideseek {

void LineWriter::write(const Json& object) {
    std::ostringstream line;
    printJsonLine(line, object);
    const std::string text = line.str();
    for (std::string_view rest = text; !rest.empty() && m_error == 0;) {
        const ssize_t written = ::write(m_descriptor, rest.data(), rest.size());
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            pollfd room = {m_descriptor, POLLOUT, 0};
            poll(&room, 1, -1);
        } else if (errno != EINTR) {
            m_error = errno;
        }
    }
}

void LineWriter::close() {
    m_error = EPIPE;
}

} // namespace wideseek
