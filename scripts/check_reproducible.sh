#!/bin/bash
# check_reproducible.sh [FOLDER]: builds the packages of the last commit twice, from clones in folders
# with names of different lengths, and fails when they differ in a byte.
set -euo pipefail
work=$(mkdir -p "${1:-build-reproducible}" && realpath "${1:-build-reproducible}")
repository=$(realpath "$(dirname "$(readlink -f "$0")")/..")
commit=$(git -C "$repository" rev-parse HEAD)  # also when another follows meanwhile
for clone in one "a second folder"; do
    rm -rf "${work:?}/$clone"
    git clone -q "$repository" "$work/$clone"
    git -C "$work/$clone" checkout -q "$commit"
    "$work/$clone/scripts/build_packages.sh" "$work/$clone/packages"
    "$work/$clone/scripts/build_windows.sh" "$work/$clone/packages/windows"
done
for package in "$work"/one/packages/vatro*.{deb,tar.gz} "$work"/one/packages/windows/vatro*.zip; do
    cmp "$package" "$work/a second folder/${package#"$work/one/"}"
    sha256sum "$package"
done
