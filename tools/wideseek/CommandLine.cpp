#include "tools/wideseek/CommandLine.h"

#include "tools/wideseek/ExitCode.h"
#include "tools/wideseek/check/CheckCommand.h"
#include "tools/wideseek/import/ImportCommand.h"
#include "tools/wideseek/init/InitCommand.h"
#include "tools/wideseek/pages/PagesCommand.h"
#include "tools/wideseek/phone/PhoneCommand.h"
#include "tools/wideseek/type/DemoCommand.h"
#include "tools/wideseek/type/TypeCommand.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace wideseek {

namespace {

constexpr int longestLdapDelay = 60'000;
constexpr int longestPause = 3'600'000;

// CLI11 reads "[5,3]" as a list of two, and no option of this tool takes a list: what looks like one is marked before
// parsing.
constexpr char asTypedMark = '\x1f';

constexpr const char* toolFooter = R"(
Without a command it is "phone" on a terminal, else "demo".)";

constexpr const char* phoneFooter = R"(
F1 shows the keys, F10 or Ctrl-C leaves. 40 columns and 12 lines are enough.)";

constexpr const char* typeFooter = R"(
Each key is typed once the first page of the key before it is there. The command ends when nothing is outstanding.
A key of digits is looked for in numbers and in names as a keypad types them, other keys in names; "" offers the
recent calls. Keys that begin with a dash stand behind --.

--json: one object per page on a line of its own, with request (from 1), key (as the page reports it: a late page
reports it as it was searched), from, count, total, late, ms and rows; each row has name, number, extra1, extra2 and
extra. With --trace, one more line per request follows at the end, {"trace": {...}}.

Exit code: 0 every key got its page, 1 something failed, 2 usage error.)";

constexpr const char* pagesFooter = R"(
Each line of the standard input is a request, a JSON object with key (as typed; "" offers the recent calls) and, where
wanted, id (anything; null), from (0) and count (10; 0: all). Each line of the standard output is an object with the
request's id, request (the number of its line, from 1), and either what "type --json" prints for a page, or error, or
abandoned: a newer request came before its first page. A newer request also ends what LDAP has to say about an older one.

Exit code: 0 every request got its page or was abandoned, 1 something failed, 2 usage error.)";

constexpr const char* initFooter = R"(
Makes the files of a phone in DIR, each with a word on what belongs into it, and switches on those sources whose
files are there. What is in DIR stays as it is: contact files that you have put into DIR/config/contacts are used.)";

constexpr const char* importFooter = R"(
Reads vCard (2.1, 3.0, 4.0), tables of any separator (CSV) and LDIF; columns are known by their names in English, German,
French and Spanish. A person who is in the source already (same name, and a number or e-mail address in common) gets what
is new; what is in the source stays. Every contact that cannot be used is named with its file and line.

--map takes name, first, middle, last, number, work, mobile, home, fax, other, extra, organisation, department, title,
nickname, email, address, city, web, chat, birthday, group, note; nothing leaves a column out.

Exit code: 0 everything was read and written, 1 a file could not be, 2 usage error.)";

constexpr const char* checkFooter = R"(
Prints the sources in the order in which a phone with this source list asks and lists them, then those that it does not
ask, and what each source has: how many entries its file holds, or whether its server answers and takes the password.
Then for each thing to correct "FILE:LINE: warning: ...", and for each that works but may surprise "FILE:LINE: note: ...".
The order is the library's own: it reads the file as it does on a phone. With FILE, that source list alone is looked at.

--json: one object with file, error (null, or line, column and message; 0 where there is none to name), asked and
notAsked (objects with line, id, label and enabled), warnings and notes (objects with line, code and message), all of
the source list; and of the phone sources (objects with source, enabled, server, outcome and entries) and findings
(objects with file, line, reason and remedy).

Exit code: 0 nothing to correct, 1 warnings, 2 the phone reads no sources from the list, or usage error.)";

