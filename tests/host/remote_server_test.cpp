// The remote directory over real servers and real time. Bounds of time are wide, and nothing sleeps to be right.
#include "host/remote/RemoteDirectory.h"
#include "host/remote/RemoteWorker.h"
#include "host/remote/http/CurlTransport.h"
#include "tests/support/FaultyPeer.h"
#include "tests/support/RadicaleServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

namespace {

using namespace std::chrono_literals;
using host::CurlSettings;
using host::HttpResponse;
using host::RemoteDirectory;
using host::RemoteOptions;
using testing::HasSubstr;
using Clock = std::chrono::steady_clock;

// Not by way of a proxy that the environment names.
const int noProxy = ::setenv("no_proxy", "127.0.0.1", 1);

constexpr auto prompt = 900ms; // how long anything may take that does not wait for the network

std::shared_ptr<RemoteDirectory> open(const RemoteOptions& options, const std::filesystem::path& copy) {
    return std::make_shared<RemoteDirectory>(
        options, copy, host::makeCurlTransport({options.user, options.password, options.caFile.string()}),
        RemoteDirectory::Surroundings());
}

// Lets a directory refresh once; what is wrong then.
std::string refresh(RemoteDirectory& directory) {
    static Clock::time_point now{};
    const std::size_t before = directory.state().refreshes;
    for (now += 24h; directory.state().refreshes == before;) {
        directory.work(now);
    }
    return directory.state().problem;
}

std::string namesOf(RemoteDirectory& directory) {
    OxList<DirectorySearchData> hits;
    std::string note;
    std::string names;
    directory.search("", hits, note);
    for (const auto* node = hits.Begin(); node != hits.End(); node = node->pNext) {
        names += node->value.strName + " " + node->value.strNumber1 + ", ";
    }
    return names;
}

TEST(RemoteServer, AnAddressBookIsFoundFetchedAndKeptInStepWithTheServer) {
    const RadicaleServer server;
    const host::TemporaryFolder folder;
    const auto copy = folder.path() / "copy";
    for (int i = 0; i < 60; ++i) {
        server.put(std::to_string(i) + ".vcf", "Person " + std::to_string(i), "555-0100");
    }
    RemoteOptions options;
    options.url = server.url;
    options.user = "ann";
    options.password = "wrong";
    EXPECT_THAT(refresh(*open(options, copy)), HasSubstr("certificate is not trusted"));
    options.caFile = server.folder.path() / "server.pem";
    EXPECT_THAT(refresh(*open(options, copy)), HasSubstr("refused the sign-in as \"ann\""));
    options.password = "secret";
    const auto directory = open(options, copy);
    EXPECT_EQ(refresh(*directory), "");
    EXPECT_EQ(directory->state().contacts, 60U);

    for (int i = 2; i < 60; ++i) {
        server.remove(std::to_string(i) + ".vcf");
    }
    server.put("1.vcf", "Jed", "+44 20 7946 0023");
    server.put("new.vcf", "Zoë", "2070");
    EXPECT_EQ(refresh(*directory), "");
    EXPECT_EQ(namesOf(*directory), "Person 0 5550100, Jed +442079460023, Zoë 2070, ");

    const auto next = open(options, copy);
    EXPECT_EQ(namesOf(*next), "Person 0 5550100, Jed +442079460023, Zoë 2070, ");
    server.remove("0.vcf");
    EXPECT_EQ(refresh(*next), "");
    EXPECT_EQ(namesOf(*next), "Jed +442079460023, Zoë 2070, ");

    // By name, and as the one file that the server makes of it.
    options.url = server.url + "ann/people/";
    EXPECT_EQ(refresh(*open(options, folder.path() / "named")), "");
    EXPECT_THAT(refresh(*open(options, folder.path())), ""); // a copy that cannot be written costs nothing else
}

TEST(RemoteServer, EveryFailureEndsInTimeSaysWhatToCheckAndDelaysNoDestruction) {
    FaultyPeer silent(FaultyPeer::Fault::silent);
    FaultyPeer full(FaultyPeer::Fault::full);
    FaultyPeer endless(FaultyPeer::Fault::flood, 0, SIZE_MAX, "HTTP/1.1 200 OK\r\n\r\n" + std::string(50'000, 'x'));
    FaultyPeer chatty(FaultyPeer::Fault::flood, 0, SIZE_MAX, "HTTP/1.1 100 Continue\r\n\r\n");
    FaultyPeer nonsense(FaultyPeer::Fault::flood, 0, SIZE_MAX, "220 ready\r\n");
    const std::string nobody = "127.0.0.1:" + std::to_string(freePort());
    const host::TemporaryFolder folder;
    const struct {
        std::string url;
        std::string problem;
    } cases[] = {
        {"http://" + silent.address(), "in time"},
        {"https://" + silent.address(), "in time"},
        {"http://" + full.address(), "in time"},
        {"http://" + endless.address(), "size_limit_mb"},
        {"http://" + chatty.address(), "size_limit_mb"},
        {"http://" + nonsense.address(), "check [remote_directory] url"},
        {"http://" + nobody, "check that the server runs"},
        {"https://" + nobody, "check that the server runs"},
        {"http://host.invalid", "e"}, // the resolver may be as slow as it likes
    };
    for (const auto& [url, problem] : cases) {
        CurlSettings settings;
        settings.timeLimit = 300ms;
        const auto transport = host::makeCurlTransport(settings);
        const auto begin = Clock::now();
        const HttpResponse response = transport->exchange({.method = "GET", .url = url, .mostBytes = 1'000'000});
        EXPECT_LT(Clock::now() - begin, settings.timeLimit + prompt) << url;
        EXPECT_EQ(response.status, 0) << url;
        EXPECT_THAT(response.problem, HasSubstr(problem)) << url;

        RemoteOptions options;
        options.url = url;
        auto worker = std::make_unique<host::RemoteWorker>(open(options, folder.path() / "copy"));
        std::this_thread::sleep_for(20ms); // mostly until it waits for the network
        const auto ending = Clock::now();
        worker.reset();
        EXPECT_LT(Clock::now() - ending, prompt) << url;
    }
}

} // namespace
