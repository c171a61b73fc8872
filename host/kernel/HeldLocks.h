// How many locks of the phone (chCriticalSection) the calling thread holds, each as often as it was locked.
#pragma once

#include <cstddef>

namespace host {

std::size_t heldLocks();

} // namespace host
