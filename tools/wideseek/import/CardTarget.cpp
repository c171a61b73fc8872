#include "tools/wideseek/import/CardTarget.h"

#include "host/formats/VCardReader.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace wideseek {

namespace {

using host::Contact;
using host::FactKind;
using host::NumberKind;

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

// A value of vCard 3.0 and later escapes what separates (RFC 6350, section 3.4), one of 2.1 semicolons alone.
std::string escaped(std::string_view value, bool old) {
    std::string result;
    for (const char byte : value) {
        if (byte == ';' || (!old && (byte == ',' || byte == '\\'))) {
            result += '\\';
        }
        result += byte;
    }
    return result;
}

// Writes the lines of cards, folded as they become longer than 75 bytes (RFC 6350, section 3.2), never within a
// character. Lines of 2.1 stay whole, as its readers differ in what they make of a fold.
class CardWriter {
public:
    CardWriter(std::string_view lineEnd, bool old) : m_lineEnd(lineEnd), m_old(old) {}

    void line(std::string text) {
        constexpr std::size_t longest = 75;
        std::string_view rest = text;
        while (!m_old && rest.size() > longest) {
            const std::string_view part = host::cutAt(rest, longest);
            if (part.empty()) {
                break;
            }
            m_text.append(part).append(m_lineEnd).append(" ");
            rest.remove_prefix(part.size());
        }
        m_text.append(rest).append(m_lineEnd);
    }

    void property(const std::string& name, std::string_view value, const std::string& before = {},
                  const std::string& behind = {}) {
        line(name + (m_old && !isAscii(value) ? ";CHARSET=UTF-8:" : ":") + before + escaped(value, m_old) + behind);
    }

    void numbersAndFacts(const Contact& contact) {
        for (const host::ContactNumber& number : contact.numbers) {
            property("TEL" + typeOf(number.kind), number.number);
        }
        for (const Contact::Fact& fact : contact.facts) {
            writeFact(fact, contact);
        }
        if (!contact.extra.empty()) {
            property("NOTE", contact.extra);
        }
    }

    std::string take() { return std::move(m_text); }

private:
    std::string typeOf(NumberKind kind) const {
        const std::string_view name = kind == NumberKind::mobile ? "cell" : nameOf(kind);
        return name.empty() ? "" : (m_old ? ";" : ";TYPE=") + std::string(name);
    }

    void writeFact(const Contact::Fact& fact, const Contact& contact) {
        switch (fact.kind) {
        case FactKind::organisation:
            property("ORG", fact.value, {}, departmentOf(contact));
            break;
        case FactKind::department:
            if (!find(contact, FactKind::organisation)) { // else it stands behind that
                property("ORG", fact.value, ";");
            }
            break;
        case FactKind::title:
            property("TITLE", fact.value);
            break;
        case FactKind::nickname:
            property("NICKNAME", fact.value);
            break;
        case FactKind::email:
            property("EMAIL", fact.value);
            break;
        case FactKind::address:
            property("ADR", fact.value, ";;", ";;;;");
            break;
        case FactKind::city:
            property("ADR", fact.value, ";;;", ";;;");
            break;
        case FactKind::web:
            property("URL", fact.value);
            break;
        case FactKind::chat:
            property("IMPP", fact.value);
            break;
        case FactKind::birthday:
            property("BDAY", fact.value);
            break;
        case FactKind::group:
            property("CATEGORIES", fact.value);
            break;
        case FactKind::note:
            property("NOTE", fact.value);
            break;
        }
    }

    std::string departmentOf(const Contact& contact) const {
        const Contact::Fact* department = find(contact, FactKind::department);
        return department ? ";" + escaped(department->value, m_old) : "";
    }

    static const Contact::Fact* find(const Contact& contact, FactKind kind) {
        const auto fact = std::find_if(contact.facts.begin(), contact.facts.end(),
                                       [kind](const Contact::Fact& each) { return each.kind == kind; });
        return fact == contact.facts.end() ? nullptr : &*fact;
    }

    std::string_view m_lineEnd;
    bool m_old;
    std::string m_text;
};

std::string newCard(const Contact& contact, std::string_view lineEnd) {
    CardWriter writer(lineEnd, false);
    writer.line("BEGIN:VCARD");
    writer.line("VERSION:3.0");
    writer.property("N", contact.name, {}, ";;;;");
    writer.property("FN", contact.name);
    writer.numbersAndFacts(contact);
    writer.line("END:VCARD");
    return writer.take();
}

} // namespace

CardTarget::CardTarget(std::filesystem::path path, const std::string& bytes) : TargetFile(std::move(path)) {
    host::Utf8Text text;
    host::readCardsAsUtf8(bytes, {}, text);
    m_bytes = text.text;
    host::VCardReader reader(m_bytes, this->path().string());
    while (reader.next()) {
        m_contacts.push_back(reader.contact());
        m_cards.push_back({reader.endLine(), reader.isOld()});
    }
    if (!reader.error().empty() && !bytes.empty()) {
        throw std::runtime_error(reader.error());
    }
}

std::string CardTarget::bytes() const {
    const std::string_view all = m_bytes;
    const std::string_view lineEnd = all.empty() || all.find("\r\n") != std::string_view::npos ? "\r\n" : "\n";
    std::string result;
    std::size_t copied = 0;
    for (const auto& [contact, additions] : m_extended) {
        const Card& card = m_cards[contact];
        CardWriter writer(lineEnd, card.old);
        writer.numbersAndFacts(additions);
        result.append(all.substr(copied, card.end - copied)).append(writer.take());
        copied = card.end;
    }
    result.append(all.substr(copied));
    if (!result.empty() && !result.ends_with('\n')) {
        result.append(lineEnd);
    }
    for (const Contact& contact : m_appended) {
        result.append(newCard(contact, lineEnd));
    }
    return result;
}

} // namespace wideseek
