#include "host/formats/VCardReader.h"

#include "host/formats/KindOfNumber.h"
#include "host/text/Fold.h"
#include "host/text/Utf8.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

constexpr std::string_view fallbackCharset = "windows-1252";

using Field = VCardField;

struct Name {
    std::string_view name;
    Field field;
};

// In the order in which they are met most.
constexpr Name names[] = {{"TEL", Field::number},
                          {"FN", Field::fullName},
                          {"N", Field::nameParts},
                          {"VERSION", Field::version},
                          {"EMAIL", Field::email},
                          {"ORG", Field::organisation},
                          {"ADR", Field::address},
                          {"TITLE", Field::title},
                          {"ROLE", Field::role},
                          {"NOTE", Field::note},
                          {"NICKNAME", Field::nickname},
                          {"BDAY", Field::birthday},
                          {"URL", Field::web},
                          {"IMPP", Field::chat},
                          {"CATEGORIES", Field::group},
                          {"KIND", Field::kind},
                          {"X-ADDRESSBOOKSERVER-KIND", Field::kind},
                          {"X-ABLABEL", Field::label},
                          {"AGENT", Field::agent}};

Field fieldOf(std::string_view name) {
    const auto* found = std::find_if(std::begin(names), std::end(names), [&](const Name& each) {
        return each.name.size() == name.size() && text::isSameName(each.name, name);
    });
    return found == std::end(names) ? Field::nothing : found->field;
}

// "BEGIN:VCARD", as far as blanks and letter case let it be.
bool isMark(std::string_view line, std::string_view name) {
    line = text::trimBlanks(line);
    const std::size_t colon = line.find(':');
    return colon != std::string_view::npos && text::isSameName(text::trimBlanks(line.substr(0, colon)), name) &&
           text::isSameName(text::trimBlanks(line.substr(colon + 1)), "VCARD");
}

// Of the parts of a name (RFC 6350, section 6.2.2) as people write it: prefix, given, additional, family, suffix.
std::string fullNameOf(const std::vector<std::string>& parts) {
    std::string name;
    for (const std::size_t part : {3U, 1U, 2U, 0U, 4U}) {
        if (part < parts.size() && !text::trimBlanks(parts[part]).empty()) {
            name.append(name.empty() ? "" : " ").append(text::trimBlanks(parts[part]));
        }
    }
    return name;
}

// So that the lines of a card can be read before their encoding is known.
bool isLikeAscii(Charset& charset) {
    return !charset.isUsable() || charset.toUtf8("BEGIN") == "BEGIN";
}

std::string joined(const std::vector<std::string>& parts, std::size_t from) {
    std::string all;
    for (std::size_t i = from; i < parts.size(); ++i) {
        if (const auto part = text::trimBlanks(parts[i]); !part.empty()) {
            all.append(all.empty() ? "" : ", ").append(part);
        }
    }
    return all;
}

} // namespace

VCardReader::VCardReader(TextWindow text, std::string file, std::string charset)
    : m_file(std::move(file)), m_charset(charset.empty() ? std::string(fallbackCharset) : std::move(charset)),
      m_lines(std::move(text)), m_problems(m_file), m_builder(m_problems) {
}

bool VCardReader::next() {
    while (findBegin()) {
        readCard();
        if (finishCard()) {
            return true;
        }
    }
    if (!m_any && m_error.empty()) {
        m_error = m_file + ": holds no vCard - it begins with a line BEGIN:VCARD";
    }
    return false;
}

// Goes to the line that begins the next card.
bool VCardReader::findBegin() {
    bool told = false;
    while (m_pending || m_lines.next()) {
        m_pending = false;
        if (isMark(m_lines.first(), "BEGIN")) {
            m_any = true;
            m_line = m_lines.number();
            m_begin = m_lines.begin();
            return true;
        }
        if (!told && !text::trimBlanks(m_lines.first()).empty() && m_any) {
            told = true;
            m_problems.add(m_lines.number(), "stands outside a card - put it between BEGIN:VCARD and END:VCARD; line "
                                             "skipped");
        }
    }
    return false;
}

void VCardReader::readCard() {
    m_builder.clear();
    m_card = {};
    m_old = false;
    m_inBase64 = false;
    m_nested = 0;
    m_agent = false;
    while (m_lines.next()) {
        m_endLine = m_lines.begin();
        const std::string_view line = m_lines.first();
        if (isEnd(line)) {
            return;
        }
        if (m_nested == 0) {
            readLine();
        }
    }
    m_endLine = m_end = m_lines.end();
    addProblem("begins a card that does not end - add a line END:VCARD; taken as far as it goes");
}

