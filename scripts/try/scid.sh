#!/bin/bash
# try/scid.sh [FOLDER]: Scid analyses a position with the installed Vatro, and plays a game against it,
# to mate.
. "$(dirname "$(readlink -f "$0")")/common.sh"
begin scid python3
record_vatro

mkdir -p "$HOME/.scid4.7/config"
cp "$repository/packaging/scid/engines.dat" "$HOME/.scid4.7/config/"
run_client scid
window "Tip of the Day" > /dev/null
sleep 2
click 333 176  # "Close"
sleep 1

# The analysis. A move on the board sends the new position.
click 500 44   # the tab of the engine, which Scid has started
sleep 1
click 436 283  # its start button
wait_for 30 grep -q '^info depth 12 .* pv ' "$work/said"
lines=$(wc -l < "$work/said")
click 223 376
click 223 286
wait_for 10 grep -q '^position .* moves e2e4$\|/4P3/' "$work/heard"
said_more() { tail -n +"$lines" "$work/said" | grep -q '^info depth 12 .* pv '; }
wait_for 30 said_more
picture scid-analysis
click 436 283
sleep 1
: > "$work/said"

# The game: Play / Serious Game, with a minute for Vatro.
click 300 15
sleep 1
click 330 42
sleep 2
xdotool mousemove 210 244 click --repeat 4 --delay 100 1   # minutes: down from 5
xdotool mousemove 282 244 click --repeat 10 --delay 100 1  # seconds added for a move: down from 10
sleep 1
picture scid-settings
click 453 353  # "Play"
sleep 2
click 640 569  # "Discard changes and continue": the move of the analysis
sleep 2
"$repository/scripts/try/play_by_mouse.py" "$work/said" 19 84 45 || fail "the game did not end"
sleep 2
picture scid
grep -q '^go wtime ' "$work/heard" || fail "the game had no clock"
