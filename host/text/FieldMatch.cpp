#include "host/text/FieldMatch.h"

#include "host/text/Find.h"
#include "host/text/Fold.h"
#include "host/text/PlainKey.h"

#include <utf8proc.h>

#include <algorithm>
#include <string>

namespace host::text {

namespace {

bool isLetterOrDigit(Character character) {
    if (character.codePoint < 0) {
        return false;
    }
    const auto category = utf8proc_category(character.codePoint);
    return category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_NO &&
           (category <= UTF8PROC_CATEGORY_LO || category >= UTF8PROC_CATEGORY_ND);
}

// Any key, and any field, which is folded.
class FoldedKey {
public:
    bool isFor(std::string_view key) const { return key == m_key; }
    void set(std::string_view key);
    std::string_view folded() const { return m_folded; }

    bool isIn(std::string_view text) { return findBytes(fold(text), m_folded, 0) != std::string::npos; }
    bool isWordIn(std::string_view text);

private:
    std::string_view fold(std::string_view text);

    std::string m_key;
    std::string m_folded;
    std::string m_buffer;
};

void FoldedKey::set(std::string_view key) {
    std::string folded = text::folded(key);
    m_key = key; // nothing fails from here on, or this does and nothing has changed
    m_folded.swap(folded);
}

bool FoldedKey::isWordIn(std::string_view text) {
    const std::string_view all = fold(text);
    for (std::size_t at = findBytes(all, m_folded, 0); at != std::string_view::npos;
         at = findBytes(all, m_folded, at + 1)) {
        if (!isLetterOrDigit(lastCharacter(all.substr(0, at))) &&
            !isLetterOrDigit(firstCharacter(all.substr(at + m_folded.size())))) {
            return true;
        }
    }
    return false;
}

std::string_view FoldedKey::fold(std::string_view text) {
    m_buffer.clear();
    appendFolded(text, m_buffer);
    return m_buffer;
}

constinit thread_local PlainKey plainKey;

[[gnu::noinline]] bool isInFolded(std::string_view text, std::string_view key, bool asWord) {
    thread_local FoldedKey foldedKey;
    if (!foldedKey.isFor(key)) {
        foldedKey.set(key);
        plainKey.set(key, foldedKey.folded());
    }
    if (foldedKey.folded().empty()) {
        return true;
    }
    return asWord ? foldedKey.isWordIn(text) : foldedKey.isIn(text);
}

// A hit counts whatever else the text holds, as folding leaves what is ASCII side by side; without one, what is not
// ASCII may still fold to the key.
[[gnu::noinline]] bool isInFrom(std::size_t from, std::string_view text) {
    return plainKey.isFrom(from, text) ||
           (!std::all_of(text.begin(), text.end(), isAscii) && isInFolded(text, plainKey.key(), false));
}

} // namespace

bool isIn(std::string_view text, std::string_view key, bool asWord) {
    const PlainKey& ready = plainKey;
    if (asWord || !ready.isFor(key)) [[unlikely]] {
        return isInFolded(text, key, asWord);
    }
    if (text.size() < wordSize) {
        return ready.candidates(loadFew(text.data(), text.size())) != 0 && isInFrom(0, text);
    }
    const std::size_t last = text.size() - wordSize;
    for (std::size_t at = 0;; at = std::min(at + PlainKey::stride, last)) {
        if (ready.candidates(load(text.data() + at)) != 0) {
            return isInFrom(at, text);
        }
        if (at == last) {
            return false;
        }
    }
}

} // namespace host::text
