#!/bin/bash
# build_windows.sh [FOLDER]: makes the archive for Windows in FOLDER (build-windows), with Debian's cross
# compiler. As in the other packages, a launcher chooses between programs for two kinds of processors.
. "$(dirname "$(readlink -f "$0")")/packing.sh"
need g++-mingw-w64-x86-64-posix has_program x86_64-w64-mingw32-g++-posix
need libz-mingw-w64-dev test -f /usr/x86_64-w64-mingw32/lib/libz.a
need mandoc has_program mandoc
need zip has_program zip
install_missing

settings=(-DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/mingw.cmake" -DCMAKE_EXE_LINKER_FLAGS="-static -s -Wl,--no-insert-timestamp")
build x86-64-v2 "${settings[@]}"
build x86-64 "${settings[@]}" -DVATRO_FAST_BUILD="$folder/x86-64-v2"
cpack --config "$folder/x86-64/CPackConfig.cmake" -G ZIP -B "$folder"
(cd "$folder" && sha256sum vatro*.zip)
