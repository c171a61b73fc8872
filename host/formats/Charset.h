// Text in any encoding, brought to UTF-8.
//
//     Utf8Text file;
//     readAsUtf8(bytes, "", file); // the encoding is found
//     read(file.text);
#pragma once

#include <string>
#include <string_view>

namespace host {

// Turns text of one encoding into UTF-8, piece by piece; each piece begins and ends with a whole character.
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

private:
    void* m_conversion;
};

// Whether the encoding is known.
bool isCharset(const std::string& name);

// What a whole file is encoded in: by its byte order mark, else UTF-8 when it is that, UTF-16 when every other byte of
// its beginning is zero, else windows-1252, in which every text is some text.
std::string charsetOf(std::string_view bytes);

struct Utf8Text {
    std::string_view text; // without a byte order mark; of the bytes, or of converted
    std::string charset;   // what the bytes were encoded in
    std::string converted; // empty: the bytes were UTF-8
};

// The bytes of a file in this encoding (known), or in that of charsetOf when it is empty. bytes must outlive the
// result, which must stay where it is. Any thread.
void readAsUtf8(std::string_view bytes, const std::string& charset, Utf8Text& result);

} // namespace host
