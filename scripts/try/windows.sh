#!/bin/bash
# scripts/try/windows.sh - unpacks the archive for Windows, tries its programs under Wine and compares
# them with those for Linux. Fails when one of the trials fails.
#
# Builds both unless VATRO_WINDOWS and VATRO_LINUX name build folders: VATRO_WINDOWS one of
# build_windows.sh, VATRO_LINUX one with the tests.
set -e
cd "$(dirname "$(readlink -f "$0")")/../.."
source=$PWD
. scripts/packages.sh

need wine64 test -x /usr/lib/wine/wine64
need python3 has_program python3
need unzip has_program unzip
install_missing
[ -n "$VATRO_WINDOWS" ] || scripts/build_windows.sh
windows=${VATRO_WINDOWS:-$source/build-windows}
if [ -z "$VATRO_LINUX" ]; then
    cmake --preset tests
    cmake --build build --parallel "$(getconf _NPROCESSORS_ONLN)"
fi
linux=${VATRO_LINUX:-$source/build}
cmake --build "$windows/x86-64-v2" --target signature

work=$(mktemp -d)
export WINEPREFIX=$work/wine WINEDEBUG=-all WINEDLLOVERRIDES="mscoree=;mshtml=" LANG=C.UTF-8 LC_ALL=C.UTF-8
# There may be no server left to end, which is no failure.
trap '/usr/lib/wine/wineserver64 -k 2> /dev/null || true; rm -rf "$work"' EXIT
/usr/lib/wine/wine64 wineboot -i > /dev/null 2>&1

# The name of the folder is not in any old character set at once.
unpacked="$work/Vatro è таблица"
unzip -q "$windows"/vatro-*.zip -d "$unpacked"
programs=$(echo "$unpacked"/vatro-*)
# Each program under a name of its own that starts it under Wine.
for program in "$programs/vatro" "$programs/vatro-tbgen" "$windows/x86-64-v2/signature"; do
    name=$work/$(basename "$program")
    printf '#!/bin/sh\nexec /usr/lib/wine/wine64 "%s.exe" "$@"\n' "$program" > "$name"
    chmod +x "$name"
done

failures=0
# trial NAME COMMAND...: says whether the command succeeds.
trial() {
    name=$1
    shift
    if "$@" > "$work/log" 2>&1; then
        echo "passed: $name"
    else
        echo "FAILED: $name"
        tail -20 "$work/log"
        failures=$((failures + 1))
    fi
}

# answers LINE...: what the engine answers to the lines.
answers() {
    printf '%s\n' "$@" | (cd "$work" && timeout 600 ./vatro)
}

# Waits up to 20 seconds for a text in a file.
wait_for() {
    for _ in $(seq 200); do
        grep -q "$1" "$2" 2> /dev/null && return
        sleep 0.1
    done
    return 1
}

self_test() {
    answers selftest quit | tee "$work/selftest"
    grep -q ", 0 tests failed, 0 tests skipped" "$work/selftest"
}

plain_line_ends() {
    answers protover\ 2 quit > "$work/lines"
    grep -q "feature done=1" "$work/lines" && ! grep -q $'\r' "$work/lines"
}

# From a folder without a book: the move is from the one in the archive, so without thinking.
finds_its_book() {
    mkdir -p "$work/elsewhere"
    { printf 'xboard\nprotover 2\ngo\n' && sleep 5 && echo quit; } |
        (cd "$work/elsewhere" && ../vatro) | tee "$work/from-book"
    grep -q "^move " "$work/from-book" && ! grep -q '^ *[0-9]' "$work/from-book"
}

# The launcher passes on arguments with blanks, and how the program ended.
passes_arguments() {
    "$work/vatro-tbgen" KQK --out "Z:$work/with blanks" && [ -s "$work/with blanks/KQK.gtb.cp4" ] &&
        ! "$work/vatro-tbgen" KQKX && "$work/vatro" bench 1 | grep -q ' nps$'
}

# A line of thinking comes while the search that prints it goes on.
lines_come_at_once() {
    { echo analyze && sleep 8 && echo exit && echo quit; } |
        (cd "$work" && ./vatro) > "$work/thinking" &
    for _ in $(seq 60); do
        grep -q '^[0-9]' "$work/thinking" && break
        sleep 0.1
    done
    lines=$(grep -c '^[0-9]' "$work/thinking")
    wait
    [ "$lines" -gt 0 ]
}

# The tests of sessions with the engine, but for those that ask for what Windows does not have: limits
# set by a shell, pipes and devices in folders, a signal when nobody reads the output any more.
skipped='Limits.*:StartUp.TakesNoConfigurationButFromARegularFile'
skipped+=':DuringSearch.TheProgramEndsWhenNobodyReadsItsOutput'
protocol() {
    rm -f "$programs/book.bin"  # they expect a search at the first move; it is the last trial
    (cd "$work" && VATRO_PROGRAM=$work/vatro VATRO_PATIENCE_MS=60000 \
        "$linux/protocol_tests" --gtest_filter="${VATRO_TRY_TESTS:-*}:-$skipped")
}

# games ARGUMENT...: timed games; none may be lost on time or fail.
games() {
    (cd "$work" && "$source/bench/fast_games.py" --at-once 1 --games 2 "$@") | tee "$work/games"
    ! grep -qE "forfeit|failed|refused" "$work/games"
}

two_threads() {
    printf '#!/bin/sh\nexec "%s/vatro" -cores 2\n' "$work" > "$work/vatro2"
    chmod +x "$work/vatro2"
    games --moves 20 --seconds 10 "$work/vatro2"
}

