#include "host/contacts/ContactIndex.h"

#include "host/text/Find.h"
#include "host/text/Key.h"
#include "host/text/NameForm.h"
#include "host/text/NumberForm.h"

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
    m_names.addName(contact.strName, text::appendCompact);
    m_names.close();
    for (const std::string* number : {&contact.strNumber1, &contact.strNumber2, &contact.strNumber3}) {
        m_digits.addNumber(*number);
    }
    m_digits.addName(contact.strName, text::appendKeypadForm);
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

ContactIndex::Search::Search(const ContactIndex& index, std::string_view key)
    : m_index(index), m_key(key), m_forms(m_key.digits ? index.m_digits : index.m_names) {
    const auto shorter = [](const std::string& a, const std::string& b) { return a.size() < b.size(); };
    const auto longest = std::max_element(m_key.words.begin(), m_key.words.end(), shorter);
    if (longest != m_key.words.end()) {
        std::iter_swap(longest, m_key.words.begin());
    }
}

std::optional<std::size_t> ContactIndex::Search::next() {
    if (m_key.words.empty()) {
        return m_contact < m_index.size() ? std::optional(m_contact++) : std::nullopt;
    }
    while (const auto hit = nextHit()) {
        if (isWordBegin(*hit)) {
            return hit->contact;
        }
        m_inside.push_back(static_cast<std::uint32_t>(hit->contact));
    }
    return m_given < m_inside.size() ? std::optional<std::size_t>(m_inside[m_given++]) : std::nullopt;
}

// The first word leads from contact to contact; the others are looked for in those that it finds.
std::optional<ContactIndex::Search::Hit> ContactIndex::Search::nextHit() {
    const auto found = [this](const std::string& word) { return m_forms.find(word, m_contact) != std::string::npos; };
    while (m_contact < m_index.size()) {
        const std::size_t place = text::findBytes(m_forms.bytes, m_key.words.front(), m_forms.begin(m_contact));
        if (place == std::string::npos) {
            m_contact = m_index.size();
            break;
        }
        m_contact = m_forms.contactAt(place, m_contact);
        const bool all = std::all_of(m_key.words.begin() + 1, m_key.words.end(), found);
        const Hit hit{m_contact++, place};
        if (all) {
            return hit;
        }
    }
    return std::nullopt;
}

bool ContactIndex::Search::isWordBegin(const Hit& hit) const {
    const auto isAtBegin = [&](const std::string& word, std::size_t place) {
        while (place != std::string::npos && !m_forms.isWordBegin(place)) {
            place = m_forms.find(word, hit.contact, place + 1);
        }
        return place != std::string::npos;
    };
    return isAtBegin(m_key.words.front(), hit.place) &&
           std::all_of(m_key.words.begin() + 1, m_key.words.end(),
                       [&](const std::string& word) { return isAtBegin(word, m_forms.find(word, hit.contact)); });
}

void ContactIndex::Forms::markWordBegin() {
    wordBegins.resize(bytes.size() + 1);
    wordBegins.back() = true;
}

void ContactIndex::Forms::addNumber(std::string_view number) {
    const std::size_t begin = bytes.size();
    text::appendNumberForms(number, bytes);
    wordBegins.resize(bytes.size());
    for (std::size_t at = begin; at < bytes.size(); ++at) {
        wordBegins[at] = at == begin || bytes[at - 1] == text::formSeparator;
    }
}

void ContactIndex::Forms::addName(std::string_view name, Append append) {
    addForm(name, append);
    if (const std::string spelled = text::spelledOut(name); !spelled.empty()) {
        addForm(spelled, append);
    }
}

void ContactIndex::Forms::addForm(std::string_view name, Append append) {
    while (!name.empty()) {
        markWordBegin();
        append(text::takeWord(name), bytes);
    }
    bytes += text::formSeparator;
}

void ContactIndex::Forms::close() {
    if (bytes.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw std::length_error("too many contacts for one index");
    }
    ends.push_back(static_cast<std::uint32_t>(bytes.size()));
}

std::size_t ContactIndex::Forms::find(std::string_view word, std::size_t contact, std::size_t from) const {
    return text::findBytes(std::string_view(bytes).substr(0, ends[contact]), word, std::max(from, begin(contact)));
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
