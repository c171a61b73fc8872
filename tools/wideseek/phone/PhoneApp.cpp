#include "tools/wideseek/phone/PhoneApp.h"

#include "app/Gui/Logic/Wideseek/modWideseek.h"
#include "tools/wideseek/Interrupt.h"
#include "tools/wideseek/phone/KeyKinds.h"
#include "tools/wideseek/phone/screens/PhoneFrame.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <stdexcept>
#include <utility>

namespace wideseek {

namespace {

// Keys that act on rows wait for them no longer than this, and no news is waited for longer.
constexpr auto longestWait = std::chrono::seconds(1);

std::string timeOfDay() {
    const std::time_t now = std::time(nullptr);
    std::tm local = {};
    localtime_r(&now, &local);
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%a %d %b %H:%M", &local)};
}

double millisecondsSince(std::chrono::steady_clock::time_point time) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - time).count();
}

} // namespace

PhoneApp::PhoneApp(const host::PhoneOptions& options)
    : m_terminal(std::in_place), m_phone(options), m_problems(m_phone, m_watch), m_rowSources(m_phone) {
    m_phone.setTrace(&m_watch);
    m_phone.watchSourceList();
    m_model.setHeight(linesOnScreen());
    attach();
}

PhoneApp::~PhoneApp() {
    m_terminal.reset();
    detach();
}

std::vector<std::string> PhoneApp::run() {
    while (!m_leaving && !interruptedBy()) {
        search();
        collectProblems();
        paint();
        wait();
        serveInputs();
    }
    m_terminal.reset();
    return m_problems.all();
}

void PhoneApp::serveInputs() {
    while (!m_inputs.empty() && !m_leaving) {
        if (mustWait(m_inputs.front().key)) {
            if (isOvertaken()) {
                m_inputs.pop_front();
                continue;
            }
            search();
            if (Clock::now() < m_asked + longestWait) {
                return;
            }
        }
        const Input input = std::move(m_inputs.front());
        m_inputs.pop_front();
        handle(input);
    }
}

// Keys that act on rows are served once the rows of what was typed before them are here.
bool PhoneApp::mustWait(Key key) const {
    if (m_side) {
        return false;
    }
    switch (key) {
    case Key::enter:
    case Key::details:
    case Key::copy:
        return !m_model.isSettled();
    default:
        return movesCursor(key) && m_model.isAwaitingPage();
    }
}

// The first key moves the cursor, and nobody will see where to: a new search, which puts it on the first row, has been
// typed behind it. So what is typed is shown and searched for without waiting for rows that nobody means any more.
bool PhoneApp::isOvertaken() const {
    const auto next =
        std::find_if(m_inputs.begin(), m_inputs.end(), [](const Input& input) { return !movesCursor(input.key); });
    return next != m_inputs.begin() && next != m_inputs.end() &&
           (next->key == Key::escape || (next->key == Key::character && m_model.typed().hasRoomFor(next->text)));
}

void PhoneApp::handle(const Input& input) {
    switch (input.key) {
    case Key::leave:
        m_leaving = true;
        break;
    case Key::suspend:
        m_terminal->suspend();
        break;
    case Key::redraw:
        repaint();
        break;
    case Key::resize:
        m_model.setHeight(linesOnScreen());
        break;
    default:
        m_status.message.clear();
        if (m_side) {
            handleOnSide(input);
        } else {
            handleOnSearch(input);
        }
    }
}

void PhoneApp::handleOnSearch(const Input& input) {
    if (const auto edit = editOf(input.key)) {
        m_model.edit(*edit);
        return;
    }
    switch (input.key) {
    case Key::character:
        m_model.type(input.text);
        break;
    case Key::escape:
        m_model.clear();
        break;
    case Key::enter:
        dial();
        break;
    case Key::up:
    case Key::down:
        m_model.moveBy(input.key == Key::up ? -1 : 1);
        break;
    case Key::pageUp:
    case Key::pageDown:
        m_model.moveByPages(input.key == Key::pageUp ? -1 : 1);
        break;
    case Key::wheelUp:
    case Key::wheelDown:
        m_model.moveBy(input.key == Key::wheelUp ? -wheelRows : wheelRows);
        break;
    case Key::first:
        m_model.moveToFirst();
        break;
    case Key::last:
        m_model.moveToLast();
        break;
    case Key::click:
        pointAt(input.line);
        break;
    case Key::doubleClick:
        if (m_model.selected() && m_model.line() == rowOnLine(m_model, input.line)) {
            dial();
        }
        break;
    case Key::help:
        open(SideScreen::help());
        break;
    case Key::entry:
        m_model.switchEntry();
        break;
    case Key::details:
        open(details());
        break;
    case Key::copy:
        copy();
        break;
    case Key::dialTyped:
        dial({}, m_model.typedNumber());
        break;
    default:
        break;
    }
}

