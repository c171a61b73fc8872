// Does the smallest phone keep the rules of the contract? The same program checks a phone that grows: name the groups
// that it has the functions for, in place of all.
#include "../Phone.h"

#include "platform_check/PlatformCheck.h"

int main() {
    platform_check::Phone access;
    access.work = phone::runFor;
    return platform_check::runAll(access);
}
