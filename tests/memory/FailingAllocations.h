// A program that is linked with this has a global operator new of its own, by which allocations fail as
// AllocationFault.h says, those of its XML too.
#pragma once

#include "tests/support/AllocationFault.h"
