// A phone in virtual time with scripted sources, and a screen that keeps the pages it gets: what the tests of the
// search stand on. Nothing here waits, and nothing knows the search from inside.
//
//     SteppedPhone phone({localId, ldapId});
//     phone.local->contacts = {{"Ann", {"5311"}}};
//     Screen screen;
//     phone.type("5", screen);            // hands over and runs what is due
//     EXPECT_EQ(rowsOf(screen.pages.back()), "Ann 5311");
#pragma once

#include "app/Gui/Logic/Wideseek/WideseekCBData.h"
#include "app/Gui/Logic/Wideseek/WideseekController.h"
#include "app/Gui/Logic/Wideseek/modWideseek.h"
#include "host/Phone.h"
#include "host/files/TemporaryFolder.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace test {

using namespace std::chrono_literals;

inline constexpr const char* localId = "local_directory_search";
inline constexpr const char* callsId = "calllog_search";
inline constexpr const char* remoteId = "remote_directory_search";
inline constexpr const char* ldapId = "ldap_search";
inline constexpr const char* enterpriseId = "BroadSoft_directory_search";
inline constexpr const char* networkId = "Network_directory_search";
inline constexpr const char* buddiesId = "BroadSoft_UC_search";

// A phone's root of its own for each test, with empty folders in it.
class TempRoot {
public:
    TempRoot();

    const std::filesystem::path& path() const { return m_folder.path(); }
    void write(const std::string& file, const std::string& text) const;

private:
    host::TemporaryFolder m_folder;
};

struct Contact {
    std::string name;
    std::vector<std::string> numbers;
    std::string extra = {};
};

// Answers with its contacts that match the key, as the phone's directories do.
class ScriptedSource : public host::ContactSource {
public:
    std::vector<Contact> contacts;
    bool fails = false;
    std::vector<std::string> asked;
    std::function<void()> meanwhile; // runs inside every query

    bool search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) override;
};

// The recent calls: each with its first number, and behind them none.
class ScriptedCalls : public host::RecentCalls {
public:
    std::vector<Contact> list;
    bool fails = false;

    int outgoing(OxVector<GeneralDirItemData>& calls, int from, int count, std::string& error) override;
};

// Keeps the queries it is given; the test answers them when it likes.
class ScriptedLdap : public host::LdapDirectory {
public:
    std::vector<std::string> asked;

    void start(host::LdapQuery query, Done done) override;
    void abandon() override;

    // Answers the running query. False when none runs.
    bool answer(const std::vector<Contact>& contacts, bool succeeded = true);
    bool answer(host::LdapAnswer answer);
    bool isAsking() const { return m_done != nullptr; }

private:
    Done m_done;
};

// Receives pages on the phone's main thread.
class Screen : public NS_TA::CTaskActionCallbackBase {
public:
    ~Screen() override { WithdrawMessages(); }

    std::vector<WideseekListData> pages;
    std::function<void()> onPage;

    void OnTaskActionCallback(NS_TA::CTaskAction* pAction) override;

    // The rows of the last page; "-" without one.
    std::string rows() const;
    std::size_t count() const { return pages.size(); }
};

// {"Ann 5311", "Bob 5322"}
std::vector<std::string> rowsIn(const WideseekListData& page);

// "Ann 5311, Bob 5322"
std::string rowsOf(const WideseekListData& page);

// A source list with these ids enabled, in this order.
std::string sourceListOf(const std::vector<std::string>& ids);

// An answer with a row per number.
host::LdapAnswer ldapAnswerOf(const std::vector<Contact>& contacts, bool succeeded);

class SteppedPhone {
public:
    // Writes a source list with these ids and starts the search.
    explicit SteppedPhone(const std::vector<std::string>& ids);
    ~SteppedPhone();

    TempRoot root;
    std::vector<std::string> log;
    host::Phone phone;
    std::shared_ptr<ScriptedSource> local = std::make_shared<ScriptedSource>();
    std::shared_ptr<ScriptedSource> calls = std::make_shared<ScriptedSource>();
    std::shared_ptr<ScriptedSource> remote = std::make_shared<ScriptedSource>();
    std::shared_ptr<ScriptedSource> broad = std::make_shared<ScriptedSource>();
    std::shared_ptr<ScriptedCalls> recent = std::make_shared<ScriptedCalls>();
    std::shared_ptr<ScriptedLdap> ldap = std::make_shared<ScriptedLdap>();

    // Hands a request over and runs what is due now.
    void type(const std::string& key, Screen& screen, int from = 0, int count = 10);

    // Runs what is due now, or within this time.
    void run(host::Duration by = 0ms);

    void answerLdap(const std::vector<Contact>& contacts);
    void setSourceList(const std::string& xml);
};

} // namespace test
