#include "tools/wideseek/import/ImportCommand.h"

#include "host/contacts/CardFolder.h"
#include "host/contacts/ContactPlace.h"
#include "host/files/FileText.h"
#include "host/formats/Charset.h"
#include "host/formats/ContactExport.h"
#include "host/text/Fold.h"
#include "tools/wideseek/ExitCode.h"
#include "tools/wideseek/Interrupt.h"
#include "tools/wideseek/PhoneArguments.h"
#include "tools/wideseek/Text.h"
#include "tools/wideseek/check/SourceListCheck.h"
#include "tools/wideseek/import/ImportReport.h"
#include "tools/wideseek/import/ImportTarget.h"
#include "tools/wideseek/import/Progress.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <utility>

namespace wideseek {

namespace {

namespace fs = std::filesystem;

struct Target {
    const char* name; // of its file in config/contacts
    std::vector<const char*> ids;
};

const Target targets[] = {{"local_directory", {"local_directory_search"}},
                          {"remote_directory", {"remote_directory_search"}},
                          {"broadsoft_directory", {"BroadSoft_directory_search", "Network_directory_search"}},
                          {"ldap_directory", {"ldap_search"}}};

// What was asked for cannot be done as it was asked for.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Ctrl-C.
class Interrupted : public std::exception {};

const Target& targetOf(const std::string& name) {
    const auto* target = std::find_if(std::begin(targets), std::end(targets), [&](const Target& each) {
        return name == each.name || std::find(each.ids.begin(), each.ids.end(), name) != each.ids.end();
    });
    if (target == std::end(targets)) {
        throw UsageError("--into " + printable(name) + ": no source that contacts can be brought into; these are " +
                         knownTargets());
    }
    return *target;
}

host::ExportOptions optionsOf(const ImportArguments& arguments) {
    host::ExportOptions options{arguments.encoding, {}};
    if (!arguments.encoding.empty() && !host::isCharset(arguments.encoding)) {
        throw UsageError(
            "--encoding " + printable(arguments.encoding) +
            ": is not known here; write UTF-8, UTF-16, windows-1252 or another name that \"iconv -l\" lists");
    }
    for (const std::string& column : arguments.columns) {
        const std::size_t equals = column.rfind('=');
        const auto meaning = host::meaningOfField(std::string_view(column).substr(std::min(column.size(), equals + 1)));
        if (equals == std::string::npos || !meaning) {
            throw UsageError("--map " + printable(column) + ": write COLUMN=FIELD, where the field is one of " +
                             host::knownFields());
        }
        options.columns.insert_or_assign(host::text::folded(column.substr(0, equals)), *meaning);
    }
    return options;
}

// "+442079460070 (work), organisation Example Ltd"
std::string shown(const host::Contact& additions) {
    std::string text;
    for (const host::ContactNumber& number : additions.numbers) {
        const std::string kind(nameOf(number.kind));
        text += (text.empty() ? "" : ", ") + number.number + (kind.empty() ? "" : " (" + kind + ")");
    }
    for (const host::Contact::Fact& fact : additions.facts) {
        text += (text.empty() ? "" : ", ") + std::string(nameOf(fact.kind)) + " " + fact.value;
    }
    return text.empty() ? additions.extra : text;
}

// Lines of a report, as many as are worth listing.
class Listed {
public:
    explicit Listed(std::string file) : m_file(std::move(file)) {}

    void add(std::size_t line, const std::string& text) {
        if (++m_count <= most) {
            m_lines.push_back(m_file + ":" + std::to_string(line) + ": " + text);
        }
    }

    std::vector<std::string> take() {
        if (m_count > most) {
            m_lines.push_back(m_file + ": and " + std::to_string(m_count - most) + " more like this");
        }
        return std::move(m_lines);
    }

private:
    static constexpr std::size_t most = host::Problems::most;

