#include "bench/search/ThisThread.h"

#include "app/Gui/Logic/Wideseek/WideseekController.h"
#include "app/Gui/Logic/Wideseek/modWideseek.h"
#include "bench/People.h"
#include "host/contacts/FileDirectory.h"
#include "host/files/TemporaryFolder.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

namespace bench {

namespace {

class SilentLdap : public host::LdapDirectory {
public:
    void start(host::LdapQuery /*query*/, Done /*done*/) override {}
    void abandon() override {}
};

// A folder for the phone's files.
class Folder {
public:
    Folder() {
        std::filesystem::create_directories(m_folder.path() / "config/data");
        std::ofstream(m_folder.path() / "config/data/wideseek.xml") << R"(<root_wideseek>
            <item id_name="local_directory_search" enable="1" priority="1"/>
            <item id_name="ldap_search" enable="1" priority="2"/>
            </root_wideseek>)";
    }

    static const std::filesystem::path& path() {
        static const Folder folder;
        return folder.m_folder.path();
    }

private:
    host::TemporaryFolder m_folder;
};

} // namespace

AllPeople::AllPeople(People people) : m_people(std::move(people)) {
}

bool AllPeople::search(const std::string& /*key*/, OxList<DirectorySearchData>& hits, std::string& /*error*/) {
    for (const DirectorySearchData& person : m_people) {
        hits.PushBack(person);
    }
    return true;
}

People peopleOfRows(std::size_t rows) {
    People people = makePeople(rows);
    std::size_t made = 0;
    std::size_t count = 0;
    for (; made < rows; ++count) {
        made += 1;
        for (std::string* number : {&people[count].strNumber2, &people[count].strNumber3}) {
            if (made == rows) {
                number->clear();
            }
            made += number->empty() ? 0U : 1U;
        }
    }
    people.resize(count);
    return people;
}

std::shared_ptr<host::ContactSource> fileOf(const People& people) {
    const auto path = Folder::path() / ("contacts-" + std::to_string(people.size()) + ".csv");
    std::ofstream file(path);
    file << "name,number1,number2,number3,extra\n";
    for (const DirectorySearchData& person : people) {
        file << person.strName << ',' << person.strNumber1 << ',' << person.strNumber2 << ',' << person.strNumber3
             << ',' << person.strExtra << '\n';
    }
    file.close();
    // A file that has only just changed is read at every search.
    std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    return std::make_shared<host::FileDirectory>(path, nullptr);
}

SearchOnThisThread::SearchOnThisThread(std::shared_ptr<host::ContactSource> source)
    : m_phone({.root = Folder::path(),
               .driver = host::Driver::stepped,
               .ldapDelay = {},
               .contactFiles = false,
               .log = {}}) {
    m_phone.setSource(host::Source::localDirectory, std::move(source));
    m_phone.setLdap(std::make_shared<SilentLdap>());
    Wideseek_PreInit();
    m_action = Wideseek_CreateSearchAction();
}

SearchOnThisThread::~SearchOnThisThread() {
    Wideseek_DestroySearchAction(m_action);
    NS_WS::CWideseekController::ReleaseInstance();
}

void SearchOnThisThread::search(const std::string& key, int from) {
    NS_WS::CWideseekRequest request(&m_screen);
    request.SetFromIndex(from);
    request.SetSearchCount(10);
    request.SetKey(key);
    m_action->HandOver(std::move(request));
    m_action->Exec();
    m_phone.kernel().advance({});
}

void SearchOnThisThread::searchAfresh(const std::string& key) {
    m_action->ResetKey();
    search(key);
}

void SearchOnThisThread::watchPages(std::function<void()> onPage) {
    m_watch.onPage = std::move(onPage);
    m_phone.setTrace(&m_watch);
}

void SearchOnThisThread::PageWatch::onTrace(const host::TraceEvent& event) {
    if (event.kind == host::TraceKind::pageSent) {
        onPage();
    }
}

void SearchOnThisThread::answerLdap(NS_TA::CLdapAction& answer) {
    m_action->OnTaskActionCallback(&answer);
    m_phone.kernel().advance({});
}

} // namespace bench