// Whether the card ends at this line. Cards within it are passed over.
bool VCardReader::isEnd(std::string_view line) {
    if (isMark(line, "END")) {
        m_end = m_lines.end();
        return m_nested-- == 0;
    }
    if (isMark(line, "BEGIN")) {
        if (m_nested == 0 && !m_agent) {
            m_pending = true;
            m_end = m_lines.begin();
            addProblem(
                "begins a card that does not end before the next one begins - add a line END:VCARD; taken as far "
                "as it goes");
            return true;
        }
        m_agent = false;
        ++m_nested;
    }
    return false;
}

void VCardReader::readLine() {
    const std::string_view first = m_lines.first();
    const Field field = fieldOf(propertyName(first));
    if (field == Field::nothing) {
        const bool hasColon = first.find(':') != std::string_view::npos;
        if (hasColon) {
            const auto property = host::readProperty(first);
            m_inBase64 = property && property->base64;
            if (isQuotedPrintable(first)) {
                m_lines.wholeWithSoftBreaks();
            }
        } else if (!m_inBase64 && !text::trimBlanks(first).empty()) {
            m_problems.add(m_lines.number(), "has no colon - write NAME:VALUE, and begin a line that goes on with a "
                                             "blank; line skipped");
        }
        return;
    }
    m_inBase64 = false;
    const std::string_view line = isQuotedPrintable(first) ? m_lines.wholeWithSoftBreaks()
                                  : m_old                  ? m_lines.wholeWithBlanks()
                                                           : m_lines.whole();
    if (const auto property = host::readProperty(line)) {
        readProperty(field, *property);
    } else {
        m_problems.add(m_lines.number(), "has no colon - write NAME:VALUE; line skipped");
    }
}

void VCardReader::readProperty(Field field, const VCardProperty& property) {
    switch (field) {
    case Field::number:
        return readNumber(property);
    case Field::fullName:
        m_card.fullName = m_card.fullName.empty() ? textOf(property) : m_card.fullName;
        return;
    case Field::nameParts:
        m_card.nameParts = fullNameOf(partsOf(property, ';'));
        return;
    case Field::organisation:
        return readOrganisation(property);
    case Field::address:
        return readAddress(property);
    case Field::title:
    case Field::role:
        return addFact(FactKind::title, property);
    case Field::email:
        return addFact(FactKind::email, property);
    case Field::nickname:
        return addFact(FactKind::nickname, property);
    case Field::note:
        return addFact(FactKind::note, property);
    case Field::birthday:
        return addFact(FactKind::birthday, property);
    case Field::web:
        return addFact(FactKind::web, property);
    case Field::chat:
        return addFact(FactKind::chat, property);
    case Field::group:
        return addFact(FactKind::group, property);
    case Field::kind:
        m_card.isGroup = text::isSameName(text::trimBlanks(property.value), "group");
        return;
    case Field::version:
        m_old = text::trimBlanks(property.value) == "2.1";
        return;
    case Field::label:
        m_card.labels.emplace_back(property.group, textOf(property));
        return;
    case Field::agent:
        m_agent = text::trimBlanks(property.value).empty();
        return;
    case Field::nothing:
        return;
    }
}

// A plain number, or a URI (RFC 3966): "tel:+44-20-7946-0070;ext=70".
void VCardReader::readNumber(const VCardProperty& property) {
    std::string number = textOf(property);
    const std::size_t colon = number.find(':');
    if (colon != std::string::npos && !text::isSameName(std::string_view(number).substr(0, colon), "tel")) {
        m_builder.addFact(FactKind::chat, number, m_lines.number());
        return;
    }
    number.erase(0, colon == std::string::npos ? 0 : colon + 1);
    if (const std::size_t parameters = number.find(';'); parameters != std::string::npos) {
        m_builder.addFact(FactKind::note, number, m_lines.number());
        number.resize(parameters);
    }
    m_card.numbers.push_back({std::string(property.group), std::move(number), property.kind, m_lines.number()});
}

void VCardReader::readOrganisation(const VCardProperty& property) {
    const std::vector<std::string> parts = partsOf(property, ';');
    m_builder.addFact(FactKind::organisation, parts.front(), m_lines.number());
    m_builder.addFact(FactKind::department, joined(parts, 1), m_lines.number());
}

void VCardReader::readAddress(const VCardProperty& property) {
    m_builder.addFact(FactKind::address, joined(partsOf(property, ';'), 0), m_lines.number());
}

