// Does a phone keep the rules of platform/? A program of the porter's, linked with the phone's own functions and with
// libwideseek_platform_check.a, asks for groups of checks and hears which rule is broken, what was seen, and what of
// the search would break by it. Nothing else is needed: no test framework, no exceptions, no type information, not even
// libWideseek.so.
//
//     int main() {
//         return platform_check::run({&platform_check::logAndMemory, &platform_check::strings});
//     }
//
// A group is linked only when it is named, and then needs the functions of its headers and of those of the groups in
// front of it. So a port grows group by group, in the order below.
#pragma once

#include <initializer_list>

namespace platform_check {

class Group;

extern const Group logAndMemory; // AppLog.h, ConfigParser.h, SystemFile.h, TrackedMemory.h, BaseHelper.h
extern const Group strings;      // CommonAPI.h
extern const Group messages;     // MsgQueueHelper.h: the threads, and the phone's own messages
extern const Group timers;       // MsgQueueHelper.h: the timer, and what withdrawal does to it
extern const Group tasks;        // TaskAction.h, and the timer on other threads
extern const Group sources;      // Directory.h
extern const Group ldap;         // Ldap.h
extern const Group presence;     // Presence.h

// What the checks must know of a phone that platform/ does not tell. All of it may be left out.
struct Phone {
    // Works the messages of the calling thread for so many milliseconds: for a phone whose main thread, or whose only
    // one, works its queue when the program says so. Null: the phone's threads work by themselves.
    void (*work)(int milliseconds) = nullptr;

    // Sends a message of the phone, as MSG_CONFIG_CHANGED is sent. Null: handlers of such messages are not checked.
    void (*sendMessage)(unsigned int id, long long param1) = nullptr;

    // Takes the report, line by line, without line feeds. Null: it goes to the standard output.
    void (*print)(const char* line) = nullptr;

    // How long a message or an answer may take to come, in milliseconds. After three times as long in one check, the
    // program is taken to hang: the check is reported as failed, and the program ends with exit status 1.
    int patience = 10000;

    // Tells the rule of every check, not of those that failed alone.
    bool verbose = false;
};

// Runs the checks of the groups, one after another, and prints for each that fails the function, the rule in the words
// of its header, what was seen, and which promise of the search breaks; then one line in sum. What the phone says it
// does not have is skipped, with the reason. Gives the number of failed checks, at most 100: an exit status.
//
// To be called on the phone's main thread, with the phone up and no search running, once at a time. It takes about a
// second. A crash in a check (SIGSEGV, SIGABRT and their like) is reported as its failure and ends the program with
// exit status 1.
int run(std::initializer_list<const Group*> groups, const Phone& phone = Phone());

// All groups, for a phone that is complete.
inline int runAll(const Phone& phone = Phone()) {
    return run({&logAndMemory, &strings, &messages, &timers, &tasks, &sources, &ldap, &presence}, phone);
}

} // namespace platform_check
