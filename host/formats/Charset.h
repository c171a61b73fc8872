// Text in any encoding, brought to UTF-8.
//
//     Utf8Text file;
//     readAsUtf8(bytes, "", file); // the encoding is found
//     read(file.text);
#pragma once

#include "host/files/TextWindow.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace host {

// Turns text of one encoding into UTF-8.
class Charset {
public:
    // name: as iconv knows it (IANA's names). Not usable when it does not.
    explicit Charset(const std::string& name);
    ~Charset();
    Charset(const Charset&) = delete;
    Charset& operator=(const Charset&) = delete;

    bool isUsable() const;

    // What stands for nothing in the encoding becomes U+FFFD. Usable only.
    std::string toUtf8(std::string_view text);

    // The same of the next piece of a text, to be appended. Gives how many of its bytes were used: all of the last
    // piece; of any other perhaps not the beginning of a character at its end, with which the next piece must begin.
    std::size_t appendUtf8(std::string_view piece, bool isLast, std::string& out);

private:
    void* m_conversion;
};

// Whether the encoding is known.
bool isCharset(const std::string& name);

// What a text is encoded in as far as its first bytes tell (enoughToTell or all): by its byte order mark, or UTF-16
// when every other one is zero. Empty: they do not.
inline constexpr std::size_t enoughToTell = 64;
std::string charsetOfBeginning(std::string_view bytes);

// How many bytes the byte order mark at the front has; 0: there is none.
std::size_t sizeOfMark(std::string_view bytes);

// What a whole file is encoded in: by its byte order mark, else UTF-16 when every other byte of its beginning is zero,
// UTF-8 when it is that or most of it is, else windows-1252, in which every text is some text.
std::string charsetOf(std::string_view bytes);

struct Utf8Text {
    std::string_view text; // without a byte order mark; of the bytes, or of converted
    std::string charset;   // what the bytes were encoded in
    std::string converted; // empty: the bytes were UTF-8
};

// The bytes of a file in this encoding (known), or in that of charsetOf when it is empty. bytes must outlive the
// result, which must stay where it is. Any thread.
void readAsUtf8(std::string_view bytes, const std::string& charset, Utf8Text& result);

// A text in an encoding that is usable, as UTF-8, a piece at a time.
class Utf8Source final : public ByteSource {
public:
    // Both must outlive the source.
    Utf8Source(TextWindow& text, Charset& charset) : m_text(text), m_charset(charset) {}

    std::size_t read(char* to, std::size_t size) override;

private:
    TextWindow& m_text;
    Charset& m_charset;
    std::size_t m_next = 0; // in the text
    std::string m_converted;
    std::size_t m_given = 0; // of it
};

} // namespace host
