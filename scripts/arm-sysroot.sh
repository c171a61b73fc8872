#!/usr/bin/env bash
# Puts Debian's packages for the 32-bit ARM phone into a folder to build against, without root and without touching the
# packages of this machine: a private apt state resolves and fetches them, and dpkg unpacks them.
#
#   scripts/arm-sysroot.sh [FOLDER]        the default is build/arm-sysroot
#
# The compiler is the machine's own: g++-arm-linux-gnueabihf. Says and does nothing when the folder is up to date.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

packages=(libpugixml-dev libutf8proc-dev libcsv-dev libinih-dev libldap-dev libcurl4-openssl-dev libcli11-dev nlohmann-json3-dev
    libncurses-dev libgtest-dev libgmock-dev)
folder=${1:-build/arm-sysroot}
stamp=$folder/.packages
content="${packages[*]} and character sets"

[[ ! -f $stamp || $(<"$stamp") != "$content" ]] || exit 0
rm -rf "$folder"
mkdir -p "$folder"

state=$(mktemp -d)
trap 'rm -rf "$state"' EXIT
mkdir -p "$state"/{lists,cache}/partial "$state/log"
: >"$state/status"

private_apt() {
    apt-get -o APT::Architecture=armhf -o APT::Architectures=armhf -o Dir::State::Lists="$state/lists" \
        -o Dir::State::Status="$state/status" -o Dir::Cache="$state/cache" -o Dir::Log="$state/log" \
        -o APT::Sandbox::User= -o Acquire::Languages=none "$@" >>"$state/output" 2>&1
}

echo "Fetching the libraries of an armhf system into $folder ..." >&2
# A package list that could not be read matters only when a package is missing from the others.
private_apt update || true
if ! private_apt install -y --no-install-recommends --download-only "${packages[@]}"; then
    tail -n 12 "$state/output" >&2
    echo "arm-sysroot: the packages could not be fetched; see apt's words above" >&2
    exit 1
fi
for package in "$state"/cache/archives/*.deb; do
    case ${package##*/} in
    libc6_*) dpkg -x "$package" "$state/libc" ;;
    libc6-dev_* | linux-libc-dev_* | libstdc++6_* | libgcc-s1_*) ;; # the compiler has its own
    *) dpkg -x "$package" "$folder" ;;
    esac
done
# The compiler's own C library comes without the character sets that it can convert.
gconv=$(cd "$state/libc" && find . -type d -name gconv -print -quit)
mkdir -p "$folder/${gconv%/gconv}"
cp -a "$state/libc/$gconv" "$folder/${gconv%/gconv}"
# As on a system, where /lib is a link to /usr/lib.
cp -a "$folder/lib/." "$folder/usr/lib/"
rm -rf "$folder/lib"
echo "$content" >"$stamp"
