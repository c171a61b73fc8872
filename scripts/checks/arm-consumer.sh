#!/usr/bin/env bash
# Cross-builds the smallest phone for the 32-bit ARM phone as docs/porting.md says, against the library of build/arm
# installed into a system root: through pkg-config with the plain compiler, and through CMake with the document's own
# toolchain file and without any. Each result searches in qemu, and keeps the rules of the contract.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

triplet=arm-linux-gnueabihf
source=$PWD
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root=$work/root

quietly() {
    "$@" >"$work/log" 2>&1 || { cat "$work/log" >&2 && echo "check-arm-consumer: failed: $*" >&2 && exit 1; }
}

in_qemu() {
    qemu-arm -L "/usr/$triplet" -E "LD_LIBRARY_PATH=$root/usr/lib:$root/usr/lib/$triplet" "$@"
}

searches() {
    in_qemu "$1" 530 >"$work/pages"
    grep -qx '    Ann Lee 5301' "$work/pages" || { cat "$work/pages" >&2 && echo "check-arm-consumer: $1 found nothing" >&2 && exit 1; }
}

cp -al build/arm-sysroot "$root"
quietly cmake --install build/arm --prefix "$root/usr"
cp -r "$source/examples/smallest_phone" "$work/phone"
cd "$work/phone"

PKG_CONFIG_SYSROOT_DIR=$root PKG_CONFIG_LIBDIR=$root/usr/lib/pkgconfig:$root/usr/lib/$triplet/pkgconfig \
    pkg-config --cflags --libs --static wideseek >"$work/options"
read -ra options <"$work/options"
quietly $triplet-g++ -std=c++17 -o "$work/by-pkg-config" ./*.cpp "${options[@]}"
searches "$work/by-pkg-config"

sed -n '/^```cmake$/,/^```$/p' "$source/docs/porting.md" | sed "/^\`\`\`/d; s|/path/to/root|$root|" >"$work/toolchain.cmake"
quietly cmake -S . -B "$work/by-toolchain" "-DCMAKE_TOOLCHAIN_FILE=$work/toolchain.cmake"
quietly cmake --build "$work/by-toolchain"
searches "$work/by-toolchain/smallest_phone"
quietly cmake -S . -B "$work/by-compiler" -DCMAKE_CXX_COMPILER=$triplet-g++ "-DCMAKE_PREFIX_PATH=$root/usr"
quietly cmake --build "$work/by-compiler"
searches "$work/by-compiler/smallest_phone"

quietly in_qemu "$work/by-toolchain/smallest_phone_check"
tail -n 1 "$work/log"
