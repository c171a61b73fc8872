// The search as a benchmark drives it: on the phone in virtual time, worked on the calling thread, with scripted
// sources, so that nothing but the search is measured.
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekAction.h"
#include "host/Phone.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace bench {

using People = std::vector<DirectorySearchData>;

// Hands over all of its people, whatever the key.
class AllPeople : public host::ContactSource {
public:
    explicit AllPeople(People people);

    bool search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) override;

private:
    People m_people;
};

// People who make this many rows, one for each number.
People peopleOfRows(std::size_t rows);

// A contact file's source of these people.
std::shared_ptr<host::ContactSource> fileOf(const People& people);

class SearchOnThisThread {
public:
    // Starts the search over this local directory and an LDAP directory that is asked and never answers.
    explicit SearchOnThisThread(std::shared_ptr<host::ContactSource> source);
    ~SearchOnThisThread();
    SearchOnThisThread(const SearchOnThisThread&) = delete;
    SearchOnThisThread& operator=(const SearchOnThisThread&) = delete;

    // A request for ten rows from `from` on, worked until its page is delivered.
    void search(const std::string& key, int from = 0);

    // The same, when no rows are held for this key or its beginning.
    void searchAfresh(const std::string& key);

    // Delivers an answer of the LDAP directory, and the page that it causes if anybody wants one.
    void answerLdap(NS_TA::CLdapAction& answer);

    // Called from now on when a page is sent. The search may go on working after that.
    void watchPages(std::function<void()> onPage);

    // From now on nobody wants a page, until the next request.
    void detach() { m_action->Detach(&m_screen); }

    // Of the last page's result.
    std::size_t rows() const { return static_cast<std::size_t>(m_action->GetResultData().iTotalCount); }

private:
    class Screen : public NS_TA::CTaskActionCallbackBase {
    public:
        ~Screen() override { WithdrawMessages(); }
        void OnTaskActionCallback(NS_TA::CTaskAction* /*pAction*/) override {}
    };

    class PageWatch : public host::TraceSink {
    public:
        void onTrace(const host::TraceEvent& event) override;
        std::function<void()> onPage;
    };

    PageWatch m_watch;
    host::Phone m_phone;
    Screen m_screen;
    NS_WS::CWideseekAction* m_action = nullptr;
};

} // namespace bench
