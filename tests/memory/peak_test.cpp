// What a source takes of memory while it reads its file and afterwards, and that a file that cannot be read to its end
// gives nothing.

#include "host/contacts/FileDirectory.h"
#include "host/contacts/PresenceFile.h"
#include "tests/memory/FailingAllocations.h"
#include "tests/support/SteppedPhone.h"

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <string>

namespace {

thread_local int readsUntilError = 0; // 0: none fails

} // namespace

// What the program calls read: the system's, which a header may define in line, is left as it is.
extern "C" ssize_t readOrFail(int file, void* to, std::size_t size) __asm__("read");

extern "C" ssize_t readOrFail(int file, void* to, std::size_t size) {
    if (readsUntilError > 0 && --readsUntilError == 0) {
        errno = EIO;
        return -1;
    }
    return syscall(SYS_read, file, to, size);
}

namespace {

using namespace test;

constexpr int people = 50'000;

std::string nameOf(int person) {
    return "Person " + std::to_string(person % 7919) + " of Example " + std::to_string(person);
}

std::string contactFile() {
    std::string text = "name,number\n";
    for (int i = 0; i < people; ++i) {
        text += nameOf(i) + ",555" + std::to_string(1'000'000 + i) + "\n";
    }
    return text;
}

std::string contactFileWithKinds() {
    std::string text = "name,work,mobile,organisation,email\n";
    for (int i = 0; i < people; ++i) {
        text += nameOf(i) + ",+44 20 7946 0" + std::to_string(100 + i % 900) + ",07700" + std::to_string(900'000 + i) +
                ",Example Ltd " + std::to_string(i % 40) + ",p" + std::to_string(i) + "@example.com\n";
    }
    return text;
}

std::string cards() {
    std::string text;
    for (int i = 0; i < people; ++i) {
        text += "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:" + nameOf(i) + "\r\nTEL;TYPE=WORK:555" +
                std::to_string(1'000'000 + i) + "\r\nEND:VCARD\r\n";
    }
    return text;
}

std::string buddies() {
    std::string text = "[";
    for (int i = 0; i < people; ++i) {
        text += (i == 0 ? "\n" : ",\n") + (R"({"id": )" + std::to_string(i)) + R"(, "name": ")" + nameOf(i) +
                R"(", "info": -1, "attributes": [{"name": "work", "type": 2, "value": "555)" +
                std::to_string(1'000'000 + i) + "\"}]}";
    }
    return text + "\n]\n";
}

bool read(host::FileDirectory& directory, std::string& error) {
    OxList<DirectorySearchData> hits;
    return directory.search("zzz", hits, error);
}

bool read(host::PresenceFile& file, std::string& error) {
    ContactBuddyListData found;
    int state = 1;
    const bool whole = file.GetListByGroupId(&found, state, 0, "zzz", ATTR_TYPE_SEARCH);
    error = whole ? "" : "failed";
    return whole;
}

template <typename SourceOfFile> void check(const char* name, const std::string& text, double mostHeld) {
    SCOPED_TRACE(name);
    const TempRoot root;
    root.write(name, text);
    const auto source = std::make_unique<SourceOfFile>(root.path() / name, nullptr);
    std::string error;
    readsUntilError = 3;
    EXPECT_FALSE(read(*source, error));
    EXPECT_EQ(readsUntilError, 0);
    EXPECT_EQ(source->size(), 0U) << "half of a file is none";

    const std::size_t before = allocatedBytes.now;
    allocatedBytes.peak = before;
    EXPECT_TRUE(read(*source, error)) << error;
    EXPECT_EQ(source->size(), static_cast<std::size_t>(people));
    const std::size_t held = allocatedBytes.now - before;
    EXPECT_LT(static_cast<double>(held), mostHeld * static_cast<double>(text.size()));
    EXPECT_LT(allocatedBytes.peak - before - held, text.size() / 4) << "beside what is held: a piece of the file";
}

// The bounds are a tenth above what is taken.
TEST(Memory, AFileIsNotHeldWholeNorWhatIsMadeOfItInAMultiple) {
    check<host::FileDirectory>("plain.csv", contactFile(), 3.2);
    check<host::FileDirectory>("kinds.csv", contactFileWithKinds(), 1.8);
    check<host::FileDirectory>("cards.vcf", cards(), 1.45);
    check<host::PresenceFile>("buddies.json", buddies(), 1.1);
}

} // namespace
