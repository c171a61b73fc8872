#include "host/formats/ColumnNames.h"

#include "host/formats/KindOfNumber.h"
#include "host/text/Fold.h"

#include <algorithm>
#include <set>

namespace host {

namespace {

using Use = ColumnMeaning::Use;
using Words = std::set<std::string_view>;

// A column's name in words of letters, folded, and the digits in it: "Phone 1 - Value" is phone, value and "1".
struct NameWords {
    explicit NameWords(std::string_view name) {
        const std::string folded = text::folded(name);
        for (auto at = folded.begin(); at != folded.end();) {
            if (isLetter(*at)) {
                const auto end = std::find_if_not(at, folded.end(), isLetter);
                words.emplace_back(at, end);
                whole.append(whole.empty() ? "" : " ").append(words.back());
                at = end;
            } else {
                digits += *at >= '0' && *at <= '9' ? std::string(1, *at) : "";
                ++at;
            }
        }
    }

    // Beyond ASCII too: a name in another script is one word that nobody knows.
    static bool isLetter(char byte) { return (byte >= 'a' && byte <= 'z') || static_cast<unsigned char>(byte) >= 0x80; }

    bool has(const Words& any) const {
        return std::any_of(words.begin(), words.end(), [&](const std::string& word) { return any.contains(word); });
    }
    bool hasBoth(const Words& one, const Words& other) const { return has(one) && has(other); }
    bool isOneOf(const Words& names) const { return names.contains(whole); }

