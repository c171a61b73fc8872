#include "host/formats/VCardProperty.h"

#include "host/formats/KindOfNumber.h"
#include "host/text/Fold.h"

#include <algorithm>

namespace host {

namespace {

// Where one of these bytes stands outside quotation marks; npos: nowhere.
std::size_t findUnquoted(std::string_view text, std::string_view wanted) {
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"') {
            quoted = !quoted;
        } else if (!quoted && wanted.find(text[i]) != std::string_view::npos) {
            return i;
        }
    }
    return std::string_view::npos;
}

// Takes what stands before the first separator, and that with it.
std::string_view takePart(std::string_view& text, char separator) {
    const std::size_t end = findUnquoted(text, {&separator, 1});
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return part;
}

std::string_view unquoted(std::string_view text) {
    return text.size() > 1 && text.front() == '"' && text.back() == '"' ? text.substr(1, text.size() - 2) : text;
}

void readParameter(std::string_view name, std::string_view value, KindsOfNumber& kinds, VCardProperty& property) {
    if (text::isSameName(name, "CHARSET")) {
        property.charset = value;
    } else if (text::isSameName(value, "QUOTED-PRINTABLE")) {
        property.quotedPrintable = true;
    } else if (text::isSameName(name, "ENCODING") || text::isSameName(value, "BASE64")) {
        property.base64 = text::isSameName(value, "B") || text::isSameName(value, "BASE64");
    } else if (name.empty() || text::isSameName(name, "TYPE")) {
        kinds.add(value);
    }
}

void readParameters(std::string_view parameters, VCardProperty& property) {
    KindsOfNumber kinds;
    while (!parameters.empty()) {
        std::string_view values = takePart(parameters, ';');
        std::string_view name;
        if (const std::size_t equals = findUnquoted(values, "="); equals != std::string_view::npos) {
            name = values.substr(0, equals);
            values.remove_prefix(equals + 1);
        }
        values = unquoted(values); // as TYPE="work,voice" is meant
        while (!values.empty()) {
            readParameter(name, unquoted(takePart(values, ',')), kinds, property);
        }
    }
    property.kind = kinds.kind();
}

int hexOf(char byte) {
    if (byte >= '0' && byte <= '9') {
        return byte - '0';
    }
    const char small = text::lowerAscii(byte);
    return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

} // namespace

std::string_view propertyName(std::string_view line) {
    const std::string_view name = line.substr(0, line.find_first_of(";:"));
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? name : name.substr(dot + 1);
}

bool isQuotedPrintable(std::string_view line) {
    constexpr std::string_view wanted = "QUOTED-PRINTABLE";
    const std::string_view parameters = line.substr(0, line.find(':'));
    return std::search(parameters.begin(), parameters.end(), wanted.begin(), wanted.end(),
                       [](char a, char b) { return text::lowerAscii(a) == text::lowerAscii(b); }) != parameters.end();
}

std::optional<VCardProperty> readProperty(std::string_view line) {
    const std::size_t colon = findUnquoted(line, ":");
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    VCardProperty property;
    property.value = line.substr(colon + 1);
    std::string_view head = line.substr(0, colon);
    const std::string_view full = takePart(head, ';');
    property.name = propertyName(full);
    property.group = full.substr(0, full.size() - property.name.size());
    readParameters(head, property);
    return property;
}

std::string fromQuotedPrintable(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escaped = text[i] == '=' && i + 2 < text.size();
        const int high = escaped ? hexOf(text[i + 1]) : -1;
        const int low = escaped ? hexOf(text[i + 2]) : -1;
        if (high >= 0 && low >= 0) {
            bytes += static_cast<char>(high * 16 + low);
            i += 2;
        } else {
            bytes += text[i];
        }
    }
    return bytes;
}

std::vector<std::string> partsOf(std::string_view value, char separator, bool old) {
    std::vector<std::string> parts(1);
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == separator) {
            parts.emplace_back();
        } else if (value[i] != '\\' || i + 1 == value.size()) {
            parts.back() += value[i];
        } else if (const char next = value[i + 1]; old && next != ';' && next != ',' && next != '\\') {
            parts.back() += '\\';
        } else {
            parts.back() += next == 'n' || next == 'N' ? '\n' : next;
            ++i;
        }
    }
    return parts;
}

} // namespace host
