#include "host/contacts/PackedBuddies.h"

#include <cstring>

namespace host {

// Takes what was packed in the same order.
class PackedBuddies::Unpacker {
public:
    explicit Unpacker(std::string_view bytes) : m_rest(bytes) {}

    int number() {
        int value = 0;
        std::memcpy(&value, m_rest.data(), sizeof value);
        m_rest.remove_prefix(sizeof value);
        return value;
    }

    std::string text() {
        const auto size = static_cast<std::size_t>(number());
        std::string value(m_rest.substr(0, size));
        m_rest.remove_prefix(size);
        return value;
    }

private:
    std::string_view m_rest;
};

void PackedBuddies::add(const PresenceInfo& buddy) {
    m_begins.push_back(m_bytes.size());
    pack(buddy.iContactId);
    pack(buddy.strName);
    pack(buddy.strInfo1);
    pack(buddy.strInfo2);
    pack(buddy.iInfo);
    pack(static_cast<int>(buddy.listAttr.size()));
    for (const Attribute& attribute : buddy.listAttr) {
        pack(attribute.strAttrName);
        pack(attribute.strValue);
        pack(attribute.iType);
    }
}

int PackedBuddies::idAt(std::size_t position) const {
    return Unpacker(std::string_view(m_bytes).substr(m_begins[position])).number();
}

PresenceInfo PackedBuddies::at(std::size_t position) const {
    Unpacker from(std::string_view(m_bytes).substr(m_begins[position]));
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

void PackedBuddies::pack(int number) {
    m_bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

void PackedBuddies::pack(std::string_view text) {
    pack(static_cast<int>(text.size()));
    m_bytes.append(text);
}

} // namespace host
