#include "tools/wideseek/check/CheckCommand.h"

#include "tools/wideseek/ExitCode.h"
#include "tools/wideseek/PhoneArguments.h"
#include "tools/wideseek/check/SourceListCheck.h"

#include <filesystem>
#include <iostream>

namespace wideseek {

namespace {

constexpr int unreadable = 2;

} // namespace

int checkFile(const CheckArguments& arguments) {
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

} // namespace wideseek
