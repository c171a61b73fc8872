// The elements of a source list, and what a phone makes of each.
//
//     for (const SourceElement& element : elementsOf(file)) { ... }
#pragma once

#include "tools/wideseek/check/SourceListFile.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace wideseek {

struct SourceElement {
    pugi::xml_node node;
    std::size_t line = 0;
    bool isItem = false;              // it is read as a source
    bool isEnabled = false;           // an enabled one
    std::optional<std::size_t> place; // one that is asked: its place in the order, from 0

    std::string value(const char* attribute) const { return node.attribute(attribute).value(); }
};

// All elements of the file, in its order. The file outlives them.
std::vector<SourceElement> elementsOf(const SourceListFile& file);

} // namespace wideseek
