// The smallest phone's only thread, as its main program drives it.
#pragma once

namespace phone {

// Works messages until none is queued and no timer is set.
void run();

} // namespace phone
