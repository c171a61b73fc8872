// The screen in front of the search screen: the help, or a contact's details with its numbers to choose among.
//
//     SideScreen side = SideScreen::details(contact);
//     side.paint(watch, problems);
//     if (side.serve(input) == SideScreen::Wish::dial) {
//         dial(side.name(), side.number());
//     }
//
// A Terminal exists. One thread.
#pragma once

#include "tools/wideseek/phone/PhoneProblems.h"
#include "tools/wideseek/phone/SourceWatch.h"
#include "tools/wideseek/phone/screens/ContactDetails.h"
#include "tools/wideseek/phone/screens/TextScreen.h"
#include "tools/wideseek/phone/terminal/Terminal.h"

#include <optional>
#include <string>
#include <utility>

namespace wideseek {

class SideScreen {
public:
    // What a key asks of the owner; all but stay ask to go back to the search screen as well.
    enum class Wish {
        stay,
        back,
        type, // the key is one of the search screen
        dial, // number()
        copy, // number()
    };

    static SideScreen help();

    // None: of the search alone.
    static SideScreen details(std::optional<ContactDetails> contact);

    Wish serve(const Input& input);

    // Details show what sources have answered and what is wrong by now.
    void paint(const SourceWatch& watch, const PhoneProblems& problems);

    // The contact's name and the number that is chosen; empty without a contact.
    std::string name() const { return m_contact ? m_contact->name : std::string(); }
    std::string number() const { return m_contact ? m_contact->numbers[m_contact->chosen].number : std::string(); }

private:
    SideScreen() = default;

    Wish serveOnContact(const Input& input);
    Wish scroll(const Input& input);
    bool choose(int by);

    TextScreen m_text;
    bool m_detailed = false;
    std::optional<ContactDetails> m_contact;
};

} // namespace wideseek
