#!/bin/bash
# check_reproducible.sh [FOLDER]: builds the packages of the last commit twice, from clones in folders
# with names of different lengths, and fails when they differ in a byte.
set -euo pipefail
work=$(mkdir -p "${1:-build-reproducible}" && realpath "${1:-build-reproducible}")
repository=$(realpath "$(dirname "$(readlink -f "$0")")/..")
for clone in one "a second folder"; do
    rm -rf "${work:?}/$clone"
    git clone -q "$repository" "$work/$clone"
    "$work/$clone/scripts/build_packages.sh"
done
for package in "$work"/one/build-packages/vatro*.{deb,tar.gz}; do
    cmp "$package" "$work/a second folder/build-packages/$(basename "$package")"
    sha256sum "$package"
done
