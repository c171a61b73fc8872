#include "host/contacts/PresenceFile.h"

#include "host/contacts/BuddyFile.h"
#include "host/contacts/ContactTable.h"
#include "host/formats/KindOfNumber.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

// What the search makes of a buddy: the name and the first three numbers.
DirectorySearchData asContact(const PresenceInfo& buddy) {
    DirectorySearchData contact;
    contact.strName = buddy.strName;
    std::string* const numbers[] = {&contact.strNumber1, &contact.strNumber2, &contact.strNumber3};
    std::size_t count = 0;
    for (const Attribute& attribute : buddy.listAttr) {
        if (attribute.iType == ATTRIBUTE_TYPE_PHONE && count < std::size(numbers)) {
            *numbers[count++] = attribute.strValue;
        }
    }
    return contact;
}

void addFact(KnownContact& known, const char* label, const std::string& value) {
    if (!value.empty()) {
        known.facts.push_back({label, value});
    }
}

// Whether the attribute is one of the numbers, and its name is a kind, which the number then is of.
bool tellsKind(const Attribute& attribute, std::vector<ContactNumber>& numbers) {
    const NumberKind kind = kindOfNumber(attribute.strAttrName);
    const auto number = std::find_if(numbers.begin(), numbers.end(),
                                     [&](const ContactNumber& each) { return each.number == attribute.strValue; });
    if (attribute.iType != ATTRIBUTE_TYPE_PHONE || kind == NumberKind::unknown || number == numbers.end()) {
        return false;
    }
    number->kind = kind;
    return true;
}

KnownContact knownBuddy(const PresenceInfo& buddy) {
    KnownContact known = knownContactOf(asContact(buddy));
    addFact(known, "Info 1", buddy.strInfo1);
    addFact(known, "Info 2", buddy.strInfo2);
    addFact(known, "Info", buddy.iInfo == -1 ? "" : std::to_string(buddy.iInfo));
    for (const Attribute& attribute : buddy.listAttr) {
        if (tellsKind(attribute, known.numbers)) {
            continue;
        }
        addFact(known, attribute.strAttrName.empty() ? "Attribute" : attribute.strAttrName.c_str(), attribute.strValue);
    }
    return known;
}

} // namespace

PresenceFile::PresenceFile(std::filesystem::path path, ProblemSink problemSink)
    : m_problemSink(std::move(problemSink)), m_file(std::move(path), m_problemSink, &PresenceFile::read) {
}

ReloadedFile<PresenceFile::Buddies>::Made PresenceFile::read(TextWindow text, const std::string& file) {
    const auto buddies = std::make_shared<Buddies>();
    BuddyFile read = readBuddies(std::move(text), file, [&](const PresenceInfo& buddy) -> std::string {
        if (!buddies->infos.add(buddy)) {
            return "the id " + std::to_string(buddy.iContactId) + " is taken by an entry before it";
        }
        const DirectorySearchData contact = asContact(buddy);
        buddies->forms.add(contact);
        buddies->marks.add(contact);
        return {};
    });
    if (!read.error.empty()) {
        return {nullptr, {}, std::move(read.error)};
    }
    return {buddies, std::move(read.problems), {}};
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
    SearchForms::Search search(buddies->forms, strKey);
    while (const auto position = search.next()) {
        pList->listContactId.push_back(buddies->infos.idAt(*position));
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
    const auto position = buddies->infos.positionOf(info.iContactId);
    if (!position) {
        return 0;
    }
    info = buddies->infos.at(*position);
    return 1;
}

std::vector<std::optional<std::size_t>> PresenceFile::Buddies::find(std::span<const NameAndNumber> rows) const {
    return marks.find(rows, [this](std::size_t position) { return asContact(infos.at(position)); });
}

std::vector<bool> PresenceFile::holds(std::span<const NameAndNumber> rows) const {
    const auto buddies = m_file.lastRead();
    return buddies ? isFound(buddies->find(rows)) : std::vector<bool>(rows.size());
}

std::size_t PresenceFile::size() const {
    const auto buddies = m_file.lastRead();
    return buddies ? buddies->infos.size() : 0;
}

std::optional<KnownContact> PresenceFile::find(const NameAndNumber& row) const {
    const auto buddies = m_file.lastRead();
    const auto position = buddies ? buddies->find({&row, 1}).front() : std::nullopt;
    return position ? std::optional(knownBuddy(buddies->infos.at(*position))) : std::nullopt;
}

} // namespace host
