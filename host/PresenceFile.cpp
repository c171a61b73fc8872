#include "host/PresenceFile.h"

#include "host/text/Key.h"

#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace host {

namespace {

using Json = nlohmann::json;

constexpr int phoneNumber = 2; // type of an attribute

const char* typeName(const std::string&) {
    return "a string";
}
const char* typeName(int) {
    return "a whole number";
}

// The member of this name, of the type of fallback, or fallback where there is none.
template <typename Value> Value member(const Json& object, const char* name, Value fallback) {
    const auto at = object.find(name);
    if (at == object.end()) {
        return fallback;
    }
    bool right = at->is_string();
    if constexpr (std::is_same_v<Value, int>) {
        right =
            at->is_number_integer() && *at >= std::numeric_limits<int>::min() && *at <= std::numeric_limits<int>::max();
    }
    if (!right) {
        throw std::invalid_argument(std::string("\"") + name + "\" is not " + typeName(fallback));
    }
    return at->get<Value>();
}

using Report = std::function<void(const std::string& reason)>;

Attribute readAttribute(const Json& entry, const Report& problem) {
    if (!entry.is_object()) {
        throw std::invalid_argument("an attribute is no object");
    }
    Attribute attribute{member<std::string>(entry, "name", ""), member<std::string>(entry, "value", ""),
                        member(entry, "type", 0)};
    if (attribute.iType == phoneNumber) {
        if (auto number = text::dialableNumber(attribute.strValue)) {
            attribute.strValue = std::move(*number);
        } else {
            problem("\"" + attribute.strValue + "\" is no number that can be dialled");
        }
    }
    return attribute;
}

PresenceInfo readBuddy(const Json& entry, const Report& problem) {
    if (!entry.is_object()) {
        throw std::invalid_argument("is no object");
    }
    if (!entry.contains("id")) {
        throw std::invalid_argument("\"id\" is missing");
    }
    PresenceInfo buddy;
    buddy.iContactId = member(entry, "id", -1);
    buddy.strName = member<std::string>(entry, "name", "");
    buddy.strInfo1 = member<std::string>(entry, "info1", "");
    buddy.strInfo2 = member<std::string>(entry, "info2", "");
    buddy.iInfo = member(entry, "info", -1);
    // Not a copy: copying goes as deep as a file may nest.
    if (const auto attributes = entry.find("attributes"); attributes != entry.end()) {
        if (!attributes->is_array()) {
            throw std::invalid_argument("\"attributes\" is no array");
        }
        for (const Json& attribute : *attributes) {
            buddy.listAttr.push_back(readAttribute(attribute, problem));
        }
    }
    return buddy;
}

// What the search makes of a buddy: the name and the first three numbers.
DirectorySearchData asContact(const PresenceInfo& buddy) {
    DirectorySearchData contact;
    contact.strName = buddy.strName;
    std::string* const numbers[] = {&contact.strNumber1, &contact.strNumber2, &contact.strNumber3};
    std::size_t count = 0;
    for (const Attribute& attribute : buddy.listAttr) {
        if (attribute.iType == phoneNumber && count < std::size(numbers)) {
            *numbers[count++] = attribute.strValue;
        }
    }
    return contact;
}

} // namespace

PresenceFile::PresenceFile(std::filesystem::path path, ProblemSink problemSink)
    : m_problemSink(std::move(problemSink)), m_file(std::move(path), m_problemSink, &PresenceFile::read) {
}

ReloadedFile<PresenceFile::Buddies>::Made PresenceFile::read(std::string_view bytes, const std::string& file) {
    ReloadedFile<Buddies>::Made made;
    Json entries;
    try {
        entries = Json::parse(bytes);
    } catch (const Json::exception& reason) { // malformed, or a number that is too large
        made.error = file + ": " + reason.what();
        return made;
    }
    if (!entries.is_array()) {
        made.error = file + ": is no JSON array; put the buddies between [ and ]";
        return made;
    }
    const auto buddies = std::make_shared<Buddies>();
    std::vector<DirectorySearchData> contacts;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const auto problem = [&](const std::string& reason) {
            made.problems.push_back(file + ":entry " + std::to_string(i + 1) + ": " + reason);
        };
        try {
            PresenceInfo buddy = readBuddy(entries[i], problem);
            if (!buddies->positions.emplace(buddy.iContactId, buddies->infos.size()).second) {
                throw std::invalid_argument("the id " + std::to_string(buddy.iContactId) +
                                            " is taken by an entry before it");
            }
            contacts.push_back(asContact(buddy));
            buddies->infos.push_back(std::move(buddy));
        } catch (const std::invalid_argument& reason) {
            problem(std::string(reason.what()) + "; the entry is left out");
        }
    }
    buddies->index = ContactIndex(contacts);
    made.content = buddies;
    return made;
}

std::shared_ptr<const PresenceFile::Buddies> PresenceFile::current() {
    std::string error;
    auto buddies = m_file.current(error);
    if (!buddies && m_problemSink) {
        m_problemSink(error);
    }
    return buddies;
}

bool PresenceFile::GetListByGroupId(ContactBuddyListData* pList, int&, int, const std::string& strKey, AttrType) {
    const auto buddies = current();
    if (!buddies || !pList) {
        return false;
    }
    ContactIndex::Search search(buddies->index, strKey);
    while (const auto position = search.next()) {
        pList->listContactId.push_back(buddies->infos[*position].iContactId);
    }
    return true;
}

int PresenceFile::GetContactDetail(PresenceInfo& info, PresenceType, int) {
    auto buddies = m_file.lastRead();
    if (!buddies) {
        buddies = current();
    }
    if (!buddies) {
        return 0;
    }
    const auto at = buddies->positions.find(info.iContactId);
    if (at == buddies->positions.end()) {
        return 0;
    }
    info = buddies->infos[at->second];
    return 1;
}

} // namespace host
