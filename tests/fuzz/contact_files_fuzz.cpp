// Any bytes as a contact file (first byte c), call log (l) or buddy file (p): what a key finds, the empty key finds
// too.

#include "host/contacts/CallLogFile.h"
#include "host/contacts/FileDirectory.h"
#include "host/contacts/PresenceFile.h"
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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const test::TempRoot root;
    const std::string bytes = fuzz::textOf(data, size);
    if (bytes.empty()) {
        return 0;
    }
    root.write("file", bytes.substr(1));
    // The last bytes are looked for, as they may well stand in a name or number.
    const std::string key =
        CommonAPI_StringConvert(bytes.substr(bytes.size() - std::min<std::size_t>(size, 3)), STRING_CONVERT_SEARCH_KEY);
    const auto search = [&](auto file) { fuzz::require(find(*file, key) <= find(*file, "")); };
    if (bytes[0] == 'c') {
        search(std::make_unique<host::FileDirectory>(root.path() / "file", nullptr));
    } else if (bytes[0] == 'l') {
        search(std::make_unique<host::CallLogFile>(root.path() / "file", nullptr));
    } else if (bytes[0] == 'p') {
        search(std::make_unique<host::PresenceFile>(root.path() / "file", nullptr));
    }
    return 0;
}