    std::vector<std::string> words;
    std::string whole;
    std::string digits;
};

const Words fullNames = {"name",
                         "full name",
                         "display name",
                         "displayname",
                         "anzeigename",
                         "angezeigter name",
                         "vollstandiger name",
                         "nom complet",
                         "nom a afficher",
                         "nom d affichage",
                         "nom affiche",
                         "nombre completo",
                         "nombre para mostrar",
                         "nombre mostrado",
                         "formatted name",
                         "contact name",
                         "contact",
                         "kontakt",
                         "kontaktname",
                         "cn"};
const Words givenNames = {"first name", "given name", "firstname", "givenname",      "forename",
                          "vorname",    "prenom",     "nombre",    "nombre de pila", "primer nombre"};
const Words middleNames = {"middle name",      "additional name",  "middlename",
                           "weitere vornamen", "weiterer vorname", "zweiter vorname",
                           "deuxieme prenom",  "autres prenoms",   "segundo nombre"};
const Words familyNames = {"last name", "family name",    "surname", "lastname", "nachname",  "familienname",
                           "zuname",    "nom de famille", "nom",     "apellido", "apellidos", "primer apellido",
                           "sn"};
const Words honorifics = {"title", "titel", "titre", "titulo"}; // or what the person is in the organisation

const Words labels = {"type", "label", "typ", "etikett", "etiqueta", "libelle", "tipo"};
const Words useless = {"phonetic", "yomi",   "furigana", "symbol",  "rank",        "description", "location",
                       "initials", "prefix", "suffix",   "display", "anzeigename", "account"};
const Words emails = {"email", "emails", "mail", "courriel", "messagerie", "emailadresse", "electronique", "correo"};
const Words webs = {"web", "website", "webseite", "homepage", "url", "internet", "webpage", "weburl"};
const Words birthdays = {"birthday",  "birthdate",  "geburtstag", "geburtsdatum", "anniversaire",
                         "naissance", "cumpleanos", "nacimiento", "bday"};
const Words wholeAddresses = {"formatted"};
const Words addresses = {"street",    "strasse",  "rue",   "calle",      "city",       "ort",      "stadt",
                         "ville",     "ciudad",   "zip",   "postal",     "postcode",   "plz",      "postleitzahl",
                         "code",      "codigo",   "state", "region",     "bundesland", "province", "provincia",
                         "estado",    "country",  "land",  "pays",       "pais",       "address",  "adresse",
                         "direccion", "postfach", "box",   "hausnummer", "locality"};
const Words notes = {"note",         "notes",         "notiz",       "notizen",   "nota",        "notas",
                     "comment",      "comments",      "kommentar",   "bemerkung", "bemerkungen", "remarques",
                     "commentaires", "observaciones", "comentarios", "memo"};
const Words nicknames = {"nickname", "spitzname", "surnom", "apodo", "alias", "pseudo", "sobrenombre"};
const Words groups = {"categories", "category",   "kategorien", "kategorie", "groups",  "group",
                      "gruppe",     "gruppen",    "categorie",  "groupe",    "groupes", "labels",
                      "etiquetas",  "categorias", "categoria",  "grupo",     "grupos"};
const Words departments = {"department", "abteilung", "service", "departamento", "dept", "departement", "unit"};
const Words positions = {
    "position", "funktion", "berufsbezeichnung", "beruf",    "fonction", "poste", "profession", "puesto", "cargo",
    "role",     "rolle",    "stellung",          "jobtitle", "job"};
const Words organisations = {"organization", "organisation", "company",  "firma",       "societe", "entreprise",
                             "empresa",      "organizacion", "compania", "unternehmen", "employer"};
const Words phones = {"phone", "telephone", "telefon", "tel", "telefono", "phones", "fon", "ruf", "rufnummer"};
const Words numbers = {"number", "nummer", "numero", "nr", "no"};
const Words besideNumbers = {"value", "main", "primary",    "principal", "haupt", "direct", "de",   "del",
                             "du",    "la",   "centralita", "wert",      "valor", "valeur", "autre"};

bool endsInPhone(const std::string& word) {
    const std::string_view ends[] = {"telefon", "telefonnummer", "rufnummer", "nummer", "phone"};
    return std::any_of(std::begin(ends), std::end(ends), [&](std::string_view end) {
        return word.ends_with(end) && (end != "nummer" || kindOfNumber(word) != NumberKind::unknown);
    });
}

bool isKindWord(const std::string& word) {
    return kindOfNumber(word) != NumberKind::unknown;
}

// Whether it is a telephone number's: it says so, or says nothing but a kind and what is said beside one.
bool isNumber(const NameWords& name) {
    if (name.has(phones) || std::any_of(name.words.begin(), name.words.end(), endsInPhone)) {
        return true;
    }
    const bool tells = name.has(numbers) || std::any_of(name.words.begin(), name.words.end(), isKindWord);
    return tells && std::all_of(name.words.begin(), name.words.end(), [](const std::string& word) {
               return numbers.contains(word) || besideNumbers.contains(word) || isKindWord(word);
           });
}

ColumnMeaning factOf(FactKind kind) {
    return {.use = Use::fact, .fact = kind, .group = {}};
}

ColumnMeaning numberOf(const NameWords& name) {
    return {.use = Use::number, .kind = kindOfNumber(name.whole), .group = name.digits};
}

// One of the parts of an address; those of home and work, and first and second, are told from each other.
ColumnMeaning addressOf(const NameWords& name) {
    const NumberKind kind = kindOfNumber(name.whole);
    return {.use = name.has(wholeAddresses) ? Use::wholeAddress : Use::addressPart,
            .group = std::string(nameOf(kind)) + name.digits};
}

std::optional<ColumnMeaning> nameMeaning(const NameWords& name) {
    const std::pair<const Words*, Use> all[] = {{&fullNames, Use::fullName},
                                                {&givenNames, Use::givenName},
                                                {&middleNames, Use::middleName},
                                                {&familyNames, Use::familyName}};
    for (const auto& [names, use] : all) {
        if (name.isOneOf(*names)) {
            return ColumnMeaning{.use = use, .group = {}};
        }
    }
    return std::nullopt;
}

ColumnMeaning meaningOf(const NameWords& name) {
    if (const auto meaning = nameMeaning(name)) {
        return *meaning;
    }
    if (name.has(labels) && !name.isOneOf(labels)) {
        return isNumber(name) ? ColumnMeaning{.use = Use::numberLabel, .group = name.digits} : ColumnMeaning();
    }
    if (name.has(useless)) {
        return {};
    }
    if (name.has(emails)) {
        return factOf(FactKind::email);
    }
    if (name.isOneOf(honorifics) || name.has(positions) || name.hasBoth(organisations, honorifics)) {
        return factOf(FactKind::title);
    }
    if (name.isOneOf(organisations)) { // and no number of the company's
        return factOf(FactKind::organisation);
    }
    const std::pair<const Words*, FactKind> facts[] = {
        {&webs, FactKind::web},           {&birthdays, FactKind::birthday},     {&notes, FactKind::note},
        {&nicknames, FactKind::nickname}, {&departments, FactKind::department}, {&groups, FactKind::group}};
    for (const auto& [words, kind] : facts) {
        if (name.has(*words)) {
            return factOf(kind);
        }
    }
    if (isNumber(name)) {
        return numberOf(name);
    }
    if (name.has(addresses) || name.has(wholeAddresses)) {
        return addressOf(name);
    }
    return name.has(organisations) ? factOf(FactKind::organisation) : ColumnMeaning();
}

// Those of a contact file of the phone's own, where all columns are such.
std::vector<ColumnMeaning> ownMeanings(const std::vector<std::string>& names) {
    std::vector<ColumnMeaning> columns;
    for (const std::string& name : names) {
        const std::string folded = text::folded(name);
        const std::size_t size = folded.find_last_not_of("0123456789") + 1;
        const auto meaning = meaningOfField(std::string_view(folded).substr(0, size));
        if (!meaning) {
            return {};
        }
        columns.push_back(*meaning);
    }
    return columns;
}

bool hasUse(const std::vector<ColumnMeaning>& columns, Use use) {
    return std::any_of(columns.begin(), columns.end(), [use](const auto& column) { return column.use == use; });
}

// "Nom" is the family name beside a "Prénom" and the whole name without one, "Name" the family name beside a "Vorname",
// "Nombre" the whole name unless there are "Apellidos". "Title" beside a "Job Title" is "Mr".
void decideByTheOthers(const std::vector<NameWords>& names, std::vector<ColumnMeaning>& columns) {
    const bool hasGiven = hasUse(columns, Use::givenName);
    const bool hasFamily = hasUse(columns, Use::familyName);
    const auto isPosition = [](const NameWords& name) {
        return name.has(positions) || (name.has(honorifics) && name.words.size() > 1);
    };
    const bool hasPosition = std::any_of(names.begin(), names.end(), isPosition);
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i].whole == "name" && hasGiven && !hasFamily) {
            columns[i].use = Use::familyName;
        } else if ((names[i].whole == "nom" && !hasGiven) || (names[i].whole == "nombre" && !hasFamily)) {
            columns[i].use = Use::fullName;
        } else if (names[i].isOneOf(honorifics) && hasPosition) {
            columns[i] = {};
        }
    }
}

