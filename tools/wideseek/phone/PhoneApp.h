// The phone on the terminal: its search screen, the screens beside it, and what connects them with the library.
//
// It uses the library as a phone's application does: the search screen is its callback object, made when the search
// screen is shown and detached when another one takes its place. All of it belongs to one thread, which is the phone's
// main thread while it waits for keys and pages.
#pragma once

#include "host/Phone.h"
#include "host/kernel/ProblemList.h"
#include "tools/wideseek/Library.h"
#include "tools/wideseek/Screen.h"
#include "tools/wideseek/SourceListNotes.h"
#include "tools/wideseek/phone/PhoneModel.h"
#include "tools/wideseek/phone/PhoneView.h"
#include "tools/wideseek/phone/SourceWatch.h"
#include "tools/wideseek/phone/Terminal.h"

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
    void handle(const Input& input);
    void handleOnSearch(const Input& input);
    void handleOnText(const Input& input);
    void openText(TextScreen text);
    void closeText();
    void attach();
    void detach();
    void search();
    void takePage(const WideseekListData& page);
    void pointAt(int line);
    void dial();
    void copy();
    std::string typedNumber() const;
    void collectProblems();
    TextScreen detailsScreen() const;
    void paint();
    void wait();

    SourceWatch m_watch; // outlives the phone, which reports to it
    host::ProblemList m_problems;
    std::size_t m_phoneProblems = 0;    // of the phone's, how many have been collected
    std::optional<Terminal> m_terminal; // before there are threads: it sets the locale
    const std::string m_root;
    SourceListNotes m_sourceList;
    host::Phone m_phone;
    Library m_library;
    std::optional<Screen> m_screen;
    std::optional<TextScreen> m_text; // in place of the search screen

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
