#include "host/remote/refresh/RemoteCopy.h"

#include "host/files/FileText.h"
#include "host/files/ReplacedFile.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <system_error>
#include <utility>
#include <vector>

namespace host {

namespace {

using Json = nlohmann::json;

// Another number when what is written changes its meaning: older files then count as damaged.
constexpr int format = 1;

// The strings are those of the server, of any bytes: CBOR (RFC 8949) keeps them, JSON text would not.
Json toJson(const std::string& source, const RemoteCopy& copy) {
    Json parts = Json::array();
    for (const auto& [path, part] : copy.parts) {
        parts.push_back({path, part.href, part.etag, part.text});
    }
    return {{"format", format},
            {"source", source},
            {"kind", static_cast<int>(copy.kind)},
            {"lastModified", copy.lastModified},
            {"url", copy.url},
            {"synchronises", copy.synchronises},
            {"syncToken", copy.syncToken},
            {"parts", std::move(parts)}};
}

RemoteCopy fromJson(Json& json) {
    RemoteCopy copy;
    copy.kind = json.at("kind") == static_cast<int>(RemoteCopy::Kind::file) ? RemoteCopy::Kind::file
                                                                            : RemoteCopy::Kind::addressBook;
    copy.lastModified = json.at("lastModified").get<std::string>();
    copy.url = json.at("url").get<std::string>();
    copy.synchronises = json.at("synchronises").get<bool>();
    copy.syncToken = json.at("syncToken").get<std::string>();
    for (Json& part : json.at("parts")) {
        copy.parts[part.at(0).get<std::string>()] = {part.at(1).get<std::string>(), part.at(2).get<std::string>(),
                                                     std::move(part.at(3).get_ref<std::string&>())};
    }
    return copy;
}

} // namespace

bool saveRemoteCopy(const std::filesystem::path& file, const std::string& source, const RemoteCopy& copy,
                    std::string& problem) {
    std::error_code ignored;
    std::filesystem::create_directories(file.parent_path(), ignored);
    const std::vector<std::uint8_t> bytes = Json::to_cbor(toJson(source, copy));
    constexpr unsigned ownerAlone = 0600;
    return replaceFile(file, {reinterpret_cast<const char*>(bytes.data()), bytes.size()}, ownerAlone, problem);
}

std::optional<RemoteCopy> loadRemoteCopy(const std::filesystem::path& file, const std::string& source) {
    std::string ignored;
    const auto text = readFile(file, ignored);
    if (!text) {
        return std::nullopt;
    }
    try {
        Json json = Json::from_cbor(text->bytes);
        return json.at("format") == format && json.at("source") == source ? std::optional(fromJson(json))
                                                                          : std::nullopt;
    } catch (const Json::exception&) {
        return std::nullopt;
    }
}

} // namespace host