void findLabels(std::vector<ColumnMeaning>& columns) {
    for (ColumnMeaning& column : columns) {
        const auto label = std::find_if(columns.begin(), columns.end(), [&](const ColumnMeaning& each) {
            return each.use == Use::numberLabel && each.group == column.group;
        });
        if (column.use == Use::number && !column.group.empty() && label != columns.end()) {
            column.labelColumn = static_cast<std::size_t>(label - columns.begin());
        }
    }
}

struct Field {
    std::string_view name;
    Use use;
};
constexpr Field nameFields[] = {{"name", Use::fullName},   {"first", Use::givenName}, {"middle", Use::middleName},
                                {"last", Use::familyName}, {"number", Use::number},   {"extra", Use::extra},
                                {"nothing", Use::nothing}};

} // namespace

std::optional<ColumnMeaning> meaningOfField(std::string_view field) {
    for (const Field& each : nameFields) {
        if (field == each.name) {
            return ColumnMeaning{.use = each.use, .group = {}};
        }
    }
    for (const NumberKind kind : knownNumberKinds) {
        if (field == nameOf(kind)) {
            return ColumnMeaning{.use = Use::number, .kind = kind, .group = {}};
        }
    }
    for (const FactKind kind : factKinds) {
        if (field == nameOf(kind)) {
            return factOf(kind);
        }
    }
    return std::nullopt;
}

std::string knownFields() {
    std::string all;
    const auto add = [&](std::string_view name) { all.append(all.empty() ? "" : ", ").append(name); };
    for (const Field& each : nameFields) {
        add(each.name);
    }
    for (const NumberKind kind : knownNumberKinds) {
        add(nameOf(kind));
    }
    for (const FactKind kind : factKinds) {
        add(nameOf(kind));
    }
    return all;
}

std::vector<ColumnMeaning> meaningsOf(const std::vector<std::string>& names, const ToldColumns& told) {
    std::vector<ColumnMeaning> columns = ownMeanings(names);
    if (columns.empty()) {
        const std::vector<NameWords> words(names.begin(), names.end());
        std::transform(words.begin(), words.end(), std::back_inserter(columns), meaningOf);
        decideByTheOthers(words, columns);
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (const auto meaning = told.find(text::folded(names[i])); meaning != told.end()) {
            columns[i] = meaning->second;
        }
    }
    findLabels(columns);
    return columns;
}

} // namespace host
