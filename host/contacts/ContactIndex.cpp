#include "host/contacts/ContactIndex.h"

#include "host/text/Find.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace host {

ContactIndex::ContactIndex(std::span<const DirectorySearchData> contacts) {
    for (const DirectorySearchData& contact : contacts) {
        add(contact);
    }
}

void ContactIndex::reserve(std::size_t bytes) {
    m_fields.bytes.reserve(bytes);
    m_names.bytes.reserve(bytes / 2);
    m_digits.bytes.reserve(bytes);
}

void ContactIndex::add(const DirectorySearchData& contact) {
    appendNameForm(contact, m_names.bytes);
    m_names.close();
    appendDigitForms(contact, m_digits.bytes);
    m_digits.close();
    for (const auto field :
         {&DirectorySearchData::strName, &DirectorySearchData::strNumber1, &DirectorySearchData::strNumber2,
          &DirectorySearchData::strNumber3, &DirectorySearchData::strExtra}) {
        m_fields.bytes += contact.*field;
        m_fields.close();
    }
    ++m_contacts;
}

void ContactIndex::append(std::size_t contact, OxList<DirectorySearchData>& hits) const {
    DirectorySearchData& hit = hits.EmplaceBack();
    std::size_t i = contact * fieldsPerContact;
    std::size_t begin = m_fields.begin(i);
    for (std::string* field : {&hit.strName, &hit.strNumber1, &hit.strNumber2, &hit.strNumber3, &hit.strExtra}) {
        const std::size_t end = m_fields.ends[i++];
        field->assign(m_fields.bytes, begin, end - begin);
        begin = end;
    }
}

void ContactIndex::appendMatches(std::string_view key, OxList<DirectorySearchData>& hits) const {
    Search search(*this, key);
    while (const auto contact = search.next()) {
        append(*contact, hits);
    }
}

ContactIndex::Search::Search(const ContactIndex& index, std::string_view key) : m_index(index), m_key(key) {
}

std::optional<std::size_t> ContactIndex::Search::next() {
    if (m_contact >= m_index.size()) {
        return std::nullopt;
    }
    if (m_key.folded.empty()) {
        return m_contact++;
    }
    const Forms& forms = m_key.digits ? m_index.m_digits : m_index.m_names;
    std::size_t place = text::findBytes(forms.bytes, m_key.folded, forms.begin(m_contact));
    while (place != std::string::npos) {
        const std::size_t contact = forms.contactAt(place, m_contact);
        if (place + m_key.folded.size() < forms.ends[contact]) {
            m_contact = contact + 1;
            return contact;
        }
        // A key with the separator in it was found across two contacts.
        place = text::findBytes(forms.bytes, m_key.folded, place + 1);
    }
    m_contact = m_index.size();
    return std::nullopt;
}

void ContactIndex::Forms::close() {
    if (bytes.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw std::length_error("too many contacts for one index");
    }
    ends.push_back(static_cast<std::uint32_t>(bytes.size()));
}

// Steps of doubling width from contact `from` on: a hit is near where most contacts match, and far where few do.
std::size_t ContactIndex::Forms::contactAt(std::size_t place, std::size_t from) const {
    std::size_t low = from;
    std::size_t step = 1;
    while (step < ends.size() - low && ends[low + step - 1] <= place) {
        low += step;
        step *= 2;
    }
    const auto begin = ends.begin() + static_cast<std::ptrdiff_t>(low);
    const auto end = begin + static_cast<std::ptrdiff_t>(std::min(step, ends.size() - low));
    return static_cast<std::size_t>(std::upper_bound(begin, end, place) - ends.begin());
}

} // namespace host
