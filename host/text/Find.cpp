#include "host/text/Find.h"

#include "host/text/Words.h"

#include <cstring>

namespace host::text {

namespace {

// The high bit of every byte of word that is zero, and perhaps of bytes behind the first of them. 0 when none is zero.
Word zeroBytes(Word word) {
    return (word - everyByte(1)) & ~word & highBits;
}

// From so many bytes on, memmem, which skips by what the needle holds, needs fewer steps.
constexpr std::size_t longNeedle = 8;

} // namespace

std::size_t findBytes(std::string_view hay, std::string_view needle, std::size_t from) {
    if (from > hay.size() || needle.size() > hay.size() - from) {
        return std::string_view::npos;
    }
    if (needle.size() == 1) {
        return hay.find(needle.front(), from);
    }
    if (needle.size() >= longNeedle) {
        const void* place = memmem(hay.data() + from, hay.size() - from, needle.data(), needle.size());
        return place == nullptr ? std::string_view::npos
                                : static_cast<std::size_t>(static_cast<const char*>(place) - hay.data());
    }
    const std::size_t places = hay.size() - needle.size() + 1;
    const char* const begin = hay.data();
    const std::size_t toLast = needle.size() - 1;
    const Word first = everyByte(static_cast<unsigned char>(needle.front()));
    const Word last = everyByte(static_cast<unsigned char>(needle.back()));
    std::size_t at = from;
    for (; at + wordSize <= places; at += wordSize) {
        const Word difference = (load(begin + at) ^ first) | (load(begin + at + toLast) ^ last);
        for (Word marks = zeroBytes(difference); marks != 0; marks &= marks - 1) {
            const std::size_t place = at + firstMarked(marks);
            if (std::memcmp(begin + place, needle.data(), needle.size()) == 0) {
                return place;
            }
        }
    }
    for (; at < places; ++at) {
        if (begin[at] == needle.front() && std::memcmp(begin + at, needle.data(), needle.size()) == 0) {
            return at;
        }
    }
    return std::string_view::npos;
}

} // namespace host::text
