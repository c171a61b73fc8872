#include "tools/wideseek/SourceListFile.h"

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string_view>

namespace wideseek {

namespace {

constexpr std::string_view blanks = " \t\r\n";

Position positionAt(std::string_view text, std::size_t offset) {
    const std::string_view before = text.substr(0, offset);
    const std::size_t lineBreak = before.rfind('\n');
    const std::string_view line = lineBreak == std::string_view::npos ? before : before.substr(lineBreak + 1);
    const auto isFirstByte = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; };
    return {static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')) + 1,
            static_cast<std::size_t>(std::count_if(line.begin(), line.end(), isFirstByte)) + 1};
}

// The name by which iconv knows an encoding that differs from UTF-8; null for the others.
const char* iconvNameOf(pugi::xml_encoding encoding) {
    switch (encoding) {
    case pugi::encoding_utf16_le:
        return "UTF-16LE";
    case pugi::encoding_utf16_be:
        return "UTF-16BE";
    case pugi::encoding_utf32_le:
        return "UTF-32LE";
    case pugi::encoding_utf32_be:
        return "UTF-32BE";
    case pugi::encoding_latin1:
        return "ISO-8859-1";
    default:
        return nullptr;
    }
}

// What cannot be converted is left out.
std::string toUtf8(std::string bytes, pugi::xml_encoding encoding) {
    const char* name = iconvNameOf(encoding);
    iconv_t converter = name ? iconv_open("UTF-8", name) : nullptr;
    if (!name || converter == iconv_t(-1)) {
        return bytes;
    }
    std::string text(2 * bytes.size(), '\0');
    char* in = bytes.data();
    char* out = text.data();
    std::size_t inLeft = bytes.size();
    std::size_t outLeft = text.size();
    iconv(converter, &in, &inLeft, &out, &outLeft);
    iconv_close(converter);
    text.resize(text.size() - outLeft);
    return text;
}

std::optional<FileProblem> readBytes(const std::filesystem::path& path, std::string& bytes) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        return FileProblem{{}, "is a folder, not a source list"};
    }
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(file), {});
    if (!file.is_open() || file.bad()) {
        return FileProblem{{}, std::string("cannot be read: ") + std::strerror(errno)};
    }
    return std::nullopt;
}

} // namespace

Position SourceListFile::positionOf(const pugi::xml_node& node) const {
    auto offset = static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, node.offset_debug()));
    if (node.type() != pugi::node_element) {
        offset = std::min(text.find_first_not_of(blanks, offset), text.size());
    }
    return positionAt(text, offset);
}

SourceListFile readSourceList(const std::filesystem::path& path) {
    SourceListFile file;
    file.problem = readBytes(path, file.bytes);
    if (file.problem) {
        return file;
    }
    // The first parse finds out the encoding.
    const pugi::xml_encoding encoding = file.document.load_buffer(file.bytes.data(), file.bytes.size()).encoding;
    file.text = toUtf8(file.bytes, encoding);
    const pugi::xml_parse_result result =
        file.document.load_buffer(file.text.data(), file.text.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!result) {
        file.problem = FileProblem{positionAt(file.text, static_cast<std::size_t>(result.offset)),
                                   std::string("is not well-formed XML: ") + result.description()};
    }
    return file;
}

std::vector<pugi::xml_node> elementsBelow(const pugi::xml_node& node) {
    struct Collector : pugi::xml_tree_walker {
        std::vector<pugi::xml_node> elements;
        bool for_each(pugi::xml_node& found) override {
            if (found.type() == pugi::node_element) {
                elements.push_back(found);
            }
            return true;
        }
    } collector;
    pugi::xml_node(node).traverse(collector);
    return collector.elements;
}

} // namespace wideseek
