// Records of any bytes, each added behind the others and found by its position. They stand in parts of a set number of
// records: growing copies one part at most, and a part that is full has no room to spare.
//
//     PackedRecords records;
//     records.add(bytes);
//     PackedText from(records[0]);
#pragma once

#include "host/contacts/packed/Offsets.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class PackedRecords {
public:
    void add(std::string_view bytes) {
        if (m_size % perPart == 0) {
            beginPart();
        }
        Part& part = m_parts.back();
        part.begins.add(part.bytes.size());
        part.bytes.append(bytes);
        ++m_size;
    }

    std::size_t size() const { return m_size; }

    // From the record at this position (less than size()) on; where it ends is its own matter. Valid until the next
    // add().
    std::string_view operator[](std::size_t position) const {
        const Part& part = m_parts[position / perPart];
        const std::size_t begin = part.begins[position % perPart];
        return {part.bytes.data() + begin, part.bytes.size() - begin};
    }

    static constexpr std::size_t perPart = 1024;
    static_assert(perPart <= Offsets::most);

private:
    struct Part {
        std::string bytes;
        Offsets begins;
    };

    void beginPart() {
        if (!m_parts.empty()) {
            m_parts.back().bytes.shrink_to_fit();
            m_parts.back().begins.shrink();
        }
        m_parts.emplace_back();
    }

    std::vector<Part> m_parts;
    std::size_t m_size = 0;
};

} // namespace host
