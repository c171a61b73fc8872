#!/usr/bin/env bash
# Installs the Debian packages that are missing for what is to be done. Says and does nothing when all are there.
#
#   scripts/install-deps.sh [GROUP...]
#
#   run    to build and run the tool (the default)
#   test   to run the tests
#   check  to run the checks of scripts/check.sh
#   bench  to measure
#   arm    to build for the 32-bit ARM phone and to run that here
#
# With WIDESEEK_NO_INSTALL=1 in the environment it does nothing, for systems that get their packages otherwise.
set -euo pipefail

declare -A packages=(
    [run]="g++ cmake ninja-build pkg-config libpugixml-dev libutf8proc-dev libcsv-dev libinih-dev libldap-dev
           libcli11-dev nlohmann-json3-dev libncurses-dev"
    [test]="libgtest-dev libgmock-dev slapd ldap-utils openssl tmux fzf python3"
    [check]="clang clang-tidy clang-format libclang-rt-14-dev binutils"
    [bench]="libbenchmark-dev libsqlite3-dev valgrind binutils python3"
    [arm]="g++-arm-linux-gnueabihf qemu-user"
)
policy=/usr/sbin/policy-rc.d

fail() {
    printf 'install-deps: %s\n' "$@" >&2
    exit 1
}

# Prints those of the given packages that are not installed.
missing_of() {
    local installed package
    installed=" $(dpkg-query -W -f='${Package}:${db:Status-Status} ' "$@" 2>/dev/null || true)"
    for package in "$@"; do
        [[ $installed == *" $package:installed "* ]] || echo "$package"
    done
}

# Runs a command as root without questions; what it prints is kept for the case that it fails.
as_root() {
    "${root[@]}" env DEBIAN_FRONTEND=noninteractive "$@" >>"$log" 2>&1
}

update_lists() {
    echo "Reading the package lists ..." >&2
    as_root apt-get -o APT::Update::Error-Mode=any -o DPkg::Lock::Timeout=300 update </dev/null
}

install_missing() {
    as_root apt-get -o DPkg::Lock::Timeout=300 install -y --no-install-recommends "${missing[@]}" </dev/null
}

# True when apt's lists name a version of every missing package.
lists_know_missing() {
    local package
    for package in "${missing[@]}"; do
        apt-cache policy "$package" 2>/dev/null | grep -q '^  Candidate: [^(]' || return 1
    done
}

# The tests start an LDAP server of their own: the system's gets no database and is not started by its installation.
keep_slapd_down() {
    echo "slapd slapd/no_configuration boolean true" | as_root debconf-set-selections
    if [[ ! -e $policy ]]; then
        made_policy=yes
        printf '#!/bin/sh\nexit 101\n' | as_root tee "$policy"
        as_root chmod 755 "$policy"
    fi
}

clean_up() {
    [[ $made_policy == no ]] || as_root rm -f "$policy"
    rm -f "$log"
}

explain_failure() {
    tail -n 12 "$log" >&2
    if grep -qE 'Could not (resolve|connect)|Temporary failure|(Failed|Unable) to (fetch|connect)' "$log"; then
        fail "could not fetch packages: ${missing[*]}" "check the network and run again"
    fi
    if grep -q 'Unable to locate package\|has no installation candidate' "$log"; then
        fail "this system's package sources do not have all of: ${missing[*]}" "the names are those of Debian 12"
    fi
    fail "apt-get could not install: ${missing[*]}" "what it said last is above"
}

[[ ${WIDESEEK_NO_INSTALL:-} != 1 ]] || exit 0

wanted=()
for group in "${@:-run}"; do
    [[ -n ${packages[$group]:-} ]] || fail "there is no package group '$group'; the groups are: run test check bench"
    read -r -d '' -a members <<<"${packages[$group]}" || true
    wanted+=("${members[@]}")
done

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    fail "this system has no apt-get; the packages that are needed are, by their names in Debian 12:" "${wanted[*]}" \
        "install their like, then run again with WIDESEEK_NO_INSTALL=1"
fi

mapfile -t missing < <(missing_of "${wanted[@]}")
((${#missing[@]})) || exit 0

root=()
if ((EUID != 0)); then
    command -v sudo >/dev/null ||
        fail "packages are missing, and there is no sudo to install them with" "as root, run: apt-get install ${missing[*]}"
    echo "Packages are missing; sudo is used to install them: ${missing[*]}" >&2
    sudo -v || fail "sudo was refused" "as root, run: apt-get install ${missing[*]}"
    root=(sudo)
fi

log=$(mktemp)
made_policy=no
trap clean_up EXIT

lists_are_new=no
if ! lists_know_missing; then
    update_lists || explain_failure
    lists_are_new=yes
fi
echo "Installing ${#missing[@]} packages: ${missing[*]} ..." >&2
[[ " ${missing[*]} " != *" slapd "* ]] || keep_slapd_down
if ! install_missing; then
    # Old lists name package files that the servers no longer have.
    [[ $lists_are_new == no ]] && update_lists && install_missing || explain_failure
fi
[[ " ${missing[*]} " != *" slapd "* ]] || as_root update-rc.d slapd disable || true
