// Places in a piece of memory, each at or behind the one before it, of two bytes each: the places at which the upper
// bytes change stand in a list of their own, which is short.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace host {

class Offsets {
public:
    static constexpr std::size_t most = 1UL << 16U; // that are kept

    void add(std::size_t offset) {
        while (offset >> bits > m_carries.size()) {
            m_carries.push_back(static_cast<std::uint16_t>(m_low.size()));
        }
        m_low.push_back(static_cast<std::uint16_t>(offset));
    }

    std::size_t size() const { return m_low.size(); }

    std::size_t operator[](std::size_t i) const {
        const std::size_t low = m_low[i];
        if (m_carries.empty()) [[likely]] {
            return low;
        }
        const auto above = std::upper_bound(m_carries.begin(), m_carries.end(), i);
        return (static_cast<std::size_t>(above - m_carries.begin()) << bits) | low;
    }

    void shrink() {
        m_low.shrink_to_fit();
        m_carries.shrink_to_fit();
    }

private:
    static constexpr unsigned bits = 16;

    std::vector<std::uint16_t> m_low;
    std::vector<std::uint16_t> m_carries; // from which on the upper part is one more
};

} // namespace host
