# cmake/mingw.cmake - builds for Windows with Debian's cross compiler and its static zlib.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(triple x86_64-w64-mingw32)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)  # the variant with the threads of the standard library
set(CMAKE_RC_COMPILER ${triple}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The programs run by themselves, without libraries beside them.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(ZLIB_LIBRARY /usr/${triple}/lib/libz.a CACHE FILEPATH "zlib")
