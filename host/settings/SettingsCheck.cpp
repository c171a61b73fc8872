#include "host/settings/SettingsCheck.h"

#include "host/files/Problems.h"
#include "host/text/Fold.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace host {

namespace {

// How many letters are to be put in, left out, changed or exchanged with the next one to make b of a (the optimal
// string alignment distance). Case does not count.
std::size_t distance(std::string_view a, std::string_view b) {
    const std::string one = text::folded(a);
    const std::string other = text::folded(b);
    std::vector<std::vector<std::size_t>> steps(one.size() + 1, std::vector<std::size_t>(other.size() + 1));
    std::iota(steps[0].begin(), steps[0].end(), std::size_t{0});
    for (std::size_t i = 1; i <= one.size(); ++i) {
        steps[i][0] = i;
        for (std::size_t j = 1; j <= other.size(); ++j) {
            const std::size_t changed = steps[i - 1][j - 1] + (one[i - 1] == other[j - 1] ? 0 : 1);
            steps[i][j] = std::min({changed, steps[i - 1][j] + 1, steps[i][j - 1] + 1});
            if (i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1]) {
                steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
            }
        }
    }
    return steps.back().back();
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
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    for (std::string_view rest = bytes.substr(bytes.starts_with(byteOrderMark) ? 3 : 0); !rest.empty();) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        take(line);
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    }
}

class Checker {
public:
    Checker(const std::string& file, const KnownSettings& known) : m_problems(file), m_known(known) {
        for (const auto& [section, keys] : known) {
            m_sections.push_back(section);
        }
    }

    void line(std::string_view line) {
        ++m_line;
        const bool goesOn = m_hasKey && (line.starts_with(' ') || line.starts_with('\t'));
        const std::string_view text = text::trimBlanks(line);
        if (text.empty() || text.front() == ';' || text.front() == '#') {
            return;
        }
        if (text.front() == '[') {
            enter(text, goesOn);
        } else if (!goesOn) {
            set(text);
        }
    }

    SettingsCheck result() { return {m_problems.take(), std::move(m_doubtful)}; }

private:
    void enter(std::string_view header, bool goesOn) {
        const std::size_t end = std::min(header.find(']'), header.size());
        const std::string_view name = text::trimBlanks(header.substr(1, end - 1));
        const std::string_view rest = text::trimBlanks(header.substr(std::min(end + 1, header.size())));
        const std::string meant = nearest(name, m_sections);
        if (goesOn || end == header.size()) {
            report(goesOn ? std::string(header) + " goes on with the line above; begin it without blanks"
                          : std::string(header) + " begins no section; write [" + std::string(name) + "]");
            doubt(meant);
            return;
        }
        const auto found = m_known.find(name);
        m_section = name;
        m_keys = found == m_known.end() ? nullptr : &found->second;
        m_isInSection = true;
        m_hasKey = false;
        if (m_keys == nullptr) {
            report("[" + m_section + "] is no known section" +
                   advice(meant.empty() ? "" : "[" + meant + "]", m_sections));
            doubt(meant);
        }
        if (!rest.empty() && rest.front() != ';') {
            report(std::string(rest) + " behind [" + m_section + "] does not count; give it a line of its own");
            doubt(meant);
        }
    }

    void set(std::string_view setting) {
        m_hasKey = true;
        if (m_isInSection && m_keys == nullptr) {
            return; // in an unknown section
        }
        const std::size_t end = setting.find_first_of("=:");
        const std::string key(text::trimBlanks(setting.substr(0, end)));
        if (m_keys == nullptr || std::find(m_keys->begin(), m_keys->end(), key) == m_keys->end()) {
            refuse(key);
        } else if (end == std::string_view::npos) {
            report(key + " has no value; write " + key + " = ...");
            doubt(m_section);
        }
    }

    // A key that the section does not have. It may be one of another section.
    void refuse(const std::string& key) {
        if (++m_refused > Problems::most) { // more than are listed, so nobody sees what was meant
            m_doubtful.insert(m_sections.begin(), m_sections.end());
            report(key);
            return;
        }
        doubt(m_section);
        std::string meant = m_isInSection ? nearest(key, *m_keys) : "";
        for (const auto& [section, keys] : m_known) {
            if (const std::string other = nearest(key, keys); !other.empty()) {
                doubt(section);
                meant = meant.empty() ? other + " of [" + section + "]" : meant;
            }
        }
        if (m_isInSection) {
            report(key + " is no setting of [" + m_section + "]" + advice(meant, *m_keys));
        } else {
            report(key + " stands in no section" + (meant.empty() ? "; put it below one" : advice(meant, {})));
        }
    }

    void report(const std::string& reason) { m_problems.add(m_line, reason); }

    void doubt(const std::string& section) {
        if (!section.empty()) {
            m_doubtful.insert(section);
        }
    }

    Problems m_problems;
    std::set<std::string> m_doubtful;
    const KnownSettings& m_known;
    std::vector<std::string> m_sections;
    std::size_t m_line = 0;
    std::size_t m_refused = 0; // keys
    std::string m_section;
    bool m_isInSection = false;                       // false before the first one
    bool m_hasKey = false;                            // the section has, so an indented line goes on with its value
    const std::vector<std::string>* m_keys = nullptr; // of the section; null before the first and in an unknown one
};

} // namespace

SettingsCheck checkSettings(std::string_view bytes, const std::string& file, const KnownSettings& known) {
    Checker checker(file, known);
    forEachLine(bytes, [&](std::string_view line) { checker.line(line); });
    return checker.result();
}

std::size_t lineOfSetting(std::string_view bytes, std::string_view section, std::string_view key) {
    std::size_t line = 0;
    std::size_t found = 0;
    bool within = false;
    bool isSet = false;
    forEachLine(bytes, [&](std::string_view text) {
        const IniLine each = iniLineOf(text);
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
