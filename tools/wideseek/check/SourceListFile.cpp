#include "tools/wideseek/check/SourceListFile.h"

#include "host/files/FileText.h"
#include "host/text/Utf8.h"

#include <iconv.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace wideseek {

namespace {

constexpr std::string_view blanks = " \t\r\n";

std::vector<std::size_t> lineBreaksOf(std::string_view text) {
    std::vector<std::size_t> breaks;
    for (std::size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1)) {
        breaks.push_back(at);
    }
    return breaks;
}

// How many lines end in front of offset.
std::size_t linesBefore(const std::vector<std::size_t>& lineBreaks, std::size_t offset) {
    return static_cast<std::size_t>(std::lower_bound(lineBreaks.begin(), lineBreaks.end(), offset) -
                                    lineBreaks.begin());
}

Position positionAt(const SourceListFile& file, std::size_t offset) {
    const std::size_t lines = linesBefore(file.lineBreaks, offset);
    const std::size_t begin = lines == 0 ? 0 : file.lineBreaks[lines - 1] + 1;
    const std::string_view line = std::string_view(file.text).substr(begin, offset - begin);
    const auto characters =
        line.size() - static_cast<std::size_t>(std::count_if(line.begin(), line.end(), host::text::isContinuation));
    return {lines + 1, characters + 1};
}

std::size_t offsetOf(const SourceListFile& file, const pugi::xml_node& node) {
    const auto offset = static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, node.offset_debug()));
    return node.type() == pugi::node_element ? offset
                                             : std::min(file.text.find_first_not_of(blanks, offset), file.text.size());
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
    std::string error;
    auto file = host::readFile(path, error);
    if (file) {
        bytes = std::move(file->bytes);
        return std::nullopt;
    }
    const std::string name = path.string() + ": "; // a report names the file itself
    return FileProblem{{}, error.starts_with(name) ? error.substr(name.size()) : error};
}

} // namespace

std::size_t SourceListFile::lineOf(const pugi::xml_node& node) const {
    return linesBefore(lineBreaks, offsetOf(*this, node)) + 1;
}

Position SourceListFile::positionOf(const pugi::xml_node& node) const {
    return positionAt(*this, offsetOf(*this, node));
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
    file.lineBreaks = lineBreaksOf(file.text);
    const pugi::xml_parse_result result =
        file.document.load_buffer(file.text.data(), file.text.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!result) {
        file.problem = FileProblem{positionAt(file, static_cast<std::size_t>(result.offset)),
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
