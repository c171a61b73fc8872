// The texts of the screens beside the phone's search screen.
#pragma once

#include "tools/wideseek/phone/PhoneProblems.h"
#include "tools/wideseek/phone/SourceWatch.h"
#include "tools/wideseek/phone/screens/ContactDetails.h"
#include "tools/wideseek/phone/screens/TextScreen.h"

namespace wideseek {

TextScreen helpScreen();

// The contact in full (null: none), with its numbers to choose among; what is wrong now; what each enabled source
// answered to the search; and what went wrong before.
TextScreen detailsScreen(const ContactDetails* contact, const SourceWatch& watch, const PhoneProblems& problems);

} // namespace wideseek