tables="$work/Tabelle è таблица"

same_tables() {
    "$linux/vatro-tbgen" --pieces 3 KRKP --out "$work/tables" &&
        "$work/vatro-tbgen" --pieces 3 KRKP --out "Z:$tables" &&
        diff -r "$work/tables" "$tables" &&
        "$work/vatro-tbgen" --verify --pieces 3 --out "Z:$tables"
}

probes() {
    answers "egtpath gaviota Z:$tables" "setboard 8/8/8/8/8/2k5/8/K2Q4 w - - 0 1" "sd 12" go |
        tee "$work/probes"
    grep -q '^[0-9]' "$work/probes"
}

# The generator makes a table anew that the engine has open.
replacing() {
    mkfifo "$work/commands"
    (cd "$work" && ./vatro) < "$work/commands" > "$work/replacing" &
    engine=$!
    exec 5> "$work/commands"
    printf '%s\n' xboard "egtpath gaviota Z:$tables" \
        "setboard 8/8/8/3k4/8/8/3P4/3K4 w - - 0 1" "sd 8" go >&5
    wait_for "^move" "$work/replacing" || return 1
    # Damaged, so that it is made again.
    printf 'x' | dd of="$tables/KPK.gtb.cp4" bs=1 seek=1000 conv=notrunc
    "$work/vatro-tbgen" KPK --out "Z:$tables" &&
        cmp "$work/tables/KPK.gtb.cp4" "$tables/KPK.gtb.cp4" || return 1
    printf '%s\n' new "setboard 8/8/8/3k4/8/8/3P4/3K4 w - - 0 1" go "ping 7" quit >&5
    exec 5>&-
    wait $engine && grep -q "^pong 7" "$work/replacing" &&
        [ -z "$(find "$tables" -type f ! -name '*.gtb.cp4')" ]
}

interrupt() {
    # Not by the launcher: the signal is for one process.
    /usr/lib/wine/wine64 "$programs/vatro/vatro-tbgen-x86-64.exe" KQRK --threads 1 \
        --out "Z:$work/interrupted" > "$work/interrupt" 2>&1 &
    for _ in $(seq 200); do
        [ -z "$(find "$work/interrupted" -name 'KQRK*.part' 2> /dev/null)" ] || break
        sleep 0.05
    done
    kill -INT $!
    ! wait $! && [ -z "$(find "$work/interrupted" -name '*.part')" ] &&
        grep -q interrupted "$work/interrupt"
}

# The first moves of thirty games in one session.
book_is_varied() {
    # e2e4 and d2d4 in the start position, with the same weight.
    python3 - > "$work/book.bin" << 'END'
import struct, sys
for move in 0x31C, 0x2DB:
    sys.stdout.buffer.write(struct.pack(">QHHI", 0x463B96181691FC9C, move, 1, 0))
END
    : > "$work/book"
    {
        for i in $(seq 30); do
            printf 'new\ngo\n'
            for _ in $(seq 300); do
                [ "$(grep -c '^move' "$work/book")" -lt "$i" ] || break
                sleep 0.1
            done
        done
        echo quit
    } | (cd "$work" && ./vatro) > "$work/book"
    grep '^move' "$work/book" | sort | uniq -c
    [ "$(grep '^move' "$work/book" | sort -u | wc -l)" -gt 1 ]
}

# Windows hands out no large pages without a privilege, and what they save is not the programs' doing.
without_large_pages() {
    python3 -c 'import ctypes, os, sys
PR_SET_THP_DISABLE = 41  # fixed by Linux
ctypes.CDLL(None).prctl(PR_SET_THP_DISABLE, 1, 0, 0, 0)
os.execv(sys.argv[1], sys.argv[1:])' "$@"
}

# processor_time COMMAND...: milliseconds, the least of three runs.
processor_time() {
    TIMEFORMAT=%U
    for _ in 1 2 3; do
        { time "$@" > /dev/null 2>&1; } 2>&1 | awk '{ print int(1000 * $1) }'
    done | sort -n | head -1
}

# search_time COMMAND...: that of the fixed searches, without the start of the program, which takes long
# under Wine.
search_time() {
    echo $(($(processor_time "$@" 9) - $(processor_time "$@" 1)))
}

fast_search() {
    under_wine=$(search_time "$work/signature")
    native=$(search_time without_large_pages "$linux/signature")
    echo "milliseconds: $native, with large pages $(search_time "$linux/signature"), under Wine $under_wine"
    [ "$under_wine" -gt 0 ] && [ $((under_wine * 2)) -lt $((native * 3)) ]
}

trial "selftest" self_test
trial "lines end as on Linux" plain_line_ends
trial "the book of the archive" finds_its_book
trial "arguments with blanks" passes_arguments
trial "thinking is shown while it goes on" lines_come_at_once
trial "the same nodes" sh -c "'$work/signature' 8 | grep -q ' 919954 nodes'"
trial "a search within 1.5 times the time, in pages of one size" fast_search
trial "tables are the same bytes, in a folder with a name in other alphabets" same_tables
trial "probes of these tables" probes
trial "a table replaced while the engine has it open" replacing
trial "Ctrl-C leaves no unfinished table" interrupt
trial "the book is varied" book_is_varied
trial "timed games with one thread" games --moves 20 --seconds 10 "$work/vatro"
trial "timed games with two threads" two_threads
trial "the protocol tests" protocol

[ $failures = 0 ] || echo "$failures of the trials failed"
[ $failures = 0 ]
