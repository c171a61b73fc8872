#include "tools/wideseek/PhoneArguments.h"

#include "tools/wideseek/LogFile.h"
#include "tools/wideseek/Text.h"

#include <filesystem>
#include <stdexcept>

namespace wideseek {

namespace {

constexpr const char* sourceList = "config/data/wideseek.xml";

bool isFolder(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

// The sample phone that came with this program, wherever both were moved.
std::filesystem::path defaultRoot() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (!error) {
        for (const char* const place : {WIDESEEK_INSTALLED_SAMPLE, WIDESEEK_BUILT_SAMPLE}) {
            std::filesystem::path folder = (program.parent_path() / place).lexically_normal();
            if (isFolder(folder)) {
                return folder;
            }
        }
    }
    return "sample";
}

} // namespace

std::filesystem::path phoneRootOf(const std::string& root) {
    return root.empty() ? defaultRoot() : std::filesystem::path(root);
}

std::filesystem::path sourceListOf(const std::filesystem::path& root) {
    return root / sourceList;
}

host::PhoneOptions phoneOptionsOf(const PhoneArguments& arguments) {
    host::PhoneOptions options;
    options.root = phoneRootOf(arguments.root);
    const std::string shown = printable(options.root.string());
    if (!isFolder(options.root)) {
        throw std::runtime_error(shown + ": no such folder; give a phone's root with --root");
    }
    if (arguments.ldapDelay) {
        options.ldapDelay = std::chrono::milliseconds(*arguments.ldapDelay);
    }
    if (!arguments.log.empty()) {
        options.log = openLog(arguments.log == bareFlag ? std::string() : arguments.log);
    }
    return options;
}

host::Duration longestSettling(const host::PhoneOptions& options) {
    return std::chrono::seconds(10) + options.ldapDelay.value_or(host::Duration::zero());
}

} // namespace wideseek
