// Contacts in the forms in which they come: what is made of each, and which line is blamed for what is wrong.
#include "host/formats/VCardReader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace std::string_literals;
using Strings = std::vector<std::string>;

// A contact in one line: "Ann | work +4420, 12 | organisation=Ltd".
std::string shown(const host::Contact& contact) {
    std::string line = contact.name + " |";
    for (const host::ContactNumber& number : contact.numbers) {
        line += " " + std::string(nameOf(number.kind)) + ":" + number.number;
    }
    line += contact.extra.empty() ? "" : " extra=" + contact.extra;
    for (const host::Contact::Fact& fact : contact.facts) {
        line += " " + std::string(nameOf(fact.kind)) + "=" + fact.value;
    }
    return line;
}

// What a reader made of one input, and what it should have made of it.
struct Case {
    std::string bytes;
    Strings contacts;
    Strings problems = {}; // their beginnings; the last is the error where no contact can be read
};

template <typename Read> void check(const Case& expected, Read read) {
    Strings contacts;
    host::ReadContacts result =
        read(expected.bytes, [&](const host::Contact& each) { contacts.push_back(shown(each)); });
    if (!result.error.empty()) {
        result.problems.push_back(result.error);
    }
    EXPECT_EQ(contacts, expected.contacts) << expected.bytes;
    ASSERT_EQ(result.problems.size(), expected.problems.size())
        << expected.bytes << testing::PrintToString(result.problems);
    for (std::size_t i = 0; i < result.problems.size(); ++i) {
        EXPECT_TRUE(result.problems[i].starts_with(expected.problems[i])) << result.problems[i];
        EXPECT_NE(result.problems[i].find(" - "), std::string::npos) << "says what to do: " << result.problems[i];
    }
}

std::string card(const std::string& version, const std::string& lines) {
    return "BEGIN:VCARD\r\nVERSION:" + version + "\r\n" + lines + "END:VCARD\r\n";
}

TEST(Formats, VCardsOfAllVersionsGiveTheirContacts) {
    const Case cases[] = {
        {card("3.0",
              "N:Fairweather;Zo\xC3\xAB;M.;Dr.;\r\nTEL;TYPE=WORK,VOICE:+44 20 7946 0070\r\nTEL;TYPE=CELL;TYPE=WORK:"
              "+44 7700 900170\r\nTEL;type=HOME;type=FAX:020/79460071\r\nTEL;TYPE=pager:12\r\nTEL:12 34\r\n"
              "ORG:Example\\, Ltd\\;;Sales;London\r\nNOTE:two\\nlines\\\\\r\nEMAIL:zoe@example.com\r\n"),
         {"Dr. Zo\xC3\xAB M. Fairweather | work:+442079460070 mobile:+447700900170 fax:02079460071 other:12 :1234 "
          "organisation=Example, Ltd; department=Sales, London note=two lines\\ email=zoe@example.com"}},
        {card("4.0", "FN:Ann\r\n  Marie O'Nei\r\n l\r\nTEL;VALUE=uri;TYPE=\"voice,home\":tel:+44-20-7946-0041;ext=9\r\n"
                     "TEL;VALUE=uri:sip:ann@example.com\r\nADR;LABEL=\"a:b;c\":;;1 Road;Leeds;;LS1;\r\n"
                     "item1.TEL:55\r\nitem1.X-ABLabel:_$!<Mobile>!$_\r\ntel;type=work:55\r\n"),
         {"Ann Marie O'Neil | home:+442079460041 mobile:55 note=+44-20-7946-0041;ext=9 chat=sip:ann@example.com "
          "address=1 Road, Leeds, LS1"}},
        {card("2.1", "N;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:M=C3=BCller;J=\r\n=C3=B6rg=3D;;\r\nTEL;CELL;PREF:1\r\n"
                     "NOTE;QUOTED-PRINTABLE;CHARSET=ISO-8859-1:caf=E9 a=\r\n b\r\nTITLE:a\\b, c\r\n d\r\n"
                     "PHOTO;ENCODING=BASE64;TYPE=JPEG:\r\n /9j/4AAQ\r\nAAAA\r\n\r\nTEL;WORK:2\r\n"
                     "AGENT:\r\nBEGIN:VCARD\r\nFN:Not me\r\nTEL:3\r\nEND:VCARD\r\nTEL;X-ODD:4\r\n"),
         {"J\xC3\xB6rg= M\xC3\xBCller | mobile:1 work:2 :4 note=caf\xC3\xA9 a b title=a\\b, c d"}},
        {"\xFF\xFE" +
             [](const std::string& text) {
                 std::string wide;
                 for (const char each : text) {
                     wide += each;
                     wide += '\0';
                 }
                 return wide;
             }(card("3.0", "FN:Wide\r\nTEL:7\r\n")),
         {"Wide | :7"}},
        {"\xEF\xBB\xBF"
         "begin:vcard\nfn:Jos\xE9\ntel:1\nend:vcard\n\n"
         "BEGIN:VCARD\rORG:Only Ltd\rTEL:2\rKIND:org\rEND:VCARD\rBEGIN:VCARD\nKIND:group\nFN:List\nEND:VCARD\n",
         {"Jos\xC3\xA9 | :1", "Only Ltd | :2 organisation=Only Ltd"},
         {"f:2: is not UTF-8"}},
        {"x\nBEGIN:VCARD\nFN:Open\nTEL:1x\nBEGIN:VCARD\nno colon\nFN;CHARSET=nonsense:Bo\nEND:VCARD\nstray\nodd\n"
         "BEGIN:VCARD\nEND:VCARD\nBEGIN:VCARD\nTEL:3" +
             std::string(70, '3') + "\nFN:" + std::string(600, 'n') + "\n",
         {"Open | :1x", "Bo |", std::string(512, 'n') + " |"},
         {"f:2: begins a card that does not end", "f:4: \"1x\" is not a number", "f:6: has no colon",
          "f:7: names the encoding \"nonsense\"", "f:9: stands outside a card", "f:11: begins a card with neither",
          "f:13: begins a card that does not end", "f:14: has a number of more", "f:13: has a name of more"}},
        {"name,number\nAnn,1\n", {}, {"f: holds no vCard"}},
        {"", {}, {"f: holds no vCard"}},
    };
    for (const Case& each : cases) {
        check(each, [](const std::string& bytes, const auto& take) { return host::readVCards(bytes, "f", take); });
    }
    check(
        {card("2.1", "FN:\x80uro\r\n"), {"\xD0\x82uro |"}, {"f:3: is not UTF-8"}},
        [](const std::string& bytes, const auto& take) { return host::readVCards(bytes, "f", take, "windows-1251"); });
}

} // namespace
