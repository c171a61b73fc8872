#include "host/contacts/ContactIndex.h"

#include "host/contacts/packed/PackedText.h"
#include "host/text/NameForm.h"
#include "host/text/NumberForm.h"

namespace host {

namespace {

// Where the text of a number is, in the lowest bits of its size.
enum NumberPlace : std::size_t {
    nowhere,    // there is none: 0 in all
    inForms,    // its only form is the same
    behindPlus, // its only form is the same but for a "+" in front
    inRecord,   // there, behind the size of its forms
};
constexpr unsigned placeBits = 2;
constexpr std::size_t placeMask = 0b11;

} // namespace

ContactIndex::ContactIndex(std::span<const DirectorySearchData> contacts) {
    for (const DirectorySearchData& contact : contacts) {
        add(contact);
    }
}

void ContactIndex::add(const DirectorySearchData& contact) {
    const std::size_t position = m_forms.size();
    m_forms.add(contact);
    m_record.clear();
    packText(m_record, contact.strName);
    std::string_view forms = m_forms.digitsFrom(position);
    for (const std::string* number : {&contact.strNumber1, &contact.strNumber2, &contact.strNumber3}) {
        packNumber(*number, forms);
    }
    const auto shared = contact.strExtra.empty() ? std::nullopt : m_extras.placeOf(contact.strExtra);
    packSize(m_record, shared ? *shared + 1 : 0);
    if (!shared) {
        packText(m_record, contact.strExtra);
    }
    m_fields.add(m_record);
}

// forms: those of the number, if it is not empty, and what stands behind them, which is left.
void ContactIndex::packNumber(const std::string& number, std::string_view& forms) {
    const std::size_t plus = number.starts_with('+') ? 1 : 0;
    const std::size_t size = number.size() - plus;
    if (number.empty()) {
        packSize(m_record, nowhere);
    } else if (forms.substr(0, size) == std::string_view(number).substr(plus) && forms[size] == text::formSeparator) {
        packSize(m_record, (size << placeBits) | (plus == 0 ? inForms : behindPlus));
        forms.remove_prefix(size + 1);
    } else {
        std::string made;
        text::appendNumberForms(number, made);
        packSize(m_record, (number.size() << placeBits) | inRecord);
        packSize(m_record, made.size());
        m_record += number;
        forms.remove_prefix(made.size());
    }
}

void ContactIndex::unpack(std::size_t contact, DirectorySearchData& into) const {
    PackedText from(m_fields[contact]);
    std::string_view forms = m_forms.digitsFrom(contact);
    into.strName = from.text();
    for (std::string* number : {&into.strNumber1, &into.strNumber2, &into.strNumber3}) {
        const std::size_t told = from.size();
        const std::size_t size = told >> placeBits;
        const std::size_t place = told & placeMask;
        if (place == inRecord) [[unlikely]] {
            forms.remove_prefix(from.size());
            *number = from.bytes(size);
        } else {
            *number = forms.substr(0, size);
            forms.remove_prefix(size + (place == nowhere ? 0 : 1));
        }
        if (place == behindPlus) {
            number->insert(0, 1, '+');
        }
    }
    const std::size_t shared = from.size();
    into.strExtra = shared == 0 ? from.text() : m_extras[shared - 1];
}

DirectorySearchData ContactIndex::at(std::size_t contact) const {
    DirectorySearchData data;
    unpack(contact, data);
    return data;
}

void ContactIndex::appendMatches(std::string_view key, OxList<DirectorySearchData>& hits) const {
    SearchForms::Search search(m_forms, key);
    while (const auto contact = search.next()) {
        append(*contact, hits);
    }
}

} // namespace host
