#include "tools/wideseek/type/DemoCommand.h"

#include "tools/wideseek/ExitCode.h"
#include "tools/wideseek/Interrupt.h"
#include "tools/wideseek/NextCommand.h"
#include "tools/wideseek/Text.h"
#include "tools/wideseek/type/PagePrinter.h"
#include "tools/wideseek/type/Session.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <optional>

namespace wideseek {

namespace {

constexpr int rowsPerPage = 4;

struct Step {
    const char* caption;
    const char* key;
};

constexpr std::array steps = {
    Step{"A digit: numbers with a 5 in them, and names with a letter of the keypad's 5 (J, K, L).", "5"},
    Step{"The next digit narrows the rows found so far; only LDAP is asked again.", "53"},
    Step{"And the next one.", "533"},
    Step{"Letters look in the names alone.", "an"},
    Step{"Narrowed by one more letter.", "ann"},
    Step{"A number as it is pasted from a letterhead: blanks, brackets and the plus do not count.", "+44 (20) 7946"},
    Step{
        "Accents need not be typed. A page that is not full waits a tenth of a second for LDAP, then comes without it.",
        "nez"},
    Step{"They may be, in capitals too.", "MÜLLEN"},
    Step{"The empty search box offers the recent outgoing calls.", ""},
};

constexpr const char* introduction =
    R"(This types into the search box of a phone. Every key is answered with a page: the first rows of the result, their
total, and the time from key to page. Contacts come from the phone itself, its call log, the company's directory,
the phone's buddies, a remote directory, and from LDAP, which answers later and then sends a second page.
)";

bool sameRows(const WideseekListData& one, const WideseekListData& other) {
    return std::equal(one.listItem.begin(), one.listItem.end(), other.listItem.begin(), other.listItem.end(),
                      [](const WideseekItemData& a, const WideseekItemData& b) {
                          return a.strName == b.strName && a.strNumber == b.strNumber;
                      });
}

void printHint() {
    Table table({Table::Align::left, Table::Align::left});
    table.add({nextCommand({"type", "--count", "5", "5", "53", "533"}), "type your own keys"});
    table.add({nextCommand({"type", "--trace", "ann"}), "see what each source was asked and how long it took"});
    table.add({nextCommand({"type", "--json", "5"}) + " | head -1", "pages for scripts"});
    table.add({nextCommand({"type", "--help"}), "all that it can do"});
    std::cout << "Next:\n";
    table.print(std::cout, 2);
}

// Prints pages. A late page with the same rows as the page before it is its title alone.
class Presenter {
public:
    explicit Presenter(bool bold) : m_bold(bold) {}

    void show(const Page& page) {
        if (page.late && m_shown && sameRows(*m_shown, page.data)) {
            printPageTitle(std::cout, page, m_bold);
            std::cout << "  the same rows\n\n";
        } else {
            printPage(std::cout, page, m_bold);
        }
        std::cout.flush();
        m_shown = page.data;
    }

private:
    bool m_bold;
    std::optional<WideseekListData> m_shown;
};

} // namespace

int showDemo(const PhoneArguments& arguments) {
    const host::PhoneOptions options = phoneOptionsOf(arguments);
    Presenter presenter(isBoldWelcome());
    Session session(options, [&](const Page& page) { presenter.show(page); });
    std::cout << introduction << "Phone: " << printable(options.root.string()) << "\n\n";
    for (const Step& step : steps) {
        std::cout << step.caption << std::endl;
        const bool complete = session.type(step.key, 0, rowsPerPage) == Outcome::page && session.settle();
        if (interruptedBy()) {
            return exitCode::success;
        }
        if (!complete) {
            std::cerr << "wideseek: the key \"" << step.key << "\" did not get all its pages in time; type --trace \""
                      << step.key << "\" shows more\n";
            return exitCode::failure;
        }
    }
    printHint();
    return exitCode::success;
}

} // namespace wideseek
