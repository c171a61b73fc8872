#include "tools/wideseek/TypeCommand.h"

#include "tools/wideseek/Arguments.h"
#include "tools/wideseek/Interrupt.h"
#include "tools/wideseek/PagePrinter.h"
#include "tools/wideseek/PhoneArguments.h"
#include "tools/wideseek/Text.h"
#include "tools/wideseek/TracePrinter.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace wideseek {

namespace {

constexpr int longestPause = 3'600'000;

constexpr const char* footer = R"(
Each key is typed once the first page of the key before it is there. The command ends when nothing is outstanding.
A key of digits is looked for in numbers and in names as a keypad types them, other keys in names; "" offers the
recent calls. Keys that begin with a dash stand behind --.

--json: one object per page on a line of its own, with request (from 1), key (as the page reports it: a late page
reports it as it was searched), from, count, total, late, ms and rows; each row has name, number, extra1, extra2 and
extra. With --trace, one more line per request follows at the end, {"trace": {...}}.

Exit code: 0 every key got its page, 1 something failed, 2 usage error.)";

struct TypeArguments {
    PhoneArguments phone;
    std::vector<std::string> keys;
    int from = 0;
    int count = 10;
    int pause = 0;
    bool trace = false;
    bool json = false;
};

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

int typeKeys(const TypeArguments& arguments) {
    const bool bold = isBoldWelcome();
    Session session(phoneOptionsOf(arguments.phone), [&](const Page& page) {
        if (arguments.json) {
            printPageJson(std::cout, page);
        } else {
            printPage(std::cout, page, bold);
        }
        std::cout.flush();
    });
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
    if (arguments.trace) {
        printTraces(session, arguments);
    }
    return succeeded ? exitCode::success : exitCode::failure;
}

} // namespace

Command addTypeCommand(CLI::App& application) {
    const auto arguments = std::make_shared<TypeArguments>();
    CLI::App* parser = application.add_subcommand("type", "Type keys one after another and print each page of results");
    parser->add_option("KEY", arguments->keys, "The keys, as typed")
        ->option_text(" ")
        ->required()
        ->transform(asTyped());
    addPhoneArguments(*parser, arguments->phone);
    parser->add_option("--from", arguments->from, "Index of the first row wanted. Default: 0")->option_text("N");
    parser->add_option("--count", arguments->count, "How many rows are wanted; 0: all. Default: 10")->option_text("N");
    parser
        ->add_option("--pause", arguments->pause,
                     "Milliseconds to wait before the next key; late pages come meanwhile. Default: 0")
        ->option_text("MS")
        ->check(CLI::Range(0, longestPause));
    parser->add_flag("--trace", arguments->trace,
                     "At the end, print for each request which source was asked, what it offered and how\n"
                     "long it took");
    parser->add_flag("--json", arguments->json, "Print one JSON object per page and nothing else");
    parser->footer(footer);
    return {parser, [arguments] { return typeKeys(*arguments); }};
}

} // namespace wideseek
