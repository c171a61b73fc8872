#include "host/contacts/PackedBuddies.h"

#include "host/contacts/PackedText.h"

namespace host {

void PackedBuddies::add(const PresenceInfo& buddy) {
    m_begins.push_back(m_bytes.size());
    packNumber(m_bytes, buddy.iContactId);
    packText(m_bytes, buddy.strName);
    packText(m_bytes, buddy.strInfo1);
    packText(m_bytes, buddy.strInfo2);
    packNumber(m_bytes, buddy.iInfo);
    packNumber(m_bytes, static_cast<int>(buddy.listAttr.size()));
    for (const Attribute& attribute : buddy.listAttr) {
        packText(m_bytes, attribute.strAttrName);
        packText(m_bytes, attribute.strValue);
        packNumber(m_bytes, attribute.iType);
    }
}

int PackedBuddies::idAt(std::size_t position) const {
    return PackedText(std::string_view(m_bytes).substr(m_begins[position])).number();
}

PresenceInfo PackedBuddies::at(std::size_t position) const {
    PackedText from(std::string_view(m_bytes).substr(m_begins[position]));
    PresenceInfo buddy;
    buddy.iContactId = from.number();
    buddy.strName = from.text();
    buddy.strInfo1 = from.text();
    buddy.strInfo2 = from.text();
    buddy.iInfo = from.number();
    for (int left = from.number(); left > 0; --left) {
        Attribute& attribute = buddy.listAttr.emplace_back();
        attribute.strAttrName = from.text();
        attribute.strValue = from.text();
        attribute.iType = from.number();
    }
    return buddy;
}

} // namespace host
