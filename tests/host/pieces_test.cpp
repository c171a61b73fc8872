// A text that comes in pieces reads the same as one that is in memory, wherever it is cut.
#include "host/contacts/BuddyFile.h"
#include "host/contacts/ContactFile.h"
#include "host/formats/VCardReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace std::string_literals;
using Strings = std::vector<std::string>;

class Pieces : public host::ByteSource {
public:
    Pieces(std::string text, std::size_t piece) : m_rest(std::move(text)), m_piece(piece) {}

    std::size_t read(char* to, std::size_t size) override {
        const std::size_t count = m_rest.copy(to, std::min(size, m_piece));
        m_rest.erase(0, count);
        return count;
    }

private:
    std::string m_rest;
    std::size_t m_piece;
};

// Gives all that is read of a text: contacts, problems, error.
using Read = std::function<Strings(host::TextWindow text)>;

using ReadContacts = std::function<host::ReadContacts(host::TextWindow, const std::string&, const host::TakeContact&)>;

Read contactsBy(const ReadContacts& read) {
    return [read](host::TextWindow text) {
        Strings all;
        const auto [problems, error] = read(std::move(text), "f", [&](const host::Contact& contact) {
            all.push_back(contact.name + "|" + contact.extra);
            for (const host::ContactNumber& number : contact.numbers) {
                all.back() += "|" + std::string(nameOf(number.kind)) + number.number;
            }
            for (const host::Contact::Fact& fact : contact.facts) {
                all.back() += "|" + fact.value;
            }
        });
        all.insert(all.end(), problems.begin(), problems.end());
        all.push_back(error);
        return all;
    };
}

Strings buddiesIn(host::TextWindow text) {
    Strings all;
    const auto [problems, error] = host::readBuddies(std::move(text), "f", [&](const PresenceInfo& buddy) {
        all.push_back(std::to_string(buddy.iContactId) + buddy.strName);
        return std::string();
    });
    all.insert(all.end(), problems.begin(), problems.end());
    all.push_back(error);
    return all;
}

std::string wide(const std::string& ascii) {
    std::string text = "\xFF\xFE";
    for (const char each : ascii) {
        text.append(1, each).append(1, '\0');
    }
    return text + "\x3D\xD8\x00\xDE\r\0\n\0"s; // a character of two units
}

TEST(Pieces, ATextReadsTheSameHoweverItIsCut) {
    const Read csv = contactsBy(
        [](auto text, const auto& file, const auto& take) { return host::readContacts(std::move(text), file, take); });
    const Read cards = contactsBy(
        [](auto text, const auto& file, const auto& take) { return host::readVCards(std::move(text), file, take); });
    const std::string card = "BEGIN:VCARD\r\nFN:Ann\r\n  Marie\r\n\t O\r\nTEL:12\r\nEND:VCARD\r\n";
    const struct {
        Read read;
        std::string text;
        std::size_t lines; // of contacts, problems and error
    } cases[] = {
        {csv,
         "\xEF\xBB\xBFname,number,extra\r\n\"Zo\xC3\xAB \"\"Z\"\"\",\"5\r\n6\",\xF0\x9F\x98\x80\r\n# no\r\n"
         "\xC2\xA0\r\n\"Open,1\nBo,2\nCy\0,3\nJos\xE9,4\n\"Last,5\n,\nEnd,6"s,
         10},
        {csv, "\xFE\xFFn", 1},
        {csv, "name,number\rAnn,1\r", 1},
        {cards, "\xEF\xBB\xBF" + card + "\r\n" + card, 3},
        {cards, card + "BEGIN:VCARD\rVERSION:2.1\rN;CHARSET=UTF-8;QUOTED-PRINTABLE:M=C3=\r=BC;\rTEL:1x\rx\rFN:\xE9\r",
         7},
        {cards, wide(card), 3},
        {buddiesIn, "\xEF\xBB\xBF[{\"id\": 1, \"name\": \"Zo\xC3\xAB \xF0\x9F\x98\x80\"},\n 5, {\"id\": 12}]", 4},
        {buddiesIn, "[{\"id\": 1},\n\n{\"id\": x}]\n\n", 2},
        {buddiesIn, "[{\"id\": 1},\n\"\xF0\x9F\x98\x80\x80\"]\n", 2},
        {buddiesIn, "[\n\xC3\xBC]", 1},
        {buddiesIn, "[\n\xC3\xBC]\xC3", 1},
        {buddiesIn, "[\n", 1},
    };
    for (const auto& [read, text, lines] : cases) {
        const Strings whole = read(host::TextWindow(text));
        EXPECT_EQ(whole.size(), lines) << testing::PrintToString(whole);
        for (std::size_t piece = 1; piece <= text.size(); ++piece) {
            Pieces source(text, piece);
            ASSERT_EQ(read(host::TextWindow(source, piece)), whole) << "in pieces of " << piece;
        }
    }
}

// What is too long costs itself: the rows beside it are read, and a card's line is read as far as it may go.
TEST(Pieces, ALineThatIsTooLongIsNotHeld) {
    const std::string tooMuch(host::CsvRows::longestRow, 'x');
    const std::string rows = "name,number\nAnn,1\n" + tooMuch + tooMuch + ",2\n#" + tooMuch + "\n\"Open\n" + tooMuch +
                             "\nBo,3\n" + tooMuch + "\"\n";
    std::string cards = "BEGIN:VCARD\r\nPHOTO:" + tooMuch + "\r\nFN:Cy\r\nNOTE:" + tooMuch;
    cards += "\r\n y\r\nTEL:4\r\nEND:VCARD\r\n";
    for (const std::size_t piece : {std::size_t{1000}, host::TextWindow::usualPiece, rows.size()}) {
        Strings found;
        const auto take = [&](const host::Contact& contact) { found.push_back(contact.name.substr(0, 9)); };
        Pieces rowSource(rows, rows.size());
        const auto problems = host::readContacts(host::TextWindow(rowSource, piece), "f", take).problems;
        ASSERT_EQ(problems.size(), 4U);
        EXPECT_EQ(problems[0], "f:3: is longer than 4 MiB - shorten its fields; line skipped");
        EXPECT_TRUE(problems[1].starts_with("f:5: a quotation mark")) << problems[1];
        EXPECT_TRUE(problems[2].starts_with("f:6: is longer")) << problems[2];
        EXPECT_TRUE(problems[3].starts_with("f:8: ")) << problems[3];
        Pieces cardSource(cards, cards.size());
        EXPECT_EQ(host::readVCards(host::TextWindow(cardSource, piece), "f", take).problems.size(), 1U);
        EXPECT_EQ(found, (Strings{"Ann", "Bo", "Cy"}));
    }
}

} // namespace
