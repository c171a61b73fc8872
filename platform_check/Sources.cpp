// The directories and the call log, asked with keys that are made of what they hold.
#include "app/Gui/Logic/Wideseek/WideseekData.h"
#include "platform/Directory.h"
#include "platform_check/Check.h"
#include "platform_check/Match.h"

#include <algorithm>
#include <climits>
#include <iterator>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace platform_check {

namespace {

struct Directory {
    const char* function;
    bool (*query)(WideseekItemListData*);
};

constexpr Directory directories[] = {
    {"Directory_LocalDirWideseek", Directory_LocalDirWideseek},
    {"Directory_LocalLogWideseek", Directory_LocalLogWideseek},
    {"RemoteDir_Wideseek", RemoteDir_Wideseek},
    {"BSFTDir_Wideseek", BSFTDir_Wideseek},
};

struct Contact {
    std::string name;
    std::vector<std::string> numbers;

    bool operator==(const Contact& other) const = default;
    bool operator<(const Contact& other) const { return std::tie(name, numbers) < std::tie(other.name, other.numbers); }
};

struct Answer {
    bool succeeded = false;
    std::vector<Contact> contacts;
};

Answer ask(const Directory& directory, const std::string& key) {
    WideseekItemListData data;
    data.strKey = key;
    Answer answer;
    answer.succeeded = directory.query(&data);
    for (const auto* node = data.listResult.Begin(); node != data.listResult.End(); node = node->pNext) {
        const DirectorySearchData& hit = node->value;
        answer.contacts.push_back({hit.strName, {hit.strNumber1, hit.strNumber2, hit.strNumber3}});
    }
    return answer;
}

bool holds(const std::vector<Contact>& contacts, const Contact& contact) {
    return std::find(contacts.begin(), contacts.end(), contact) != contacts.end();
}

// Those whom a key of one digit or vowel finds, which is nearly everybody. An empty key need not find anybody. Succeeds
// when one of the queries did.
Answer askForAll(const Directory& directory) {
    Answer all;
    for (const char key : std::string_view("0123456789aeiou")) {
        Answer answer = ask(directory, std::string(1, key));
        all.succeeded = all.succeeded || answer.succeeded;
        std::move(answer.contacts.begin(), answer.contacts.end(), std::back_inserter(all.contacts));
    }
    std::sort(all.contacts.begin(), all.contacts.end());
    all.contacts.erase(std::unique(all.contacts.begin(), all.contacts.end()), all.contacts.end());
    return all;
}

// Keys that find something in a directory with these contacts: beginnings of names, as text and on the keypad, and of
// numbers. Of a few contacts from all over it.
std::vector<std::string> typedFor(const std::vector<Contact>& contacts) {
    std::vector<std::string> typed = {"a", "e", "2", "5", "0"};
    const std::size_t step = std::max<std::size_t>(contacts.size() / 8, 1);
    for (std::size_t i = 0; i < contacts.size(); i += step) {
        typed.push_back(contacts[i].name);
        typed.insert(typed.end(), contacts[i].numbers.begin(), contacts[i].numbers.end());
    }
    typed.erase(std::remove_if(typed.begin(), typed.end(), [](const std::string& each) { return keyOf(each).empty(); }),
                typed.end());
    return typed;
}

// Calls each for every directory that answers, and skips the trial when none does.
template <typename Each> void forEachDirectory(Trial& trial, const Each& each) {
    bool any = false;
    for (const Directory& directory : directories) {
        const Answer all = askForAll(directory);
        if (all.succeeded) {
            any = true;
            each(directory, all.contacts);
        }
    }
    if (!any) {
        trial.skip("all directories and the call log fail, as on a phone without them");
    }
}

void contactsMatchTheirKey(Trial& trial) {
    forEachDirectory(trial, [&](const Directory& directory, const std::vector<Contact>& all) {
        for (const std::string& typed : typedFor(all)) {
            const std::string key = keyOf(typed);
            for (const Contact& contact : ask(directory, key).contacts) {
                trial.expect(isFound(contact.name, contact.numbers, key),
                             "%s offered \"%s\" %s for the key \"%s\", which the match function does not find in it",
                             directory.function, contact.name.c_str(), contact.numbers.front().c_str(), key.c_str());
            }
        }
    });
}

void longerKeysFindLess(Trial& trial) {
    forEachDirectory(trial, [&](const Directory& directory, const std::vector<Contact>& all) {
        for (const std::string& typed : typedFor(all)) {
            std::string shorterKey;
            Answer shorter;
            for (const std::string& key : keysWhileTyping(typed)) {
                Answer longer = ask(directory, key);
                for (const Contact& contact : longer.contacts) {
                    trial.expect(shorterKey.empty() || !shorter.succeeded || holds(shorter.contacts, contact) ||
                                     key.rfind(shorterKey, 0) != 0,
                                 "%s offered \"%s\" for the key \"%s\", and not for \"%s\"", directory.function,
                                 contact.name.c_str(), key.c_str(), shorterKey.c_str());
                }
                shorter = std::move(longer);
                shorterKey = key;
            }
        }
    });
}

void contactsAreFound(Trial& trial) {
    forEachDirectory(trial, [&](const Directory& directory, const std::vector<Contact>& all) {
        for (const std::string& typed : typedFor(all)) {
            const std::string key = keyOf(typed);
            const Answer answer = ask(directory, key);
            for (const Contact& contact : all) {
                trial.expect(!answer.succeeded || !isFound(contact.name, contact.numbers, key) ||
                                 holds(answer.contacts, contact),
                             "%s did not offer \"%s\" for the key \"%s\", which the match function finds in it",
                             directory.function, contact.name.c_str(), key.c_str());
            }
        }
    });
}

void contactsAreAppended(Trial& trial) {
    forEachDirectory(trial, [&](const Directory& directory, const std::vector<Contact>&) {
        WideseekItemListData data;
        data.listResult.PushBack({"Platform Check", "", "", "", ""});
        data.strKey = "2";
        directory.query(&data);
        trial.expect(data.listResult.Count() > 0 && data.listResult.Begin()->value.strName == "Platform Check",
                     "%s did not keep the contact that was in the list before", directory.function);
        trial.expect(data.strKey == "2", "%s changed the key to \"%s\"", directory.function, data.strKey.c_str());
    });
}

// ---- recent calls ----

struct Calls {
    int available = 0;
    std::vector<std::string> numbers;
};

Calls recent(int from, int count) {
    OxVector<GeneralDirItemData> vector;
    Calls calls;
    calls.available = Directory_SearchCallLogRecentOutCall(vector, from, count);
    for (int i = 0; i < vector.Count(); ++i) {
        calls.numbers.push_back(vector.At(i) != nullptr ? vector.At(i)->strNumber : "(null)");
    }
    return calls;
}

bool hasCalls(Trial& trial) {
    const bool has = recent(0, 1).available >= 0;
    if (!has) {
        trial.skip("the list of outgoing calls fails, as on a phone without one");
    }
    return has;
}

void slicesFitTogether(Trial& trial) {
    if (!hasCalls(trial)) {
        return;
    }
    const Calls whole = recent(0, 10);
    trial.expect(static_cast<int>(whole.numbers.size()) == std::min(10, whole.available),
                 "of %d calls, 10 were asked for and %zu came", whole.available, whole.numbers.size());
    for (int from = 0; from < static_cast<int>(whole.numbers.size()); ++from) {
        const Calls one = recent(from, 1);
        trial.expect(one.available == whole.available, "there were %d calls, then %d", whole.available, one.available);
        trial.expect(one.numbers.size() == 1 && one.numbers[0] == whole.numbers[static_cast<std::size_t>(from)],
                     "call %d alone is not call %d of the first ten", from, from);
    }
    const Calls behind = recent(INT_MAX, INT_MAX);
    trial.expect(behind.numbers.empty() && behind.available == whole.available,
                 "behind the last call came %zu calls, and %d as their number", behind.numbers.size(),
                 behind.available);
}

void negativeSlicesFail(Trial& trial) {
    for (const auto& [from, count] : {std::pair(-1, 10), std::pair(0, -1), std::pair(INT_MIN, INT_MIN)}) {
        const int available = recent(from, count).available;
        trial.expect(available < 0, "from %d, count %d: the result was %d", from, count, available);
    }
}

constexpr Check checks[] = {
    {"contacts match their key", "the four queries", "Directory.h",
     "Key and contacts match as CommonAPI_StringMatch and CommonUnits_ToKeyString (CommonAPI.h) decide",
     "a longer key keeps the rows that a source would offer for it", contactsMatchTheirKey},
    {"a longer key finds less", "the four queries", "Directory.h",
     "a query for a longer key finds a part of what a query for its beginning found",
     "a longer key is answered from the rows at hand, and shows what a fresh search would", longerKeysFindLess},
    {"contacts are found", "the four queries", "Directory.h",
     "a key of keypad digits is looked for in the numbers (without \"+\") and in the keypad form of the name, any "
     "other "
     "key in the name",
     "what is typed finds whom it means", contactsAreFound},
    {"contacts are appended", "the four queries", "Directory.h", "append the matching contacts to its listResult",
     "nothing that was found is lost", contactsAreAppended},
    {"slices of the recent calls fit together", "Directory_SearchCallLogRecentOutCall", "Directory.h",
     "Appends the outgoing calls with index iFromIndex to iFromIndex + iSearchCount - 1, newest first, to vecItem, "
     "fewer "
     "when there are not so many.",
     "scrolling through the recent calls shows each once", slicesFitTogether},
    {"negative slices fail", "Directory_SearchCallLogRecentOutCall", "Directory.h", "Negative arguments are a failure.",
     "a page that cannot be has no rows", negativeSlicesFail},
};

} // namespace

constexpr Group sources = {"sources", checks};

} // namespace platform_check