void PhoneApp::handleOnSide(const Input& input) {
    const SideScreen::Wish wish = m_side->serve(input);
    if (wish == SideScreen::Wish::stay) {
        return;
    }
    const std::string name = m_side->name();
    const std::string number = m_side->number();
    m_side.reset();
    attach();
    m_model.comeBack();
    if (wish == SideScreen::Wish::dial) {
        dial(name, number);
    } else if (wish == SideScreen::Wish::copy) {
        copy(number);
    } else if (wish == SideScreen::Wish::type) {
        handleOnSearch(input);
    }
}

void PhoneApp::open(SideScreen side) {
    m_side = std::move(side);
    detach();
}

SideScreen PhoneApp::details() const {
    const WideseekItemData* row = m_model.selected();
    return SideScreen::details(row ? std::optional(detailsOf(*row, m_model.isRecent(), m_phone)) : std::nullopt);
}

void PhoneApp::attach() {
    m_screen.emplace([this](const WideseekListData& page) { takePage(page); });
}

void PhoneApp::detach() {
    if (m_screen) {
        Wideseek_ResetCallBack(&*m_screen);
        m_screen.reset();
    }
}

void PhoneApp::search() {
    if (!m_screen) {
        return;
    }
    if (const auto request = m_model.takeRequest()) {
        m_asked = Clock::now();
        m_answered = false;
        if (!m_model.hasPage()) {
            m_keyAsked = m_asked;
            m_status.lateTime.reset();
        }
        if (!Wideseek_SearchUnion(request->key, request->from, request->count, &*m_screen)) {
            throw std::runtime_error("the search library did not take the key; it has no memory left");
        }
    }
}

void PhoneApp::takePage(const WideseekListData& page) {
    const bool awaited = !m_model.isSettled();
    if (!m_model.takePage(page)) {
        return;
    }
    m_rowSources.forget();
    m_changed = true;
    if (m_answered) {
        m_status.lateTime = millisecondsSince(m_keyAsked);
    } else if (awaited) {
        m_status.pageTime = millisecondsSince(m_asked);
    }
    m_answered = true;
}

// The rows may be those of the key before, which nobody means any more.
void PhoneApp::pointAt(int line) {
    const int row = rowOnLine(m_model, line);
    if (m_model.isSettled() && row >= 0 && row < static_cast<int>(m_model.rows().size())) {
        m_model.moveBy(row - m_model.line());
    }
}

void PhoneApp::copy() {
    const WideseekItemData* row = m_model.selected();
    copy(row ? row->strNumber : m_model.numberWithoutRows());
}

void PhoneApp::copy(const std::string& number) {
    if (number.empty()) {
        m_status.message = "There is no number to copy.";
        return;
    }
    m_terminal->copy(number);
    m_status.message = "Handed " + number + " to the terminal's clipboard";
}

void PhoneApp::dial() {
    std::string name;
    std::string number = m_model.numberWithoutRows();
    if (const WideseekItemData* row = m_model.selected()) {
        name = row->strName == row->strNumber ? std::string() : row->strName;
        number = row->strNumber;
    }
    dial(name, number);
}

void PhoneApp::dial(const std::string& name, const std::string& number) {
    if (number.empty()) {
        m_status.message = "There is no number to dial.";
        return;
    }
    m_phone.addOutgoingCall({name, number, timeOfDay()});
    m_status.message = "Would dial " + number + (name.empty() ? "" : " (" + name + ")");
    if (m_model.isRecent()) {
        m_model.startOver();
    }
}

// The newest problem is shown until the next key, those that stand for as long as they do.
void PhoneApp::collectProblems() {
    const std::string newest = m_problems.takeNew();
    m_status.standing = m_problems.standing();
    if (!newest.empty() && m_status.standing.find(newest) == std::string::npos) {
        m_status.message = std::string(problemPrefix) + newest;
    }
}

void PhoneApp::paint() {
    if (m_side) {
        m_side->paint(m_watch, m_problems);
        return;
    }
    // Recent calls are the call log's.
    m_style.sources = m_model.rowsKey().empty() ? std::vector<std::string>() : m_rowSources.of(m_model.rows());
    paintSearch(m_model, m_status, m_style);
}

// Until there is something to do; not for long, as a file may be mended or spoilt meanwhile.
void PhoneApp::wait() {
    const std::size_t unserved = m_inputs.size();
    const bool ldapAsked = m_status.ldapAsked = m_watch.isLdapAsked();
    const auto isAwaited = [&] {
        m_terminal->read(m_inputs);
        return m_changed || m_inputs.size() > unserved || interruptedBy() || m_watch.isLdapAsked() != ldapAsked;
    };
    m_phone.kernel().serveMain(isAwaited, longestWait);
    m_changed = false;
    m_status.ldapAsked = m_watch.isLdapAsked();
}

} // namespace wideseek
