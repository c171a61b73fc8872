#include "tools/wideseek/CheckCommand.h"

#include "tools/wideseek/Arguments.h"
#include "tools/wideseek/PhoneArguments.h"
#include "tools/wideseek/SourceListCheck.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

namespace wideseek {

namespace {

constexpr int unreadable = 2;

constexpr const char* footer = R"(
Prints the sources in the order in which a phone with this file asks and lists them, then those that it does not ask,
then for each line to correct "FILE:LINE: warning: ...", and for each that works but may surprise "FILE:LINE: note: ...".
The order is the library's own: it reads the file as it does on a phone.

--json: one object with file, error (null, or line, column and message; 0 where there is none to name), asked and
notAsked (objects with line, id, label and enabled), warnings and notes (objects with line, code and message).

Exit code: 0 no warnings, 1 warnings, 2 the phone reads no sources from the file, or usage error.)";

struct CheckArguments {
    std::string file;
    std::string root;
    bool json = false;
};

int check(const CheckArguments& arguments) {
    const std::filesystem::path file =
        arguments.file.empty() ? sourceListOf(phoneRootOf(arguments.root)) : std::filesystem::path(arguments.file);
    const SourceListReport report = checkSourceList(file);
    if (arguments.json) {
        printReportJson(std::cout, report);
    } else {
        printReport(report.problem ? std::cerr : std::cout, report);
    }
    if (report.problem) {
        return unreadable;
    }
    return report.hasWarnings() ? exitCode::failure : exitCode::success;
}

} // namespace

Command addCheckCommand(CLI::App& application) {
    const auto arguments = std::make_shared<CheckArguments>();
    CLI::App* parser =
        application.add_subcommand("check", "Explain a source list (wideseek.xml) and warn of mistakes in it");
    parser->add_option("FILE", arguments->file, "The source list. Default: the one of the phone's root")
        ->option_text(" ")
        ->transform(asTyped());
    addRootArgument(*parser, arguments->root);
    parser->add_flag("--json", arguments->json, "Print one JSON object and nothing else");
    parser->footer(footer);
    return {parser, [arguments] { return check(*arguments); }};
}

} // namespace wideseek
