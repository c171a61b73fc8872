// The call log: comma-separated values (CsvReader.h) with the columns time, direction, name, number, extra, and the
// calls that were added since. The file is only read, when it is first asked and again when it has changed.
//
// The newest call comes first, in a search behind those that match better (ContactIndex.h). Of calls at the same time,
// the one further down in the file is the newer one. An added call is newer than those of the file, even if that was
// written by a clock ahead of this one.
#pragma once

#include "host/contacts/ContactTable.h"
#include "host/files/ReloadedFile.h"
#include "host/sources/ContactLookup.h"
#include "host/sources/ContactSource.h"
#include "host/sources/RecentCalls.h"

namespace host {

enum class CallDirection { out, in, missed };

struct LoggedCall {
    std::string time; // ISO 8601, local, to the second: "2026-11-20T09:12:33"
    CallDirection direction{};
    std::string name;
    std::string number; // as dialled
    std::string extra;
};

class CallLogFile : public ContactSource, public RecentCalls, public ContactLookup {
public:
    // problemSink may be empty. It must not ask this call log for anything.
    CallLogFile(std::filesystem::path path, ProblemSink problemSink);

    // Offers each name and number that was called or called here once, where its newest call stands. Nameless ones too.
    // Fails when the file is not there or no call can be read from it. An empty key finds nothing, but has the file
    // read. Any thread.
    bool search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) override;

    // Outgoing calls, every one of them. Negative when the file cannot be read and no call was added. Any thread.
    int outgoing(OxVector<GeneralDirItemData>& calls, int from, int count, std::string& error) override;

    // People of the log that was last answered from, each with the newest call of the file.
    std::vector<bool> holds(std::span<const NameAndNumber> rows) const override;
    std::optional<KnownContact> find(const NameAndNumber& row) const override;
    std::size_t size() const override;

    // Adds an outgoing call to what is answered from now on; the file stays as it is. Any thread.
    void add(const GeneralDirItemData& call);

private:
    using Calls = std::vector<LoggedCall>;

    // The calls of the file with those that were added.
    struct Log {
        std::shared_ptr<const Calls> fromFile; // null: it cannot be read
        std::size_t added = 0;
        ContactTable people;
        Calls outgoing; // newest first
    };

    std::shared_ptr<const Log> current(std::string& error);
    std::shared_ptr<const Log> latest() const;

    ReloadedFile<Calls> m_file;

    mutable std::mutex m_mutex;       // a leaf
    Calls m_added;                    // guarded by m_mutex; newest first
    std::shared_ptr<const Log> m_log; // guarded by m_mutex
};

} // namespace host
