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
    constexpr std::size_t looked = 64;
    std::array<std::size_t, 2> zeros{};
    const std::size_t size = std::min(bytes.size(), looked) & ~std::size_t{1};
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

Charset::Charset(const std::string& name) : m_conversion(iconv_open("UTF-8", name.c_str())) {
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
    std::array<char, 4096> block{};
    char* from = const_cast<char*>(text.data()); // iconv only reads it
    std::size_t left = text.size();
    while (left > 0) {
        char* to = block.data();
        std::size_t room = block.size();
        const bool stopped = iconv(m_conversion, &from, &left, &to, &room) == static_cast<std::size_t>(-1);
        const int reason = errno;
        result.append(block.data(), block.size() - room);
        if (stopped && reason != E2BIG && left > 0) {
            result += replacement;
            ++from;
            --left;
        }
    }
    return result;
}

bool isCharset(const std::string& name) {
    return Charset(name).isUsable();
}

std::string charsetOf(std::string_view bytes) {
    if (const Mark* mark = markOf(bytes)) {
        return mark->charset;
    }
    const int zeros = placeOfZeros(bytes);
    if (zeros >= 0) {
        return zeros == 0 ? "UTF-16BE" : "UTF-16LE";
    }
    return text::isUtf8(bytes) || isMostlyUtf8(bytes) ? "UTF-8" : lastResort;
}

void readAsUtf8(std::string_view bytes, const std::string& charset, Utf8Text& result) {
    result.charset = charset.empty() ? charsetOf(bytes) : charset;
    if (const Mark* mark = markOf(bytes)) {
        bytes.remove_prefix(mark->bytes.size());
    }
    Charset conversion(result.charset);
    if (isUtf8Name(result.charset) || !conversion.isUsable()) {
        result.text = bytes;
        return;
    }
    result.converted = conversion.toUtf8(bytes);
    result.text = result.converted;
}

} // namespace host
