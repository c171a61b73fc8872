#include "host/formats/LdifReader.h"

#include "host/formats/FoldedLines.h"
#include "host/formats/VCardProperty.h"
#include "host/sources/DirectoryAttributes.h"
#include "host/text/Fold.h"
#include "host/text/Utf8.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace host {

namespace {

using Use = ColumnMeaning::Use;

struct Attribute {
    Use use{};
    NumberKind kind{};
    FactKind fact{};
};

struct NamedUse {
    std::string_view name;
    Use use;
};

// What makes up a name or an address; numbers and facts are those of any directory.
constexpr NamedUse namedUses[] = {
    {"cn", Use::fullName},
    {"displayName", Use::fullName},
    {"givenName", Use::givenName},
    {"sn", Use::familyName},
    {"street", Use::addressPart},
    {"streetAddress", Use::addressPart},
    {"postalAddress", Use::addressPart},
    {"l", Use::addressPart},
    {"localityName", Use::addressPart},
    {"postalCode", Use::addressPart},
    {"st", Use::addressPart},
    {"c", Use::addressPart},
    {"co", Use::addressPart},
};

// A line of an entry taken apart: "cn;lang-en:: WsO2w6k=".
struct Line {
    std::string_view attribute; // without its options
    std::string value;
    bool isElsewhere = false; // the value is at a URL
};

std::optional<Line> lineOf(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    Line line;
    line.attribute = text.substr(0, std::min(colon, text.find(';')));
    std::string_view value = text.substr(colon + 1);
    if (value.starts_with(':')) {
        line.value = fromBase64(text::trimBlanks(value.substr(1)));
    } else if (value.starts_with('<')) {
        line.isElsewhere = true;
    } else {
        line.value = text::trimBlanks(value);
    }
    return line;
}

std::optional<Attribute> attributeOf(std::string_view name) {
    const auto* const part = std::find_if(std::begin(namedUses), std::end(namedUses),
                                          [&](const NamedUse& each) { return text::isSameName(each.name, name); });
    if (part != std::end(namedUses)) {
        return Attribute{part->use};
    }
    if (const NumberKind kind = kindOfAttribute(name); kind != NumberKind::unknown) {
        return Attribute{Use::number, kind};
    }
    if (const auto fact = factOfAttribute(name)) {
        return Attribute{Use::fact, NumberKind::unknown, *fact};
    }
    return std::nullopt;
}

class Entries {
public:
    Entries(std::string_view text, const std::string& file) : m_lines(text), m_problems(file), m_builder(m_problems) {}

    // Goes to the next entry with a name or a number.
    bool next() {
        while (begin()) {
            while (m_more && !text::trimBlanks(m_lines.first()).empty()) {
                readLine();
                m_more = m_lines.next();
            }
            if (finish()) {
                return true;
            }
        }
        return false;
    }

    const Contact& contact() const { return m_builder.contact(); }
    std::size_t line() const { return m_line; }
    std::vector<std::string> problems() { return m_problems.take(); }

private:
    bool begin() {
        m_builder.clear();
        m_fullName.clear();
        m_given.clear();
        m_family.clear();
        m_address.clear();
        m_changes = false;
        while (m_more && text::trimBlanks(m_lines.first()).empty()) {
            m_more = m_lines.next();
        }
        m_line = m_lines.number();
        return m_more;
    }

    void readLine() {
        if (m_lines.first().starts_with('#')) {
            return;
        }
        const auto line = lineOf(m_lines.whole());
        if (!line) {
            m_problems.add(m_lines.number(), "has no colon - write ATTRIBUTE: VALUE; line skipped");
        } else if (text::isSameName(line->attribute, "changetype")) {
            m_changes = !text::isSameName(line->value, "add");
        } else if (const auto attribute = attributeOf(line->attribute)) {
            take(*attribute, *line);
        }
    }

    void take(const Attribute& attribute, const Line& line) {
        if (line.isElsewhere) {
            m_problems.add(m_lines.number(), "has its value in another file - write the value itself; line skipped");
        } else if (!text::isUtf8(line.value)) {
            m_problems.add(m_lines.number(), "has a value that is not UTF-8 text - write it as such; line skipped");
        } else if (attribute.use == Use::number) {
            m_builder.addNumber(line.value, attribute.kind, m_lines.number());
        } else if (attribute.use == Use::fact) {
            m_builder.addFact(attribute.fact, line.value, m_lines.number());
        } else if (attribute.use == Use::addressPart) {
            std::string part = line.value;
            std::replace(part.begin(), part.end(), '$', ','); // between the lines of a postal address (RFC 4517)
            m_address.append(m_address.empty() ? "" : ", ").append(part);
        } else {
            std::string& name = attribute.use == Use::fullName    ? m_fullName
                                : attribute.use == Use::givenName ? m_given
                                                                  : m_family;
            name = name.empty() ? line.value : name;
        }
    }

    // False: it is no contact. That of others than people, such as an organisation, goes without saying.
    bool finish() {
        if (m_changes) {
            m_problems.add(m_line, "changes an entry - only entries as a whole are read; skipped");
            return false;
        }
        m_builder.addFact(FactKind::address, m_address, m_line);
        const std::string parts = m_given + (m_given.empty() || m_family.empty() ? "" : " ") + m_family;
        m_builder.setName(m_fullName.empty() ? parts : m_fullName, m_line);
        const Contact& contact = m_builder.contact();
        if (!contact.numbers.empty()) {
            m_builder.finish();
        }
        return !contact.name.empty() || !contact.numbers.empty();
    }

    FoldedLines m_lines;
    Problems m_problems;
    ContactBuilder m_builder;
    bool m_more = m_lines.next();
    std::size_t m_line = 0;
    bool m_changes = false;
    std::string m_fullName;
    std::string m_given;
    std::string m_family;
    std::string m_address;
};

int sixBitsOf(char byte) {
    constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const std::size_t place = alphabet.find(byte);
    return place == std::string_view::npos ? -1 : static_cast<int>(place);
}

} // namespace

std::string fromBase64(std::string_view text) {
    constexpr unsigned byteMask = 0xFF;
    std::string bytes;
    unsigned bits = 0;
    unsigned count = 0;
    for (const char each : text) {
        const int six = sixBitsOf(each);
        if (six < 0) {
            break;
        }
        bits = bits << 6U | static_cast<unsigned>(six);
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes += static_cast<char>(bits >> count & byteMask);
        }
    }
    return bytes;
}

bool isLdif(std::string_view text) {
    FoldedLines lines(text);
    while (lines.next()) {
        if (lines.first().starts_with('#') || text::trimBlanks(lines.first()).empty()) {
            continue;
        }
        const auto line = lineOf(lines.first());
        return line && (text::isSameName(line->attribute, "dn") ||
                        (text::isSameName(line->attribute, "version") && line->value == "1"));
    }
    return false;
}

ReadExport readLdif(std::string_view text, const std::string& file, const TakeExported& take) {
    Entries entries(text, file);
    std::size_t count = 0;
    while (entries.next()) {
        take(entries.contact(), entries.line());
        ++count;
    }
    std::string error = count == 0 ? file + ": holds no entry with a name or a number - export people's entries" : "";
    return {"LDIF", {}, {}, {entries.problems(), std::move(error)}};
}

} // namespace host
