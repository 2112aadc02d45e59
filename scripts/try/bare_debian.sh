#!/bin/bash
# try/bare_debian.sh PACKAGE [FOLDER]: installs the Debian package by apt into a minimal system in a new
# folder, and plays there from the book. Needs root.
set -euo pipefail
archive=$(realpath "$1")
root=$(realpath -m "${2:-$(mktemp -d)}")
cd "$(dirname "$(readlink -f "$0")")/../.."
. scripts/packages.sh
need debootstrap has_program debootstrap
install_missing

. /etc/os-release
mirror=$(apt-get indextargets --format '$(SITE)' 'Created-By: Packages' "Codename: $VERSION_CODENAME" | head -n 1)
debootstrap --variant=minbase "$VERSION_CODENAME" "$root" "$mirror" > "$root.log" ||
    { tail -n 20 "$root.log"; exit 1; }
cp "$archive" "$root/tmp/"
chroot "$root" apt-get -qy install --no-install-recommends "/tmp/$(basename "$archive")" \
    < /dev/null >> "$root.log"
# A player's path, not root's; no /proc is mounted.
inside() { chroot "$root" env -i PATH=/usr/bin:/bin:/usr/games "$@"; }
{
    printf 'xboard\nprotover 2\ngo\n'
    sleep 3
    echo quit
} | inside vatro > "$root.said"
grep '^move ' "$root.said"
grep -q '"bookFilePath -path /usr/share/games/vatro/book.bin"' "$root.said"
if grep -E '^ *[0-9]+ ' "$root.said"; then
    echo "the move came from a search"
    exit 1
fi
