#include "host/contacts/ContactMatch.h"

#include "host/text/Find.h"
#include "host/text/Fold.h"
#include "host/text/Key.h"

namespace host {

namespace {

void appendNumberForm(std::string_view number, std::string& out) {
    const std::size_t begin = number.find_first_not_of('+');
    if (begin != std::string_view::npos) {
        text::appendFolded(number.substr(begin, number.find_last_not_of('+') - begin + 1), out);
    }
    out += formSeparator;
}

} // namespace

MatchKey::MatchKey(std::string_view key) : digits(text::isKeypadKey(key)), folded(text::folded(key)) {
}

void appendNameForm(const DirectorySearchData& contact, std::string& out) {
    text::appendFolded(contact.strName, out);
    out += formSeparator;
}

void appendDigitForms(const DirectorySearchData& contact, std::string& out) {
    appendNumberForm(contact.strNumber1, out);
    appendNumberForm(contact.strNumber2, out);
    appendNumberForm(contact.strNumber3, out);
    text::appendKeypadForm(contact.strName, out);
    out += formSeparator;
}

bool matches(const DirectorySearchData& contact, const MatchKey& key) {
    if (key.folded.empty()) {
        return true;
    }
    std::string forms;
    if (key.digits) {
        appendDigitForms(contact, forms);
    } else {
        appendNameForm(contact, forms);
    }
    forms.pop_back(); // the last separator is not part of a form
    return text::findBytes(forms, key.folded, 0) != std::string::npos;
}

} // namespace host
