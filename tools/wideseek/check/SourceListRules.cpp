#include "tools/wideseek/check/SourceListRules.h"

#include "host/files/Problems.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <set>
#include <string_view>

namespace wideseek {

namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view ldap = "ldap_search";
constexpr std::string_view company = "BroadSoft_directory_search";
constexpr std::string_view network = "Network_directory_search";

constexpr std::array knownIds = {std::string_view("local_directory_search"),
                                 std::string_view("calllog_search"),
                                 std::string_view("remote_directory_search"),
                                 ldap,
                                 company,
                                 network,
                                 std::string_view("BroadSoft_UC_search")};

constexpr std::array<std::string_view, 4> knownAttributes = {"id_name", "display_name", "enable", "priority"};

std::string_view trimmed(std::string_view text) {
    const std::size_t first = std::min(text.find_first_not_of(blanks), text.size());
    return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

// True when all of text is a number that an int holds, decimal or hexadecimal.
bool isNumber(std::string_view text) {
    std::string digits(trimmed(text));
    if (digits.starts_with('+')) {
        digits.erase(0, 1);
    }
    const std::size_t sign = digits.starts_with('-') ? 1 : 0;
    const bool hexadecimal = digits.compare(sign, 2, "0x") == 0 || digits.compare(sign, 2, "0X") == 0;
    if (hexadecimal) {
        digits.erase(sign, 2);
    }
    int value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value, hexadecimal ? 16 : 10);
    return result.ec == std::errc() && result.ptr == digits.data() + digits.size();
}

bool isKnown(std::string_view id) {
    return std::find(knownIds.begin(), knownIds.end(), id) != knownIds.end();
}

// The known id that differs in letter case and blanks alone.
std::string suggestionFor(const std::string& id) {
    const auto lower = [](unsigned char byte) { return byte >= 'A' && byte <= 'Z' ? byte + ('a' - 'A') : byte; };
    const auto alike = [&](unsigned char a, unsigned char b) { return lower(a) == lower(b); };
    const std::string_view text = trimmed(id);
    for (const std::string_view known : knownIds) {
        if (std::equal(known.begin(), known.end(), text.begin(), text.end(), alike)) {
            return "; do you mean \"" + std::string(known) + "\"?";
        }
    }
    return ".";
}

// Text of the file as a message holds it: shortened when it is long.
std::string brief(std::string_view text) {
    const std::string quoted = host::shown(text);
    return quoted.substr(1, quoted.size() - 2);
}

std::string inLine(std::size_t line) {
    return "line " + std::to_string(line);
}

class Examiner {
public:
    Examiner(const SourceListFile& file, const std::vector<SourceElement>& elements)
        : m_file(file), m_elements(elements) {
        for (const SourceElement& element : elements) {
            if (element.isItem) {
                m_root = element.node.parent();
            }
            if (element.place) {
                const auto known = m_askedFirst.try_emplace(element.value("id_name"), &element).first;
                known->second = *element.place < *known->second->place ? &element : known->second;
            }
        }
    }

    std::vector<Finding> findings() {
        if (m_askedFirst.empty()) {
            warn(m_file.lineOf(m_root), "nothing-asked", "no source is asked, so no key finds anything");
        }
        examineText();
        for (const SourceElement& element : m_elements) {
            if (element.isItem) {
                examineItem(element);
            } else if (element.node != m_root) {
                examineUnread(element);
            }
        }
        std::stable_sort(m_findings.begin(), m_findings.end(),
                         [](const Finding& a, const Finding& b) { return a.line < b.line; });
        return std::move(m_findings);
    }

private:
    void warn(std::size_t line, const char* code, std::string message) {
        m_findings.push_back({Finding::Weight::warning, line, code, std::move(message)});
    }

    void note(std::size_t line, const char* code, std::string message) {
        m_findings.push_back({Finding::Weight::note, line, code, std::move(message)});
    }

    // Text behind an item is a sibling of it like any other.
    void examineText() {
        bool behindItem = false;
        for (const pugi::xml_node& node : m_root.children()) {
            if (node.type() == pugi::node_element) {
                behindItem = behindItem || std::string_view(node.name()) == "item";
            } else if (behindItem) {
                const std::size_t line = m_file.lineOf(node);
                m_firstDisabled = m_firstDisabled == 0 ? line : m_firstDisabled;
                warn(line, "stray-text",
                     "the text \"" + brief(trimmed(node.value())) +
                         "\" is read as one more item, a disabled one without an id; remove it");
            }
        }
        const auto disabled = std::find_if(m_elements.begin(), m_elements.end(), [](const SourceElement& element) {
            return element.isItem && !element.isEnabled;
        });
        if (disabled != m_elements.end()) {
            m_firstDisabled = m_firstDisabled == 0 ? disabled->line : std::min(m_firstDisabled, disabled->line);
        }
    }

