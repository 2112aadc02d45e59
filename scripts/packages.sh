#!/bin/bash
# scripts/packages.sh - finds what is missing on this machine and installs it; sourced by the scripts.
#
# Standard input and output belong to the program that the caller starts: nothing here reads the one,
# and messages go to standard error.

# Games are not on root's path on Debian.
PATH="$PATH:/usr/games"

# The packages that `need` found missing.
missing=""

# need PACKAGE TEST...: the package is missing when the test command fails.
need() {
    package=$1
    shift
    "$@" > /dev/null 2>&1 < /dev/null || missing="$missing $package"
}

has_program() {
    command -v "$1"
}

# has_header HEADER [COMPILER]: the compiler finds the header.
has_header() {
    echo "#include <$1>" > "${TMPDIR:-/tmp}/vatro_header_$$.cpp" &&
        "${2:-${CXX:-c++}}" -fsyntax-only -std=c++20 "${TMPDIR:-/tmp}/vatro_header_$$.cpp"
    found=$?
    rm -f "${TMPDIR:-/tmp}/vatro_header_$$.cpp"
    return $found
}

# Installs the missing packages where this user may. False when it cannot be done.
install_missing() {
    [ -n "$missing" ] || return 0
    if ! has_program apt-get > /dev/null; then
        echo "Not installed, and no apt-get to install it with:$missing" >&2
        return 1
    fi
    if [ "$(id -u)" = 0 ]; then
        as_root=""
    elif has_program sudo > /dev/null && { sudo -n true 2> /dev/null || [ -t 2 ]; }; then
        as_root="sudo"
    else
        echo "Please install (as root): apt-get install$missing" >&2
        return 1
    fi
    echo "Installing:$missing" >&2
    # A fresh list first: on a new machine there is none, and an old one names files that are gone.
    # shellcheck disable=SC2086
    $as_root apt-get -q update < /dev/null >&2 || true
    # shellcheck disable=SC2086
    $as_root env DEBIAN_FRONTEND=noninteractive apt-get -qy install --no-install-recommends \
        $missing < /dev/null >&2 || {
        echo "Could not install:$missing" >&2
        return 1
    }
    missing=""
}
