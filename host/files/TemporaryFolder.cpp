#include "host/files/TemporaryFolder.h"

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <system_error>

namespace host {

TemporaryFolder::TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "wideseek-XXXXXX").string();
    if (!mkdtemp(name.data())) {
        throw std::runtime_error("no temporary folder " + name + ": " + std::generic_category().message(errno));
    }
    m_path = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

} // namespace host
