#!/bin/bash
# Builds Vatro when that is needed and starts it; arguments go to the program.
#
# The program starts in this folder: it finds vatro.ini and book.bin here, wherever run.sh is called
# from. Standard input and output are the engine's alone; what the build says goes to standard error.
set -e
cd "$(dirname "$(readlink -f "$0")")"
. scripts/packages.sh

program=build/vatro
games=data/openings.pgn
# As old as the beginning of the last build, so that a change made during the build still counts.
built=build/.built
book=build/book.bin

# True when no source has changed since the program was built.
is_built() {
    [ -x $program ] && [ -e $built ] &&
        [ -z "$(find CMakeLists.txt cmake src -newer $built -print -quit)" ]
}

build() {
    is_built && return 0  # by another start that this one waited for
    need g++ has_program "${CXX:-c++}"
    need cmake has_program cmake
    need make has_program make
    need zlib1g-dev has_header zlib.h
    install_missing || return 1
    echo "Building Vatro; the first time takes a minute or two." >&2
    touch $built.new
    if [ ! -e build/CMakeCache.txt ]; then
        cmake -S . -B build -DCMAKE_BUILD_TYPE=Release || return 1
    fi
    cmake --build build --target vatro vatro-tbgen --parallel "$(getconf _NPROCESSORS_ONLN)" || return 1
    mv $built.new $built
}

# Makes the opening book from the games. Without the tool the engine plays without a book.
make_book() {
    [ -e $games ] || return 0
    [ ! -e $book ] || [ $games -nt $book ] || return 0
    if ! has_program polyglot > /dev/null; then
        # Tried once: a start must not wait for a package that cannot be had.
        [ ! -e build/.no-book-tool ] || return 0
        missing=" polyglot"
        if ! install_missing; then
            touch build/.no-book-tool
            echo "No opening book: it is made by the program polyglot." >&2
            return 0
        fi
    fi
    scripts/make_book.sh $games $book || echo "No opening book: polyglot could not make it." >&2
}

prepare() {
    build || return 1
    make_book
    # A book of the user's own stays where it is.
    if [ -e $book ] && [ ! -e book.bin ] && [ ! -L book.bin ]; then ln -s $book book.bin; fi
}

if ! is_built || [ ! -e $book ] || [ $games -nt $book ] || [ ! -e book.bin ]; then
    mkdir -p build
    # Two engines of one match may start at the same time: one builds, the other waits.
    (
        if has_program flock > /dev/null; then flock 9; fi
        prepare
    ) 9> build/.lock < /dev/null >&2 || is_built || {
        echo "Vatro could not be built." >&2
        exit 1
    }
fi
exec ./$program "$@"
