#!/bin/bash
# try/scid.sh [FOLDER]: Scid analyses a position with the installed Vatro.
. "$(dirname "$(readlink -f "$0")")/common.sh"
begin scid
record_vatro

mkdir -p "$HOME/.scid4.7/config"
cp "$repository/packaging/scid/engines.dat" "$HOME/.scid4.7/config/"
run_client scid
window "Tip of the Day" > /dev/null
sleep 2
click 333 176  # "Close"
sleep 1
click 500 44   # the tab of the engine, which Scid has started
sleep 1
click 436 283  # its start button
wait_for 30 grep -Eq '^ *12 .* [a-h][1-8][a-h][1-8]' "$work/said"
# A move on the board: Scid sends the new position.
lines=$(wc -l < "$work/said")
click 223 376
click 223 286
wait_for 10 grep -q '/4P3/' "$work/heard"
said_more() { tail -n +"$lines" "$work/said" | grep -Eq '^ *12 .* [a-h][1-8][a-h][1-8]'; }
wait_for 30 said_more
picture scid-analysis
