#!/usr/bin/env bash
# Builds the Debian packages libwideseek1, libwideseek-dev and wideseek from the tree as it stands, into build/packages.
# The tree itself is left as it is: a copy of it is built, in build/packages/tree.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-deps.sh run package
packages=build/packages
log=$packages/build.log
rm -rf "$packages"
mkdir -p "$packages/tree"
tar -c --exclude='./build*' --exclude=./.git . | tar -x -C "$packages/tree"

# What builds packages hides the builder's home folder, where ccache keeps what it knows.
if command -v ccache >/dev/null; then
    export CCACHE_DIR=${CCACHE_DIR:-$(ccache --get-config cache_dir)}
fi

echo "Building the packages ..." >&2
if ! (cd "$packages/tree" && DEB_BUILD_OPTIONS="noautodbgsym parallel=$(nproc)" dpkg-buildpackage -us -uc -b) \
    >"$log" 2>&1; then
    tail -n 30 "$log" >&2
    echo "package: the packages could not be built; the whole log is $log" >&2
    exit 1
fi
rm -rf "$packages/tree"
find "$packages" -name '*.deb' | sort
