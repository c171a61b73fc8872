#include "host/remote/http/CurlTransport.h"

#include "host/text/Fold.h"

#include <curl/curl.h>

#include <atomic>
#include <mutex>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace host {

namespace {

// Header fields of more bytes than this are no answer of a directory.
constexpr std::size_t mostHeaderBytes = 256U << 10U;

template <auto free> struct Freed {
    void operator()(void* handle) const { free(handle); }
};
using Easy = std::unique_ptr<CURL, Freed<curl_easy_cleanup>>;
using Multi = std::unique_ptr<CURLM, Freed<curl_multi_cleanup>>;
using HeaderList = std::unique_ptr<curl_slist, void (*)(curl_slist*)>;

// An answer as it comes in, and what bounds it.
struct Incoming {
    HttpResponse response;
    std::size_t mostBytes = 0;
    std::size_t headerBytes = 0;
    bool tooLarge = false;

    static std::size_t takeBody(const char* bytes, std::size_t size, std::size_t count, void* incoming) {
        auto& self = *static_cast<Incoming*>(incoming);
        const std::size_t length = size * count;
        self.tooLarge = length > self.mostBytes - self.response.body.size();
        if (self.tooLarge) {
            return 0;
        }
        self.response.body.append(bytes, length);
        return length;
    }

    static std::size_t takeHeader(const char* bytes, std::size_t size, std::size_t count, void* incoming) {
        auto& self = *static_cast<Incoming*>(incoming);
        const std::string_view line(bytes, size * count);
        self.headerBytes += line.size();
        self.tooLarge = self.headerBytes > mostHeaderBytes;
        if (self.tooLarge) {
            return 0;
        }
        if (line.starts_with("HTTP/")) { // of the last answer, where several come: 100 Continue is one
            self.response.headers.clear();
        } else if (const std::size_t colon = line.find(':'); colon != std::string_view::npos) {
            self.response.headers[text::folded(line.substr(0, colon))] =
                text::trimBlanks(line.substr(colon + 1, line.find_first_of("\r\n") - colon - 1));
        }
        return line.size();
    }
};

class CurlTransport final : public HttpTransport {
public:
    explicit CurlTransport(CurlSettings settings);

    HttpResponse exchange(const HttpRequest& request) override;
    void stop() override;

private:
    void prepare(const HttpRequest& request, Incoming& incoming, curl_slist* headers) const;
    CURLcode run() const;
    std::string problemOf(CURLcode code, const Incoming& incoming) const;

    const CurlSettings m_settings;
    const Multi m_multi;
    const Easy m_easy;
    std::atomic<bool> m_stopped = false;
};

CurlTransport::CurlTransport(CurlSettings settings)
    : m_settings(std::move(settings)), m_multi((curl_global_init(CURL_GLOBAL_DEFAULT), curl_multi_init())),
      m_easy(curl_easy_init()) {
    if (!m_multi || !m_easy) {
        throw std::runtime_error("libcurl cannot be used; give the phone more memory");
    }
}

void CurlTransport::stop() {
    m_stopped = true;
    curl_multi_wakeup(m_multi.get());
}

void CurlTransport::prepare(const HttpRequest& request, Incoming& incoming, curl_slist* headers) const {
    CURL* const easy = m_easy.get();
    curl_easy_reset(easy);
    curl_easy_setopt(easy, CURLOPT_URL, request.url.c_str());
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, request.method.c_str());
    if (!request.body.empty()) {
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
        curl_easy_setopt(easy, CURLOPT_POSTFIELDS, request.body.data());
    }
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(easy, CURLOPT_USERAGENT, "wideseek");
    curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, ""); // whatever libcurl can unpack
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &Incoming::takeBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &incoming);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &Incoming::takeHeader);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, &incoming);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L); // leaves a resolver that is stuck to itself
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(m_settings.networkTimeout.count()));
    curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, static_cast<long>(m_settings.timeLimit.count()));
    if (!m_settings.caFile.empty()) {
        curl_easy_setopt(easy, CURLOPT_CAINFO, m_settings.caFile.c_str());
        curl_easy_setopt(easy, CURLOPT_CAPATH, nullptr);
    }
    if (request.signIn) {
        curl_easy_setopt(easy, CURLOPT_HTTPAUTH, CURLAUTH_BASIC);
        curl_easy_setopt(easy, CURLOPT_USERNAME, m_settings.user.c_str());
        curl_easy_setopt(easy, CURLOPT_PASSWORD, m_settings.password.c_str());
    }
}

