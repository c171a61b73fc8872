// Contacts in the forms in which they come: what is made of each, and which line is blamed for what is wrong.
#include "host/formats/ContactExport.h"
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

// What is in it is told by the bytes alone: the form, the separator, the encoding, and the columns by their names.
TEST(Formats, ExportsAreReadWhateverTheirFormSeparatorEncodingAndLanguage) {
    const Case cases[] = {
        {"First Name,Last Name,Organization Name,Organization Title,Labels,Phone 1 - Label,Phone 1 - Value,Phone 2 - "
         "Type,"
         "Phone 2 - Value,Address 1 - Formatted,Address 1 - City,E-mail 1 - Value,E-mail 1 - Label\n"
         "Zo\xC3\xAB,Fairweather,Ltd,Buyer,* Friends ::: Work,Mobile,+44 7700 900170 ::: 12,Home Fax,3,\"1 "
         "Road\nLeeds\","
         "Leeds,a@example.com ::: b@example.com,Other\n",
         {"Zo\xC3\xAB Fairweather | mobile:+447700900170 mobile:12 fax:3 organisation=Ltd title=Buyer group=Friends "
          "group=Work address=1 Road, Leeds email=a@example.com email=b@example.com"}},
        {"\"Title\",\"First Name\",\"Middle Name\",\"Last Name\",\"Company\",\"Job Title\",\"Business Street\","
         "\"Business City\",\"Business Fax\",\"Business Phone\",\"Business Phone 2\",\"Company Main Phone\",\"Home "
         "Phone\","
         "\"Mobile Phone\",\"Other Phone\",\"E-mail Display Name\",\"Notes\",\"Web Page\",\"Hobby\"\r\n"
         "\"Mr\",\"Jed\",\"B.\",\"Marlowe\",\"Ltd\",\"Buyer\",\"1 "
         "Road\",\"Leeds\",\"1\",\"2\",\"3\",\"4\",\"5\",\"6\",\"7\","
         "\"x\",\"n\",\"example.com\",\"\"\r\n",
         {"Jed B. Marlowe | fax:1 work:2 work:3 work:4 home:5 mobile:6 other:7 organisation=Ltd title=Buyer note=n "
          "web=example.com address=1 Road, Leeds"}},
        {"Vorname;Nachname;Firma;Abteilung;Stra\xDF"
         "e gesch\xE4"
         "ftlich;Telefon gesch\xE4"
         "ftlich;Fax privat;"
         "Mobiltelefon;E-Mail-Adresse;Tel. "
         "dienstlich;Mobil-Tel.-Nr.;Haupttelefon\r\nJ\xF6rg;M\xFCller;GmbH;Einkauf;Weg 1;"
         "1;2;3;j@example.com;4;5;6\r\n",
         {"J\xC3\xB6rg M\xC3\xBCller | work:1 fax:2 mobile:3 work:4 mobile:5 :6 organisation=GmbH department=Einkauf "
          "email=j@example.com address=Weg 1"}},
        {"sep=\t\nPr\xC3\xA9nom\tNom\tSoci\xC3\xA9t\xC3\xA9\tT\xC3\xA9l\xC3\xA9phone (bureau)\tT\xC3\xA9l. mobile\t"
         "T\xC3\xA9l\xC3\xA9phone 2 (domicile)\tAdresse de messagerie\tFonction\n\xC3\x89mile\tDubois\tSARL\t1\t2\t3\t"
         "e@example.com\tAcheteur\n",
         {"\xC3\x89mile Dubois | work:1 mobile:2 home:3 organisation=SARL email=e@example.com title=Acheteur"}},
        {"Nombre|Apellidos|Tel\xC3\xA9"
         "fono del trabajo|M\xC3\xB3vil|Correo electr\xC3\xB3nico|Empresa\n"
         "Consuelo|Ib\xC3\xA1\xC3\xB1"
         "ez|1|2|c@example.com|SA\n#1|Taxi|3\n# no contact\nA|B|1|2|3|4|5\nOdd|No|x\n|||||\n",
         {"Consuelo Ib\xC3\xA1\xC3\xB1"
          "ez | work:1 mobile:2 email=c@example.com organisation=SA",
          "#1 Taxi | work:3", "Odd No | work:x"},
         {"f:5: has 7 fields", "f:6: \"x\" is not a number", "f:7: has neither"}},
        {"Name,Phone,Note\nZo\xC3\xAB \xC3\xBC,(617) 555-0116 ext. 23,caf\xE9\nBo,12x3,\nCy,5 Durchwahl 6,\nDi,x3,\n",
         {"Zo\xC3\xAB \xC3\xBC | :6175550116 note=(617) 555-0116 ext. 23 note=caf\xE9", "Bo | :12 note=12x3",
          "Cy | :5 note=5 Durchwahl 6", "Di | :x3"},
         {"f:2: is not UTF-8 text", "f:5: \"x3\" is not a number"}},
        {"name,work,mobile2,extra,city\nAnn,1,2,desk,Leeds\n", {"Ann | work:1 mobile:2 extra=desk city=Leeds"}},
        {"Who;Customer number\nAnn;5\n", {}, {"f:1: names no column that is known"}},
        {"", {}, {"f: is empty"}},
        {"version: 1\n# people\ndn: cn=Zo\xC3\xAB,dc=example,dc=com\ncn:: Wm/DqyBGYWlyd2VhdGhl\n "
         "cg==\ntelephoneNumber: +44 20\n"
         "  7946 0070\nmobile;x-a: 7\nhomePhone:< file:///etc/passwd\nmail: a@example.com\no: Ltd\npostalAddress: 1 "
         "Road$Leeds\n"
         "\ndn: ou=none\nou: none\n\n\ndn: cn=b\nchangetype: delete\n\ndn: cn=Bo\nsn: Lee\ngivenName: Bo\nodd\nfax: "
         "4\nipPhone: 8\n",
         {"Zo\xC3\xAB Fairweather | work:+442079460070 mobile:7 email=a@example.com organisation=Ltd address=1 "
          "Road,Leeds",
          "Bo Lee | fax:4 work:8"},
         {"f:9: has its value in another file", "f:18: changes an entry", "f:24: has no colon"}},
        {"dn: ou=none\nou: none\n", {}, {"f: holds no entry"}},
    };
    for (const Case& each : cases) {
        check(each, [](const std::string& bytes, const auto& take) {
            return host::readExport(bytes, "f", {}, [&](const auto& contact, std::size_t) { take(contact); }).contacts;
        });
    }
}

TEST(Formats, ColumnsCanBeToldAndThoseLeftOutAreNamed) {
    host::ExportOptions options{"windows-1251", {}};
    options.columns["wer"] = *host::meaningOfField("name");
    options.columns["leer"] = *host::meaningOfField("nothing");
    options.columns["nr"] = *host::meaningOfField("mobile");
    std::string contacts;
    const host::ReadExport read =
        host::readExport("Wer;Nr;Farbe;Leer\n\x80;7;rot;x\n", "f", options, [&](const auto& contact, std::size_t line) {
            contacts += std::to_string(line) + shown(contact);
        });
    EXPECT_EQ(contacts, "2\xD0\x82 | mobile:7");
    EXPECT_EQ(read.form + ", " + read.charset, "CSV separated by semicolons, windows-1251");
    EXPECT_EQ(read.unusedColumns, Strings{"Farbe"});
    EXPECT_FALSE(host::meaningOfField("colour"));
}

} // namespace
