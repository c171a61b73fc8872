#include "host/formats/KindOfNumber.h"

#include "host/text/Fold.h"

#include <algorithm>
#include <string>
#include <unordered_map>

namespace host {

namespace {

using Words = std::unordered_map<std::string_view, NumberKind>;

// Folded, and without what is no letter.
const Words& words() {
    using enum NumberKind;
    static const Words known = {{"work", work},
                                {"business", work},
                                {"office", work},
                                {"company", work},
                                {"job", work},
                                {"geschaft", work},
                                {"geschaeft", work},

                                {"dienst", work},
                                {"arbeit", work},
                                {"buro", work},
                                {"buero", work},
                                {"firma", work},
                                {"bureau", work},
                                {"travail", work},
                                {"professionnel", work},
                                {"professionnelle", work},
                                {"pro", work},
                                {"societe", work},
                                {"trabajo", work},
                                {"oficina", work},
                                {"empresa", work},
                                {"laboral", work},
                                {"compania", work},
                                {"home", home},
                                {"private", home},
                                {"privat", home},
                                {"zuhause", home},
                                {"domicile", home},
                                {"personnel", home},
                                {"maison", home},
                                {"prive", home},
                                {"casa", home},
                                {"particular", home},
                                {"privado", home},
                                {"domicilio", home},
                                {"personal", home},
                                {"hogar", home},
                                {"cell", mobile},
                                {"mobile", mobile},
                                {"cellular", mobile},
                                {"pcs", mobile},
                                {"mobil", mobile},
                                {"handy", mobile},
                                {"mobiltelefon", mobile},
                                {"mobilnummer", mobile},
                                {"portable", mobile},
                                {"gsm", mobile},
                                {"movil", mobile},
                                {"celular", mobile},
                                {"cellphone", mobile},

                                {"natel", mobile},
                                {"fax", fax},
                                {"telefax", fax},
                                {"telecopie", fax},
                                {"telecopieur", fax},

                                {"facsimile", fax},
                                {"pager", other},
                                {"car", other},
                                {"isdn", other},
                                {"video", other},
                                {"other", other},
                                {"bbs", other},
                                {"modem", other},
                                {"textphone", other},
                                {"radio", other},
                                {"telex", other},
                                {"callback", other},
                                {"assistant", other},
                                {"assistants", other},
                                {"weiteres", other},
                                {"andere", other},
                                {"sonstige", other},
                                {"autotelefon", other},
                                {"autre", other},
                                {"voiture", other},
                                {"otro", other},
                                {"otra", other},
                                {"buscapersonas", other},
                                {"assistent", other},
                                {"ttytdd", other},
                                {"assistente", other}};
    return known;
}

bool isLetter(char byte) {
    return byte >= 'a' && byte <= 'z';
}

// What a compound word begins with: "Geschäftstelefon", "Mobilnummer".
std::string_view beginningOf(std::string_view word) {
    constexpr std::string_view beginnings[] = {"geschaft", "geschaeft", "dienst", "firma", "privat",
                                               "mobil",    "handy",     "fax",    "pager"};
    const auto* found = std::find_if(std::begin(beginnings), std::end(beginnings),
                                     [&](std::string_view beginning) { return word.starts_with(beginning); });
    return found == std::end(beginnings) ? std::string_view() : *found;
}

} // namespace

bool KindsOfNumber::add(std::string_view word) {
    constexpr std::size_t longest = 24;
    if (word.size() > longest) {
        return false;
    }
    std::string small(word);
    std::transform(small.begin(), small.end(), small.begin(), text::lowerAscii);
    const auto known = words().find(small);
    if (known == words().end()) {
        return false;
    }
    m_seen |= 1U << static_cast<unsigned>(known->second);
    return true;
}

NumberKind KindsOfNumber::kind() const {
    for (const NumberKind kind :
         {NumberKind::fax, NumberKind::mobile, NumberKind::other, NumberKind::work, NumberKind::home}) {
        if ((m_seen >> static_cast<unsigned>(kind) & 1U) != 0) {
            return kind;
        }
    }
    return NumberKind::unknown;
}

NumberKind kindOfNumber(std::string_view label) {
    const std::string folded = text::folded(label);
    KindsOfNumber kinds;
    for (auto at = folded.begin(); at != folded.end();) {
        at = std::find_if(at, folded.end(), isLetter);
        const auto end = std::find_if_not(at, folded.end(), isLetter);
        if (const std::string_view word(at, end); !kinds.add(word)) {
            kinds.add(beginningOf(word));
        }
        at = end;
    }
    return kinds.kind();
}

} // namespace host
