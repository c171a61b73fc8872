#include "host/contacts/ContactMatch.h"

#include "host/text/Find.h"
#include "host/text/Key.h"
#include "host/text/NameForm.h"
#include "host/text/NumberForm.h"

#include <algorithm>

namespace host {

MatchKey::MatchKey(std::string_view key) : digits(text::isKeypadKey(key)) {
    if (digits) {
        words.emplace_back(key);
    } else {
        words = text::keyWords(key);
    }
}

void appendNameForms(const DirectorySearchData& contact, std::string& out) {
    text::appendNameForms(contact.strName, out);
}

void appendDigitForms(const DirectorySearchData& contact, std::string& out) {
    text::appendNumberForms(contact.strNumber1, out);
    text::appendNumberForms(contact.strNumber2, out);
    text::appendNumberForms(contact.strNumber3, out);
    text::appendKeypadForms(contact.strName, out);
}

bool matches(const DirectorySearchData& contact, const MatchKey& key) {
    std::string forms;
    if (key.digits) {
        appendDigitForms(contact, forms);
    } else {
        appendNameForms(contact, forms);
    }
    const auto found = [&](const std::string& word) { return text::findBytes(forms, word, 0) != std::string::npos; };
    return std::all_of(key.words.begin(), key.words.end(), found);
}

} // namespace host
