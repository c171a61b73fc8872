// The smallest phone, as its main programs drive it: one thread, which works messages when it is told to.
#pragma once

namespace NS_TA {
class CTaskAction;
class CTaskActionCallbackBase;
} // namespace NS_TA

namespace phone {

// Works messages until none is queued and no timer is set.
void run();

// Works the messages that come up within so many milliseconds.
void runFor(int milliseconds);

// Posts the answer to what receiver has asked, in place of an older one that it has not got yet.
void postAnswer(NS_TA::CTaskActionCallbackBase& receiver, NS_TA::CTaskAction* pAnswer);

// Whether the phone tells on the standard output what it is asked.
extern bool talks;

// Tells that the phone was asked something: a printf format.
__attribute__((format(printf, 1, 2))) void tell(const char* pszFormat, ...);

} // namespace phone
