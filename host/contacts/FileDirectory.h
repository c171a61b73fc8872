// A source of contacts over one contact file (ContactFile.h), which is read when it is first asked and again when it
// has changed. Contacts come in the file's order.
#pragma once

#include "host/contacts/ContactIndex.h"
#include "host/files/ReloadedFile.h"
#include "host/sources/ContactSource.h"

namespace host {

class FileDirectory : public ContactSource {
public:
    // problemSink may be empty. It must not ask this source for anything.
    FileDirectory(std::filesystem::path path, ProblemSink problemSink);

    // Fails when the file is not there or no contact can be read from it. Any thread.
    bool search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) override;

private:
    ReloadedFile<ContactIndex> m_file;
};

} // namespace host
