#!/usr/bin/env bash
# Installs this build, moves what was installed, and uses it there: the tool finds its libraries and its sample phone, the
# manual page can be read, and bash completes what the tool understands. Uninstalling leaves what was there before.
set -euo pipefail

fail() {
    echo "install_check: $*" >&2
    exit 1
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/usr/bin" # not ours, though empty
cmake --install "$WIDESEEK_BUILD" --prefix "$work/usr" >"$work/log"

mv "$work/usr" "$work/moved"
echo "Wilhelmina Zumthor,020 7946 0777" >>"$work/moved/share/wideseek/sample/config/contacts/local_directory.csv"
found=$(cd / && env -u WIDESEEK_ROOT "$work/moved/bin/wideseek" type zumthor)
[[ $found == *"Wilhelmina Zumthor"* ]] || fail "the tool does not search the sample that it was installed with: $found"

page=$work/moved/share/man/man1/wideseek.1
complaints=$(MANWIDTH=80 man --warnings -l "$page" 2>&1 >"$work/page")
[[ -z $complaints ]] || fail "the manual page: $complaints"
for command in $("$work/moved/bin/wideseek" --help | sed '1,/^Subcommands/d' | awk '/^  [a-z]/ { print $1 }'); do
    grep -q "^   wideseek $command" "$work/page" || fail "the manual page does not have the command $command"
done

# What bash offers for the last of these words, with the words parted as readline does it.
offered() {
    bash -c 'compopt() { :; }; source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _wideseek
             echo "${COMPREPLY[*]}"' "$work/moved/share/bash-completion/completions/wideseek" "$@"
}
completes() {
    local wanted=$1
    shift
    [[ $(cd "$work/files" && offered "$@") == "$wanted" ]] ||
        fail "bash completes $* to \"$(cd "$work/files" && offered "$@")\", not to \"$wanted\""
}
mkdir -p "$work/files/a folder" && touch "$work/files/a file"
completes "type" wideseek ty
completes "--ldap-delay --log" wideseek type --l
completes "a folder" wideseek type --root a
completes "a folder" wideseek pages --root = a
completes "" wideseek type --count ""
completes "a file" wideseek type --log = "a fi"
completes "a file" wideseek check --json "a fi"
completes "" wideseek type a

mv "$work/moved" "$work/usr"
rm -r "$work/files" "$work/page"
(cd "$WIDESEEK_BUILD" && cmake -P "$OLDPWD/cmake/install/RemoveInstalled.cmake")
[[ $(find "$work" -mindepth 1 -printf '%P\n' | sort | xargs) == "log usr usr/bin" ]] ||
    fail "uninstalling leaves $(find "$work" -mindepth 1)"
