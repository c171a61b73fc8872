#include "host/text/MatchedPart.h"

#include "host/text/Find.h"
#include "host/text/Fold.h"
#include "host/text/Key.h"
#include "host/text/NameForm.h"
#include "host/text/NumberForm.h"
#include "host/text/Utf8.h"

#include <algorithm>
#include <optional>
#include <string>

namespace host::text {

namespace {

using Append = void (*)(std::string_view, std::string&);
using Take = Spelling (*)(std::string_view&);

Spelling takeAsItIs(std::string_view& text) {
    const std::string_view character = text.substr(0, firstCharacter(text).size);
    text.remove_prefix(character.size());
    return {character, character};
}

// Whether a word of the text begins at this byte of it.
bool isWordBegin(std::string_view text, std::size_t at) {
    return at == 0 || isIgnored(lastCharacter(text.substr(0, at)).codePoint);
}

// A text in a form in which keys are looked for, and which part of the text each byte of it comes from.
class TracedForm {
public:
    TracedForm(std::string_view text, Append append, Take take = takeAsItIs) : m_text(text) {
        for (std::string_view rest = text; !rest.empty();) {
            const Part part{text.size() - rest.size(), 0};
            const Spelling next = take(rest);
            append(next.spelled, m_form);
            m_origins.resize(m_form.size(), {part.begin, next.character.size()});
        }
    }

    std::optional<Part> find(std::string_view word) const {
        std::size_t place = findBytes(m_form, word, 0);
        if (word.empty() || place == std::string_view::npos) {
            return std::nullopt;
        }
        for (std::size_t next = place; next != std::string_view::npos; next = findBytes(m_form, word, next + 1)) {
            if (isWordBegin(m_text, m_origins[next].begin)) {
                place = next;
                break;
            }
        }
        const Part& last = m_origins[place + word.size() - 1];
        const std::size_t begin = m_origins[place].begin;
        return Part{begin, behindMarks(last.begin + last.size) - begin};
    }

private:
    std::size_t behindMarks(std::size_t at) const {
        while (at < m_text.size()) {
            const std::size_t size = firstCharacter(m_text.substr(at)).size;
            if (!folded(m_text.substr(at, size)).empty()) {
                break;
            }
            at += size;
        }
        return at;
    }

    std::string_view m_text;
    std::string m_form;
    std::vector<Part> m_origins;
};

// In order; those that touch become one.
std::vector<Part> joined(std::vector<Part> parts) {
    std::sort(parts.begin(), parts.end(), [](const Part& a, const Part& b) { return a.begin < b.begin; });
    std::vector<Part> apart;
    for (const Part& part : parts) {
        if (!apart.empty() && part.begin <= apart.back().begin + apart.back().size) {
            Part& last = apart.back();
            last.size = std::max(last.size, part.begin + part.size - last.begin);
        } else {
            apart.push_back(part);
        }
    }
    return apart;
}

// Every word in the form as people mostly write the name, or else as they also write it. None where one is missing.
std::vector<Part> findAll(std::string_view name, const std::vector<std::string>& words, Append append) {
    const TracedForm form(name, append);
    const TracedForm spelled(name, append, takeSpelling);
    std::vector<Part> parts;
    for (const std::string& word : words) {
        auto part = form.find(word);
        if (!part) {
            part = spelled.find(word);
        }
        if (!part) {
            return {};
        }
        parts.push_back(*part);
    }
    return parts;
}

std::vector<Part> findKey(std::string_view name, std::string_view key) {
    return isKeypadKey(key) ? findAll(name, {std::string(key)}, appendKeypadForm)
                            : findAll(name, keyWords(key), appendCompact);
}

// Finds a key in the forms of a national number. A prefix that the key holds there, such as "0044", stands for all that
// is written ahead of the national part here, such as "+44".
std::optional<Part> findInNumberForms(std::string_view number, std::string_view key) {
    const auto national = nationalNumber(number);
    if (!national) {
        return std::nullopt;
    }
    const std::size_t ahead = static_cast<std::size_t>(national->data() - number.data());
    std::string forms;
    appendNumberForms(number, forms);
    for (std::string_view rest = forms; !rest.empty(); rest.remove_prefix(rest.find(formSeparator) + 1)) {
        const std::string_view form = rest.substr(0, rest.find(formSeparator));
        const std::size_t place = findBytes(form, key, 0);
        if (place != std::string_view::npos) {
            const std::size_t prefix = form.size() - national->size();
            const auto inNumber = [&](std::size_t at) { return ahead + (at > prefix ? at - prefix : 0); };
            const std::size_t begin = place < prefix ? 0 : inNumber(place);
            return Part{begin, inNumber(place + key.size()) - begin};
        }
    }
    return std::nullopt;
}

} // namespace

std::vector<Part> matchedInName(std::string_view name, std::string_view key) {
    return joined(findKey(name, key));
}

std::vector<Part> matchedInNumber(std::string_view number, std::string_view key) {
    if (!isKeypadKey(key)) {
        return {};
    }
    if (const auto part = TracedForm(number, appendFolded).find(key)) {
        return {*part};
    }
    const auto part = findInNumberForms(number, key);
    return part ? std::vector{*part} : std::vector<Part>{};
}

bool beginsWordsOf(std::string_view name, std::string_view key) {
    const std::vector<Part> parts = findKey(name, key);
    return !parts.empty() &&
           std::all_of(parts.begin(), parts.end(), [name](const Part& part) { return isWordBegin(name, part.begin); });
}

bool beginsNumber(std::string_view number, std::string_view key) {
    std::string forms(1, formSeparator);
    appendNumberForms(number, forms);
    return findBytes(forms, formSeparator + std::string(key), 0) != std::string::npos;
}

} // namespace host::text
