#include "host/files/TextWindow.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace host {

std::string_view TextWindow::whole() {
    std::string_view all = from(0);
    for (std::size_t before = 0; before < all.size();) {
        before = all.size();
        all = from(0, before + 1);
    }
    return all;
}

std::string_view TextWindow::read(std::size_t position, std::size_t least) {
    m_held.remove_prefix(position - m_begin);
    m_begin = position;
    if (m_source == nullptr) {
        return m_held;
    }
    makeRoom(least);
    std::size_t size = m_held.size();
    while (size < least && m_source != nullptr) {
        const std::size_t count = m_source->read(m_buffer.get() + size, m_capacity - size);
        size += count;
        m_source = count == 0 ? nullptr : m_source;
    }
    m_held = {m_buffer.get(), size};
    return m_held;
}

// What is held stands at the front of the buffer then.
void TextWindow::makeRoom(std::size_t least) {
    if (least > m_capacity) {
        const std::size_t capacity = std::max({least, m_piece, 2 * m_capacity});
        auto larger = std::make_unique_for_overwrite<char[]>(capacity);
        std::copy(m_held.begin(), m_held.end(), larger.get());
        m_buffer = std::move(larger);
        m_capacity = capacity;
    } else if (!m_held.empty()) {
        std::memmove(m_buffer.get(), m_held.data(), m_held.size());
    }
    m_held = {m_buffer.get(), m_held.size()};
}

} // namespace host
