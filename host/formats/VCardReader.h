// Reads contacts from vCards, any number of them one behind the other: version 3.0 (RFC 2426), 4.0 (RFC 6350), and 2.1
// as phones still write it, with quoted-printable text in any encoding.
//
// A card is read line by line and let go of with the next one; pictures and whatever else is of no use to a phone are
// passed over unread. A line or card that is malformed becomes a problem, and reading goes on behind it.
//
//     VCardReader reader(text, "people.vcf");
//     while (reader.next()) { use(reader.contact()); }
//     if (!reader.error().empty()) ...
//
// or, for a whole file as it is, readVCards.
#pragma once

#include "host/formats/Charset.h"
#include "host/formats/FoldedLines.h"
#include "host/formats/ReadContacts.h"
#include "host/formats/VCardProperty.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

// What the reader takes of a card.
enum class VCardField {
    number,
    fullName,
    nameParts,
    organisation,
    title,
    role,
    email,
    address,
    nickname,
    note,
    birthday,
    web,
    chat,
    group,
    kind,
    version,
    label,
    agent,
    nothing,
};

class VCardReader {
public:
    // text is UTF-8 as a rule and must outlive the reader; file is what problems name. A value that is not UTF-8 and
    // names no encoding of its own is of this one.
    VCardReader(TextWindow text, std::string file, std::string charset = "windows-1252");

    // Goes to the next card that has a name or a number. False at the end.
    bool next();

    // The contact of the card; valid until next().
    const Contact& contact() const { return m_builder.contact(); }

    // Where the card begins: its line, and its first byte in text; and the first byte behind it. The line that ends it
    // begins at endLine().
    std::size_t line() const { return m_line; }
    std::size_t begin() const { return m_begin; }
    std::size_t endLine() const { return m_endLine; }
    std::size_t end() const { return m_end; }

    // The version that the card gives itself is 2.1.
    bool isOld() const { return m_old; }

    // Adds a problem of the current card: what is wrong, and what to do.
    void addProblem(std::string_view reason) { m_problems.add(m_line, reason); }

    // At the end: why there are no contacts at all; empty when there were cards.
    const std::string& error() const { return m_error; }

    // Takes the problems: "file:line: reason", card by card.
    std::vector<std::string> problems() { return m_problems.take(); }

private:
    // What the card says of a name, for the case that it has no full one; and numbers whose labels may follow.
    struct Card {
        std::string fullName;
        std::string nameParts;
        std::vector<std::pair<std::string, std::string>> labels; // by group
        struct Number {
            std::string group;
            std::string number;
            NumberKind kind;
            std::size_t line;
        };
        std::vector<Number> numbers;
        bool isGroup = false;
    };

    bool findBegin();
    void readCard();
    bool isEnd(std::string_view line);
    void readLine();
    void readProperty(VCardField field, const VCardProperty& property);
    void readNumber(const VCardProperty& property);
    void readOrganisation(const VCardProperty& property);
    void readAddress(const VCardProperty& property);
    void addFact(FactKind kind, const VCardProperty& property);
    bool finishCard();

    static bool isPlain(const VCardProperty& property);
    static std::string bytesOf(const VCardProperty& property);
    std::string textOf(const VCardProperty& property);
    std::vector<std::string> partsOf(const VCardProperty& property, char separator);
    std::string converted(std::string bytes, std::string_view charset);
    bool useConversion(const std::string& charset);

    const std::string m_file;
    const std::string m_charset;
    FoldedLines m_lines;
    Problems m_problems;
    ContactBuilder m_builder;
    std::string m_error;

    bool m_any = false;     // there was a card
    bool m_pending = false; // the line that begins the next card has been read
    std::size_t m_line = 0;
    std::size_t m_begin = 0;
    std::size_t m_endLine = 0;
    std::size_t m_end = 0;
    bool m_old = false;
    bool m_inBase64 = false; // the lines without a colon belong to a picture
    int m_nested = 0;        // cards begun within this one
    bool m_agent = false;    // the next one that begins is such
    Card m_card;

    std::string m_conversionName;
    std::unique_ptr<Charset> m_conversion; // the one that was needed last
};

// Reads the contacts from the text of the file called `file` and hands them to take. UTF-16 and UTF-8 are told from
// each other; charset (known to iconv; empty: windows-1252) is what text is taken for that is neither and names no
// encoding of its own. Any thread.
ReadContacts readVCards(TextWindow text, const std::string& file, const TakeContact& take,
                        const std::string& charset = {});

// The bytes as a reader takes them: UTF-16 (or another encoding that is told and unlike ASCII) is converted, and all
// else left to the reader, as each line may have an encoding of its own. As readAsUtf8.
void readCardsAsUtf8(std::string_view bytes, const std::string& charset, Utf8Text& result);

// Whether the text begins as a vCard does.
bool isVCard(std::string_view text);

} // namespace host
