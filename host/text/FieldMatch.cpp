#include "host/text/FieldMatch.h"

#include "host/text/Find.h"
#include "host/text/Fold.h"
#include "host/text/Key.h"
#include "host/text/KeypadKey.h"
#include "host/text/NameForm.h"
#include "host/text/NumberForm.h"
#include "host/text/PlainWord.h"
#include "host/text/Utf8.h"

#include <algorithm>
#include <string>
#include <vector>

namespace host::text {

namespace {

bool isPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(), isAscii);
}

// A key of text, and any name.
class TextKey {
public:
    bool isFor(std::string_view key) const { return key == m_key; }
    void set(std::string_view key);
    bool isIn(std::string_view name);

private:
    bool isInForms(std::string_view name);

    std::string m_key;
    std::vector<std::string> m_words;
    std::vector<PlainWord> m_plainWords; // those of them that can be one, the last typed first
    std::string m_forms;
};

void TextKey::set(std::string_view key) {
    std::vector<std::string> words = keyWords(key);
    std::vector<PlainWord> plainWords;
    for (auto word = words.rbegin(); word != words.rend(); ++word) {
        if (PlainWord::canBe(*word)) {
            plainWords.emplace_back(*word);
        }
    }
    m_key = key; // the last step that may fail, and then nothing has changed
    m_words.swap(words);
    m_plainWords.swap(plainWords);
}

// A word counts as found whatever else the name holds, as its forms keep what is ASCII side by side. One that is not
// found may still stand in the forms of what is not ASCII.
bool TextKey::isIn(std::string_view name) {
    const auto found = [name](const PlainWord& word) { return word.isIn(name); };
    if (std::all_of(m_plainWords.begin(), m_plainWords.end(), found)) {
        return m_plainWords.size() == m_words.size() || isInForms(name);
    }
    return !isPlain(name) && isInForms(name);
}

bool TextKey::isInForms(std::string_view name) {
    m_forms.clear();
    appendNameForms(name, m_forms);
    const auto found = [this](const std::string& word) { return findBytes(m_forms, word, 0) != std::string::npos; };
    return std::all_of(m_words.begin(), m_words.end(), found);
}

constinit thread_local KeypadKey keypadKey;

// A key of keypad digits, and a field that does not hold it as it is.
bool isInOtherForms(std::string_view field, std::string_view key) {
    if (!nationalNumber(field)) {
        return false;
    }
    thread_local std::string forms;
    forms.clear();
    appendNumberForms(field, forms);
    return findBytes(forms, key, 0) != std::string::npos;
}

// Any key of keypad digits, and any field.
[[gnu::noinline]] bool isInFolded(std::string_view field, std::string_view key) {
    thread_local std::string buffer;
    buffer.clear();
    appendFolded(field, buffer);
    return findBytes(buffer, key, 0) != std::string::npos || isInOtherForms(buffer, key);
}

// A key that nothing has been made ready for, or one of text.
[[gnu::noinline]] bool isInOther(std::string_view field, std::string_view key) {
    thread_local TextKey textKey;
    if (!textKey.isFor(key)) {
        if (isKeypadKey(key)) {
            keypadKey.set(key);
            return isInFolded(field, key);
        }
        textKey.set(key);
    }
    return textKey.isIn(field);
}

[[gnu::noinline]] bool isInFrom(std::size_t from, std::string_view field) {
    return keypadKey.isFrom(from, field) || (!isPlain(field) && isInFolded(field, keypadKey.key())) ||
           (knowsDialling && isInOtherForms(field, keypadKey.key()));
}

} // namespace

bool isIn(std::string_view field, std::string_view key) {
    const KeypadKey& ready = keypadKey;
    if (!ready.isFor(key)) [[unlikely]] {
        return isInOther(field, key);
    }
    if (field.size() < wordSize) {
        const bool mayBe = ready.candidates(loadFew(field.data(), field.size())) != 0;
        return (mayBe || knowsDialling) && isInFrom(0, field);
    }
    const std::size_t last = field.size() - wordSize;
    for (std::size_t at = 0;; at = std::min(at + KeypadKey::stride, last)) {
        if (ready.candidates(load(field.data() + at)) != 0) {
            return isInFrom(at, field);
        }
        if (at == last) {
            return knowsDialling && isInOtherForms(field, key);
        }
    }
}

} // namespace host::text
