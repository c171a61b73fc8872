// The phone's buddies from a file: a JSON array of
//
//     {"id": 7, "name": "Ada", "info1": "", "info2": "", "info": -1,
//      "attributes": [{"name": "work", "type": 2, "value": "+49 30 1234"}]}
//
// "id" (an integer, unique) is required; all else may be left out. Attributes of type 2 are phone numbers; separators
// are taken out of them. A buddy matches as a contact does (ContactMatch.h) that has its name and its first three
// numbers: more are never shown, and matching what is not shown would let a search find what narrowing then drops.
//
// An entry that is not of this form is reported as "file:entry N: reason" (counted from 1) and left out. A number that
// cannot be dialled is reported and kept as it is, as in contact files. The file is read at the first question and
// again when it has changed. Any thread.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "host/contacts/SearchForms.h"
#include "host/contacts/packed/ContactMarks.h"
#include "host/contacts/packed/PackedBuddies.h"
#include "host/files/ReloadedFile.h"
#include "host/sources/ContactLookup.h"
#include "platform/Presence.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace host {

class PresenceFile final : public CPresenceContactManager, public ContactLookup {
public:
    // problemSink may be empty. It must not ask for buddies.
    PresenceFile(std::filesystem::path path, ProblemSink problemSink);

    // False, and a problem, when the file cannot be read or is no JSON array.
    bool GetListByGroupId(ContactBuddyListData* pList, int& iState, int iGroupId, const std::string& strKey,
                          AttrType eType) override;

    // Of the file as it was read last, so that the buddies of one list are those of one file.
    int GetContactDetail(PresenceInfo& info, PresenceType eType, int iFlag) override;

    std::vector<bool> holds(std::span<const NameAndNumber> rows) const override;
    std::optional<KnownContact> find(const NameAndNumber& row) const override;
    std::size_t size() const override;

private:
    // Of each buddy, at the same position in the file's order.
    struct Buddies {
        PackedBuddies infos;
        SearchForms forms; // of the name and the numbers that the search makes of it
        ContactMarks marks;

        std::vector<std::optional<std::size_t>> find(std::span<const NameAndNumber> rows) const;
    };

    static ReloadedFile<Buddies>::Made read(TextWindow text, const std::string& file);

    std::shared_ptr<const Buddies> current();

    const ProblemSink m_problemSink;
    ReloadedFile<Buddies> m_file;
};

} // namespace host
