#!/bin/bash
# try/gnome-chess.sh [FOLDER]: gnome-chess plays a game against the installed Vatro, to mate.
. "$(dirname "$(readlink -f "$0")")/common.sh"
begin gnome-chess python3
record_vatro

mkdir -p "$HOME/.config/gnome-chess"
cp "$repository/packaging/gnome-chess/engines.conf" "$HOME/.config/gnome-chess/"
run_client dbus-run-session -- gnome-chess
window "White to Move" > /dev/null
sleep 3
"$repository/scripts/try/play_by_mouse.py" "$work/said" 158 82 48 || fail "the game did not end"
wait_for 10 window 'Wins'
picture gnome-chess
