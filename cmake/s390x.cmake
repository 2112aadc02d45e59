# cmake/s390x.cmake - builds for Linux on IBM z, a big-endian machine with Debian's cross compiler.
#
# VATRO_ZLIB names the folder into which zlib's package for that machine was unpacked.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR s390x)

set(triple s390x-linux-gnu)
set(library_folder ${triple})
set(CMAKE_CXX_COMPILER ${triple}-g++)
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VATRO_ZLIB)
set(CMAKE_FIND_ROOT_PATH /usr/${triple} ${VATRO_ZLIB})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Linked statically, the programs run under an emulator without that machine's libraries.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(ZLIB_INCLUDE_DIR ${VATRO_ZLIB}/usr/include CACHE PATH "zlib's headers")
set(ZLIB_LIBRARY ${VATRO_ZLIB}/usr/lib/${library_folder}/libz.a CACHE FILEPATH "zlib")
