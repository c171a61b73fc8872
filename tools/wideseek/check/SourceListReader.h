// The library's own reading of a source list.
//
// The rules by which a file becomes an ordered list of sources are the library's alone; whoever wants to explain a file
// asks the library about it, and about changed copies of it, and compares.
//
//     SourceListReader reader;
//     for (const Source& source : reader.read(bytes)) { ... }
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekCfgData.h"
#include "host/Phone.h"
#include "host/files/TemporaryFolder.h"

#include <list>
#include <string>

namespace wideseek {

class SourceListReader {
public:
    // Starts a phone that has nothing but a source list, in a temporary folder; there is no other phone meanwhile.
    // Throws std::runtime_error when the folder cannot be made.
    SourceListReader();

    // The sources that a phone with this file asks, in order. Throws std::runtime_error when the copy cannot be
    // written.
    std::list<NS_WS::WideseekCfgItemData> read(const std::string& bytes) const;

private:
    host::TemporaryFolder m_root;
    host::Phone m_phone;
};

} // namespace wideseek
