// Any bytes as what a web server answers, one "STATUS LOCATION", line feed and body behind the other, with NUL bytes
// between: a refresh of a remote directory ends, stays within TLS, shows the password to its own host alone, and says
// why when it fails. What it has brought can be read, kept and refreshed again.

#include "host/remote/RemoteContacts.h"
#include "host/remote/refresh/RemoteConversation.h"
#include "tests/fuzz/Fuzz.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace {

host::HttpResponse takeAnswer(std::string_view& rest) {
    const std::string_view answer = rest.substr(0, rest.find('\0'));
    rest.remove_prefix(std::min(answer.size() + 1, rest.size()));
    const std::string_view line = answer.substr(0, answer.find('\n'));
    host::HttpResponse response;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), response.status);
    response.headers["location"] = {end + (end < line.data() + line.size() ? 1 : 0), line.data() + line.size()};
    response.headers["etag"] = line;
    response.body = answer.substr(std::min(line.size() + 1, answer.size()));
    response.problem = response.status == 0 ? "away" : "";
    return response;
}

host::RemoteCopy refresh(const host::RemoteOptions& options, host::RemoteCopy copy, std::string_view& answers) {
    host::RemoteConversation talk(options, std::move(copy));
    while (const host::HttpRequest* request = talk.next()) {
        fuzz::require(request->url.starts_with("https://"));
        fuzz::require(!request->signIn || request->url.starts_with("https://example.com/"));
        talk.take(takeAnswer(answers));
    }
    const bool failed = talk.outcome().kind > host::RemoteOutcome::Kind::changed;
    fuzz::require(failed != talk.outcome().problem.empty());
    return failed ? host::RemoteCopy() : talk.takeCopy();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes = fuzz::textOf(data, size);
    std::string_view rest = bytes;
    host::RemoteOptions options;
    options.url = "https://example.com/";
    options.user = "ann";
    host::RemoteCopy copy = refresh(options, {}, rest);
    std::string ignored;
    host::readRemoteContacts(copy, *host::parseWebAddress(options.url, ignored), [] {});
    refresh(options, std::move(copy), rest);
    return 0;
}
