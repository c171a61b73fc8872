#include "host/settings/ConfigFile.h"

#include "host/files/Problems.h"

#include <algorithm>
#include <charconv>
#include <ini.h>
#include <new>
#include <system_error>
#include <utility>

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

// Gives the INI reader its lines, as fgets would, and knows which one it is at.
struct LineReader {
    std::string_view rest;
    Problems problems;
    std::size_t line = 0;
    bool indented = false;
    bool outOfMemory = false;

    void report(const std::string& reason) { problems.add(line, reason); }

    // No exception may pass through the INI reader, which is in C.
    static char* next(char* buffer, int size, void* stream) noexcept {
        auto& self = *static_cast<LineReader*>(stream);
        try {
            return self.takeLine(buffer, size) ? buffer : nullptr;
        } catch (const std::bad_alloc&) {
            self.outOfMemory = true;
            return nullptr;
        }
    }

private:
    bool takeLine(char* buffer, int size) {
        if (rest.empty()) {
            return false;
        }
        std::string_view text = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(text.size() + 1, rest.size()));
        ++line;
        indented = text.starts_with(' ') || text.starts_with('\t');
        if (text.size() >= static_cast<std::size_t>(size)) {
            report("is skipped: it is longer than " + std::to_string(size - 1) +
                   " characters; let the value go on in an indented line");
            text = {};
        }
        *std::copy(text.begin(), text.end(), buffer) = '\0';
        return true;
    }
};

} // namespace

ConfigFile::ConfigFile(std::filesystem::path path, ProblemSink problemSink)
    : m_path(std::move(path)), m_problemSink(std::move(problemSink)), m_file(m_path, m_problemSink, &ConfigFile::read) {
}

ReloadedFile<ConfigFile::Keys>::Made ConfigFile::read(TextWindow all, const std::string& file) {
    const auto keys = std::make_shared<Keys>();
    LineReader lines{.rest = all.whole(), .problems = Problems(file)};
    const auto store = [](void* user, const char* section, const char* key, const char* text) noexcept {
        const auto& [into, from] = *static_cast<std::pair<Keys*, LineReader*>*>(user);
        try {
            const auto [known, isNew] = (*into)[key].emplace(section, text);
            if (!isNew && from->indented) {
                known->second += text;
            } else if (!isNew) {
                from->report("sets " + std::string(key) + " again; keep one of the lines");
            }
        } catch (const std::bad_alloc&) {
            from->outOfMemory = true;
        }
        return 1;
    };
    std::pair<Keys*, LineReader*> user(keys.get(), &lines);
    const int line = ini_parse_stream(&LineReader::next, &lines, store, &user);
    if (lines.outOfMemory) {
        throw std::bad_alloc();
    }
    if (line > 0) {
        lines.line = static_cast<std::size_t>(line);
        lines.report("is skipped; write [section], key = value, or a comment after \";\"");
    }
    return {.content = keys, .problems = lines.problems.take(), .error = {}};
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
