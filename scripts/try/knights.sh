#!/bin/bash
# try/knights.sh [FOLDER]: Knights plays a game against the installed Vatro, to its end.
. "$(dirname "$(readlink -f "$0")")/common.sh"
begin knights python3
record_vatro

cp "$repository/packaging/knights/knightsrc" "$XDG_CONFIG_HOME/"
run_client dbus-run-session -- knights
wait_for 60 xdotool search --name "^Knights$"
sleep 4
click 26 38    # "New"
sleep 3
click 565 324  # "OK"
wait_for 30 grep -q . "$work/heard"
sleep 3
"$repository/scripts/try/play_by_mouse.py" "$work/said" 374 66 35 || fail "the game did not end"
sleep 2
picture knights
