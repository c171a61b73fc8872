#include "host/contacts/packed/PackedBuddies.h"

#include "host/contacts/packed/PackedText.h"

namespace host {

bool PackedBuddies::add(const PresenceInfo& buddy) {
    if (!takeId(buddy.iContactId)) {
        return false;
    }
    m_record.clear();
    packText(m_record, buddy.strName);
    packText(m_record, buddy.strInfo1);
    packText(m_record, buddy.strInfo2);
    packNumber(m_record, buddy.iInfo);
    packSize(m_record, buddy.listAttr.size());
    for (const Attribute& attribute : buddy.listAttr) {
        packText(m_record, attribute.strAttrName);
        packText(m_record, attribute.strValue);
        packNumber(m_record, attribute.iType);
    }
    m_others.add(m_record);
    return true;
}

bool PackedBuddies::takeId(int id) {
    const std::size_t position = m_ids.size();
    if (m_ascend && position > 0 && id <= m_ids[position - 1]) {
        m_ascend = false;
        for (std::size_t i = 0; i < position; ++i) {
            m_positions.emplace(m_ids[i], i);
        }
    }
    if (!m_ascend && !m_positions.emplace(id, position).second) {
        return false;
    }
    m_ids.add(id);
    return true;
}

std::optional<std::size_t> PackedBuddies::positionOf(int id) const {
    if (!m_ascend) {
        const auto at = m_positions.find(id);
        return at == m_positions.end() ? std::nullopt : std::optional<std::size_t>(at->second);
    }
    const std::size_t smaller = m_ids.countInFront([&](int each) { return each < id; });
    return smaller < m_ids.size() && m_ids[smaller] == id ? std::optional(smaller) : std::nullopt;
}

PresenceInfo PackedBuddies::at(std::size_t position) const {
    PackedText from(m_others[position]);
    PresenceInfo buddy;
    buddy.iContactId = m_ids[position];
    buddy.strName = from.text();
    buddy.strInfo1 = from.text();
    buddy.strInfo2 = from.text();
    buddy.iInfo = from.number();
    for (std::size_t left = from.size(); left > 0; --left) {
        Attribute& attribute = buddy.listAttr.emplace_back();
        attribute.strAttrName = from.text();
        attribute.strValue = from.text();
        attribute.iType = from.number();
    }
    return buddy;
}

} // namespace host
