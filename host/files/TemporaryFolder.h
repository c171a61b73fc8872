// A folder of one's own among the system's temporary files, gone with all that is in it at the end.
//
//     const host::TemporaryFolder folder;
//     std::ofstream(folder.path() / "notes") << "...";
#pragma once

#include <filesystem>

namespace host {

class TemporaryFolder {
public:
    // Throws std::runtime_error with the reason when it cannot be made.
    TemporaryFolder();

    // What cannot be removed is left to whoever cleans the system's folder.
    ~TemporaryFolder();

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace host
