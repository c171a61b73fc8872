#include "host/remote/refresh/DavXml.h"
#include "host/remote/refresh/RemoteStep.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace host {

namespace {

using Kind = RemoteOutcome::Kind;

// How often one address may lead to the next: to who is signed in, from there to the address books.
constexpr int mostSteps = 4;

RemoteNext look(RemoteTask& task, const std::string& url, int steps);

RemoteNext found(RemoteTask& task, const std::string& url, bool synchronises) {
    if (task.copy.kind != RemoteCopy::Kind::addressBook || task.copy.url != url) {
        task.copy = {.kind = RemoteCopy::Kind::addressBook, .url = url};
    }
    task.copy.synchronises = synchronises;
    return refreshAddressBook(task);
}

std::string listed(const std::vector<std::string>& urls) {
    constexpr std::size_t most = 10;
    std::string text;
    for (std::size_t i = 0; i < std::min(urls.size(), most); ++i) {
        text.append(i == 0 ? "" : ", ").append(urls[i]);
    }
    return text + (urls.size() > most ? ", ..." : "");
}

// Looks through a folder of address books: the one that is there, or which there are.
RemoteNext lookThrough(RemoteTask& task, const std::string& url) {
    const auto choose = [&task](const WebAddress& at, const HttpResponse& response) -> RemoteNext {
        const auto answer = response.status == 207 ? readMultistatus(response.body) : std::nullopt;
        if (!answer) {
            return unusable(response, "a list of address books");
        }
        std::vector<std::string> urls;
        bool synchronises = false;
        for (const DavResource& each : answer->resources) {
            const auto address = each.isAddressBook ? resolve(at, each.href) : std::nullopt;
            if (address) {
                urls.push_back(address->url);
                synchronises = each.synchronises;
            }
        }
        if (urls.size() == 1) {
            return found(task, urls.front(), synchronises);
        }
        return RemoteOutcome{Kind::failed, urls.empty() ? "there is no address book; name one in [remote_directory] url"
                                                        : "there are several address books; name one of them in "
                                                          "[remote_directory] url: " +
                                                              listed(urls)};
    };
    return RemoteAsk{davRequest("PROPFIND", url, 1, davBody::whatIsThere()), choose};
}

RemoteNext looked(RemoteTask& task, int steps, const WebAddress& at, const HttpResponse& response) {
    const auto answer = response.status == 207 ? readMultistatus(response.body) : std::nullopt;
    if (!answer || answer->resources.empty()) {
        // Where a server that is named alone is entered (RFC 6764, section 5).
        const auto entry = at.path == "/" && steps == 0 ? resolve(at, "/.well-known/carddav") : std::nullopt;
        return entry ? look(task, entry->url, steps + 1) : fetchFile(task);
    }
    const DavResource& there = answer->resources.front();
    const auto next = [&](const std::vector<std::string>& hrefs) {
        return hrefs.empty() || steps == mostSteps ? std::nullopt : resolve(at, hrefs.front());
    };
    if (there.isAddressBook) {
        return found(task, at.url, there.synchronises);
    }
    if (const auto home = next(there.homes)) {
        return lookThrough(task, home->url);
    }
    if (const auto principal = next(there.principals); principal && principal->url != at.url) {
        return look(task, principal->url, steps + 1);
    }
    return there.isCollection ? lookThrough(task, at.url) : fetchFile(task);
}

RemoteNext look(RemoteTask& task, const std::string& url, int steps) {
    return RemoteAsk{davRequest("PROPFIND", url, 0, davBody::whatIsThere()),
                     [&task, steps](const WebAddress& at, const HttpResponse& response) {
                         return looked(task, steps, at, response);
                     }};
}

} // namespace

RemoteNext findOut(RemoteTask& task) {
    return look(task, task.start.url, 0);
}

} // namespace host
