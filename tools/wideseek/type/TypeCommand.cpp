#include "tools/wideseek/type/TypeCommand.h"

#include "tools/wideseek/ExitCode.h"
#include "tools/wideseek/Interrupt.h"
#include "tools/wideseek/Text.h"
#include "tools/wideseek/type/PagePrinter.h"
#include "tools/wideseek/type/Session.h"
#include "tools/wideseek/type/TracePrinter.h"

#include <iostream>
#include <string>
#include <vector>

namespace wideseek {

namespace {

void report(const std::string& line) {
    std::cerr << "wideseek: " << line << std::endl;
}

// True when the key got its page.
bool reportOutcome(Outcome outcome, const std::string& key, const TypeArguments& arguments) {
    const std::string shown = "the key \"" + printable(key) + "\" got no page";
    if (outcome == Outcome::noPage && (arguments.from < 0 || arguments.count < 0)) {
        report(shown + ": from " + std::to_string(arguments.from) + " and count " + std::to_string(arguments.count) +
               " are refused; neither may be negative");
    } else if (outcome == Outcome::noPage) {
        report(shown + " though its search has ended; --trace and --log show more");
    } else if (outcome == Outcome::silence) {
        report(shown + " in time; --trace and --log show more");
    }
    return outcome == Outcome::page;
}

void printTraces(const Session& session, const TypeArguments& arguments) {
    const std::vector<RequestTrace> traces = session.trace().requests();
    for (std::size_t i = 0; i < traces.size(); ++i) {
        const TracedRequest request{i, arguments.keys[i], session.totals()[i], traces[i]};
        if (arguments.json) {
            printTraceJson(std::cout, request);
        } else {
            printTrace(std::cout, request);
        }
    }
}

} // namespace

int typeKeys(const TypeArguments& arguments) {
    const bool bold = isBoldWelcome();
    Session session(phoneOptionsOf(arguments.phone), [&](const Page& page) {
        if (arguments.json) {
            printJsonLine(std::cout, jsonOf(page));
        } else {
            printPage(std::cout, page, bold);
        }
        std::cout.flush();
    });
    session.awaitContacts();
    bool succeeded = true;
    for (std::size_t i = 0; i < arguments.keys.size() && !interruptedBy(); ++i) {
        if (i > 0 && arguments.pause > 0) {
            session.pause(std::chrono::milliseconds(arguments.pause));
        }
        const Outcome outcome = session.type(arguments.keys[i], arguments.from, arguments.count);
        succeeded = reportOutcome(outcome, arguments.keys[i], arguments) && succeeded;
    }
    if (!session.settle() && !interruptedBy()) {
        report("a source has not answered in time, so a late page may be missing; --trace and --log show more");
        succeeded = false;
    }
    if (const std::string failure = session.trace().answers().failure(); !failure.empty()) {
        report(failure);
        succeeded = false;
    }
    if (arguments.trace) {
        printTraces(session, arguments);
    }
    return succeeded ? exitCode::success : exitCode::failure;
}

} // namespace wideseek
