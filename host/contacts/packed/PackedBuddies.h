// Many buddies in little memory: the texts of all lie one behind the other, and a buddy is made of them when it is
// asked for, by its position or its id. The ids of a file that counts its buddies up take four bytes each.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "host/contacts/packed/PackedRecords.h"
#include "host/contacts/packed/Parted.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

namespace host {

class PackedBuddies {
public:
    // Before they are shared between threads. False: one before it has this id, and it is not added.
    bool add(const PresenceInfo& buddy);

    std::size_t size() const { return m_ids.size(); }

    // The buddy at this position (less than size()), as it was added.
    int idAt(std::size_t position) const { return m_ids[position]; }
    PresenceInfo at(std::size_t position) const;

    std::optional<std::size_t> positionOf(int id) const;

private:
    bool takeId(int id);

    Parted<int> m_ids;
    PackedRecords m_others;                             // all else of each
    bool m_ascend = true;                               // the ids do, so that each is found among them
    std::unordered_map<int, std::uint32_t> m_positions; // by id; empty while they ascend
    std::string m_record;                               // the one that is made
};

} // namespace host
