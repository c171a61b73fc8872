#include "host/text/MatchedPart.h"

#include "host/text/Find.h"
#include "host/text/Fold.h"
#include "host/text/Key.h"
#include "host/text/Utf8.h"

#include <string>
#include <vector>

namespace host::text {

namespace {

// A text in the form in which keys are looked for, and where each byte of it comes from.
class TracedForm {
public:
    TracedForm(std::string_view text, void (*append)(std::string_view, std::string&)) : m_text(text) {
        for (std::size_t at = 0; at < text.size(); at = behind(at)) {
            append(text.substr(at, behind(at) - at), m_form);
            m_origins.resize(m_form.size(), at);
        }
    }

    std::optional<Part> find(std::string_view needle) const {
        const std::size_t place = needle.empty() ? std::string_view::npos : findBytes(m_form, needle, 0);
        if (place == std::string_view::npos) {
            return std::nullopt;
        }
        const std::size_t begin = m_origins[place];
        return Part{begin, behindMarks(behind(m_origins[place + needle.size() - 1])) - begin};
    }

private:
    std::size_t behind(std::size_t at) const { return at + firstCharacter(m_text.substr(at)).size; }

    std::size_t behindMarks(std::size_t at) const {
        while (at < m_text.size() && folded(m_text.substr(at, behind(at) - at)).empty()) {
            at = behind(at);
        }
        return at;
    }

    std::string_view m_text;
    std::string m_form;
    std::vector<std::size_t> m_origins; // of each byte of the form: where its character begins in the text
};

} // namespace

std::optional<Part> matchedInName(std::string_view name, std::string_view key) {
    if (isKeypadKey(key)) {
        return TracedForm(name, appendKeypadForm).find(key);
    }
    return TracedForm(name, appendFolded).find(folded(key));
}

std::optional<Part> matchedInNumber(std::string_view number, std::string_view key) {
    return isKeypadKey(key) ? TracedForm(number, appendFolded).find(key) : std::nullopt;
}

} // namespace host::text
