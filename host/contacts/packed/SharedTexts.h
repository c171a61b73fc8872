// Texts that many have, such as that of a department, each kept once. Only so many are shared, so that texts that are
// all different cost little.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace host {

class SharedTexts {
public:
    SharedTexts() = default;
    SharedTexts(SharedTexts&&) = default;
    SharedTexts& operator=(SharedTexts&&) = default;

    // The place of the text, which is added when it is new; nothing when there are too many.
    std::optional<std::size_t> placeOf(std::string_view text) {
        const auto known = m_places.find(text);
        if (known != m_places.end()) {
            return known->second;
        }
        if (m_texts.size() == most) {
            return std::nullopt;
        }
        m_texts.emplace_back(text);
        m_views.emplace_back(m_texts.back());
        return m_places.emplace(m_views.back(), m_views.size() - 1).first->second;
    }

    std::string_view operator[](std::size_t place) const { return m_views[place]; }

private:
    static constexpr std::size_t most = 2048;

    std::deque<std::string> m_texts; // which hold still
    std::vector<std::string_view> m_views;
    std::unordered_map<std::string_view, std::size_t> m_places; // in m_views
};

} // namespace host
