#include "host/contacts/BuddyFile.h"

#include "host/files/Problems.h"
#include "host/text/Key.h"
#include "host/text/Utf8.h"
#include "platform/Presence.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>
#include <utility>

namespace host {

namespace {

using Json = nlohmann::json;

// The value of a member: a text, a whole number, or neither, which no member may be.
struct Value {
    const std::string* text = nullptr;
    std::optional<int> number;
};

// A text byte by byte, as the parser takes it.
class Bytes {
public:
    explicit Bytes(TextWindow& text) : m_text(text) { moveOn(); }

    bool atEnd() const { return m_next == m_held.size(); }
    char first() const { return m_held[m_next]; }
    void takeFirst() {
        if (++m_next == m_held.size()) {
            moveOn();
        }
    }

    // The line in which the byte stands before this position, one of the last that were taken.
    std::size_t lineBefore(std::size_t position) const {
        const std::string_view before = m_held.substr(0, std::min(position - m_begin, m_next));
        return 1 + m_lines + lineEnds(before);
    }

    // Whether all of the text is UTF-8, of which all is that stands more than a character before the position.
    bool isUtf8(std::size_t position) {
        std::string_view before = m_held.substr(0, std::min(position - m_begin, m_next));
        std::size_t begin = before.size() - std::min(before.size(), kept);
        for (std::size_t i = 0; i < longestCharacter && m_begin + begin > 0 && begin < before.size() &&
                                text::isContinuation(before[begin]);
             ++i) {
            ++begin;
        }
        return text::isUtf8(before.substr(begin)) || isUtf8From(m_begin + begin);
    }

private:
    static constexpr std::size_t longestCharacter = 4;
    static constexpr std::size_t kept = 2 * longestCharacter; // of what was taken

    static std::size_t lineEnds(std::string_view text) {
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    }

    void moveOn() {
        const std::size_t passed = m_next - std::min(m_next, kept);
        m_lines += lineEnds(m_held.substr(0, passed));
        m_begin += passed;
        m_next -= passed;
        m_held = m_text.from(m_begin, m_next + 1);
    }

    bool isUtf8From(std::size_t position) {
        while (true) {
            std::string_view rest = m_text.from(position, longestCharacter);
            if (rest.size() < longestCharacter) {
                return text::isUtf8(rest);
            }
            while (rest.size() >= longestCharacter) {
                const text::Character character = text::takeFirst(rest);
                if (character.codePoint < 0) {
                    return false;
                }
                position += character.size;
            }
        }
    }

    TextWindow& m_text;
    std::string_view m_held;
    std::size_t m_begin = 0; // where it begins in the text
    std::size_t m_next = 0;  // in what is held; before it, what was taken
    std::size_t m_lines = 0; // that end before what is held
};

// Goes through bytes; null: their end.
class ByteIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = char;

    explicit ByteIterator(Bytes* bytes = nullptr) : m_bytes(bytes) {}

    char operator*() const { return m_bytes->first(); }
    ByteIterator& operator++() {
        m_bytes->takeFirst();
        return *this;
    }
    bool operator==(const ByteIterator& other) const { return isEnd() == other.isEnd(); }

private:
    bool isEnd() const { return m_bytes == nullptr || m_bytes->atEnd(); }

    Bytes* m_bytes;
};

// Follows the parser. Where it is: in the array (depth 1), in an entry (2), in an entry's attributes (3), in one of
// them (4). What is of no use, such as a member that nobody knows, is passed over with all that is in it.
class Reader final : public nlohmann::json_sax<Json> {
public:
    using Take = std::function<std::string(const PresenceInfo& buddy)>;

    Reader(Bytes& bytes, const std::string& file, const Take& take)
        : m_bytes(bytes), m_file(file), m_take(take), m_problems(file) {}

    BuddyFile result() { return {m_problems.take(), std::move(m_error)}; }

    bool null() override { return value({}); }
    bool boolean(bool) override { return value({}); }
    bool number_float(double, const std::string&) override { return value({}); }
    bool binary(binary_t&) override { return value({}); }
    bool string(std::string& text) override { return value({.text = &text, .number = {}}); }
    bool number_integer(std::int64_t number) override {
        const bool fits = number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
        return value(fits ? Value{.text = nullptr, .number = static_cast<int>(number)} : Value());
    }
    bool number_unsigned(std::uint64_t number) override {
        const bool fits = number <= static_cast<std::uint64_t>(std::numeric_limits<int>::max());
        return value(fits ? Value{.text = nullptr, .number = static_cast<int>(number)} : Value());
    }

    bool key(std::string& name) override {
        if (m_passed == 0) {
            m_member = name;
        }
        return true;
    }

    bool start_object(std::size_t) override {
        if (m_passed > 0 || (m_depth != 1 && m_depth != 3)) {
            return pass();
        }
        if (m_depth == 1) {
            beginEntry();
        } else {
            m_attribute = {};
        }
        ++m_depth;
        return true;
    }

    bool end_object() override {
        if (m_passed > 0) {
            --m_passed;
            return true;
        }
        if (--m_depth == 1) {
            endEntry();
        } else {
            endAttribute();
        }
        return true;
    }

