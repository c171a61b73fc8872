#include "host/files/SettingsCheck.h"

#include "host/text/Fold.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace host {

namespace {

// How many letters are to be put in, left out or changed to make b of a (Levenshtein's distance). Case does not count.
std::size_t distance(std::string_view a, std::string_view b) {
    const std::string one = text::folded(a);
    const std::string other = text::folded(b);
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < one.size(); ++i) {
        std::size_t before = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < other.size(); ++j) {
            const std::size_t changed = before + (one[i] == other[j] ? 0 : 1);
            before = row[j + 1];
            row[j + 1] = std::min({changed, before + 1, row[j] + 1});
        }
    }
    return row.back();
}

// The name that was probably meant; empty when none is near.
std::string nearest(std::string_view name, const std::vector<std::string>& names) {
    constexpr std::size_t longestName = 64;
    std::string best;
    std::size_t least = 1 + std::max<std::size_t>(1, name.size() / 3);
    for (const std::string& each : names) {
        const std::size_t far = name.size() > longestName ? name.size() : distance(name, each);
        if (far < least) {
            least = far;
            best = each;
        }
    }
    return best;
}

std::string advice(const std::string& meant, const std::vector<std::string>& names) {
    if (!meant.empty()) {
        return "; did you mean " + meant + "?";
    }
    std::string all;
    for (const std::string& each : names) {
        all.append(all.empty() ? "" : ", ").append(each);
    }
    return "; known are " + all;
}

struct IniLine {
    enum class Kind { other, section, setting };

    Kind kind = Kind::other;
    std::string_view name; // of the section or the setting
};

IniLine iniLineOf(std::string_view line) {
    const bool goesOn = line.starts_with(' ') || line.starts_with('\t');
    const std::string_view text = text::trimBlanks(line);
    if (text.empty() || goesOn || text.front() == ';' || text.front() == '#') {
        return {};
    }
    if (text.front() == '[') {
        return {IniLine::Kind::section, text::trimBlanks(text.substr(1, text.find(']') - 1))};
    }
    return {IniLine::Kind::setting, text::trimBlanks(text.substr(0, text.find_first_of("=:")))};
}

template <typename Take> void forEachLine(std::string_view bytes, const Take& take) {
    for (std::string_view rest = bytes; !rest.empty();) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        take(iniLineOf(line));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    }
}

class Checker {
public:
    Checker(const std::string& file, const KnownSettings& known) : m_file(file), m_known(known) {
        for (const auto& [section, keys] : known) {
            m_sections.push_back(section);
        }
    }

    void line(const IniLine& line) {
        ++m_line;
        if (line.kind == IniLine::Kind::section) {
            enter(line.name);
        } else if (line.kind == IniLine::Kind::setting && m_keys != nullptr) {
            set(line.name);
        }
    }

    SettingsCheck result;

private:
    void enter(std::string_view section) {
        const auto found = m_known.find(section);
        m_section = section;
        m_keys = found == m_known.end() ? nullptr : &found->second;
        if (m_keys == nullptr) {
            const std::string meant = nearest(section, m_sections);
            report("[" + m_section + "] is no known section" +
                   advice(meant.empty() ? "" : "[" + meant + "]", m_sections));
            doubt(meant);
        }
    }

    void set(std::string_view key) {
        if (std::find(m_keys->begin(), m_keys->end(), key) == m_keys->end()) {
            report(std::string(key) + " is no setting of [" + m_section + "]" + advice(nearest(key, *m_keys), *m_keys));
            doubt(m_section);
        }
    }

    void report(const std::string& reason) {
        result.problems.push_back(m_file + ":" + std::to_string(m_line) + ": " + reason);
    }

    void doubt(const std::string& section) {
        if (!section.empty()) {
            result.doubtful.insert(section);
        }
    }

    const std::string& m_file;
    const KnownSettings& m_known;
    std::vector<std::string> m_sections;
    std::size_t m_line = 0;
    std::string m_section;
    const std::vector<std::string>* m_keys = nullptr; // of the section; null before the first and in an unknown one
};

} // namespace

SettingsCheck checkSettings(std::string_view bytes, const std::string& file, const KnownSettings& known) {
    Checker checker(file, known);
    forEachLine(bytes, [&](const IniLine& line) { checker.line(line); });
    return std::move(checker.result);
}

std::size_t lineOfSetting(std::string_view bytes, std::string_view section, std::string_view key) {
    std::size_t line = 0;
    std::size_t found = 0;
    bool within = false;
    bool isSet = false;
    forEachLine(bytes, [&](const IniLine& each) {
        ++line;
        if (each.kind == IniLine::Kind::section) {
            within = each.name == section;
        }
        const bool sets = within && each.kind == IniLine::Kind::setting && each.name == key;
        if (!isSet && (sets || (within && found == 0))) {
            found = line;
            isSet = sets;
        }
    });
    return found;
}

} // namespace host
