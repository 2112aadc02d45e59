#!/bin/bash
# scripts/try/machines.sh - builds for other processors and tries the programs under an emulator:
# 64-bit ARM, IBM z (big-endian) and 32-bit x86. Fails when one of the trials fails.
#
#   scripts/try/machines.sh [MACHINE...]      (default: aarch64 s390x i686)
#
# VATRO_LINUX names a build folder for this machine, an x86-64 one, with program, generator and
# signature; build/ is taken or made otherwise. The builds are kept in build-MACHINE.
set -e
cd "$(dirname "$(readlink -f "$0")")/../.."
source=$PWD
. scripts/packages.sh
machines=${*:-aarch64 s390x i686}

need cmake has_program cmake
need make has_program make
need qemu-user has_program qemu-aarch64
for machine in $machines; do
    need "g++-$machine-linux-gnu" has_program "$machine-linux-gnu-g++"
done
install_missing
if [ -z "$VATRO_LINUX" ]; then
    cmake --preset tests
    cmake --build build --parallel "$(getconf _NPROCESSORS_ONLN)" --target vatro vatro-tbgen signature
fi
linux=${VATRO_LINUX:-$source/build}

# In memory where possible: under the emulator a 32-bit program cannot list a folder of ext4, whose
# offsets have 64 bits.
work=$(mktemp -d -p /dev/shm 2> /dev/null || mktemp -d)
trap 'rm -rf "$work"' EXIT

# get_zlib DEBIAN-NAME FOLDER: unpacks zlib's package for another processor. Its lists are kept apart,
# so that this machine's package manager learns nothing of that processor.
get_zlib() {
    mkdir -p "$2/apt/lists/partial" "$2/apt/cache/archives/partial"
    apt="apt-get -q -o APT::Architecture=$1 -o APT::Architectures=$1 -o Dir::State::status=/dev/null
         -o Dir::State::Lists=$2/apt/lists -o Dir::Cache=$2/apt/cache -o APT::Sandbox::User=root"
    $apt update || true  # one of several lists may be missing; the download says what matters
    (cd "$2" && $apt download zlib1g-dev && dpkg -x zlib1g-dev_*.deb .)
    rm -rf "$2/apt"
}

failures=0
# check MACHINE NAME COMMAND...: says whether the command succeeds.
check() {
    name="$1: $2"
    shift 2
    if "$@" > "$work/log" 2>&1; then
        echo "passed: $name"
    else
        echo "FAILED: $name"
        tail -20 "$work/log"
        failures=$((failures + 1))
    fi
}

# Won, drawn and lost positions, whose values are in the tables, and the start position, which is in
# the book.
positions=(
    "setboard 8/8/8/8/8/2k5/8/K2Q4 w - - 0 1"
    "setboard 8/8/8/3k4/8/8/3P4/3K4 w - - 0 1"
    "setboard 8/8/8/3k4/8/8/8/K6R b - - 0 1"
    "force"
)

# answers COMMAND...: what the engine that the command starts says about the positions, but for times.
answers() {
    coproc engine { cd "$work" && exec "$@"; }
    exec 5<&"${engine[0]}" 6>&"${engine[1]}"
    printf '%s\n' xboard "egtpath gaviota tables" >&6
    for position in "${positions[@]}"; do
        printf '%s\n' new "$position" "sd 4" go >&6
        while read -r line <&5; do
            case $line in
                [0-9]*) echo "$line" | awk '{ $3 = ""; print }' ;;
                *tables*) echo "$line" ;;
                move*) echo "$line" && break ;;
            esac
        done
    done
    echo quit >&6
    exec 5<&- 6>&-
    wait
}

same_answers() {
    answers "$run" "$build/vatro" > "$work/theirs"
    cat "$work/theirs"
    [ "$(grep -c '^move' "$work/theirs")" = 4 ] && diff "$work/ours" "$work/theirs"
}

self_test() {
    printf 'selftest\nquit\n' | (cd "$work" && $run "$build/vatro") | tee "$work/selftest"
    grep -q ", 0 tests failed, 0 tests skipped" "$work/selftest"
}

same_nodes() {
    "$linux/signature" 6 | cut -d, -f1 > "$work/our-nodes"
    $run "$build/signature" 6 | cut -d, -f1 | tee "$work/their-nodes"
    grep -q " nodes" "$work/our-nodes" && cmp "$work/our-nodes" "$work/their-nodes"
}

same_table() {
    mkdir -p "$work/made-$machine"
    $run "$build/vatro-tbgen" KQK KPK --out "$work/made-$machine" &&
        cmp "$work/tables/KQK.gtb.cp4" "$work/made-$machine/KQK.gtb.cp4" &&
        cmp "$work/tables/KPK.gtb.cp4" "$work/made-$machine/KPK.gtb.cp4"
}

"$linux/vatro-tbgen" --pieces 3 KRKR --out "$work/tables" > "$work/log"
# e2e4 in the start position, in the format of a book.
printf '\x46\x3B\x96\x18\x16\x91\xFC\x9C\x03\x1C\x00\x01\x00\x00\x00\x00' > "$work/book.bin"
answers "$linux/vatro" > "$work/ours"

for machine in $machines; do
    case $machine in
        aarch64) debian=arm64 run=qemu-aarch64 ;;
        s390x) debian=s390x run=qemu-s390x ;;
        i686) debian=i386 run=qemu-i386 ;;
    esac
    build=${VATRO_BUILDS:-$source}/build-$machine
    [ -d "$build/zlib/usr" ] || get_zlib "$debian" "$build/zlib"
    cmake -S . -B "$build" -DCMAKE_TOOLCHAIN_FILE="$source/cmake/$machine.cmake" \
        -DVATRO_ZLIB="$build/zlib" -DVATRO_ARCH= -DVATRO_LTO=OFF -DVATRO_WERROR=ON
    cmake --build "$build" --parallel "$(getconf _NPROCESSORS_ONLN)" \
        --target vatro vatro-tbgen signature
    check "$machine" "selftest" self_test
    check "$machine" "the same nodes" same_nodes
    check "$machine" "the same table and book moves" same_answers
    check "$machine" "the same table files" same_table
done

[ $failures = 0 ] || echo "$failures of the trials failed"
[ $failures = 0 ]
