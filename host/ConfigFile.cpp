#include "host/ConfigFile.h"

#include <charconv>
#include <ini.h>
#include <system_error>

namespace host {

namespace {

std::optional<int> toInteger(const std::optional<std::string>& text) {
    if (!text || text->empty()) {
        return std::nullopt;
    }
    const char* begin = text->data() + (text->front() == '+' ? 1 : 0);
    const char* end = text->data() + text->size();
    int number = 0;
    const auto [last, error] = std::from_chars(begin, end, number);
    return error == std::errc() && last == end ? std::optional(number) : std::nullopt;
}

} // namespace

ConfigFile::ConfigFile(std::filesystem::path path, ProblemSink problemSink)
    : m_path(std::move(path)), m_problemSink(std::move(problemSink)), m_file(m_path, m_problemSink, &ConfigFile::read) {
}

ReloadedFile<ConfigFile::Keys>::Made ConfigFile::read(std::string_view bytes, const std::string& file) {
    const auto keys = std::make_shared<Keys>();
    const auto store = [](void* user, const char* section, const char* key, const char* text) {
        (*static_cast<Keys*>(user))[key][section] = text;
        return 1;
    };
    ReloadedFile<Keys>::Made made;
    const int line = ini_parse_string(std::string(bytes).c_str(), store, keys.get());
    if (line > 0) {
        made.problems.push_back(file + ":" + std::to_string(line) +
                                ": is skipped; write [section], key = value, or a comment after \";\"");
    }
    made.content = keys;
    return made;
}

std::shared_ptr<const ConfigFile::Keys> ConfigFile::keys() {
    std::string error;
    auto keys = m_file.current(error);
    std::error_code ignored;
    if (!keys && std::filesystem::exists(m_path, ignored) && m_problemSink) {
        m_problemSink(error);
    }
    return keys ? keys : std::make_shared<Keys>();
}

std::optional<std::string> ConfigFile::value(std::string_view key) {
    const auto all = keys();
    const auto known = all->find(key);
    if (known == all->end()) {
        return std::nullopt;
    }
    const auto& [section, text] = *known->second.begin();
    for (const auto& [other, otherText] : known->second) {
        if (otherText != text) {
            if (m_problemSink) {
                m_problemSink(m_path.string() + ": " + std::string(key) + " has different values in [" + section +
                              "] and [" + other + "]; keep one of them");
            }
            return std::nullopt;
        }
    }
    return text;
}

std::optional<std::string> ConfigFile::value(std::string_view section, std::string_view key) {
    const auto all = keys();
    const auto known = all->find(key);
    if (known == all->end()) {
        return std::nullopt;
    }
    const auto at = known->second.find(section);
    return at == known->second.end() ? std::nullopt : std::optional(at->second);
}

std::optional<int> ConfigFile::integer(std::string_view key) {
    return toInteger(value(key));
}

std::optional<int> ConfigFile::integer(std::string_view section, std::string_view key) {
    return toInteger(value(section, key));
}

} // namespace host
