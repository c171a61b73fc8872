#include "tools/wideseek/check/CheckCommand.h"

#include "tools/wideseek/ExitCode.h"
#include "tools/wideseek/PhoneArguments.h"
#include "tools/wideseek/check/PhoneCheck.h"
#include "tools/wideseek/check/SourceListCheck.h"

#include <filesystem>
#include <iostream>
#include <optional>

namespace wideseek {

namespace {

constexpr int unreadable = 2;

} // namespace

int check(const CheckArguments& arguments) {
    const bool wholePhone = arguments.file.empty();
    const std::filesystem::path root = phoneRootOf(arguments.root);
    const SourceListReport list =
        checkSourceList(wholePhone ? sourceListOf(root) : std::filesystem::path(arguments.file));
    const auto phone = wholePhone ? std::optional(checkPhone(root, list, arguments.network)) : std::nullopt;
    if (arguments.json) {
        Json object = jsonOf(list);
        if (phone) {
            addJson(object, *phone);
        }
        printJsonLine(std::cout, object);
    } else {
        printReport(list.problem ? std::cerr : std::cout, list);
        if (phone) {
            printPhoneReport(std::cout, *phone);
        }
    }
    if (list.problem) {
        return unreadable;
    }
    return list.hasWarnings() || (phone && !phone->findings.empty()) ? exitCode::failure : exitCode::success;
}

} // namespace wideseek
