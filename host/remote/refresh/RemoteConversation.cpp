#include "host/remote/refresh/RemoteConversation.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

namespace host {

namespace {

constexpr int mostRedirects = 5;
constexpr std::size_t mostRequests = 20'000; // an address book of a million cards takes as many
constexpr std::chrono::seconds longestWait = std::chrono::hours(24);

bool isRedirect(const HttpResponse& response) {
    constexpr std::array statuses = {301, 302, 303, 307, 308};
    return std::find(statuses.begin(), statuses.end(), response.status) != statuses.end() &&
           !response.header("location").empty();
}

// As a number of seconds (RFC 9110, section 10.2.3); a date is taken for none.
std::chrono::seconds retryAfter(const HttpResponse& response) {
    const std::string text = response.header("retry-after");
    unsigned int seconds = 0;
    std::from_chars(text.data(), text.data() + text.size(), seconds);
    return std::min(std::chrono::seconds(seconds), longestWait);
}

bool namesAFile(const std::string& path) {
    constexpr std::array<std::string_view, 3> endings = {".vcf", ".vcard", ".csv"};
    return std::any_of(endings.begin(), endings.end(), [&](std::string_view each) { return path.ends_with(each); });
}

WebAddress usable(const std::string& url) {
    std::string ignored;
    return parseWebAddress(url, ignored).value_or(WebAddress());
}

RemoteNext begin(RemoteTask& task) {
    if (task.copy.kind == RemoteCopy::Kind::addressBook) {
        return refreshAddressBook(task);
    }
    return task.copy.kind == RemoteCopy::Kind::file || namesAFile(task.start.path) ? fetchFile(task) : findOut(task);
}

} // namespace

RemoteConversation::RemoteConversation(const RemoteOptions& options, RemoteCopy last)
    : m_options(options), m_task(std::make_unique<RemoteTask>(RemoteTask{usable(options.url), std::move(last)})),
      m_next(begin(*m_task)), m_bytesLeft(options.sizeLimit) {
    admit();
}

const HttpRequest* RemoteConversation::next() {
    const RemoteAsk* const ask = std::get_if<RemoteAsk>(&m_next);
    return ask != nullptr ? &ask->request : nullptr;
}

// Makes a step's request ready to be sent, or ends the refresh when it must not be.
void RemoteConversation::admit() {
    RemoteAsk* const ask = std::get_if<RemoteAsk>(&m_next);
    if (ask == nullptr) {
        return;
    }
    const WebAddress before = std::exchange(m_at, usable(ask->request.url));
    if (m_at.url.empty() || (m_task->start.tls && !m_at.tls)) {
        m_at = before;
        fail(
            "leads from https to " + withoutQuery(ask->request.url) +
            ", which is not protected; check the server's settings, or name the new address in [remote_directory] url");
        return;
    }
    if (++m_requests > mostRequests) {
        fail("there is no end to what the server has to say; check its log");
        return;
    }
    ask->request.signIn = !m_options.user.empty() && m_at.origin == m_task->start.origin;
    ask->request.mostBytes = m_bytesLeft;
}

void RemoteConversation::redirect(const HttpResponse& response) {
    HttpRequest& request = std::get<RemoteAsk>(m_next).request;
    const auto target = resolve(m_at, response.header("location"));
    if (!target || ++m_redirects > mostRedirects) {
        fail("is redirected without end or to what is no address; check [remote_directory] url and the server");
        return;
    }
    request.url = target->url;
    admit();
}

void RemoteConversation::take(HttpResponse response) {
    m_bytesLeft -= std::min(m_bytesLeft, response.body.size());
    if (response.status == 0) {
        fail(response.problem);
    } else if (isRedirect(response)) {
        redirect(response);
    } else if (response.status == 401 || response.status == 407) {
        const bool signedIn = std::get<RemoteAsk>(m_next).request.signIn;
        fail(signedIn ? "the server refused the sign-in as \"" + m_options.user +
                            "\"; check [remote_directory] user and password_file"
             : m_options.user.empty()
                 ? "the server asks who it is; write [remote_directory] user and password_file"
                 : "another host than that of the settings asks for the password, which it is not given; name the "
                   "right address in [remote_directory] url",
             RemoteOutcome::Kind::refused);
    } else if (response.status == 429 || response.status == 503) {
        fail("the server is busy (status " + std::to_string(response.status) + "); it is asked again later");
        std::get<RemoteOutcome>(m_next).retryAfter = retryAfter(response);
    } else {
        m_next = RemoteAsk(std::get<RemoteAsk>(std::move(m_next))).then(m_at, response);
        m_redirects = 0;
        if (const auto* end = std::get_if<RemoteOutcome>(&m_next); end != nullptr && !end->problem.empty()) {
            fail(end->problem, end->kind);
        }
        admit();
    }
}

void RemoteConversation::fail(const std::string& problem, RemoteOutcome::Kind kind) {
    m_next = RemoteOutcome{kind, withoutQuery(m_at.url) + ": " + problem};
}

RemoteOutcome unusable(const HttpResponse& response, const std::string& wanted) {
    constexpr std::array gone = {404, 405, 410, 501};
    const bool isGone = std::find(gone.begin(), gone.end(), response.status) != gone.end();
    return {isGone ? RemoteOutcome::Kind::gone : RemoteOutcome::Kind::failed,
            "the server does not give " + wanted + " (status " + std::to_string(response.status) +
                "); check [remote_directory] url, what the user may read, and the server's log"};
}

HttpRequest davRequest(const std::string& method, const std::string& url, int depth, std::string body) {
    return {.method = method,
            .url = url,
            .headers = {"Depth: " + std::to_string(depth), "Content-Type: application/xml; charset=utf-8"},
            .body = std::move(body)};
}

} // namespace host
