// The phone's LDAP module: asynchronous queries of the configured LDAP directory (RFC 4511).
#pragma once

#include "platform/TaskAction.h"

#include <list>
#include <string>

namespace NS_TA {

// One answer row: a person's name and one number. A person with several numbers gives several rows.
struct LdapResultItem {
    std::string strName;
    std::string strNumber;
};

// The answer to one query, delivered to the query's callback object. Its type id is TASK_TYPE_LDAP, its result code 0
// when the query succeeded; with any other code the rows are not to be used.
class CLdapAction : public CTaskAction {
public:
    CLdapAction();
    ~CLdapAction() override;

    // The key that the query was made with, unchanged.
    const std::string& GetKey() const { return m_strKey; }
    void SetKey(const std::string& strKey) { m_strKey = strKey; }

    // The rows in the order in which the directory returned them.
    const std::list<LdapResultItem>& GetResultList() const { return m_listResult; }
    std::list<LdapResultItem>& GetResultList() { return m_listResult; }

private:
    std::string m_strKey;
    std::list<LdapResultItem> m_listResult;
};

} // namespace NS_TA

// Starts a query for the people that match strKey and returns at once: a key of digits is looked for in their numbers,
// any other key in their names. iFromIndex is a hint at which row of the result will be looked at first and never hides
// rows; at most iMaxCount people are asked for. The answer arrives later, exactly once, as a CLdapAction at
// pCallback->OnTaskActionCallback on the thread pThread, null meaning the phone's main thread; a directory that cannot
// be reached or does not answer in time is an answer with a result code other than 0. A newer query for the same
// callback object abandons the older one, which then gives no answer at all, and so does the destruction of the
// callback object. The answer is never delivered from within this call. Non-zero: the query was started; zero: it was
// not, and the answer says so too, unless there is no memory even for that. Any thread.
int Ldap_SearchAsync(const std::string& strKey, int iFromIndex, int iMaxCount,
                     NS_TA::CTaskActionCallbackBase* pCallback, void* pThread);
