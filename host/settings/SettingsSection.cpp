#include "host/settings/SettingsSection.h"

#include "host/files/FileText.h"
#include "host/settings/SettingsCheck.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace host {

SettingsSection::SettingsSection(std::filesystem::path file, std::string section, std::vector<std::string>& mistakes)
    : m_section(std::move(section)),
      m_config(std::move(file),
               [&mistakes](const std::string& problem) {
                   // A file that was written just now is read again for each value.
                   if (std::find(mistakes.begin(), mistakes.end(), problem) == mistakes.end()) {
                       mistakes.push_back(problem);
                   }
               }),
      m_mistakes(mistakes) {
}

void SettingsSection::refuse(const std::string& key, const std::string& shown, const std::string& remedy) {
    std::string ignored;
    const auto bytes = readFile(m_config.path(), ignored);
    const std::size_t line = bytes ? lineOfSetting(bytes->bytes, m_section, key) : 0;
    m_mistakes.push_back(m_config.path().string() + (line != 0 ? ":" + std::to_string(line) : "") + ": [" + m_section +
                         "] " + key + ": " + shown + "; " + remedy);
}

std::string SettingsSection::text(const std::string& key) {
    return m_config.value(m_section, key).value_or("");
}

int SettingsSection::number(const std::string& key, int standard, int least, int most) {
    const std::string given = text(key);
    int value = standard;
    const char* const end = given.data() + given.size();
    const auto [stop, error] = std::from_chars(given.data(), end, value);
    if (!given.empty() && (error != std::errc() || stop != end || value < least || value > most)) {
        refuse(key, given, std::to_string(least) + " to " + std::to_string(most) + " is allowed");
        return standard;
    }
    return value;
}

std::filesystem::path SettingsSection::file(const std::string& key) {
    const std::string given = text(key);
    return given.empty() ? std::filesystem::path() : m_config.path().parent_path() / given;
}

} // namespace host
