#!/bin/bash
# tests/engine/try_dying_engine.sh - lists the protocol tests that pass with an engine that fails.
#
#   tests/engine/try_dying_engine.sh BUILD-FOLDER [GTEST-FILTER]
#
# Runs each test again for every line that it sends, with an engine that is killed at this line, and
# with one that obeys nothing from this line on but ends as it should, so that only the test's own
# expectations can tell. What it prints are tests that look away; half an hour on two cores. Of
# tests that differ in a parameter only the first is run.
set -u
build=$(realpath "$1")
filter=${2:-*-Session.*:ChildProcess.*}
export VATRO_ENGINE=$build/vatro
VATRO_PROGRAM=$(dirname "$(realpath "$0")")/dying_engine.sh
export VATRO_PROGRAM
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

run() {
    timeout 120 "$build/protocol_tests" --gtest_throw_on_failure --gtest_filter="$1" &> /dev/null
}

# The commands to fail at. Those of a game differ from run to run: there, the first word is enough.
# Pings that a session sends by itself follow each other, so one stands for all.
commands() {
    case $1 in *SelfPlay*) cut -d ' ' -f 1 "$2" ;; *) cat "$2" ;; esac |
        LC_ALL=C grep -a -x '[ -~]\{1,200\}' | grep -v '^ping 1[0-9][0-9][0-9]$' | sort -u
}

# try TEST LOG: all faults in one test.
try() {
    local test=$1 log=$2 command fault
    VATRO_LOG=$log run "$test" || echo "$test: fails with the engine as it is"
    commands "$test" "$log" > "$log.commands"
    while IFS= read -r command; do
        for fault in die deaf; do
            rm -f "$log.again"
            VATRO_PATIENCE_MS=2000 VATRO_LOG=$log.again VATRO_COMMAND=$command VATRO_FAULT=$fault \
                run "$test" || continue
            ! grep -aqF -e "$command" "$log.again" ||
                echo "$test: passes when the engine fails at \"$command\" ($fault)"
        done
    done < "$log.commands"
}

number=0
"$build/protocol_tests" --gtest_list_tests --gtest_filter="$filter" |
    awk '/^[^ ]/ { suite = $1; next } $1 !~ "/[1-9]" { print suite $1 }' > "$scratch/tests"
while IFS= read -r test; do
    number=$((number + 1))
    try "$test" "$scratch/$number" 2> /dev/null &
    [ "$(jobs -rp | wc -l)" -lt "$(nproc)" ] || wait -n
done < "$scratch/tests"
wait
