#include "tests/support/SteppedPhone.h"

#include "platform/CommonAPI.h"
#include "tests/support/AllocationFault.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

namespace test {

TempRoot::TempRoot() {
    std::filesystem::create_directories(path() / "config/data");
    std::filesystem::create_directories(path() / "config/contacts");
}

void TempRoot::write(const std::string& file, const std::string& text) const {
    // A new file: file systems take milliseconds to secure one that is written over.
    std::filesystem::remove(path() / file);
    std::ofstream(path() / file, std::ios::binary) << text;
}

bool ScriptedSource::search(const std::string& key, OxList<DirectorySearchData>& hits, std::string& error) {
    asked.push_back(key);
    if (meanwhile) {
        meanwhile();
    }
    const bool digits = CommonAPI_IsSearchByT9(key) != 0;
    const auto matches = [&](const std::string& field) {
        return CommonAPI_StringMatch(field, key, false, STRING_MATCH_CONTAINS) != 0;
    };
    for (const Contact& contact : contacts) {
        std::vector<std::string> numbers = contact.numbers;
        numbers.resize(std::max<std::size_t>(numbers.size(), 3));
        const bool byNumber = std::any_of(numbers.begin(), numbers.end(), [&](const std::string& number) {
            return matches(CommonAPI_TrimString(number, "+", TRIM_TYPE_BOTH_ENDS));
        });
        if (digits ? byNumber || matches(CommonUnits_ToKeyString(contact.name)) : matches(contact.name)) {
            hits.PushBack({contact.name, numbers[0], numbers[1], numbers[2], contact.extra});
        }
    }
    error = fails ? "scripted failure" : "";
    return !fails;
}

int ScriptedCalls::outgoing(OxVector<GeneralDirItemData>& calls, int from, int count, std::string& /*error*/) {
    const int size = static_cast<int>(list.size());
    for (int i = from; i < size && i - from < count; ++i) {
        const Contact& call = list[static_cast<std::size_t>(i)];
        calls.PushBack(new GeneralDirItemData{call.name, call.numbers[0], call.extra});
    }
    calls.PushBack(nullptr);
    return fails ? -1 : size;
}

void ScriptedLdap::start(host::LdapQuery query, Done done) {
    asked.push_back(query.key);
    m_done = std::move(done);
}

void ScriptedLdap::abandon() {
    m_done = nullptr;
}

bool ScriptedLdap::answer(const std::vector<Contact>& contacts, bool succeeded) {
    return answer(ldapAnswerOf(contacts, succeeded));
}

bool ScriptedLdap::answer(host::LdapAnswer answer) {
    if (!m_done) {
        return false;
    }
    std::exchange(m_done, nullptr)(std::move(answer));
    return true;
}

host::LdapAnswer ldapAnswerOf(const std::vector<Contact>& contacts, bool succeeded) {
    host::LdapAnswer answer{succeeded, {}, {}};
    for (const Contact& contact : contacts) {
        for (const std::string& number : contact.numbers) {
            answer.rows.push_back({contact.name, number});
        }
    }
    return answer;
}

void Screen::OnTaskActionCallback(NS_TA::CTaskAction* pAction) {
    ASSERT_EQ(pAction->GetTypeId(), NS_WS::CWideseekCBData::TYPE_ID);
    ASSERT_EQ(pAction->GetResultCode(), 0);
    WideseekListData page = static_cast<NS_WS::CWideseekCBData*>(pAction)->GetResultList();
    const NoFault none; // what a screen does with its page is its own business
    pages.push_back(std::move(page));
    if (onPage) {
        onPage();
    }
}

std::string Screen::rows() const {
    return pages.empty() ? "-" : rowsOf(pages.back());
}

std::vector<std::string> rowsIn(const WideseekListData& page) {
    std::vector<std::string> rows;
    for (const WideseekItemData& row : page.listItem) {
        rows.push_back(row.strName + " " + row.strNumber);
    }
    return rows;
}

std::string rowsOf(const WideseekListData& page) {
    std::string text;
    for (const std::string& row : rowsIn(page)) {
        text += (text.empty() ? "" : ", ") + row;
    }
    return text;
}

std::string sourceListOf(const std::vector<std::string>& ids) {
    std::string xml = "<root_wideseek>";
    for (std::size_t i = 0; i < ids.size(); ++i) {
        xml += "<item id_name=\"" + ids[i] + "\" display_name=\"" + ids[i] + "\" enable=\"1\" priority=\"" +
               std::to_string(i) + "\"/>";
    }
    return xml + "</root_wideseek>";
}

SteppedPhone::SteppedPhone(const std::vector<std::string>& ids)
    : phone({.root = root.path(),
             .driver = host::Driver::stepped,
             .ldapDelay = {},
             .contactFiles = false,
             .log = [this](int module, int level, std::string_view line) {
                 if (module == 10 && level == 6) {
                     log.emplace_back(line);
                 }
             }}) {
    setSourceList(sourceListOf(ids));
    phone.setSource(host::Source::localDirectory, local);
    phone.setSource(host::Source::callLog, calls);
    phone.setSource(host::Source::remoteDirectory, remote);
    phone.setSource(host::Source::broadSoftDirectory, broad);
    phone.setLdap(ldap);
    phone.setRecentCalls(recent);
    EXPECT_TRUE(Wideseek_PreInit());
}

SteppedPhone::~SteppedPhone() {
    NS_WS::CWideseekController::ReleaseInstance();
    run();
    for (const auto& left : host::Phone::outstanding()) {
        ADD_FAILURE() << left.blocks << " blocks not given back: " << left.file << ":" << left.line;
    }
}

void SteppedPhone::type(const std::string& key, Screen& screen, int from, int count) {
    EXPECT_TRUE(Wideseek_SearchUnion(key, from, count, &screen));
    run();
}

void SteppedPhone::run(host::Duration by) {
    phone.kernel().advance(by);
}

void SteppedPhone::answerLdap(const std::vector<Contact>& contacts) {
    EXPECT_TRUE(ldap->answer(contacts)) << "no query is running";
    run();
}

void SteppedPhone::setSourceList(const std::string& xml) {
    root.write("config/data/wideseek.xml", xml);
}

} // namespace test
