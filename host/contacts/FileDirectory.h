// A source of contacts over the files in which they stand (ContactPlace.h), which are read when it is first asked and
// again when they have changed. Contacts come better matches first (ContactIndex.h), and are found again as they were
// read last.
#pragma once

#include "host/contacts/CardFolder.h"
#include "host/contacts/ContactPlace.h"
#include "host/contacts/ContactTable.h"
#include "host/files/ReloadedFile.h"
#include "host/sources/ContactLookup.h"
#include "host/sources/ContactSource.h"

namespace host {

class FileDirectory : public ContactSource, public ContactLookup {
public:
    // path is that of the .csv, in whose stead a .vcf or a folder may stand. problemSink may be empty. It must not ask
    // this source for anything.
    FileDirectory(const std::filesystem::path& path, ProblemSink problemSink);

    // Fails when nothing or more than one of them is there, or no contact can be read from it. Any thread.
    bool search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) override;

    std::vector<bool> holds(std::span<const NameAndNumber> rows) const override;
    std::optional<KnownContact> find(const NameAndNumber& row) const override;

private:
    std::optional<FileStamp> look(std::string& error);
    Reloaded<ContactTable>::Loaded load() const;

    const std::filesystem::path m_path;
    CardFolder m_folder;
    Reloaded<ContactTable> m_contacts;
};

} // namespace host
