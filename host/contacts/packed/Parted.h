// A list that grows at its end and is never copied as it does: it stands in parts of a set length.
//
//     Parted<int> ids;
//     ids.add(7);
//     use(ids[0]);
#pragma once

#include <cstddef>
#include <vector>

namespace host {

template <typename Item> class Parted {
public:
    void add(Item item) {
        if (m_size % perPart == 0) {
            m_parts.emplace_back();
        }
        m_parts.back().push_back(item); // which grows by doubling, and ends without room to spare
        ++m_size;
    }

    std::size_t size() const { return m_size; }
    Item operator[](std::size_t position) const { return m_parts[position / perPart][position % perPart]; }

    // How many items are in front, which isInFront says of them and of no item behind them. Found by halving.
    template <typename InFront> std::size_t countInFront(InFront isInFront) const {
        std::size_t low = 0;
        for (std::size_t high = m_size; low < high;) {
            const std::size_t middle = low + (high - low) / 2;
            if (isInFront((*this)[middle])) {
                low = middle + 1;
            } else {
                high = middle;
            }
        }
        return low;
    }

    // Each a list of its own, in their order.
    const std::vector<std::vector<Item>>& parts() const { return m_parts; }

    static constexpr std::size_t perPart = 4096;

private:
    std::vector<std::vector<Item>> m_parts;
    std::size_t m_size = 0;
};

} // namespace host