    std::string m_file;
    std::size_t m_count = 0;
    std::vector<std::string> m_lines;
};

ImportedFile importFile(const fs::path& path, const host::ExportOptions& options, ImportTarget& target) {
    ImportedFile file{.file = path.string(),
                      .form = {},
                      .encoding = {},
                      .error = {},
                      .merges = {},
                      .problems = {},
                      .unusedColumns = {}};
    const auto text = host::readFile(path, file.error);
    if (!text) {
        return file;
    }
    Listed merges(file.file);
    Listed numberless(file.file);
    Progress progress(file.file);
    const auto take = [&](const host::Contact& contact, std::size_t line) {
        if (interruptedBy() != 0) {
            throw Interrupted();
        }
        progress.step();
        if (contact.numbers.empty()) {
            ++file.numberless;
            numberless.add(line, host::shown(contact.name) + " has no number, and is left out");
            return;
        }
        const ImportTarget::Added added = target.add(contact);
        if (added.outcome == ImportTarget::Outcome::merged) {
            merges.add(line, host::shown(contact.name) + " is there already; new are " + shown(added.additions));
        }
        std::size_t& count = added.outcome == ImportTarget::Outcome::added    ? file.added
                             : added.outcome == ImportTarget::Outcome::merged ? file.merged
                                                                              : file.known;
        ++count;
    };
    host::ReadExport read = host::readExport(text->bytes, file.file, options, take);
    file.form = std::move(read.form);
    file.encoding = std::move(read.charset);
    file.error = std::move(read.contacts.error);
    file.merges = merges.take();
    file.problems = std::move(read.contacts.problems);
    std::vector<std::string> more = numberless.take();
    std::move(more.begin(), more.end(), std::back_inserter(file.problems));
    file.unusedColumns = std::move(read.unusedColumns);
    return file;
}

std::vector<fs::path> filesOf(const std::vector<std::string>& names, std::vector<ImportedFile>& unreadable) {
    std::vector<fs::path> files;
    for (const std::string& name : names) {
        std::error_code code;
        if (!fs::is_directory(name, code)) {
            files.emplace_back(name);
            continue;
        }
        std::string error;
        const auto cards = host::cardFilesIn(name, error);
        if (!cards || cards->empty()) {
            unreadable.push_back(
                {.file = name,
                 .form = {},
                 .encoding = {},
                 .error = error.empty() ? name + ": holds no .vcf file; name the files to import" : error,
                 .merges = {},
                 .problems = {},
                 .unusedColumns = {}});
        } else {
            files.insert(files.end(), cards->begin(), cards->end());
        }
    }
    return files;
}

// Whether a phone with this source list asks the source.
std::string hintFor(const Target& target, const fs::path& root) {
    const fs::path list = sourceListOf(root);
    const SourceListReport report = checkSourceList(list);
    const bool asked = std::any_of(report.asked.begin(), report.asked.end(), [&](const ReportedSource& source) {
        return std::find(target.ids.begin(), target.ids.end(), source.id) != target.ids.end();
    });
    return asked ? ""
                 : "The phone does not ask this source: give " + std::string(target.ids.front()) + " enable=\"1\" in " +
                       list.string();
}

ImportReport importInto(const fs::path& root, const ImportArguments& arguments) {
    const Target& source = targetOf(arguments.into);
    const host::ExportOptions options = optionsOf(arguments);
    const fs::path csv = root / "config/contacts" / (std::string(source.name) + ".csv");
    ImportReport report{.into = csv.string(), .dryRun = arguments.dryRun, .error = {}, .hint = {}, .files = {}};
    try {
        ImportTarget target(csv);
        report.into = target.path().string();
        for (const fs::path& file : filesOf(arguments.files, report.files)) {
            report.files.push_back(importFile(file, options, target));
        }
        if (!arguments.dryRun) {
            target.write();
        }
        report.hint = hintFor(source, root);
    } catch (const Interrupted&) {
        report.error = report.into + ": is as it was, as the import was ended";
    } catch (const std::runtime_error& error) {
        report.error = error.what();
    }
    return report;
}

fs::path rootOf(const std::string& root) {
    if (root.empty()) {
        throw UsageError("import: name the phone that takes the contacts with --root DIR; \"wideseek init DIR\" makes "
                         "one");
    }
    std::error_code error;
    if (!fs::is_directory(fs::path(root) / "config/contacts", error)) {
        throw std::runtime_error(printable(root) +
                                 ": holds no phone (config/contacts); \"wideseek init\" makes one of it");
    }
    return root;
}

} // namespace

std::string knownTargets() {
    std::string all;
    for (const Target& target : targets) {
        all.append(all.empty() ? "" : ", ").append(target.name);
    }
    return all;
}

int importContacts(const ImportArguments& arguments) {
    try {
        const ImportReport report = importInto(rootOf(arguments.root), arguments);
        if (arguments.json) {
            printReportJson(std::cout, report);
        } else {
            printReport(std::cout, std::cerr, report);
        }
        return report.hasErrors() ? exitCode::failure : exitCode::success;
    } catch (const UsageError& error) {
        std::cerr << "wideseek: " << error.what() << '\n';
        return exitCode::usage;
    }
}

} // namespace wideseek