    bool start_array(std::size_t) override {
        const bool attributes = m_depth == 2 && m_member == "attributes";
        if (m_passed > 0 || (m_depth != 0 && !attributes)) {
            return pass();
        }
        ++m_depth;
        return true;
    }

    bool end_array() override {
        if (m_passed > 0) {
            --m_passed;
        } else {
            --m_depth;
        }
        return true;
    }

    bool parse_error(std::size_t position, const std::string&, const Json::exception& reason) override {
        m_error = m_file + ":" + std::to_string(m_bytes.lineBefore(position)) + ": ";
        if (!m_bytes.isUtf8(position)) {
            m_error += "is not UTF-8 text; save the file as UTF-8";
            return false;
        }
        // "[...parse_error.101] parse error at ...: syntax error while parsing value - what is wrong"
        std::string_view words = reason.what();
        for (const std::string_view ahead : {"] ", " - "}) {
            words.remove_prefix(words.find(ahead) == std::string_view::npos ? 0 : words.find(ahead) + ahead.size());
        }
        m_error.append("is not JSON (").append(words).append("); mend the file there");
        return false;
    }

private:
    // A list or an object begins that is passed over.
    bool pass() {
        const bool goesOn = m_passed > 0 || value({});
        ++m_passed;
        return goesOn;
    }

    bool value(const Value& value) {
        if (m_passed > 0) {
            return true;
        }
        switch (m_depth) {
        case 0:
            m_error = m_file + ": is no JSON array; put the buddies between [ and ]";
            return false;
        case 1:
            beginEntry();
            refuse("is no object");
            endEntry();
            break;
        case 2:
            takeOfEntry(value);
            break;
        case 3:
            refuse("an attribute is no object");
            break;
        default:
            takeOfAttribute(value);
        }
        return true;
    }

    void takeOfEntry(const Value& value) {
        const std::pair<const char*, std::string*> texts[] = {
            {"name", &m_buddy.strName}, {"info1", &m_buddy.strInfo1}, {"info2", &m_buddy.strInfo2}};
        for (const auto& [name, text] : texts) {
            if (m_member == name) {
                set(value, *text);
            }
        }
        if (m_member == "id") {
            m_hasId = true;
            set(value, m_buddy.iContactId);
        } else if (m_member == "info") {
            set(value, m_buddy.iInfo);
        } else if (m_member == "attributes") {
            refuse("\"attributes\" is no array");
        }
    }

    void takeOfAttribute(const Value& value) {
        if (m_member == "name") {
            set(value, m_attribute.strAttrName);
        } else if (m_member == "value") {
            set(value, m_attribute.strValue);
        } else if (m_member == "type") {
            set(value, m_attribute.iType);
        }
    }

    void set(const Value& value, std::string& member) {
        if (value.text != nullptr) {
            member = *value.text;
        } else {
            refuse("\"" + m_member + "\" is not a string");
        }
    }

    void set(const Value& value, int& member) {
        if (value.number) {
            member = *value.number;
        } else {
            refuse("\"" + m_member + "\" is not a whole number");
        }
    }

    void beginEntry() {
        ++m_entry;
        m_buddy = {};
        m_hasId = false;
        m_refusal.clear();
    }

    void endEntry() {
        if (!m_hasId) {
            refuse("\"id\" is missing");
        }
        if (m_refusal.empty()) {
            m_refusal = m_take(m_buddy);
        }
        if (!m_refusal.empty()) {
            problem(m_refusal + "; the entry is left out");
        }
    }

    void endAttribute() {
        if (m_attribute.iType == ATTRIBUTE_TYPE_PHONE) {
            if (auto number = text::dialableNumber(m_attribute.strValue)) {
                m_attribute.strValue = std::move(*number);
            } else {
                problem(notDialable(m_attribute.strValue));
            }
        }
        m_buddy.listAttr.push_back(std::move(m_attribute));
    }

    // The first reason counts.
    void refuse(const std::string& reason) {
        if (m_refusal.empty()) {
            m_refusal = reason;
        }
    }

    void problem(const std::string& reason) { m_problems.add("entry " + std::to_string(m_entry), reason); }

    Bytes& m_bytes;
    const std::string& m_file;
    const Take& m_take;
    Problems m_problems;
    std::string m_error;
    int m_depth = 0;
    std::size_t m_passed = 0; // lists and objects begun within what is passed over
    std::string m_member;     // the one whose value comes next
    std::size_t m_entry = 0;  // from 1
    PresenceInfo m_buddy;
    bool m_hasId = false;
    std::string m_refusal; // why the entry is left out; empty: it is not
    Attribute m_attribute;
};

} // namespace

BuddyFile readBuddies(TextWindow text, const std::string& file,
                      const std::function<std::string(const PresenceInfo& buddy)>& take) {
    Bytes bytes(text);
    Reader reader(bytes, file, take);
    Json::sax_parse(ByteIterator(&bytes), ByteIterator(), &reader);
    return reader.result();
}

} // namespace host
