// The phone's task actions: reference-counted units of work, the framework that runs them, and the objects that receive
// finished ones.
//
// A task action is made with a count of 0. Whoever keeps it takes a reference with AddRef and gives it up with Release;
// the last Release destroys it if it was marked as created on the heap with SetCreatFlag(true). Such an action is
// allocated with the tracking operator new (TrackedMemory.h), which is also how the last Release gives its memory back.
#pragma once

#include "platform/MsgQueueHelper.h"

#include <atomic>

namespace NS_TA {

class CTaskAction;

// Which kind of action one is, for receivers of several kinds.
enum TaskType {
    TASK_TYPE_LDAP = 3,          // an answer of the LDAP module (Ldap.h)
    TASK_TYPE_WIDESEEK = 6,      // the contact search
    TASK_TYPE_WIDESEEK_PAGE = 7, // a page of its rows
};

// Base of what is reference-counted.
class chObject {
public:
    chObject();
    virtual ~chObject();

    chObject(const chObject&) = delete;
    chObject& operator=(const chObject&) = delete;

    // Any thread.
    void AddRef();
    void Release();

    // True: the object stands alone on the heap and the last Release destroys it. False (as constructed): it belongs
    // to someone else and Release only counts. Before the object is shared between threads.
    void SetCreatFlag(bool bCreated);

private:
    std::atomic<int> m_iReferences;
    bool m_bCreated;
};

// Base of every object that receives finished task actions. They arrive one at a time on the object's callback thread.
// The object is not reference-counted: its owner destroys it when it likes, and what is queued for it goes with it.
class CTaskActionCallbackBase : public ETL_MsgQueueHelper::chMsgProcesser {
public:
    CTaskActionCallbackBase();
    ~CTaskActionCallbackBase() override;

    // The receiver's own code. pAction is alive for the duration of the call; a receiver that keeps it longer takes a
    // reference. Runs on the callback thread.
    virtual void OnTaskActionCallback(CTaskAction* pAction);

    // The thread on which OnTaskActionCallback runs, as returned by GetLocalThreadByName; null means the phone's main
    // thread. Messages for this object, timer expiries included, run there too. Any thread.
    void SetCallBackThread(void* pThread);

    // Posts pAction to this object's callback thread and returns; it never waits for the receiver and calls nothing
    // back, so a caller may hold locks. Holds a reference on pAction until OnTaskActionCallback has returned or the
    // message has been withdrawn. Does nothing for null; without memory for the message nothing is posted. Any thread.
    void SendMessageToCallingThread(CTaskAction* pAction);
};

// One unit of work.
class CTaskAction : public chObject {
public:
    CTaskAction();
    ~CTaskAction() override;

    // The work itself. True: done; false: it could not be done. Either way the action is not executed again for this
    // call of TaskAction_ExecAction: the result is for the phone's log only. Runs on the thread THREAD_CONTACT_SEARCH.
    virtual bool Exec();

    // Which kind of action this is: a TaskType, or a number of the phone's own.
    int GetTypeId() const { return m_iTypeId; }
    void SetTypeId(int iTypeId) { m_iTypeId = iTypeId; }

    // How the work ended: 0 for success.
    int GetResultCode() const { return m_iResultCode; }
    void SetResultCode(int iResultCode) { m_iResultCode = iResultCode; }

protected:
    int m_iTypeId;
    int m_iResultCode;
    bool m_bRead;                         // Exec is to read, not to write
    bool m_bFlag;                         // for other kinds of action
    CTaskActionCallbackBase* m_pCallback; // who is told of results; not owned
};

} // namespace NS_TA

// Queues pAction for execution on the thread THREAD_CONTACT_SEARCH and returns at once. An action that is queued
// twice is executed twice. Holds a reference on it until Exec has returned or the phone goes down. Non-zero: queued;
// zero: not taken (null action, no memory, or the phone is going down). What is not taken is never executed, and no
// reference on it is kept: whoever asked tells its own caller, as Wideseek_SearchUnion does, and may try again. Any
// thread.
int TaskAction_ExecAction(NS_TA::CTaskAction* pAction);
