#include "tools/manual/Completion.h"

#include <sstream>

namespace wideseek::manual {

namespace {

// The options of compgen that offer a value of this kind; empty: nothing can be offered.
std::string offersOf(ValueKind kind) {
    switch (kind) {
    case ValueKind::folder:
        return "-d";
    case ValueKind::file:
        return "-f";
    default:
        return "";
    }
}

std::string wordsOf(const std::vector<Option>& options) {
    std::string words;
    for (const Option& option : options) {
        for (const std::string& name : option.names) {
            words += (words.empty() ? "" : " ") + name;
        }
    }
    return words;
}

// "words" is what stands behind the command's name, values what its options take, and "rest" its arguments.
void writeCommand(std::ostream& script, const Command& command) {
    script << "    " << command.name << ")\n        words='" << wordsOf(command.options)
           << "'\n        case $option in\n";
    for (const Option& option : command.options) {
        if (option.value.empty()) {
            continue;
        }
        for (const std::string& name : option.names) {
            // What takes a value behind "=" only is followed by something else when a blank stands there.
            script << "        " << name << (option.valueOptional ? "=" : " | " + name + "=") << ") value=yes offers='"
                   << offersOf(option.kind) << "' ;;\n";
        }
    }
    script << "        *) offers='" << (command.arguments.empty() ? "" : offersOf(command.arguments.front().kind))
           << "' ;;\n        esac\n        ;;\n";
}

constexpr const char* head = R"(# Completion of wideseek in bash. Made from the tool's definition of its command line.

_wideseek() {
    local word=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]} command= words= offers= value= i
    # bash gives "--name=value" in three words.
    if [[ $word == = ]]; then
        word= option+==
    elif [[ $option == = ]]; then
        option=${COMP_WORDS[COMP_CWORD - 2]}=
    fi
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
        -*) ;;
        *) command=${COMP_WORDS[i]} && break ;;
        esac
    done
    case $command in
)";

constexpr const char* tail = R"(    esac
    if [[ -z $value && ( $word == -* || -z $command ) ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    elif [[ -n $offers ]]; then
        mapfile -t COMPREPLY < <(compgen $offers -- "$word")
        compopt -o filenames
    else
        COMPREPLY=()
    fi
}
complete -F _wideseek wideseek
)";

} // namespace

std::string bashCompletion(const Command& tool) {
    std::ostringstream script;
    std::string words;
    for (const Command& command : tool.commands) {
        words += command.name + " ";
    }
    script << head << "    '') words='" << words << wordsOf(tool.options) << "' ;;\n";
    for (const Command& command : tool.commands) {
        writeCommand(script, command);
    }
    script << tail;
    return script.str();
}

} // namespace wideseek::manual
