#!/bin/bash
# build_packages.sh [FOLDER]: makes the Debian package and the archive in FOLDER (build-packages).
#
# The programs are built twice, for every x86-64 processor and for those since about 2009; a launcher
# chooses. The packages depend on the commit and the compiler alone: another folder or another day
# gives the same bytes. They are compiled by clang, whose programs are a tenth faster here.
set -euo pipefail
mkdir -p "${1:-"$(dirname "$(readlink -f "$0")")/../build-packages"}"
folder=$(realpath "${1:-"$(dirname "$(readlink -f "$0")")/../build-packages"}")
cd "$(dirname "$(readlink -f "$0")")/.."
export LC_ALL=C.UTF-8 TZ=UTC CXX=clang++
umask 022
. scripts/packages.sh

need clang has_program clang++
need lld has_program ld.lld
need g++ has_program g++
need cmake has_program cmake
need ninja-build has_program ninja
need git has_program git
need polyglot has_program polyglot
need dpkg-dev has_program dpkg-shlibdeps
need lintian has_program lintian
install_missing
need zlib1g-dev has_header zlib.h
install_missing

SOURCE_DATE_EPOCH=$(git -c safe.directory="$PWD" log -1 --format=%ct)
export SOURCE_DATE_EPOCH

# Without symbols, some of which name the folder; they would also count for the build's number.
linking="-fuse-ld=lld -s -Wl,-z,relro,-z,now"

# build PROCESSOR [CMAKE-ARGUMENT...]
build() {
    local processor=$1
    shift
    cmake -G Ninja -S . -B "$folder/$processor" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_INSTALL_PREFIX=/usr -DVATRO_ARCH="$processor" \
        -DVATRO_INSTALL=ON -DVATRO_LAUNCHER=ON \
        -DCMAKE_EXE_LINKER_FLAGS="$linking" "$@"
    cmake --build "$folder/$processor"
}

build x86-64-v2
build x86-64 -DVATRO_FAST_BUILD="$folder/x86-64-v2"
cpack --config "$folder/x86-64/CPackConfig.cmake" -G TGZ -B "$folder"
# The same programs, in the folders of a Debian system.
build x86-64 -DCMAKE_INSTALL_BINDIR=games -DVATRO_DEBIAN=ON
cpack --config "$folder/x86-64/CPackConfig.cmake" -G DEB -B "$folder"
cmake -DCMAKE_INSTALL_BINDIR=bin -DVATRO_DEBIAN=OFF "$folder/x86-64" > /dev/null
lintian --fail-on error "$folder"/vatro_*.deb
(cd "$folder" && sha256sum vatro*.deb vatro*.tar.gz)
