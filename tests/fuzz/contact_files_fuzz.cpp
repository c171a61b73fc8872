// Any bytes as a contact file (first byte c), vCard file (v), call log (l) or buddy file (p): a key finds no more than
// there is. Or as what another program has written (x), in whatever form its bytes are: no contact is larger
// than is allowed.

#include "host/contacts/CallLogFile.h"
#include "host/contacts/FileDirectory.h"
#include "host/contacts/PresenceFile.h"
#include "host/formats/ContactExport.h"
#include "platform/CommonAPI.h"
#include "tests/fuzz/Fuzz.h"

#include <algorithm>

namespace {

std::size_t find(host::ContactSource& source, const std::string& key) {
    OxList<DirectorySearchData> hits;
    std::string error;
    fuzz::require(source.search(key, hits, error) == error.empty());
    return hits.Count();
}

std::size_t find(host::PresenceFile& file, const std::string& key) {
    ContactBuddyListData buddies;
    int state = 1;
    file.GetListByGroupId(&buddies, state, 0, key, ATTR_TYPE_SEARCH);
    for (const int id : buddies.listContactId) {
        PresenceInfo info;
        info.iContactId = id;
        fuzz::require(file.GetContactDetail(info, PRESENCE_TYPE_BUDDY, 0) != 0);
    }
    return buddies.listContactId.size();
}

void readExport(std::string_view bytes) {
    host::readExport(bytes, "file", {}, [](const host::Contact& contact, std::size_t line) {
        fuzz::require(line > 0 && (!contact.name.empty() || !contact.numbers.empty()));
        fuzz::require(contact.name.size() <= host::longestName && contact.numbers.size() <= host::mostNumbers);
        for (const host::ContactNumber& number : contact.numbers) {
            fuzz::require(!number.number.empty() && number.number.size() <= host::longestNumber);
        }
        for (const host::Contact::Fact& fact : contact.facts) {
            fuzz::require(!fact.value.empty() && fact.value.size() <= host::longestFact);
        }
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const test::TempRoot root;
    const std::string bytes = fuzz::textOf(data, size);
    if (bytes.empty()) {
        return 0;
    }
    if (bytes[0] == 'x') {
        readExport(std::string_view(bytes).substr(1));
        return 0;
    }
    root.write(bytes[0] == 'v' ? "file.vcf" : "file", bytes.substr(1));
    // The last bytes are looked for, as they may well stand in a name or number.
    const std::string key =
        CommonAPI_StringConvert(bytes.substr(bytes.size() - std::min<std::size_t>(size, 3)), STRING_CONVERT_SEARCH_KEY);
    const auto search = [&](auto file) { fuzz::require(find(*file, key) <= file->size()); };
    if (bytes[0] == 'c') {
        search(std::make_unique<host::FileDirectory>(root.path() / "file", nullptr));
    } else if (bytes[0] == 'v') {
        search(std::make_unique<host::FileDirectory>(root.path() / "file.vcf", nullptr));
    } else if (bytes[0] == 'l') {
        search(std::make_unique<host::CallLogFile>(root.path() / "file", nullptr));
    } else if (bytes[0] == 'p') {
        search(std::make_unique<host::PresenceFile>(root.path() / "file", nullptr));
    }
    return 0;
}
