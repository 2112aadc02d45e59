#!/bin/bash
# scripts/packing.sh - what the scripts that make packages share; sourced by them.
#
# The packages are made in the folder that is the first argument. They depend on the commit and the
# compiler alone: another folder or another day gives the same bytes.
set -euo pipefail
export LC_ALL=C.UTF-8 TZ=UTC
umask 022
packing=$(dirname "$(readlink -f "$0")")
name=$(basename "$0" .sh)
mkdir -p "${1:-$packing/../${name/build_/build-}}"
folder=$(realpath "${1:-$packing/../${name/build_/build-}}")
cd "$packing/.."
. scripts/packages.sh
need cmake has_program cmake
need ninja-build has_program ninja
need git has_program git
need polyglot has_program polyglot

# build PROCESSOR [CMAKE-ARGUMENT...]: the programs for one kind of processor, in a folder of its name.
build() {
    local processor=$1
    shift
    SOURCE_DATE_EPOCH=$(git -c safe.directory="$PWD" log -1 --format=%ct)
    export SOURCE_DATE_EPOCH
    cmake -G Ninja -S . -B "$folder/$processor" -DCMAKE_BUILD_TYPE=Release \
        -DVATRO_ARCH="$processor" -DVATRO_INSTALL=ON -DVATRO_LAUNCHER=ON "$@"
    cmake --build "$folder/$processor"
}