void VCardReader::addFact(FactKind kind, const VCardProperty& property) {
    m_builder.addFact(kind, textOf(property), m_lines.number());
}

// False: there is nothing in the card to be searched, which is a problem unless it is a list of others.
bool VCardReader::finishCard() {
    for (Card::Number& number : m_card.numbers) {
        const auto label = std::find_if(m_card.labels.begin(), m_card.labels.end(), [&](const auto& each) {
            return !number.group.empty() && each.first == number.group;
        });
        if (label != m_card.labels.end() && number.kind == NumberKind::unknown) {
            number.kind = kindOfNumber(label->second);
        }
        m_builder.addNumber(number.number, number.kind, number.line);
    }
    m_builder.setName(m_card.fullName.empty() ? m_card.nameParts : m_card.fullName, m_line);
    const Contact& contact = m_builder.finish();
    if (contact.name.empty() && contact.numbers.empty() && !m_card.isGroup) {
        addProblem("begins a card with neither a name nor a number - add FN or TEL; card skipped");
    }
    return !contact.numbers.empty() || (!contact.name.empty() && !m_card.isGroup);
}

// Whether the value is its own text, as most are.
bool VCardReader::isPlain(const VCardProperty& property) {
    return !property.quotedPrintable && property.charset.empty() &&
           property.value.find('\\') == std::string_view::npos && property.value.find('\0') == std::string_view::npos &&
           text::isUtf8(property.value);
}

std::string VCardReader::bytesOf(const VCardProperty& property) {
    return property.quotedPrintable ? fromQuotedPrintable(property.value) : std::string(property.value);
}

std::string VCardReader::textOf(const VCardProperty& property) {
    if (isPlain(property)) {
        return std::string(property.value);
    }
    std::string all;
    for (const std::string& part : partsOf(property, '\0')) {
        all.append(all.empty() ? "" : " ").append(part);
    }
    return all;
}

std::vector<std::string> VCardReader::partsOf(const VCardProperty& property, char separator) {
    return host::partsOf(converted(bytesOf(property), property.charset), separator, m_old);
}

// As UTF-8. What names no encoding is UTF-8, unless it cannot be.
std::string VCardReader::converted(std::string bytes, std::string_view charset) {
    const bool isTold = !charset.empty() && !text::isSameName(charset, "UTF-8");
    const bool isUtf8 = text::isUtf8(bytes);
    if (isUtf8 && !isTold) {
        return bytes;
    }
    if (isTold && useConversion(std::string(charset))) {
        return m_conversion->toUtf8(bytes);
    }
    if (isTold) {
        m_problems.add(m_lines.number(), "names the encoding " + shown(charset) +
                                             ", which is unknown - save the file as UTF-8; taken for " +
                                             (isUtf8 ? "UTF-8" : m_charset));
    } else {
        m_problems.add(m_lines.number(),
                       "is not UTF-8 text and names no encoding - save the file as UTF-8; taken for " + m_charset);
    }
    return !isUtf8 && useConversion(m_charset) ? m_conversion->toUtf8(bytes) : bytes;
}

// False: the encoding is not known.
bool VCardReader::useConversion(const std::string& charset) {
    if (!m_conversion || m_conversionName != charset) {
        m_conversion = std::make_unique<Charset>(charset);
        m_conversionName = charset;
    }
    return m_conversion->isUsable();
}

void readCardsAsUtf8(std::string_view bytes, const std::string& charset, Utf8Text& result) {
    const std::string whole = charset.empty() ? charsetOfBeginning(bytes) : charset;
    Charset conversion(whole);
    readAsUtf8(bytes, isLikeAscii(conversion) ? "UTF-8" : whole, result);
}

bool isVCard(std::string_view text) {
    FoldedLines lines(text);
    while (lines.next()) {
        if (!text::trimBlanks(lines.first()).empty()) {
            return isMark(lines.first(), "BEGIN");
        }
    }
    return false;
}

ReadContacts readVCards(TextWindow text, const std::string& file, const TakeContact& take, const std::string& charset) {
    const std::string_view first = text.from(0, enoughToTell);
    Charset whole(charset.empty() ? charsetOfBeginning(first) : charset);
    text.dropFront(sizeOfMark(first));
    Utf8Source converted(text, whole);
    VCardReader reader(isLikeAscii(whole) ? std::move(text) : TextWindow(converted), file, charset);
    while (reader.next()) {
        take(reader.contact());
    }
    return {reader.problems(), reader.error()};
}

} // namespace host
