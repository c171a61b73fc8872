#include "host/text/FieldMatch.h"

#include "host/text/Find.h"
#include "host/text/Fold.h"
#include "host/text/PlainKey.h"
#include "host/text/Utf8.h"

#include <algorithm>
#include <string>

namespace host::text {

namespace {

// Any key, and any field, which is folded.
class FoldedKey {
public:
    bool isFor(std::string_view key) const { return key == m_key; }
    void set(std::string_view key);
    std::string_view folded() const { return m_folded; }

    bool isIn(std::string_view text) { return findBytes(fold(text), m_folded, 0) != std::string::npos; }

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

std::string_view FoldedKey::fold(std::string_view text) {
    m_buffer.clear();
    appendFolded(text, m_buffer);
    return m_buffer;
}

constinit thread_local PlainKey plainKey;

[[gnu::noinline]] bool isInFolded(std::string_view text, std::string_view key) {
    thread_local FoldedKey foldedKey;
    if (!foldedKey.isFor(key)) {
        foldedKey.set(key);
        plainKey.set(key, foldedKey.folded());
    }
    return foldedKey.folded().empty() || foldedKey.isIn(text);
}

// A hit counts whatever else the text holds, as folding leaves what is ASCII side by side; without one, what is not
// ASCII may still fold to the key.
[[gnu::noinline]] bool isInFrom(std::size_t from, std::string_view text) {
    return plainKey.isFrom(from, text) ||
           (!std::all_of(text.begin(), text.end(), isAscii) && isInFolded(text, plainKey.key()));
}

} // namespace

bool isIn(std::string_view text, std::string_view key) {
    const PlainKey& ready = plainKey;
    if (!ready.isFor(key)) [[unlikely]] {
        return isInFolded(text, key);
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
