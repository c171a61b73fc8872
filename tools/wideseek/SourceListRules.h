// What is worth telling about the elements of a source list, given what the library makes of each.
#pragma once

#include "tools/wideseek/SourceListReport.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace wideseek {

// An element of the file, and what the library makes of it.
struct SourceElement {
    pugi::xml_node node;
    std::size_t line = 0;
    bool isItem = false;              // it is read as a source
    bool isEnabled = false;           // an enabled one
    std::optional<std::size_t> place; // one that is asked: its place in the order, from 0

    std::string value(const char* attribute) const { return node.attribute(attribute).value(); }
};

// Everything there is to tell, in the order of the file. elements are all those of the file, in its order.
std::vector<Finding> findingsOf(const SourceListFile& file, const std::vector<SourceElement>& elements);

} // namespace wideseek
