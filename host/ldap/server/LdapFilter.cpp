#include "host/ldap/server/LdapFilter.h"

#include "host/ldap/server/Waiter.h"
#include "host/text/NameForm.h"
#include "host/text/NumberForm.h"
#include "host/text/Spellings.h"
#include "host/text/Utf8.h"

#include <openldap.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <system_error>

namespace host {

namespace {

// Calls literal for every piece between the marks and key for every %k; the offset of a lone "%" ends it.
template <typename Literal, typename Key>
std::optional<std::size_t> walkTemplate(std::string_view text, Literal literal, Key key) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            literal(text[i]);
        } else if (text.substr(i + 1, 1) == "k") {
            key();
            ++i;
        } else if (text.substr(i + 1, 1) == "%") {
            literal('%');
            ++i;
        } else {
            return i;
        }
    }
    return std::nullopt;
}

std::string fill(std::string_view filterTemplate, std::string_view value) {
    std::string filter;
    walkTemplate(
        filterTemplate, [&](char character) { filter += character; }, [&] { filter += value; });
    return filter;
}

// libldap is the judge, as it is what encodes the filter later on: it is asked to send a search to nobody.
bool isFilter(const std::string& filter) {
    int ends[2] = {-1, -1};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        throw std::system_error(errno, std::generic_category(), "socketpair");
    }
    const Descriptor nobody(ends[1]);
    Descriptor own(ends[0]);
    LDAP* handle = nullptr;
    if (ldap_init_fd(own.number(), LDAP_PROTO_TCP, nullptr, &handle) != LDAP_SUCCESS) {
        throw std::runtime_error("no connection handle to check a filter with");
    }
    own.release();
    const std::unique_ptr<LDAP, void (*)(LDAP*)> holder(handle, [](LDAP* h) { ldap_unbind_ext(h, nullptr, nullptr); });
    int id = 0;
    return ldap_search_ext(handle, "", LDAP_SCOPE_BASE, filter.c_str(), nullptr, 0, nullptr, nullptr, nullptr, 0,
                           &id) == LDAP_SUCCESS;
}

// One filter is itself; several are "(&(a)(b))" or "(|(a)(b))".
std::string joined(char how, const std::vector<std::string>& filters) {
    std::string all;
    for (const std::string& filter : filters) {
        all += filter;
    }
    return filters.size() == 1 ? all : std::string("(") + how + all + ")";
}

// A filter for the value in any of the attributes.
std::string anyOf(const std::vector<std::string>& attributes, std::string_view value) {
    std::vector<std::string> filters;
    for (const std::string& attribute : attributes) {
        filters.push_back("(" + attribute + "=" + std::string(value) + ")");
    }
    return joined('|', filters);
}

} // namespace

std::string escapeFilterValue(std::string_view bytes) {
    static constexpr std::string_view special("*()\\\0", 5);
    static constexpr std::string_view hex = "0123456789abcdef";
    std::string escaped;
    for (std::size_t i = 0; i < bytes.size();) {
        const text::Character character = text::firstCharacter(bytes.substr(i));
        if (character.codePoint < 0 || special.find(bytes[i]) != std::string_view::npos) {
            const auto byte = static_cast<std::uint8_t>(bytes[i]);
            escaped.append({'\\', hex[byte >> 4], hex[byte & 0xF]});
            ++i;
        } else {
            escaped += bytes.substr(i, character.size);
            i += character.size;
        }
    }
    return escaped;
}

std::string filterTemplateProblem(std::string_view filterTemplate) {
    char structure = 0; // the last of ( ) = that was passed
    bool hasKey = false;
    bool inValue = true;
    const std::optional<std::size_t> stray = walkTemplate(
        filterTemplate,
        [&](char character) {
            if (character == '(' || character == ')' || character == '=') {
                structure = character;
            }
        },
        [&] {
            hasKey = true;
            inValue = inValue && structure == '=';
        });
    if (stray) {
        return "\"%\" at position " + std::to_string(*stray + 1) + " is neither %k (the key) nor %% (a percent sign)";
    }
    if (!hasKey) {
        return "%k, which stands for the key, is missing";
    }
    if (!inValue) {
        return "%k must stand in a value, behind a \"=\"";
    }
    if (!isFilter(fill(filterTemplate, "1"))) {
        return "not a filter such as (&(objectClass=person)(cn=*%k*))";
    }
    return {};
}

std::string nameFilter(std::string_view filterTemplate, std::string_view key) {
    std::vector<std::string> filters;
    for (const std::string_view word : text::typedWords(key)) {
        std::vector<std::string> spelled;
        for (const std::string& spelling : text::spellingsOf(word)) {
            spelled.push_back(fill(filterTemplate, escapeFilterValue(spelling)));
        }
        filters.push_back(joined('|', spelled));
    }
    return filters.empty() ? fill(filterTemplate, escapeFilterValue(key)) : joined('&', filters);
}

std::string numberFilter(std::string_view filterTemplate, const std::string& key) {
    std::vector<std::string> filters;
    for (const std::string& equal : text::equalKeys(key)) {
        std::string pattern;
        for (const char character : equal) {
            if (!pattern.empty()) {
                pattern += '*';
            }
            pattern += escapeFilterValue(std::string_view(&character, 1));
        }
        filters.push_back(fill(filterTemplate, pattern));
    }
    return joined('|', filters);
}

std::string defaultNameFilter(const std::vector<std::string>& nameAttributes,
                              const std::vector<std::string>& numberAttributes) {
    return "(&(objectClass=person)" + anyOf(nameAttributes, "*%k*") + anyOf(numberAttributes, "*") + ")";
}

std::string defaultNumberFilter(const std::vector<std::string>& numberAttributes) {
    return "(&(objectClass=person)" + anyOf(numberAttributes, "*%k*") + ")";
}

bool isAttributeName(std::string_view text) {
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    const auto isOther = [&](char c) { return isLetter(c) || (c >= '0' && c <= '9') || c == '-'; };
    return !text.empty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), isOther);
}

} // namespace host
