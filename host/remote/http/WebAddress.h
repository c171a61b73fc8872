// The address of something on the web (RFC 3986): http and https alone. All functions are pure; any thread.
#pragma once

#include <optional>
#include <string>

namespace host {

struct WebAddress {
    std::string url; // absolute, without a fragment
    bool tls = false;
    std::string origin; // scheme, host in lower case and port: with whom one speaks
    std::string path;   // decoded; at least "/"

    bool operator==(const WebAddress&) const = default;
};

// Nothing, and what to do, when text is no such address, or holds a user or a password, which is for settings of their
// own.
std::optional<WebAddress> parseWebAddress(const std::string& text, std::string& problem);

// The address as it may be shown: what stands behind "?" may be a secret.
std::string withoutQuery(const std::string& url);

// What reference, as a server writes it, means within base: it may be relative. Nothing when it is no such address.
std::optional<WebAddress> resolve(const WebAddress& base, const std::string& reference);

} // namespace host