HttpResponse CurlTransport::exchange(const HttpRequest& request) {
    HeaderList headers(nullptr, curl_slist_free_all);
    for (const std::string& header : request.headers) {
        curl_slist* const longer = curl_slist_append(headers.get(), header.c_str());
        static_cast<void>(headers.release());
        headers.reset(longer);
    }
    Incoming incoming;
    incoming.mostBytes = request.mostBytes;
    prepare(request, incoming, headers.get());
    curl_multi_add_handle(m_multi.get(), m_easy.get());
    const CURLcode code = run();
    curl_multi_remove_handle(m_multi.get(), m_easy.get());
    long status = 0;
    curl_easy_getinfo(m_easy.get(), CURLINFO_RESPONSE_CODE, &status);
    if (code == CURLE_OK && status != 0) {
        incoming.response.status = static_cast<int>(status);
    } else {
        incoming.response.problem = problemOf(code, incoming);
    }
    return std::move(incoming.response);
}

// What the exchange ended with; CURLE_ABORTED_BY_CALLBACK when it was stopped.
CURLcode CurlTransport::run() const {
    constexpr int longestWait = 1000; // ms; whatever happens ends it earlier
    int running = 1;
    while (!m_stopped && curl_multi_perform(m_multi.get(), &running) == CURLM_OK && running != 0) {
        curl_multi_poll(m_multi.get(), nullptr, 0, longestWait, nullptr);
    }
    int left = 0;
    const CURLMsg* const message = curl_multi_info_read(m_multi.get(), &left);
    return message != nullptr && !m_stopped ? message->data.result : CURLE_ABORTED_BY_CALLBACK;
}

std::string CurlTransport::problemOf(CURLcode code, const Incoming& incoming) const {
    const std::string words = curl_easy_strerror(code);
    if (incoming.tooLarge) {
        return "sends more than the size limit allows; check the address, or raise [remote_directory] size_limit_mb";
    }
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return "the name cannot be resolved; check the host in [remote_directory] url and the DNS server";
    case CURLE_COULDNT_CONNECT:
        return "cannot connect; check that the server runs, that [remote_directory] url names its host and port, and "
               "the network";
    case CURLE_OPERATION_TIMEDOUT:
        return "no complete answer in time; check the server and the network, or raise [remote_directory] "
               "time_limit_ms and network_timeout_ms";
    case CURLE_PEER_FAILED_VERIFICATION:
        return "its certificate is not trusted: no authority vouches for it, or it is for another host, or it is not "
               "valid at this time; put the certificate of its authority into [remote_directory] ca_file, and check "
               "the host in url and the clock";
    case CURLE_SSL_CONNECT_ERROR:
        return "no TLS with the server; check that it speaks TLS at this port, or write http:// for one that does not";
    case CURLE_SSL_CACERT_BADFILE:
        return "[remote_directory] ca_file (" + m_settings.caFile +
               ") cannot be used; name a readable file of certificates (PEM)";
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
        return "the connection broke before the answer was complete; check the server's log and the network";
    default:
        return "no answer (" + words + "); check [remote_directory] url, the server and the network";
    }
}

} // namespace

std::unique_ptr<HttpTransport> makeCurlTransport(CurlSettings settings) {
    return std::make_unique<CurlTransport>(std::move(settings));
}

} // namespace host
