#include "tools/wideseek/check/SourceListCheck.h"

#include "tools/wideseek/check/SourceListElements.h"
#include "tools/wideseek/check/SourceListReader.h"
#include "tools/wideseek/check/SourceListRules.h"

#include <algorithm>
#include <list>
#include <stdexcept>

namespace wideseek {

namespace {

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

void reportSources(const std::vector<SourceElement>& elements, SourceListReport& report) {
    const auto isAsked = [](const SourceElement& element) { return element.place.has_value(); };
    report.asked.resize(static_cast<std::size_t>(std::count_if(elements.begin(), elements.end(), isAsked)));
    for (const SourceElement& element : elements) {
        const ReportedSource source{element.line, element.value("id_name"), element.value("display_name"),
                                    element.isEnabled};
        if (element.place) {
            report.asked.at(*element.place) = source;
        } else if (element.isItem) {
            report.others.push_back(source);
        }
    }
}

SourceListReport explain(const std::filesystem::path& path, const SourceListFile& file) {
    SourceListReport report;
    report.file = path.string();
    report.problem = file.problem;
    if (report.problem) {
        return report;
    }
    const std::vector<SourceElement> elements = elementsOf(file);
    if (std::none_of(elements.begin(), elements.end(), [](const auto& element) { return element.isItem; })) {
        report.problem = whyNothingIsRead(file);
        return report;
    }
    reportSources(elements, report);
    report.findings = findingsOf(file, elements);
    return report;
}

bool isSame(const ReportedSource& told, const NS_WS::WideseekCfgItemData& listed) {
    return told.id == listed.strIdName && told.label == listed.strDisplayName;
}

} // namespace

SourceListReport explainSourceList(const std::filesystem::path& path) {
    return explain(path, readSourceList(path));
}

SourceListReport checkSourceList(const std::filesystem::path& path) {
    const SourceListFile file = readSourceList(path);
    SourceListReport report = explain(path, file);
    if (!file.problem) {
        const std::list<NS_WS::WideseekCfgItemData> listed = SourceListReader().read(file.bytes);
        if (!std::equal(report.asked.begin(), report.asked.end(), listed.begin(), listed.end(), isSame)) {
            throw std::runtime_error(report.file + ": the library reads other sources from this file than the tool "
                                                   "would explain; take both from the same version");
        }
    }
    return report;
}

} // namespace wideseek
