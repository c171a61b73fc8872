// The phone on the terminal: its search screen, the screens beside it, and what connects them with the library.
//
// It uses the library as a phone's application does: the search screen is its callback object, made when the search
// screen is shown and detached when another one takes its place. All of it belongs to one thread, which is the phone's
// main thread while it waits for keys and pages.
#pragma once

#include "host/Phone.h"
#include "tools/wideseek/Library.h"
#include "tools/wideseek/Screen.h"
#include "tools/wideseek/phone/PhoneModel.h"
#include "tools/wideseek/phone/PhoneProblems.h"
#include "tools/wideseek/phone/SourceWatch.h"
#include "tools/wideseek/phone/screens/PhoneView.h"
#include "tools/wideseek/phone/screens/RowSources.h"
#include "tools/wideseek/phone/screens/SideScreen.h"
#include "tools/wideseek/phone/terminal/Terminal.h"

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace wideseek {

class PhoneApp {
public:
    // Starts phone and library and takes the terminal. Throws std::runtime_error when it cannot.
    explicit PhoneApp(const host::PhoneOptions& options);
    ~PhoneApp();

    PhoneApp(const PhoneApp&) = delete;
    PhoneApp& operator=(const PhoneApp&) = delete;

    // Shows the phone until its user leaves or a signal ends it; the terminal is given back when this returns or
    // throws. Gives what went wrong with the phone's files and sources meanwhile.
    std::vector<std::string> run();

private:
    using Clock = std::chrono::steady_clock;

    void serveInputs();
    bool mustWait(Key key) const;
    bool isOvertaken() const;
    void handle(const Input& input);
    void handleOnSearch(const Input& input);
    void handleOnSide(const Input& input);
    void open(SideScreen side);
    SideScreen details() const;
    void attach();
    void detach();
    void search();
    void takePage(const WideseekListData& page);
    void pointAt(int line);
    void dial();
    void dial(const std::string& name, const std::string& number);
    void copy();
    void copy(const std::string& number);
    void collectProblems();
    void paint();
    void wait();

    SourceWatch m_watch;                // outlives the phone, which reports to it
    std::optional<Terminal> m_terminal; // before there are threads: it sets the locale
    host::Phone m_phone;
    Library m_library;
    PhoneProblems m_problems;
    std::optional<Screen> m_screen;
    std::optional<SideScreen> m_side; // in place of the search screen

    RowSources m_rowSources;
    RowStyle m_style;

    PhoneModel m_model;
    PhoneStatus m_status;
    std::deque<Input> m_inputs; // not served yet
    bool m_leaving = false;
    bool m_changed = false; // by a page

    Clock::time_point m_keyAsked; // when the key was handed over first
    Clock::time_point m_asked;    // when the last request was
    bool m_answered = false;      // the last request has a page
};

} // namespace wideseek