// The command line without the program's name, last argument first, as CLI::App::parse takes it.
std::vector<std::string> markedArguments(int argc, char** argv) {
    std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    for (std::string& argument : arguments) {
        if (argument.ends_with(']')) {
            argument += asTypedMark;
        }
    }
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

// For every option and positional that takes text.
CLI::Validator asTyped() {
    return CLI::Validator(
        [](std::string& value) {
            if (value.ends_with(std::string("]") + asTypedMark)) {
                value.pop_back();
            }
            return std::string();
        },
        "");
}

void addRoot(CLI::App& parser, std::string& root) {
    parser
        .add_option("--root", root,
                    "The phone's root folder, with config/data and config/contacts in it.\n"
                    "Default: the environment variable WIDESEEK_ROOT, else the sample phone")
        ->option_text("DIR")
        ->envname("WIDESEEK_ROOT")
        ->transform(asTyped());
}

void addPhone(CLI::App& parser, PhoneArguments& arguments) {
    addRoot(parser, arguments.root);
    parser
        .add_option("--ldap-delay", arguments.ldapDelay,
                    "Milliseconds after which the file answers that stands in for an LDAP server.\n"
                    "Default: what the phone's configuration says")
        ->option_text("MS")
        ->check(CLI::Range(0, longestLdapDelay));
    parser
        .add_flag("--log", arguments.log,
                  "Write the phone's log, each line with its level and module, to the standard error\n"
                  "output; --log=FILE appends it to FILE")
        ->option_text("[=FILE]")
        ->transform(asTyped());
}

void addType(CLI::App& parser, TypeArguments& arguments) {
    parser.add_option("KEY", arguments.keys, "The keys, as typed")->option_text(" ")->required()->transform(asTyped());
    addPhone(parser, arguments.phone);
    parser.add_option("--from", arguments.from, "Index of the first row wanted. Default: 0")->option_text("N");
    parser.add_option("--count", arguments.count, "How many rows are wanted; 0: all. Default: 10")->option_text("N");
    parser
        .add_option("--pause", arguments.pause,
                    "Milliseconds to wait before the next key; late pages come meanwhile. Default: 0")
        ->option_text("MS")
        ->check(CLI::Range(0, longestPause));
    parser.add_flag("--trace", arguments.trace,
                    "At the end, print for each request which source was asked, what it offered and how\n"
                    "long it took");
    parser.add_flag("--json", arguments.json, "Print one JSON object per page and nothing else");
    parser.footer(typeFooter);
}

void addPages(CLI::App& parser, PagesArguments& arguments) {
    addPhone(parser, arguments.phone);
    parser.add_flag("--abandon", arguments.abandon,
                    "At the end of input, end at once. Default: wait for the pages that are outstanding");
    parser.footer(pagesFooter);
}

void addCheck(CLI::App& parser, CheckArguments& arguments) {
    parser
        .add_option("FILE", arguments.file,
                    "A source list, to look at nothing else. Default: the whole phone is looked at")
        ->option_text(" ")
        ->transform(asTyped());
    addRoot(parser, arguments.root);
    parser.add_flag("!--no-network", arguments.network, "Ask no server");
    parser.add_flag("--json", arguments.json, "Print one JSON object and nothing else");
    parser.footer(checkFooter);
}

void addInit(CLI::App& parser, InitArguments& arguments) {
    parser.add_option("DIR", arguments.folder, "The folder; it need not be there")
        ->option_text(" ")
        ->required()
        ->transform(asTyped());
    parser.add_option("--from", arguments.from, "Import these files, as \"wideseek import\" does")
        ->option_text("FILE...")
        ->transform(asTyped());
    parser.footer(initFooter);
}

void addImport(CLI::App& parser, ImportArguments& arguments) {
    parser.add_option("FILE", arguments.files, "The files; of a folder, the .vcf files in it")
        ->option_text("...")
        ->required()
        ->transform(asTyped());
    parser
        .add_option("--root", arguments.root,
                    "The phone's root folder. Default: the environment variable WIDESEEK_ROOT")
        ->option_text("DIR")
        ->envname("WIDESEEK_ROOT")
        ->transform(asTyped());
    parser
        .add_option("--into", arguments.into,
                    "The source that takes them: " + knownTargets() + ".\nDefault: local_directory")
        ->option_text("SOURCE")
        ->transform(asTyped());
    parser.add_option("--map", arguments.columns, "What is in a column, for one that is not known by its name")
        ->option_text("COLUMN=FIELD")
        ->expected(1)
        ->take_all()
        ->transform(asTyped());
    parser.add_option("--encoding", arguments.encoding, "Of the files, as iconv names it. Default: it is found")
        ->option_text("NAME");
    parser.add_flag("--dry-run", arguments.dryRun, "Tell what would be done, and write nothing");
    parser.add_flag("--json", arguments.json, "Print one JSON object and nothing else");
    parser.footer(importFooter);
}

void addPhoneScreen(CLI::App& parser, PhoneArguments& arguments) {
    addPhone(parser, arguments);
    parser.footer(phoneFooter);
}

// Adds a subcommand. When it is parsed, chosen becomes what runs it; its arguments live as long as the parser.
template <typename Arguments>
void addCommand(CLI::App& application, Command& chosen, int (*run)(const Arguments&),
                void (*addOptions)(CLI::App&, Arguments&), const char* name, const char* description) {
    CLI::App* parser = application.add_subcommand(name, description);
    const auto arguments = std::make_shared<Arguments>();
    addOptions(*parser, *arguments);
    parser->final_callback([&chosen, arguments, run] { chosen = [arguments, run] { return run(*arguments); }; });
}

// For whoever runs the tool for the first time: something to type on, or else to watch.
std::string defaultCommand() {
    return isatty(STDIN_FILENO) && isatty(STDOUT_FILENO) ? "phone" : "demo";
}

} // namespace

void defineCommandLine(CLI::App& application, Command& chosen) {
    application.name("wideseek");
    application.description("Contact search behind a phone's search box, on a workstation");
    application.set_version_flag("--version", "wideseek " WIDESEEK_VERSION);
    application.require_subcommand(1);

    addCommand(application, chosen, showPhone, addPhoneScreen, "phone",
               "Show the phone's search screen on this terminal");
    addCommand(application, chosen, showDemo, addPhone, "demo",
               "Show the search at work on the sample phone, in a few seconds");
    addCommand(application, chosen, typeKeys, addType, "type",
               "Type keys one after another and print each page of results");
    addCommand(application, chosen, servePages, addPages, "pages",
               "Serve pages to another program: requests and pages as JSON lines");
    addCommand(application, chosen, check, addCheck, "check",
               "Look through a phone: its source list, settings, contact files and servers");
    addCommand(application, chosen, makePhone, addInit, "init", "Make a phone's folder for contacts of your own");
    addCommand(application, chosen, importContacts, addImport, "import",
               "Bring contacts that other programs have written into a phone");
    application.footer(toolFooter); // last, as subcommands begin with the footer that there is
}

std::variant<Command, int> readCommandLine(int argc, char** argv) {
    Command chosen;
    CLI::App application;
    defineCommandLine(application, chosen);
    try {
        application.parse(argc > 1 ? markedArguments(argc, argv) : std::vector{defaultCommand()});
    } catch (const CLI::ParseError& error) {
        return application.exit(error) == 0 ? exitCode::success : exitCode::usage;
    }
    return chosen;
}

} // namespace wideseek
