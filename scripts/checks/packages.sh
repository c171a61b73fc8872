#!/usr/bin/env bash
# Builds the Debian packages, has lintian look at them, then installs, uses and removes them.
#
# Installing takes place in a view of this system that nobody else sees: whatever is changed there is kept in memory and
# gone at the end, and the system itself stays as it is. The view takes root, and a kernel that lets root mount.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

packages=$PWD/build/packages

fail() {
    printf 'check-packages: %s\n' "$@" >&2
    exit 1
}

# Everything that dpkg knows, and every file but what changes by itself.
state_of_system() {
    dpkg-query -W -f '${Package} ${Version} ${db:Status-Status}\n'
    find /bin /etc /lib /opt /sbin /srv /usr /var -xdev -path /var/lib/dpkg -prune -o -path /var/log -prune \
        -o -path /var/cache -prune -o -type d -printf '%p %m\n' -o -printf '%p %y %m %s\n' | sort
}

# In the view, as its root.
install_use_remove() {
    local before found offered
    before=$(state_of_system)

    dpkg -i "$packages"/*.deb >/dev/null
    # What ran before the installation must not be what runs now.
    found=$(cd / && env -u WIDESEEK_ROOT wideseek type 533)
    [[ $found == *"Jed Marlowe"* ]] || fail "the installed tool does not search its sample phone; it prints" "$found"
    man -w wideseek >/dev/null || fail "man does not find the page"
    # shellcheck disable=SC2016
    offered=$(zsh -fc 'autoload -U compinit && compinit -D && echo $_comps[wideseek]')
    [[ $offered == _wideseek ]] || fail "zsh does not complete wideseek"
    [[ -f /usr/share/doc/libwideseek-dev/html/index.html ]] || fail "the reference is not there"

    cp -r /usr/share/doc/libwideseek-dev/examples/smallest_phone /root/example
    cd /root/example
    # Words of pkg-config are options of the compiler.
    # shellcheck disable=SC2046
    g++ -std=c++20 -fno-exceptions -o smallest_phone ./*.cpp $(pkg-config --cflags --libs wideseek)
    mkdir -p config/data
    echo '<root_wideseek><item id_name="local_directory_search" enable="1" priority="1"/></root_wideseek>' \
        >config/data/wideseek.xml
    ./smallest_phone fox | grep -q 'Jed Fox' || fail "a program built with the packages does not search"
    cd /

    dpkg --purge wideseek libwideseek-dev libwideseek1 >/dev/null
    diff <(echo "$before") <(state_of_system) >&2 || fail "purging leaves what is listed above (>), or has taken it (<)"
}

# Mounts the view at a folder and enters it.
enter_view() {
    local view=$1
    mount -t tmpfs tmpfs "$view"
    mkdir "$view"/{changes,work,root}
    mount -t overlay overlay -o "lowerdir=/,upperdir=$view/changes,workdir=$view/work" "$view/root"
    mount --rbind /dev "$view/root/dev"
    mount -t proc proc "$view/root/proc"
    exec chroot "$view/root" "$PWD/scripts/checks/packages.sh" --in-view
}

case ${1:-} in
--in-view) install_use_remove ;;
--enter) enter_view "$2" ;;
*)
    scripts/package.sh
    lintian --allow-root --display-info --fail-on error,warning,info "$packages"/*.changes
    ((EUID == 0)) || fail "the packages are built and clean; installing them for a try takes root: sudo $0"
    view=$(mktemp -d)
    trap 'rmdir "$view"' EXIT
    unshare --mount "$0" --enter "$view"
    ;;
esac
