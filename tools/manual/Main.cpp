// wideseek_manual FOLDER: writes the tool's manual page (wideseek.1) and its completions for bash (wideseek) and zsh
// (_wideseek) into the folder. The build runs it.

#include "tools/manual/CommandTable.h"
#include "tools/manual/Completion.h"
#include "tools/manual/ManPage.h"
#include "tools/wideseek/CommandLine.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace {

void write(const std::filesystem::path& path, const std::string& text) {
    std::ofstream file(path);
    if (!(file << text).flush()) {
        throw std::runtime_error(path.string() + " cannot be written");
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: wideseek_manual FOLDER\n";
        return 2;
    }
    try {
        wideseek::Command chosen;
        CLI::App parser;
        wideseek::defineCommandLine(parser, chosen);
        const wideseek::manual::Command tool = wideseek::manual::describe(parser);
        const std::filesystem::path folder = argv[1];
        write(folder / "wideseek.1", manPage(tool, parser.version()));
        write(folder / "wideseek", bashCompletion(tool));
        write(folder / "_wideseek", zshCompletion(tool));
    } catch (const std::exception& error) {
        std::cerr << "wideseek_manual: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
