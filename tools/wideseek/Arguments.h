// Arguments taken as they are typed: CLI11 reads "[5,3]" as a list of two, and no option of this tool takes a list.
//
//     parser.add_option("KEY", keys)->transform(asTyped());
//     application.parse(argumentsOf(argc, argv));
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace wideseek {

// The command line without the program's name, last argument first, for CLI::App::parse; what looks like a list is
// marked.
std::vector<std::string> argumentsOf(int argc, char** argv);

// Removes the mark. For every option and positional that takes text.
CLI::Validator asTyped();

} // namespace wideseek
