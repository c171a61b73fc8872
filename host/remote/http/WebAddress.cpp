#include "host/remote/http/WebAddress.h"

#include <curl/curl.h>

#include <memory>
#include <utility>

namespace host {

namespace {

using Handle = std::unique_ptr<CURLU, void (*)(CURLU*)>;

// Empty when there is no such part.
std::string partOf(const Handle& handle, CURLUPart part, unsigned int flags = 0) {
    char* text = nullptr;
    curl_url_get(handle.get(), part, &text, flags);
    const std::unique_ptr<char, void (*)(void*)> holder(text, curl_free);
    return text != nullptr ? text : "";
}

std::string inLowerCase(std::string text) {
    for (char& each : text) {
        each = static_cast<char>(each >= 'A' && each <= 'Z' ? each - 'A' + 'a' : each);
    }
    return text;
}

std::optional<WebAddress> addressOf(const Handle& handle) {
    const std::string scheme = partOf(handle, CURLUPART_SCHEME);
    const std::string host = inLowerCase(partOf(handle, CURLUPART_HOST));
    if ((scheme != "http" && scheme != "https") || host.empty() || !partOf(handle, CURLUPART_USER).empty() ||
        !partOf(handle, CURLUPART_PASSWORD).empty()) {
        return std::nullopt;
    }
    curl_url_set(handle.get(), CURLUPART_FRAGMENT, nullptr, 0);
    WebAddress address;
    address.url = partOf(handle, CURLUPART_URL);
    address.tls = scheme == "https";
    address.origin = scheme + "://" + host + ":" + partOf(handle, CURLUPART_PORT, CURLU_DEFAULT_PORT);
    address.path = partOf(handle, CURLUPART_PATH, CURLU_URLDECODE);
    if (address.path.empty()) { // what it holds encoded would be no text
        address.path = partOf(handle, CURLUPART_PATH);
    }
    return address;
}

Handle parsed(const std::string& text) {
    Handle handle(curl_url(), curl_url_cleanup);
    if (handle && curl_url_set(handle.get(), CURLUPART_URL, text.c_str(), CURLU_URLENCODE) != CURLUE_OK) {
        handle.reset();
    }
    return handle;
}

} // namespace

std::optional<WebAddress> parseWebAddress(const std::string& text, std::string& problem) {
    const Handle handle = parsed(text);
    if (handle && !partOf(handle, CURLUPART_USER).empty()) {
        problem = "write the user into user, and the password into a file that password_file names";
        return std::nullopt;
    }
    auto address = handle ? addressOf(handle) : std::nullopt;
    if (!address) {
        problem = "write http://host[:port]/path or https://host[:port]/path";
    }
    return address;
}

std::string withoutQuery(const std::string& url) {
    return url.substr(0, url.find('?'));
}

std::optional<WebAddress> resolve(const WebAddress& base, const std::string& reference) {
    const Handle handle = parsed(base.url);
    if (!handle || curl_url_set(handle.get(), CURLUPART_URL, reference.c_str(), CURLU_URLENCODE) != CURLUE_OK) {
        return std::nullopt;
    }
    return addressOf(handle);
}

} // namespace host
