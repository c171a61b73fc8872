#include "host/settings/SecretFile.h"

#include "host/files/FileText.h"

#include <sys/stat.h>

#include <algorithm>

namespace host {

std::optional<std::string> readSecret(const std::filesystem::path& path, std::string& problem) {
    struct stat status {};
    constexpr unsigned int others = S_IRWXG | S_IRWXO;
    if (::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && (status.st_mode & others) != 0) {
        problem = "others can read the password there; run chmod 600 " + path.string();
        return std::nullopt;
    }
    auto text = readFile(path, problem);
    if (!text) {
        return std::nullopt;
    }
    text->bytes.erase(std::min(text->bytes.find_first_of("\r\n"), text->bytes.size()));
    if (text->bytes.empty()) {
        problem = "the file is empty; write the password into its first line";
        return std::nullopt;
    }
    return std::move(text->bytes);
}

} // namespace host
