#include "host/formats/ReadContacts.h"

#include "host/text/Fold.h"
#include "host/text/Key.h"
#include "host/text/Utf8.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

constexpr unsigned char firstPrintable = 0x20;
constexpr unsigned char deleteCharacter = 0x7F;

bool isControl(char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return value < firstPrintable || value == deleteCharacter;
}

// What is dialled of a number with an extension behind it, which nobody can dial along: "(617) 555-0116 ext. 23".
// Empty: it is none.
std::string_view withoutExtension(std::string_view number) {
    constexpr std::string_view digits = "0123456789";
    constexpr std::string_view marks[] = {"ext", "extension", "x", "durchwahl",
                                          "poste"}; // of ASCII: as long as written
    const std::size_t lastDigit = number.find_last_of(digits);
    const std::size_t wordEnd = number.find_last_not_of("0123456789 ", lastDigit);
    if (lastDigit != number.size() - 1 || wordEnd == std::string_view::npos) {
        return {};
    }
    std::string_view before = number.substr(0, number[wordEnd] == '.' ? wordEnd : wordEnd + 1);
    const std::string folded = text::folded(before);
    for (const std::string_view mark : marks) {
        if (folded.ends_with(mark) && text::dialableNumber(before.substr(0, before.size() - mark.size()))) {
            return before.substr(0, before.size() - mark.size());
        }
    }
    return {};
}

std::string tooLong(const char* what, std::size_t longest) {
    return std::string("has a ") + what + " of more than " + std::to_string(longest) + " bytes";
}

} // namespace

std::string_view cutAt(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) {
        return text;
    }
    while (bytes > 0 && text::isContinuation(text[bytes])) {
        --bytes;
    }
    return text.substr(0, bytes);
}

std::string ContactBuilder::oneLine(std::string_view text) {
    text = text::trimBlanks(text);
    std::string line;
    line.reserve(text.size());
    for (const char byte : text) {
        if (!isControl(byte)) {
            line += byte;
        } else if (!line.ends_with(' ')) {
            line += ' ';
        }
    }
    return line;
}

void ContactBuilder::setName(std::string_view name, std::size_t line) {
    m_contact.name = oneLine(name);
    if (m_contact.name.size() > longestName) {
        m_contact.name = cutAt(m_contact.name, longestName);
        m_problems.add(line, tooLong("name", longestName) + " - shorten it; cut there");
    }
}

void ContactBuilder::addNumber(std::string_view number, NumberKind kind, std::size_t line) {
    number = text::trimBlanks(number);
    std::optional<std::string> dialable = text::dialableNumber(number);
    if (const std::string_view main = dialable ? std::string_view() : withoutExtension(number); !main.empty()) {
        addFact(FactKind::note, number, line);
        dialable = text::dialableNumber(main);
    }
    std::string taken = dialable ? *std::move(dialable) : oneLine(number);
    if (taken.empty()) {
        return;
    }
    const auto known = std::find_if(m_contact.numbers.begin(), m_contact.numbers.end(),
                                    [&](const ContactNumber& each) { return each.number == taken; });
    if (known != m_contact.numbers.end()) {
        known->kind = known->kind == NumberKind::unknown ? kind : known->kind;
    } else if (taken.size() > longestNumber) {
        m_problems.add(line, tooLong("number", longestNumber) + " - shorten it; left out");
    } else if (m_contact.numbers.size() == mostNumbers) {
        m_problems.add(line, "is one of more than " + std::to_string(mostNumbers) +
                                 " numbers of a contact - make several contacts of it; left out");
    } else {
        if (!text::dialableNumber(taken)) {
            m_problems.add(line, notDialable(taken));
        }
        m_contact.numbers.push_back({std::move(taken), kind});
    }
}

void ContactBuilder::addFact(FactKind kind, std::string_view value, std::size_t line) {
    std::string taken = oneLine(value);
    if (taken.empty() || m_contact.facts.size() == mostFacts) {
        return;
    }
    if (taken.size() > longestFact) {
        taken = cutAt(taken, longestFact);
        m_problems.add(line, tooLong(std::string(nameOf(kind)).c_str(), longestFact) + " - shorten it; cut there");
    }
    Contact::Fact fact{kind, std::move(taken)};
    if (std::find(m_contact.facts.begin(), m_contact.facts.end(), fact) == m_contact.facts.end()) {
        m_contact.facts.push_back(std::move(fact));
    }
}

Contact& ContactBuilder::finish() {
    for (const FactKind kind : {FactKind::organisation, FactKind::nickname, FactKind::email}) {
        const auto fact = std::find_if(m_contact.facts.begin(), m_contact.facts.end(),
                                       [kind](const Contact::Fact& each) { return each.kind == kind; });
        if (m_contact.name.empty() && fact != m_contact.facts.end()) {
            m_contact.name = cutAt(fact->value, longestName);
        }
    }
    return m_contact;
}

} // namespace host
