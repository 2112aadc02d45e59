#!/bin/bash
# Builds the programs for Windows in build-windows/, with Debian's cross compiler. Arguments go to
# CMake, for example -DVATRO_ARCH=x86-64.
set -e
cd "$(dirname "$(readlink -f "$0")")/.."
. scripts/packages.sh

need cmake has_program cmake
need make has_program make
need g++-mingw-w64-x86-64-posix has_program x86_64-w64-mingw32-g++-posix
need libz-mingw-w64-dev test -f /usr/x86_64-w64-mingw32/lib/libz.a
install_missing

cmake --preset windows "$@"
cmake --build build-windows --parallel "$(getconf _NPROCESSORS_ONLN)"
