#include "tools/wideseek/SourceListCheck.h"

#include "tools/wideseek/SourceListReader.h"
#include "tools/wideseek/SourceListRules.h"

#include <algorithm>
#include <initializer_list>
#include <set>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace wideseek {

namespace {

using Attribute = std::pair<const char*, std::string>;

void setAttribute(pugi::xml_node node, const Attribute& attribute) {
    pugi::xml_attribute found = node.attribute(attribute.first);
    (found ? found : node.append_attribute(attribute.first)).set_value(attribute.second.c_str());
}

// Which elements the library lists, in its order, when all of them have these attributes. Each is labelled with its
// index for that, which is how it is found again.
std::vector<std::size_t> listedWith(const SourceListReader& reader, const pugi::xml_document& document,
                                    std::initializer_list<Attribute> attributes) {
    pugi::xml_document copy;
    copy.reset(document);
    std::size_t index = 0;
    for (const pugi::xml_node& element : elementsBelow(copy)) {
        setAttribute(element, {"display_name", std::to_string(index++)});
        for (const Attribute& attribute : attributes) {
            setAttribute(element, attribute);
        }
    }
    std::ostringstream xml;
    copy.save(xml, "", pugi::format_raw, pugi::encoding_utf8);
    std::vector<std::size_t> listed;
    for (const auto& source : reader.read(xml.str())) {
        listed.push_back(std::stoul(source.strDisplayName));
    }
    return listed;
}

// Every element that is an item of the list has been enabled: the disabled ones are those that a list of equal
// priorities leaves out.
std::vector<SourceElement> examine(const SourceListReader& reader, const SourceListFile& file) {
    const std::vector<std::size_t> asked = listedWith(reader, file.document, {});
    const std::vector<std::size_t> enabled = listedWith(reader, file.document, {{"priority", "0"}});
    const std::vector<std::size_t> items = listedWith(reader, file.document, {{"enable", "1"}, {"priority", "0"}});

    std::vector<SourceElement> elements;
    for (const pugi::xml_node& node : elementsBelow(file.document)) {
        SourceElement& element = elements.emplace_back();
        element.node = node;
        element.line = file.positionOf(node).line;
    }
    for (const std::size_t index : items) {
        elements[index].isItem = true;
    }
    for (const std::size_t index : enabled) {
        elements[index].isEnabled = true;
    }
    for (std::size_t place = 0; place < asked.size(); ++place) {
        elements[asked[place]].place = place;
    }
    return elements;
}

FileProblem whyNothingIsRead(const SourceListFile& file) {
    const pugi::xml_node root = file.document.child("root_wideseek");
    if (root) {
        return {file.positionOf(root), "<root_wideseek> has no <item>, so the phone reads no sources from this file"};
    }
    const std::vector<pugi::xml_node> elements = elementsBelow(file.document);
    const std::string first = elements.empty()
                                  ? "there is no element"
                                  : "the outermost element is <" + std::string(elements.front().name()) + ">";
    return {elements.empty() ? Position{} : file.positionOf(elements.front()),
            first + ", where the phone looks for <root_wideseek> and reads no sources without it"};
}

// The labels and ids of what is asked come from the file as it stands.
void reportSources(const std::list<NS_WS::WideseekCfgItemData>& listed, const std::vector<SourceElement>& elements,
                   SourceListReport& report) {
    report.asked.resize(listed.size());
    std::transform(listed.begin(), listed.end(), report.asked.begin(), [](const auto& source) {
        return ReportedSource{0, source.strIdName, source.strDisplayName, true};
    });
    for (const SourceElement& element : elements) {
        if (element.place) {
            report.asked.at(*element.place).line = element.line;
        } else if (element.isItem) {
            report.others.push_back(
                {element.line, element.value("id_name"), element.value("display_name"), element.isEnabled});
        }
    }
}

} // namespace

SourceListReport checkSourceList(const std::filesystem::path& path) {
    SourceListReport report;
    report.file = path.string();
    const SourceListFile file = readSourceList(path);
    report.problem = file.problem;
    if (report.problem) {
        return report;
    }
    const SourceListReader reader;
    const std::vector<SourceElement> elements = examine(reader, file);
    if (std::none_of(elements.begin(), elements.end(), [](const auto& element) { return element.isItem; })) {
        report.problem = whyNothingIsRead(file);
        return report;
    }
    reportSources(reader.read(file.bytes), elements, report);
    report.findings = findingsOf(file, elements);
    return report;
}

} // namespace wideseek
