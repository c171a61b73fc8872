// A source list as it stands in a file: its elements, and the line that each of them stands on.
//
//     const SourceListFile file = readSourceList("config/data/wideseek.xml");
//     if (file.problem) { ... }
#pragma once

#include <pugixml.hpp>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace wideseek {

// Both from 1; 0 where there is none to name.
struct Position {
    std::size_t line = 0;
    std::size_t column = 0;
};

struct FileProblem {
    Position at;
    std::string message; // for people
};

struct SourceListFile {
    std::string bytes;                   // as they stand in the file
    std::string text;                    // the same in UTF-8
    pugi::xml_document document;         // of text
    std::vector<std::size_t> lineBreaks; // where text has them
    std::optional<FileProblem> problem;

    // The line and the place at which an element or a piece of text begins; of the two, the line is cheap.
    std::size_t lineOf(const pugi::xml_node& node) const;
    Position positionOf(const pugi::xml_node& node) const;
};

// Reads and parses a file in any encoding that the phone reads. A file that cannot be read or is not well-formed has a
// problem; so has what is not a regular file, which is not read.
SourceListFile readSourceList(const std::filesystem::path& path);

// All elements below node, in the order of the file.
std::vector<pugi::xml_node> elementsBelow(const pugi::xml_node& node);

} // namespace wideseek
