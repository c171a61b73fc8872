#include "tools/wideseek/check/SourceListElements.h"

#include <algorithm>

namespace wideseek {

namespace {

constexpr int disabledPriority = 255;

struct Item {
    SourceElement* element = nullptr; // null: a piece of text
    bool enabled = false;
    int priority = disabledPriority;
};

Item itemOf(const pugi::xml_node& node) {
    const bool enabled = node.attribute("enable").as_int(0) != 0;
    return {nullptr, enabled, enabled ? node.attribute("priority").as_int(0) : disabledPriority};
}

// What is read as an item, in the order of the file: the first <item> and all that follows it, text too.
std::vector<Item> markItems(const pugi::xml_document& document, std::vector<SourceElement>& elements) {
    std::vector<Item> items;
    auto element = elements.begin();
    for (pugi::xml_node node = document.child("root_wideseek").child("item"); node; node = node.next_sibling()) {
        Item& item = items.emplace_back(itemOf(node));
        if (node.type() == pugi::node_element) {
            element = std::find_if(element, elements.end(), [&](const auto& each) { return each.node == node; });
            element->isItem = true;
            element->isEnabled = item.enabled;
            item.element = &*element;
        }
    }
    return items;
}

} // namespace

std::vector<SourceElement> elementsOf(const SourceListFile& file) {
    std::vector<SourceElement> elements;
    for (const pugi::xml_node& node : elementsBelow(file.document)) {
        SourceElement& element = elements.emplace_back();
        element.node = node;
        element.line = file.lineOf(node);
    }
    std::vector<Item> items = markItems(file.document, elements);
    std::stable_sort(items.begin(), items.end(), [](const Item& a, const Item& b) { return a.priority < b.priority; });
    const auto end = std::find_if(items.begin(), items.end(), [](const Item& item) { return !item.enabled; });
    std::size_t place = 0;
    std::for_each(items.begin(), end, [&](const Item& item) { item.element->place = place++; });
    return elements;
}

} // namespace wideseek
