#include "tools/wideseek/phone/screens/SideScreen.h"

#include "tools/wideseek/phone/KeyKinds.h"
#include "tools/wideseek/phone/screens/PhoneScreens.h"

#include <algorithm>

namespace wideseek {

namespace {

// Below the last line of any text.
constexpr int farBelow = 1'000'000;

} // namespace

SideScreen SideScreen::help() {
    SideScreen side;
    side.m_text = helpScreen();
    return side;
}

SideScreen SideScreen::details(std::optional<ContactDetails> contact) {
    SideScreen side;
    side.m_detailed = true;
    side.m_text.revealing = contact.has_value();
    side.m_contact = std::move(contact);
    return side;
}

SideScreen::Wish SideScreen::serve(const Input& input) {
    return m_contact ? serveOnContact(input) : scroll(input);
}

SideScreen::Wish SideScreen::serveOnContact(const Input& input) {
    switch (input.key) {
    case Key::up:
        return m_text.top == 0 && choose(-1) ? Wish::stay : scroll(input);
    case Key::down:
        return choose(1) ? Wish::stay : scroll(input);
    case Key::click:
        m_contact->chosen = choiceOn(m_text, input.line).value_or(m_contact->chosen);
        return Wish::stay;
    case Key::doubleClick:
        return choiceOn(m_text, input.line) == m_contact->chosen ? Wish::dial : Wish::stay;
    case Key::enter:
        return Wish::dial;
    case Key::copy:
        return Wish::copy;
    default:
        return scroll(input);
    }
}

// False: there is no further number.
bool SideScreen::choose(int by) {
    const std::size_t chosen = m_contact->chosen + static_cast<std::size_t>(by);
    if (chosen >= m_contact->numbers.size()) {
        return false;
    }
    m_contact->chosen = chosen;
    m_text.revealing = true;
    return true;
}

SideScreen::Wish SideScreen::scroll(const Input& input) {
    m_text.revealing = false;
    switch (input.key) {
    case Key::up:
    case Key::down:
        m_text.top += input.key == Key::up ? -1 : 1;
        return Wish::stay;
    case Key::pageUp:
    case Key::pageDown:
        m_text.top += (input.key == Key::pageUp ? -1 : 1) * std::max(1, m_text.room - 1);
        return Wish::stay;
    case Key::toBegin:
    case Key::first:
        m_text.top = 0;
        return Wish::stay;
    case Key::toEnd:
    case Key::last:
        m_text.top = farBelow;
        return Wish::stay;
    case Key::wheelUp:
    case Key::wheelDown:
        m_text.top += input.key == Key::wheelUp ? -wheelRows : wheelRows;
        return Wish::stay;
    case Key::click:
    case Key::doubleClick:
        return Wish::stay;
    case Key::character:
        return Wish::type;
    default:
        return Wish::back;
    }
}

void SideScreen::paint(const SourceWatch& watch, const PhoneProblems& problems) {
    if (m_detailed) {
        TextScreen text = detailsScreen(m_contact ? &*m_contact : nullptr, watch, problems);
        text.top = m_text.top;
        text.revealing = m_text.revealing;
        m_text = std::move(text);
    }
    paintText(m_text);
}

} // namespace wideseek