    void examineUnread(const SourceElement& element) {
        const std::string name = "<" + brief(element.node.name()) + "> ";
        const pugi::xml_node parent = element.node.parent();
        if (parent == m_root) {
            warn(element.line, "skipped-element",
                 name + "stands before the first <item> and is skipped; a source is named item");
        } else if (parent == m_file.document) {
            warn(element.line, "skipped-element",
                 name + "stands beside the <root_wideseek> that is read and is skipped");
        } else if (parent.parent() == m_root) {
            warn(element.line, "skipped-element",
                 name + "stands inside another element and is skipped; sources stand directly in <root_wideseek>");
        }
    }

    void examineItem(const SourceElement& element) {
        const bool named = std::string_view(element.node.name()) == "item";
        if (!named) {
            warn(element.line, "misnamed-item",
                 "<" + brief(element.node.name()) + "> is read as " +
                     (element.isEnabled ? "an item" : "an item, a disabled one") +
                     ", as is everything behind the first <item>; remove it or name it item");
        }
        if (named || element.isEnabled) {
            examineNumbers(element);
            examineId(element);
            examineAttributes(element);
        }
        if (element.isEnabled && !element.place) {
            warn(element.line, "never-asked",
                 "the source is enabled but never asked: the disabled one of " + inLine(m_firstDisabled) +
                     " ends the list before its priority of " + brief(element.value("priority")) +
                     "; give it a priority below 255");
        }
    }

    void examineNumbers(const SourceElement& element) {
        for (const char* name : {"enable", "priority"}) {
            const pugi::xml_attribute attribute = element.node.attribute(name);
            if (attribute && !isNumber(attribute.value())) {
                const bool disables = !element.isEnabled && std::string_view(name) == "enable";
                warn(element.line, "not-a-number",
                     std::string(name) + "=\"" + brief(attribute.value()) +
                         "\" is not a number that the phone reads and counts as " +
                         std::to_string(attribute.as_int(0)) + (disables ? ", so the source is disabled" : ""));
            }
        }
        if (!element.node.attribute("enable")) {
            warn(element.line, "missing-enable",
                 "there is no enable, so the source is disabled; enable=\"1\" enables it");
        }
        if (element.isEnabled && !element.node.attribute("priority")) {
            note(element.line, "missing-priority", "there is no priority; it counts as 0");
        }
    }

    void examineId(const SourceElement& element) {
        const std::string id = element.value("id_name");
        if (id.empty()) {
            warn(element.line, "empty-id", "id_name is missing or empty, so the source is ignored");
            return;
        }
        const auto first = m_askedFirst.find(id);
        const bool again = element.place && first->second != &element;
        if (!isKnown(id)) {
            warn(element.line, "unknown-id",
                 "the phone has no source \"" + brief(id) + "\"" + suggestionFor(id) +
                     (element.place ? " It never answers" + heldPages() : ""));
        } else if (again) {
            warn(element.line, "repeated-id",
                 "\"" + brief(id) + "\" is listed in " + inLine(first->second->line) +
                     " already. It is asked once more, but here it never answers" + heldPages());
        }
        const auto twin = m_askedFirst.find(std::string(id == network ? company : network));
        if (!again && element.place && (id == network || id == company) && twin != m_askedFirst.end() &&
            *twin->second->place < *element.place) {
            note(element.line, "same-directory",
                 "\"" + id + "\" asks the same directory as \"" + twin->first + "\" in " + inLine(twin->second->line) +
                     "; its contacts are listed there, and it shows none");
        }
    }

    void examineAttributes(const SourceElement& element) {
        if (element.isEnabled && element.value("display_name").empty()) {
            note(element.line, "missing-label", "display_name is missing or empty, so the source has no label");
        }
        std::set<std::string_view> read;
        for (const pugi::xml_attribute& attribute : element.node.attributes()) {
            const std::string_view name = attribute.name();
            const bool known = std::find(knownAttributes.begin(), knownAttributes.end(), name) != knownAttributes.end();
            if (!known || !read.insert(name).second) {
                note(element.line, "unread-attribute",
                     brief(attribute.name()) + "=\"" + brief(attribute.value()) + "\" is not read" +
                         (known ? ": the first one of that name counts" : ""));
            }
        }
    }

    // What a listed source that never answers does to pages.
    std::string heldPages() const {
        const bool released = m_askedFirst.count(std::string(ldap)) > 0;
        return std::string(", and a page that the other sources cannot fill ") +
               (released ? "waits until LDAP's 100 ms are over; what LDAP answers later is not shown" : "never comes");
    }

    const SourceListFile& m_file;
    const std::vector<SourceElement>& m_elements;
    pugi::xml_node m_root;
    std::map<std::string, const SourceElement*> m_askedFirst; // of each id, the one that is asked first
    std::size_t m_firstDisabled = 0;                          // its line; 0: none
    std::vector<Finding> m_findings;
};

} // namespace

std::vector<Finding> findingsOf(const SourceListFile& file, const std::vector<SourceElement>& elements) {
    return Examiner(file, elements).findings();
}

} // namespace wideseek
