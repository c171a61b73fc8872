#include "host/formats/Charset.h"

#include "host/text/Utf8.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace host {

namespace {

constexpr std::string_view replacement = "\uFFFD";
constexpr const char* lastResort = "windows-1252";

iconv_t none() {
    return reinterpret_cast<iconv_t>(-1); // NOLINT: as iconv_open has it
}

struct Mark {
    std::string_view bytes;
    const char* charset;
};
constexpr Mark byteOrderMarks[] = {{"\xEF\xBB\xBF", "UTF-8"}, {"\xFF\xFE", "UTF-16LE"}, {"\xFE\xFF", "UTF-16BE"}};

const Mark* markOf(std::string_view bytes) {
    const auto* mark = std::find_if(std::begin(byteOrderMarks), std::end(byteOrderMarks),
                                    [&](const Mark& each) { return bytes.starts_with(each.bytes); });
    return mark == std::end(byteOrderMarks) ? nullptr : mark;
}

// UTF-16 of mostly ASCII, as column names and property names are: 0 or 1, the place of the zero in each pair of bytes.
int placeOfZeros(std::string_view bytes) {
    std::array<std::size_t, 2> zeros{};
    const std::size_t size = std::min(bytes.size(), enoughToTell) & ~std::size_t{1};
    for (std::size_t i = 0; i < size; ++i) {
        zeros.at(i % 2) += bytes[i] == '\0' ? 1U : 0U;
    }
    for (const int place : {0, 1}) {
        if (zeros.at(static_cast<std::size_t>(place)) > size / 4 &&
            zeros.at(static_cast<std::size_t>(1 - place)) == 0) {
            return place;
        }
    }
    return -1;
}

// Whether more of it is UTF-8 than is not, of what is beyond ASCII: a few bytes may be broken.
bool isMostlyUtf8(std::string_view text) {
    std::size_t characters = 0;
    std::size_t others = 0;
    while (!text.empty()) {
        const std::int32_t codePoint = text::takeFirst(text).codePoint;
        others += codePoint < 0 ? 1U : 0U;
        characters += codePoint >= 0x80 ? 1U : 0U;
    }
    return characters > others;
}

bool isUtf8Name(std::string_view name) {
    std::string plain;
    for (const char each : name) {
        if (each != '-' && each != '_') {
            plain += each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each;
        }
    }
    return plain == "utf8" || plain == "usascii" || plain == "ascii";
}

} // namespace

Charset::Charset(const std::string& name) : m_conversion(name.empty() ? none() : iconv_open("UTF-8", name.c_str())) {
}

Charset::~Charset() {
    if (isUsable()) {
        iconv_close(m_conversion);
    }
}

bool Charset::isUsable() const {
    return m_conversion != none();
}

std::string Charset::toUtf8(std::string_view text) {
    iconv(m_conversion, nullptr, nullptr, nullptr, nullptr);
    std::string result;
    appendUtf8(text, true, result);
    return result;
}

std::size_t Charset::appendUtf8(std::string_view piece, bool isLast, std::string& out) {
    std::array<char, 4096> block{};
    char* from = const_cast<char*>(piece.data()); // iconv only reads it
    std::size_t left = piece.size();
    while (left > 0) {
        char* to = block.data();
        std::size_t room = block.size();
        const bool stopped = iconv(m_conversion, &from, &left, &to, &room) == static_cast<std::size_t>(-1);
        const int reason = errno;
        out.append(block.data(), block.size() - room);
        if (stopped && reason == EINVAL && !isLast) {
            break;
        }
        if (stopped && reason != E2BIG && left > 0) {
            out += replacement;
            ++from;
            --left;
        }
    }
    return piece.size() - left;
}

bool isCharset(const std::string& name) {
    return Charset(name).isUsable();
}

std::string charsetOfBeginning(std::string_view bytes) {
    if (const Mark* mark = markOf(bytes)) {
        return mark->charset;
    }
    const int zeros = placeOfZeros(bytes);
    return zeros < 0 ? "" : zeros == 0 ? "UTF-16BE" : "UTF-16LE";
}

std::size_t sizeOfMark(std::string_view bytes) {
    const Mark* mark = markOf(bytes);
    return mark == nullptr ? 0 : mark->bytes.size();
}

std::string charsetOf(std::string_view bytes) {
    std::string told = charsetOfBeginning(bytes);
    if (!told.empty()) {
        return told;
    }
    return text::isUtf8(bytes) || isMostlyUtf8(bytes) ? "UTF-8" : lastResort;
}

void readAsUtf8(std::string_view bytes, const std::string& charset, Utf8Text& result) {
    result.charset = charset.empty() ? charsetOf(bytes) : charset;
    bytes.remove_prefix(sizeOfMark(bytes));
    Charset conversion(result.charset);
    if (isUtf8Name(result.charset) || !conversion.isUsable()) {
        result.text = bytes;
        return;
    }
    result.converted = conversion.toUtf8(bytes);
    result.text = result.converted;
}

std::size_t Utf8Source::read(char* to, std::size_t size) {
    constexpr std::size_t longestCharacter = 16; // bytes, and more than in any encoding
    constexpr std::size_t most = 16UL * 1024;
    while (m_given == m_converted.size()) {
        const std::string_view piece = m_text.from(m_next, longestCharacter);
        if (piece.empty()) {
            return 0;
        }
        m_converted.clear();
        m_given = 0;
        m_next += m_charset.appendUtf8(piece.substr(0, most), piece.size() < longestCharacter, m_converted);
    }
    const std::size_t count = m_converted.copy(to, size, m_given);
    m_given += count;
    return count;
}

} // namespace host
