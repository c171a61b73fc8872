#include "tools/wideseek/pages/LineReader.h"

#include <array>
#include <cerrno>
#include <unistd.h>
#include <utility>

namespace wideseek {

std::vector<Line> LineReader::read() {
    std::array<char, LineReader::longest> chunk;
    const ssize_t size = ::read(m_descriptor, chunk.data(), chunk.size());
    if (size < 0 && (errno == EINTR || errno == EAGAIN)) {
        return {};
    }
    std::vector<Line> lines;
    if (size <= 0) {
        m_error = size < 0 ? errno : 0;
        m_ended = true;
        if (std::exchange(m_hasBegun, false)) {
            lines.push_back(std::exchange(m_begun, {}));
        }
        return lines;
    }
    std::string_view rest(chunk.data(), static_cast<std::size_t>(size));
    for (std::size_t end = rest.find('\n'); end != std::string_view::npos; end = rest.find('\n')) {
        append(rest.substr(0, end));
        lines.push_back(std::exchange(m_begun, {}));
        m_hasBegun = false;
        rest.remove_prefix(end + 1);
    }
    append(rest);
    return lines;
}

void LineReader::append(std::string_view bytes) {
    m_hasBegun = m_hasBegun || !bytes.empty();
    if (m_begun.text.size() + bytes.size() > longest) {
        m_begun.tooLong = true;
        m_begun.text.clear();
        m_begun.text.shrink_to_fit();
    }
    if (!m_begun.tooLong) {
        m_begun.text += bytes;
    }
}

} // namespace wideseek
