// Many buddies in little memory: the texts of all lie one behind the other, and a buddy is made of them when it is
// asked for.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

class PackedBuddies {
public:
    void reserve(std::size_t bytes) { m_bytes.reserve(bytes); }

    // Before it is shared between threads.
    void add(const PresenceInfo& buddy);

    std::size_t size() const { return m_begins.size(); }

    // The buddy at this position (less than size()), as it was added.
    int idAt(std::size_t position) const;
    PresenceInfo at(std::size_t position) const;

private:
    std::string m_bytes;
    std::vector<std::size_t> m_begins; // of each buddy in m_bytes
};

} // namespace host
