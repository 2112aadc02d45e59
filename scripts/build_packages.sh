#!/bin/bash
# build_packages.sh [FOLDER]: makes the Debian package and the archive in FOLDER (build-packages).
#
# The programs are built twice, for every x86-64 processor and for those since about 2009; a launcher
# chooses. They are compiled by clang, whose programs are a tenth faster here.
. "$(dirname "$(readlink -f "$0")")/packing.sh"
export CXX=clang++
need clang has_program clang++
need lld has_program ld.lld
need g++ has_program g++
need dpkg-dev has_program dpkg-shlibdeps
need lintian has_program lintian
install_missing
need zlib1g-dev has_header zlib.h
install_missing

# Without symbols, some of which name the folder; they would also count for the build's number.
settings=(-DCMAKE_INSTALL_PREFIX=/usr
    -DCMAKE_EXE_LINKER_FLAGS="-fuse-ld=lld -s -Wl,-z,relro,-z,now")

build x86-64-v2 "${settings[@]}"
build x86-64 "${settings[@]}" -DVATRO_FAST_BUILD="$folder/x86-64-v2"
cpack --config "$folder/x86-64/CPackConfig.cmake" -G TGZ -B "$folder"
# The same programs, in the folders of a Debian system.
build x86-64 -DCMAKE_INSTALL_BINDIR=games -DVATRO_DEBIAN=ON
cpack --config "$folder/x86-64/CPackConfig.cmake" -G DEB -B "$folder"
cmake -DCMAKE_INSTALL_BINDIR=bin -DVATRO_DEBIAN=OFF "$folder/x86-64" > /dev/null
lintian --fail-on error "$folder"/vatro_*.deb
(cd "$folder" && sha256sum vatro*.deb vatro*.tar.gz)
