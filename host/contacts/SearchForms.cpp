#include "host/contacts/SearchForms.h"

#include "host/text/Find.h"
#include "host/text/Key.h"
#include "host/text/NameForm.h"
#include "host/text/NumberForm.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace host {

void SearchForms::add(const DirectorySearchData& contact) {
    if (m_contacts == std::numeric_limits<std::uint32_t>::max()) {
        throw std::length_error("too many contacts for one index");
    }
    Part& part = partForNext();
    part.names.begins.add(part.names.bytes.size());
    part.names.addName(contact.strName, text::appendCompact);
    part.digits.begins.add(part.digits.bytes.size());
    for (const std::string* number : {&contact.strNumber1, &contact.strNumber2, &contact.strNumber3}) {
        if (!number->empty()) {
            part.digits.addNumber(*number);
        }
    }
    part.digits.addName(contact.strName, text::appendKeypadForm);
    ++m_contacts;
}

// A part that is full has no room to spare.
SearchForms::Part& SearchForms::partForNext() {
    if (m_contacts % perPart == 0) {
        if (!m_parts.empty()) {
            m_parts.back().names.shrink();
            m_parts.back().digits.shrink();
        }
        m_parts.emplace_back();
    }
    return m_parts.back();
}

SearchForms::Search::Search(const SearchForms& forms, std::string_view key) : m_all(forms), m_key(key) {
    const auto shorter = [](const std::string& a, const std::string& b) { return a.size() < b.size(); };
    const auto longest = std::max_element(m_key.words.begin(), m_key.words.end(), shorter);
    if (longest != m_key.words.end()) {
        std::iter_swap(longest, m_key.words.begin());
    }
}

std::optional<std::size_t> SearchForms::Search::next() {
    if (m_key.words.empty()) {
        return m_next < m_all.size() ? std::optional(m_next++) : std::nullopt;
    }
    while (const auto hit = nextHit()) {
        const std::size_t contact = m_part * perPart + hit->contact;
        if (isWordBegin(*hit)) {
            return contact;
        }
        m_inside.push_back(static_cast<std::uint32_t>(contact));
    }
    return m_given < m_inside.size() ? std::optional<std::size_t>(m_inside[m_given++]) : std::nullopt;
}

// The first word leads from contact to contact; the others are looked for in those that it finds.
std::optional<SearchForms::Search::Hit> SearchForms::Search::nextHit() {
    for (; m_part < m_all.m_parts.size(); ++m_part, m_next = 0) {
        const Forms& part = forms();
        const auto found = [&](const std::string& word) { return part.find(word, m_next) != std::string::npos; };
        while (m_next < part.begins.size()) {
            const std::size_t place = text::findBytes(part.bytes, m_key.words.front(), part.begins[m_next]);
            if (place == std::string::npos) {
                break;
            }
            if (m_next + 1 < part.begins.size() && part.begins[m_next + 1] <= place) {
                m_next = part.contactAt(place, m_next + 1);
            }
            const bool all = std::all_of(m_key.words.begin() + 1, m_key.words.end(), found);
            const Hit hit{m_next++, place};
            if (all) {
                return hit;
            }
        }
    }
    return std::nullopt;
}

bool SearchForms::Search::isWordBegin(const Hit& hit) const {
    const Forms& part = forms();
    const auto begins = [&](const std::string& word, std::size_t place) {
        if (part.isWordBegin(place)) {
            return true;
        }
        const std::string_view upToEnd = part.upToEndOf(hit.contact);
        do {
            place = text::findBytes(upToEnd, word, place + 1);
        } while (place != std::string::npos && !part.isWordBegin(place));
        return place != std::string::npos;
    };
    return begins(m_key.words.front(), hit.place) &&
           std::all_of(m_key.words.begin() + 1, m_key.words.end(),
                       [&](const std::string& word) { return begins(word, part.find(word, hit.contact)); });
}

void SearchForms::Forms::markWordBegin() {
    wordBegins.resize(bytes.size() + 1);
    wordBegins.back() = true;
}

void SearchForms::Forms::addNumber(std::string_view number) {
    const std::size_t begin = bytes.size();
    text::appendNumberForms(number, bytes);
    wordBegins.resize(bytes.size());
    for (std::size_t at = begin; at < bytes.size(); ++at) {
        wordBegins[at] = at == begin || bytes[at - 1] == text::formSeparator;
    }
}

void SearchForms::Forms::addName(std::string_view name, Append append) {
    addForm(name, append);
    if (const std::string spelled = text::spelledOut(name); !spelled.empty()) {
        addForm(spelled, append);
    }
}

void SearchForms::Forms::addForm(std::string_view name, Append append) {
    while (!name.empty()) {
        markWordBegin();
        append(text::takeWord(name), bytes);
    }
    bytes += text::formSeparator;
}

void SearchForms::Forms::shrink() {
    bytes.shrink_to_fit();
    wordBegins.shrink_to_fit();
    begins.shrink();
}

std::size_t SearchForms::Forms::find(std::string_view word, std::size_t contact) const {
    return text::findBytes(upToEndOf(contact), word, begins[contact]);
}

// Steps of doubling width from contact `from` on: a hit is near where most contacts match, and far where few do.
std::size_t SearchForms::Forms::contactAt(std::size_t place, std::size_t from) const {
    std::size_t low = from; // begins at the place or before it
    std::size_t step = 1;
    while (step < begins.size() - low && begins[low + step] <= place) {
        low += step;
        step *= 2;
    }
    std::size_t high = std::min(low + step, begins.size()); // begins behind it
    while (low + 1 < high) {
        const std::size_t middle = low + (high - low) / 2;
        (begins[middle] <= place ? low : high) = middle;
    }
    return low;
}

} // namespace host
