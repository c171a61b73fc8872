#include "host/remote/refresh/DavXml.h"

#include <pugixml.hpp>

#include <charconv>
#include <sstream>
#include <string_view>

namespace host {

namespace {

constexpr std::string_view dav = "DAV:";
constexpr std::string_view cardDav = "urn:ietf:params:xml:ns:carddav";

constexpr const char* declarations = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";
constexpr const char* namespaces = " xmlns=\"DAV:\" xmlns:C=\"urn:ietf:params:xml:ns:carddav\"";

std::string document(const std::string& element, const std::string& content) {
    return declarations + ("<" + element) + namespaces + ">" + content + "</" + element + ">\n";
}

std::string escaped(const std::string& text) {
    pugi::xml_document holder;
    holder.append_child(pugi::node_pcdata).set_value(text.c_str());
    std::ostringstream out;
    holder.print(out, "", pugi::format_raw | pugi::format_no_declaration);
    return out.str();
}

// The namespace that a prefix ("" for none) stands for at node.
std::string_view namespaceOf(pugi::xml_node node, std::string_view prefix) {
    const std::string attribute = prefix.empty() ? "xmlns" : "xmlns:" + std::string(prefix);
    for (; node; node = node.parent()) {
        if (const pugi::xml_attribute found = node.attribute(attribute.c_str())) {
            return found.value();
        }
    }
    return {};
}

bool is(const pugi::xml_node& node, std::string_view space, std::string_view name) {
    const std::string_view full = node.name();
    const std::size_t colon = full.find(':');
    const std::string_view local = colon == std::string_view::npos ? full : full.substr(colon + 1);
    return local == name &&
           namespaceOf(node, colon == std::string_view::npos ? std::string_view() : full.substr(0, colon)) == space;
}

pugi::xml_node childOf(const pugi::xml_node& node, std::string_view space, std::string_view name) {
    return node.find_child([&](const pugi::xml_node& child) { return is(child, space, name); });
}

// All text directly within node: a server may write it in several pieces.
std::string textOf(const pugi::xml_node& node) {
    std::string text;
    for (const pugi::xml_node& child : node.children()) {
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) {
            text += child.value();
        }
    }
    return text;
}

std::string trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(" \t\r\n") + 1 - begin);
}

// "HTTP/1.1 404 Not Found"; 200 when there is no status.
int statusOf(const pugi::xml_node& node) {
    const std::string line = trimmed(textOf(childOf(node, dav, "status")));
    const std::size_t blank = line.find(' ');
    int status = 200;
    if (blank != std::string::npos) {
        std::from_chars(line.data() + blank + 1, line.data() + line.size(), status);
    }
    return status;
}

std::vector<std::string> hrefsIn(const pugi::xml_node& node) {
    std::vector<std::string> hrefs;
    for (const pugi::xml_node& child : node.children()) {
        if (is(child, dav, "href")) {
            hrefs.push_back(trimmed(textOf(child)));
        }
    }
    return hrefs;
}

bool reportsChanges(const pugi::xml_node& supported) {
    for (const pugi::xml_node& each : supported.children()) {
        if (childOf(childOf(each, dav, "report"), dav, "sync-collection")) {
            return true;
        }
    }
    return false;
}

void readProperty(const pugi::xml_node& property, DavResource& resource) {
    if (is(property, dav, "resourcetype")) {
        resource.isCollection = !childOf(property, dav, "collection").empty();
        resource.isAddressBook = !childOf(property, cardDav, "addressbook").empty();
    } else if (is(property, dav, "displayname")) {
        resource.name = trimmed(textOf(property));
    } else if (is(property, dav, "getetag")) {
        resource.etag = trimmed(textOf(property));
    } else if (is(property, cardDav, "address-data")) {
        resource.card = textOf(property);
    } else if (is(property, dav, "supported-report-set")) {
        resource.synchronises = reportsChanges(property);
    } else if (is(property, dav, "current-user-principal")) {
        resource.principals = hrefsIn(property);
    } else if (is(property, cardDav, "addressbook-home-set")) {
        resource.homes = hrefsIn(property);
    }
}

DavResource readResource(const pugi::xml_node& response) {
    DavResource resource;
    resource.href = trimmed(textOf(childOf(response, dav, "href")));
    resource.status = statusOf(response);
    for (const pugi::xml_node& child : response.children()) {
        if (is(child, dav, "propstat") && statusOf(child) == 200) {
            for (const pugi::xml_node& property : childOf(child, dav, "prop").children()) {
                readProperty(property, resource);
            }
        }
    }
    return resource;
}

} // namespace

std::string davBody::whatIsThere() {
    return document("propfind", "<prop><resourcetype/><displayname/><supported-report-set/><current-user-principal/>"
                                "<C:addressbook-home-set/></prop>");
}

std::string davBody::members() {
    return document("propfind", "<prop><resourcetype/><getetag/></prop>");
}

std::string davBody::changesSince(const std::string& syncToken) {
    return document("sync-collection", "<sync-token>" + escaped(syncToken) +
                                           "</sync-token><sync-level>1</sync-level><prop><resourcetype/><getetag/>"
                                           "</prop>");
}

std::string davBody::cards(const std::vector<std::string>& hrefs) {
    std::string content = "<prop><getetag/><C:address-data/></prop>";
    for (const std::string& href : hrefs) {
        content.append("<href>").append(escaped(href)).append("</href>");
    }
    return document("C:addressbook-multiget", content);
}

std::optional<Multistatus> readMultistatus(const std::string& text) {
    pugi::xml_document document;
    if (!document.load_buffer(text.data(), text.size())) {
        return std::nullopt;
    }
    const pugi::xml_node root = childOf(document, dav, "multistatus");
    if (!root) {
        return std::nullopt;
    }
    Multistatus result;
    for (const pugi::xml_node& child : root.children()) {
        if (is(child, dav, "response")) {
            result.resources.push_back(readResource(child));
        }
    }
    result.syncToken = trimmed(textOf(childOf(root, dav, "sync-token")));
    return result;
}

bool refusesSyncToken(const std::string& text) {
    pugi::xml_document document;
    document.load_buffer(text.data(), text.size());
    return !childOf(childOf(document, dav, "error"), dav, "valid-sync-token").empty();
}

} // namespace host
