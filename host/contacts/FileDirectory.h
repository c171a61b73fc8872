// A source of contacts over one contact file (ContactFile.h), which is read when it is first asked and again when it
// has changed. Contacts come better matches first (ContactIndex.h), and are found again as they were read last.
#pragma once

#include "host/contacts/ContactTable.h"
#include "host/files/ReloadedFile.h"
#include "host/sources/ContactLookup.h"
#include "host/sources/ContactSource.h"

namespace host {

class FileDirectory : public ContactSource, public ContactLookup {
public:
    // problemSink may be empty. It must not ask this source for anything.
    FileDirectory(std::filesystem::path path, ProblemSink problemSink);

    // Fails when the file is not there or no contact can be read from it. An empty key finds nothing, but has the file
    // read. Any thread.
    bool search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) override;

    std::vector<bool> holds(std::span<const NameAndNumber> rows) const override;
    std::optional<KnownContact> find(const NameAndNumber& row) const override;

private:
    ReloadedFile<ContactTable> m_file;
};

} // namespace host
